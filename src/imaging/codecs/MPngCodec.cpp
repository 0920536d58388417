// PNG, through libpng with its default settings where MPlainPng has no faster way. What the library has to say
// goes to the debug channel.
#include "imaging/codecs/MByteRows.h"
#include "imaging/codecs/MCodec.h"
#include "imaging/codecs/MPlainPng.h"

#include <png.h>

#include <csetjmp>
#include <cstring>

namespace {

// Deflate can't shrink data further than this, so a header that promises more than the file could hold is a
// lie.
constexpr std::uint64_t bestDeflateRatio = 1032;

[[noreturn]] void OnError(png_structp png, png_const_charp message) {
    ReportCodec("PNG", message);
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp message) {
    ReportCodec("PNG", message);
}

// Runs `work`, which libpng may leave by a long jump: nothing in it may need a destructor.
template<typename Work>
bool Guarded(png_structp png, const Work& work) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    return work();
}

struct Input {
    std::span<const std::uint8_t> rest;
};

void OnRead(png_structp png, png_bytep target, std::size_t count) {
    auto& input = *static_cast<Input*>(png_get_io_ptr(png));
    if (count > input.rest.size()) png_error(png, "file is cut short");
    std::memcpy(target, input.rest.data(), count);
    input.rest = input.rest.subspan(count);
}

void OnWrite(png_structp png, png_bytep bytes, std::size_t count) {
    auto& sink = *static_cast<MByteSink*>(png_get_io_ptr(png));
    if (!sink.Write(bytes, count)) png_error(png, "out of memory");
}

void OnFlush(png_structp) {}

// The format that holds the file's own depth, and the transforms that lead there. Whatever has no format of its
// own becomes format 7, but with 16 bits format 8: grey with alpha, and all with one transparent colour.
MPixelFormat ChooseFormat(png_structp png, png_infop info) {
    const bool wide = png_get_bit_depth(png, info) == 16;
    const bool keyed = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    const int colourType = png_get_color_type(png, info);
    if (wide) png_set_swap(png);
    if (colourType == PNG_COLOR_TYPE_GRAY && png_get_bit_depth(png, info) >= 8 && !keyed) {
        return wide ? FormatR16 : FormatR8;
    }
    if (colourType == PNG_COLOR_TYPE_RGB && !keyed) {
        if (!wide) png_set_bgr(png);
        return wide ? FormatRGB16 : FormatRGB8;
    }
    if (wide) {
        if (keyed) png_set_tRNS_to_alpha(png);
        png_set_gray_to_rgb(png);
        return FormatRGBA16;
    }
    png_set_expand(png);
    png_set_gray_to_rgb(png);
    png_set_bgr(png);
    png_set_add_alpha(png, 255, PNG_FILLER_AFTER);
    return FormatRGBA8;
}

bool ReadPicture(png_structp png, png_infop info, Input& input, MPicture& picture) {
    const std::uint64_t fileSize = input.rest.size();
    png_set_read_fn(png, &input, OnRead);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    // Nothing but the picture itself is of interest, and skipped chunks can't be made to expand.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
#if defined(FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION)
    // Random changes never get past a checksum.
    png_set_crc_action(png, PNG_CRC_QUIET_USE, PNG_CRC_QUIET_USE);
    png_set_option(png, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
#endif
    png_read_info(png, info);
    const std::uint64_t width = png_get_image_width(png, info);
    const std::uint64_t height = png_get_image_height(png, info);
    // A product of the two would not fit 64 bits for every header.
    if (png_get_rowbytes(png, info) >= fileSize * bestDeflateRatio / height) {
        ReportCodec("PNG", "larger than the file could hold");
        return false;
    }
    const MPixelFormat format = ChooseFormat(png, info);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const bool given = picture.IsValid() && picture.Width == width && picture.Height == height &&
                       picture.Format == format; // by the plain way, which gave up later
    if (!given && !AllocatePicture(picture, width, height, format, passes > 1 ? 2 : 1)) return false;
    if (png_get_rowbytes(png, info) != picture.Stride) return false;
    for (int pass = 0; pass < passes; ++pass) {
        for (std::size_t y = 0; y < picture.Height; ++y) {
            png_read_row(png, picture.Pixels + y * picture.Stride, nullptr);
        }
    }
    png_read_end(png, nullptr); // a file that ends before this is cut short
    return true;
}

// Floats have no place in a PNG: they become 16-bit numbers.
void WidenRow(const std::uint8_t* row, std::uint8_t* words, std::size_t values) {
    for (std::size_t i = 0; i < values; ++i) {
        Imath::half value;
        std::memcpy(&value, row + i * sizeof value, sizeof value);
        const std::uint16_t word = ToWord(value);
        std::memcpy(words + i * sizeof word, &word, sizeof word);
    }
}

bool WritePicture(png_structp png, png_infop info, const MPicture& picture, std::uint8_t* words,
                  MByteSink& sink) {
    const int channels = ChannelCount(picture.Format);
    const int colourType = channels == 1   ? PNG_COLOR_TYPE_GRAY
                           : channels == 3 ? PNG_COLOR_TYPE_RGB
                                           : PNG_COLOR_TYPE_RGB_ALPHA;
    const bool wide = ChannelClass(picture.Format) != 1;
    png_set_write_fn(png, &sink, OnWrite, OnFlush);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, info, picture.Width, picture.Height, wide ? 16 : 8, colourType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (wide) png_set_swap(png);
    if (!wide && channels > 1) png_set_bgr(png);
    for (std::size_t y = 0; y < picture.Height; ++y) {
        const std::uint8_t* const row = picture.Pixels + y * picture.Stride;
        if (words) WidenRow(row, words, std::size_t{picture.Width} * static_cast<std::size_t>(channels));
        png_write_row(png, words ? words : row);
    }
    png_write_end(png, info);
    return true;
}

} // namespace

bool SniffPng(std::span<const std::uint8_t> start) {
    return StartsWith(start, "\x89PNG\r\n\x1A\n"); // ISO/IEC 15948, 5.2
}

bool DecodePng(MByteSource& file, std::int32_t frame, MPicture& picture) {
    if (frame != 0) return false;
    return DecodePlainPng(file.All(), picture) || DecodePngByLibpng(file.All(), picture);
}

bool DecodePngByLibpng(std::span<const std::uint8_t> file, MPicture& picture) {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    Input input{file};
    const bool read = info && Guarded(png, [&] { return ReadPicture(png, info, input, picture); });
    png_destroy_read_struct(&png, &info, nullptr);
    return read;
}

bool EncodePng(const MPicture& picture, MByteSink& sink) {
    if (const auto written = EncodePlainPng(picture, sink)) return *written;
    const bool floats = ChannelClass(picture.Format) == 3;
    const std::unique_ptr<std::uint8_t[]> words(floats ? MGetMemory(picture.Stride) : nullptr);
    if (floats && !words) return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    const bool written =
        info && Guarded(png, [&] { return WritePicture(png, info, picture, words.get(), sink); });
    png_destroy_write_struct(&png, &info);
    return written;
}
