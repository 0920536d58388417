// JPEG, through libjpeg with its default settings. Grey files are format 1, colours format 4; the four inks of
// CMYK files become format 7.
#include "imaging/codecs/MByteRows.h"
#include "imaging/codecs/MCodec.h"

#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstring>

// The second of these needs the first.
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

namespace {

// Eight by eight pixels take a bit at the very least.
constexpr std::uint64_t mostPixelsPerByte = 512;
// A progressive file can repeat its scans as often as it likes, each of them a walk over the whole picture.
constexpr int mostScans = 100;

// libjpeg's own record with a way back; the library hands out pointers to the first member.
struct Errors {
    jpeg_error_mgr manager;
    std::jmp_buf back;
};

void Report(j_common_ptr jpeg) {
    std::array<char, JMSG_LENGTH_MAX> message{};
    jpeg->err->format_message(jpeg, message.data());
    ReportCodec("JPEG", message.data());
}

[[noreturn]] void OnError(j_common_ptr jpeg) {
    Report(jpeg);
    std::longjmp(reinterpret_cast<Errors*>(jpeg->err)->back, 1);
}

// libjpeg goes on with grey where data are missing or damaged; such a picture is not taken.
void OnMessage(j_common_ptr jpeg, int level) {
    if (level >= 0) return;
    switch (jpeg->err->msg_code) {
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_JPEG_EOF:
    case JWRN_MUST_RESYNC: return OnError(jpeg);
    default: return Report(jpeg);
    }
}

void OnProgress(j_common_ptr jpeg) {
    if (!jpeg->is_decompressor) return;
    if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number <= mostScans) return;
    ReportCodec("JPEG", "too many scans");
    std::longjmp(reinterpret_cast<Errors*>(jpeg->err)->back, 1);
}

void Prepare(Errors& errors) {
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = OnError;
    errors.manager.emit_message = OnMessage;
    errors.manager.output_message = Report;
}

// Runs `work`, which libjpeg may leave by a long jump: nothing in it may need a destructor.
template<typename Work>
bool Guarded(Errors& errors, const Work& work) {
    if (setjmp(errors.back) != 0) return false;
    return work();
}

// Progressive files are held as coefficients while they are read.
bool FitsMemory(const jpeg_decompress_struct& jpeg) {
    const std::uint64_t pixels = std::uint64_t{jpeg.image_width} * jpeg.image_height;
    const std::uint64_t perPixel = static_cast<std::uint64_t>(jpeg.num_components) * sizeof(JCOEF);
    return pixels * (perPixel + sizeof(MColour)) <= MemoryLimit();
}

// The inks of Adobe's files are stored inverted; taken as light, two of them multiply.
void MixInks(MPicture& picture, bool inverted) {
    const std::uint8_t turn = inverted ? 0 : 255;
    for (std::size_t y = 0; y < picture.Height; ++y) {
        std::uint8_t* pixel = picture.Pixels + y * picture.Stride;
        for (std::size_t x = 0; x < picture.Width; ++x, pixel += sizeof(MColour)) {
            const auto channel = [&](std::size_t ink) {
                const std::uint32_t light = pixel[ink] ^ turn;
                const std::uint32_t black = pixel[3] ^ turn;
                return static_cast<std::uint8_t>((light * black + 127) / 255);
            };
            const MColour colour(channel(0), channel(1), channel(2));
            std::memcpy(pixel, &colour, sizeof colour);
        }
    }
}

bool ReadPicture(jpeg_decompress_struct& jpeg, jpeg_progress_mgr& progress, std::span<const std::uint8_t> bytes,
                 MPicture& picture) {
    jpeg_create_decompress(&jpeg);
    progress.progress_monitor = OnProgress;
    jpeg.progress = &progress;
    jpeg_mem_src(&jpeg, bytes.data(), bytes.size());
    jpeg_read_header(&jpeg, TRUE);
    const std::uint64_t pixels = std::uint64_t{jpeg.image_width} * jpeg.image_height;
    if (pixels > bytes.size() * mostPixelsPerByte || !FitsMemory(jpeg)) {
        ReportCodec("JPEG", "larger than the file could hold");
        return false;
    }
    const bool grey = jpeg.jpeg_color_space == JCS_GRAYSCALE;
    const bool inks = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = grey ? JCS_GRAYSCALE : inks ? JCS_CMYK : JCS_EXT_BGR;
    const MPixelFormat format = grey ? FormatR8 : inks ? FormatRGBA8 : FormatRGB8;
    if (!AllocatePicture(picture, jpeg.image_width, jpeg.image_height, format)) return false;
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = picture.Pixels + std::size_t{jpeg.output_scanline} * picture.Stride;
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    return true;
}

// libjpeg's destination: a piece of memory that it fills and hands over.
struct Destination {
    jpeg_destination_mgr manager;
    MByteSink* sink;
    std::array<JOCTET, 65536> piece;
};

void OnStart(j_compress_ptr jpeg) {
    auto& destination = *reinterpret_cast<Destination*>(jpeg->dest);
    destination.manager.next_output_byte = destination.piece.data();
    destination.manager.free_in_buffer = destination.piece.size();
}

boolean OnFull(j_compress_ptr jpeg) {
    auto& destination = *reinterpret_cast<Destination*>(jpeg->dest);
    if (!destination.sink->Write(destination.piece.data(), destination.piece.size()))
        ERREXIT(jpeg, JERR_FILE_WRITE);
    OnStart(jpeg);
    return TRUE;
}

void OnEnd(j_compress_ptr jpeg) {
    auto& destination = *reinterpret_cast<Destination*>(jpeg->dest);
    const std::size_t count = destination.piece.size() - destination.manager.free_in_buffer;
    if (!destination.sink->Write(destination.piece.data(), count)) ERREXIT(jpeg, JERR_FILE_WRITE);
}

// What libjpeg takes as it lies in memory.
bool TakesRows(MPixelFormat format, J_COLOR_SPACE& space) {
    switch (format) {
    case FormatR8: space = JCS_GRAYSCALE; return true;
    case FormatRGB8: space = JCS_EXT_BGR; return true;
    case FormatRGBA8: space = JCS_EXT_BGRX; return true;
    default: space = ChannelCount(format) == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR; return false;
    }
}

bool WritePicture(jpeg_compress_struct& jpeg, const MPicture& picture, std::uint8_t* bytes,
                  Destination& destination) {
    jpeg_create_compress(&jpeg);
    jpeg.dest = &destination.manager;
    jpeg.image_width = picture.Width;
    jpeg.image_height = picture.Height;
    const bool direct = TakesRows(picture.Format, jpeg.in_color_space);
    const bool grey = jpeg.in_color_space == JCS_GRAYSCALE;
    jpeg.input_components = grey ? 1 : jpeg.in_color_space == JCS_EXT_BGRX ? 4 : 3;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        JSAMPROW row = picture.Pixels + std::size_t{jpeg.next_scanline} * picture.Stride;
        if (!direct) {
            CopyByteRow(picture, jpeg.next_scanline, grey ? MByteOrder::Grey : MByteOrder::Bgr, bytes);
            row = bytes;
        }
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    return true;
}

} // namespace

bool SniffJpeg(std::span<const std::uint8_t> start) {
    return StartsWith(start, "\xFF\xD8\xFF"); // ISO/IEC 10918-1, B.2: start of image, and another marker
}

bool DecodeJpeg(MByteSource& file, std::int32_t frame, MPicture& picture) {
    const std::span<const std::uint8_t> bytes = file.All();
    if (frame != 0 || bytes.empty()) return false;
    Errors errors{};
    Prepare(errors);
    jpeg_progress_mgr progress{};
    jpeg_decompress_struct jpeg{};
    jpeg.err = &errors.manager;
    const bool read = Guarded(errors, [&] { return ReadPicture(jpeg, progress, bytes, picture); });
    if (read && picture.Format == FormatRGBA8) MixInks(picture, jpeg.saw_Adobe_marker);
    jpeg_destroy_decompress(&jpeg);
    return read;
}

bool EncodeJpeg(const MPicture& picture, MByteSink& sink) {
    if (picture.Width > JPEG_MAX_DIMENSION || picture.Height > JPEG_MAX_DIMENSION) return false;
    const std::unique_ptr<std::uint8_t[]> row(MGetMemory(std::size_t{picture.Width} * sizeof(MColour)));
    const auto destination = std::make_unique<Destination>();
    if (!row) return false;
    destination->manager = {nullptr, 0, OnStart, OnFull, OnEnd};
    destination->sink = &sink;
    Errors errors{};
    Prepare(errors);
    jpeg_compress_struct jpeg{};
    jpeg.err = &errors.manager;
    const bool written = Guarded(errors, [&] { return WritePicture(jpeg, picture, row.get(), *destination); });
    jpeg_destroy_compress(&jpeg);
    return written;
}
