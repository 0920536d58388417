// TIFF, through libtiff with its default settings. Grey, RGB and RGB with straight alpha keep their depth, with
// 8 or 16 bits or binary16 channels; other floats become format 7, 16-bit grey with alpha and premultiplied
// colours format 8, 16-bit inks format 5, and every other kind is rendered by libtiff and becomes format 7.
// Each directory is a frame.
#include "imaging/MPixelLayout.h"
#include "imaging/codecs/MByteRows.h"
#include "imaging/codecs/MCodec.h"
#include "imaging/codecs/MTiffSamples.h"

#include <tiffio.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <utility>

namespace {

int OnMessage(TIFF*, void*, const char*, const char* format, std::va_list arguments) {
    std::array<char, 256> message{};
    std::vsnprintf(message.data(), message.size(), format, arguments);
    ReportCodec("TIFF", message.data());
    return 1;
}

// The two ends that libtiff may have of a file, with the position that it expects the file to keep.
struct Stream {
    MByteSource* source = nullptr;
    MByteSink* sink = nullptr;
    std::uint64_t position = 0;

    std::uint64_t Size() const { return source ? source->Size() : sink->Size(); }
};

tmsize_t OnRead(thandle_t handle, void* target, tmsize_t count) {
    auto& stream = *static_cast<Stream*>(handle);
    if (!stream.source || count < 0) return 0;
    const std::size_t came = stream.source->ReadSome(stream.position, target, static_cast<std::size_t>(count));
    stream.position += came;
    return static_cast<tmsize_t>(came);
}

tmsize_t OnWrite(thandle_t handle, void* bytes, tmsize_t count) {
    auto& stream = *static_cast<Stream*>(handle);
    if (!stream.sink || count < 0) return 0;
    if (!stream.sink->WriteAt(stream.position, bytes, static_cast<std::size_t>(count))) return 0;
    stream.position += static_cast<std::uint64_t>(count);
    return count;
}

toff_t OnSeek(thandle_t handle, toff_t offset, int whence) {
    auto& stream = *static_cast<Stream*>(handle);
    stream.position = offset + (whence == SEEK_CUR ? stream.position : whence == SEEK_END ? stream.Size() : 0);
    return stream.position;
}

int OnClose(thandle_t) {
    return 0;
}

toff_t OnSize(thandle_t handle) {
    return static_cast<Stream*>(handle)->Size();
}

using TiffPointer = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

TiffPointer Open(Stream& stream, const char* mode) {
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    if (!options) return {nullptr, TIFFClose};
    const std::size_t most = std::min<std::size_t>(MemoryLimit(), std::numeric_limits<tmsize_t>::max());
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, static_cast<tmsize_t>(most));
    TIFFOpenOptionsSetErrorHandlerExtR(options, OnMessage, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, OnMessage, nullptr);
    TIFF* const tiff = TIFFClientOpenExt("", mode, &stream, OnRead, OnWrite, OnSeek, OnClose, OnSize, nullptr,
                                         nullptr, options);
    TIFFOpenOptionsFree(options);
    return {tiff, TIFFClose};
}

template<typename Value>
Value Tag(TIFF* tiff, std::uint32_t tag) {
    Value value{};
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

// How many bytes one byte of the file can become at most.
std::uint64_t BestRatio(std::uint16_t compression) {
    switch (compression) {
    case COMPRESSION_NONE: return 1;
    case COMPRESSION_PACKBITS: return 64;
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE: return 1032;
    case COMPRESSION_LZW: return 4096;
    default: return 8192;
    }
}

class TiffReader {
public:
    TiffReader(TIFF* opened, std::uint64_t size, MPicture& result)
        : tiff(opened), fileSize(size), picture(result), width(Tag<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH)),
          height(Tag<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH)),
          bits(Tag<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE)),
          samples(Tag<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL)),
          photometric(Tag<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC)), alpha(Alpha()),
          separate(Tag<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE),
          tiled(TIFFIsTiled(tiff) != 0) {}

    bool Read() {
        if (width == 0 || height == 0 || !IsPlausible()) return false;
        const MPixelFormat format = OwnFormat();
        if (format == FormatNone) return ReadOtherKind();
        if (!AllocatePicture(picture, width, height, format) || !ReadSamples(picture.Pixels)) return false;
        if (photometric == PHOTOMETRIC_MINISWHITE) Invert();
        if (ChannelClass(format) == 1 && samples >= 3) {
            SwapRedAndBlue(picture.Pixels, std::size_t{width} * height, samples);
        }
        return true;
    }

private:
    TIFF* const tiff;
    const std::uint64_t fileSize;
    MPicture& picture;
    const std::uint32_t width;
    const std::uint32_t height;
    const std::uint16_t bits;
    const std::uint16_t samples;
    const std::uint16_t photometric;
    const MTiffAlpha alpha;
    const bool separate; // each channel has a plane of its own
    const bool tiled;

    // The pieces must not claim more than the file holds between them, nor unpack to more than is possible.
    bool IsPlausible() const {
        const std::uint32_t pieces = tiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
        std::uint64_t packed = 0;
        for (std::uint32_t i = 0; i < pieces && packed <= fileSize; ++i)
            packed += TIFFGetStrileByteCount(tiff, i);
        const std::uint64_t rows = tiled ? pieces : std::uint64_t{height} * (separate ? samples : 1U);
        const std::uint64_t rowBytes = tiled ? TIFFTileSize64(tiff) : TIFFScanlineSize64(tiff);
        const std::uint64_t ratio = BestRatio(Tag<std::uint16_t>(tiff, TIFFTAG_COMPRESSION));
        if (rowBytes == 0 || packed > fileSize || rows > packed * ratio / rowBytes) {
            ReportCodec("TIFF", "larger than the file could hold");
            return false;
        }
        return true;
    }

    MPixelFormat OwnFormat() const {
        const auto sampleFormat = Tag<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT);
        const bool floats = sampleFormat == SAMPLEFORMAT_IEEEFP;
        if (bits != 8 && bits != 16) return FormatNone;
        if (floats ? bits != 16 : sampleFormat != SAMPLEFORMAT_UINT) return FormatNone;
        const auto ofDepth = [&](MPixelFormat bytes) { return bytes + (floats ? 2 : bits == 16 ? 1 : 0); };
        if (photometric == PHOTOMETRIC_MINISBLACK && samples == 1) return ofDepth(FormatR8);
        if (photometric == PHOTOMETRIC_MINISWHITE && samples == 1 && !floats) return ofDepth(FormatR8);
        if (photometric != PHOTOMETRIC_RGB) return FormatNone;
        if (samples == 3) return ofDepth(FormatRGB8);
        return samples == 4 && alpha == MTiffAlpha::Straight ? ofDepth(FormatRGBA8) : FormatNone;
    }

    // Of the sample behind the colours. As in libtiff, a fourth one of unknown meaning is a premultiplied
    // alpha, since some programs leave it untold.
    MTiffAlpha Alpha() const {
        std::uint16_t count = 0;
        const std::uint16_t* kinds = nullptr;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
        if (samples != 2 && samples != 4) return MTiffAlpha::None;
        const int kind = count >= 1 && kinds ? kinds[0] : EXTRASAMPLE_UNSPECIFIED;
        if (kind == EXTRASAMPLE_UNASSALPHA) return MTiffAlpha::Straight;
        return kind == EXTRASAMPLE_ASSOCALPHA || samples == 4 ? MTiffAlpha::Premultiplied : MTiffAlpha::None;
    }

    std::size_t RowBytes() const { return std::size_t{width} * samples * (bits / 8U); }

    // All samples as they lie in the file, rows one after another without gaps. `block` holds RowBytes times
    // the height.
    bool ReadSamples(std::uint8_t* block) { return tiled || separate ? ReadPieces(block) : ReadStrips(block); }

    bool ReadStrips(std::uint8_t* block) {
        const auto rowsPerStrip = std::clamp(Tag<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP), 1U, height);
        if (TIFFScanlineSize64(tiff) != RowBytes()) return false;
        for (std::uint32_t y = 0; y < height; y += std::min(rowsPerStrip, height - y)) {
            const std::uint64_t count = std::uint64_t{std::min(rowsPerStrip, height - y)} * RowBytes();
            const auto size = static_cast<tmsize_t>(count);
            std::uint8_t* const target = block + y * RowBytes();
            if (TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, 0), target, size) != size) return false;
        }
        return true;
    }

    // Tiles, and strips of single channels.
    bool ReadPieces(std::uint8_t* block) {
        const auto pieceWidth = tiled ? Tag<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH) : width;
        const auto pieceHeight = tiled ? Tag<std::uint32_t>(tiff, TIFFTAG_TILELENGTH)
                                       : std::clamp(Tag<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP), 1U, height);
        const std::size_t channelBytes = bits / 8;
        const std::size_t pixelBytes = separate ? channelBytes : channelBytes * samples;
        const std::uint64_t size = std::uint64_t{pieceWidth} * pieceHeight * pixelBytes;
        if (pieceWidth == 0 || pieceHeight == 0) return false;
        if (size != (tiled ? TIFFTileSize64(tiff) : TIFFStripSize64(tiff))) return false;
        const std::unique_ptr<std::uint8_t[]> piece(MGetMemory(size));
        if (!piece) return false;
        const auto planes = static_cast<std::uint16_t>(separate ? samples : 1);
        for (std::uint16_t plane = 0; plane < planes; ++plane) {
            for (std::uint64_t y = 0; y < height; y += pieceHeight) {
                for (std::uint64_t x = 0; x < width; x += pieceWidth) {
                    const Place place{static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), plane};
                    const std::size_t rows = std::min(pieceHeight, height - place.top);
                    if (!ReadPiece(piece.get(), size, place, rows)) return false;
                    for (std::size_t row = 0; row < rows; ++row)
                        StoreRow(piece.get() + row * pieceWidth * pixelBytes, block, place, row, pieceWidth);
                }
            }
        }
        return true;
    }

    // Where a piece lies in the picture.
    struct Place {
        std::uint32_t left;
        std::uint32_t top;
        std::uint16_t plane;
    };

    bool ReadPiece(std::uint8_t* piece, std::uint64_t size, const Place& place, std::size_t rows) {
        if (tiled) {
            const std::uint32_t tile = TIFFComputeTile(tiff, place.left, place.top, 0, place.plane);
            return TIFFReadEncodedTile(tiff, tile, piece, static_cast<tmsize_t>(size)) ==
                   static_cast<tmsize_t>(size);
        }
        const auto present = static_cast<tmsize_t>(rows * width * (bits / 8U));
        const std::uint32_t strip = TIFFComputeStrip(tiff, place.top, place.plane);
        return TIFFReadEncodedStrip(tiff, strip, piece, present) == present;
    }

    // A row of a piece, as far as it lies within the picture.
    void StoreRow(const std::uint8_t* from, std::uint8_t* block, const Place& place, std::size_t row,
                  std::uint32_t pieceWidth) const {
        const std::size_t channelBytes = bits / 8;
        const std::size_t pixelBytes = channelBytes * samples;
        std::uint8_t* const to = block + (place.top + row) * RowBytes() + std::size_t{place.left} * pixelBytes +
                                 place.plane * channelBytes;
        Spread(from, to, std::min(pieceWidth, width - place.left), separate ? channelBytes : pixelBytes,
               pixelBytes);
    }

    static void Spread(const std::uint8_t* from, std::uint8_t* to, std::size_t count, std::size_t bytes,
                       std::size_t step) {
        if (bytes == step) {
            std::memcpy(to, from, count * bytes);
            return;
        }
        for (std::size_t i = 0; i < count; ++i)
            std::memcpy(to + i * step, from + i * bytes, bytes);
    }

    void Invert() {
        const std::size_t size = std::size_t{picture.Stride} * height;
        for (std::size_t i = 0; i < size; ++i)
            picture.Pixels[i] = static_cast<std::uint8_t>(~picture.Pixels[i]);
    }

    bool ReadOtherKind() {
        const auto sampleFormat = Tag<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT);
        const bool rgb = photometric == PHOTOMETRIC_RGB;
        const bool whiteIsZero = photometric == PHOTOMETRIC_MINISWHITE;
        const bool inks =
            photometric == PHOTOMETRIC_SEPARATED && Tag<std::uint16_t>(tiff, TIFFTAG_INKSET) == INKSET_CMYK;
        const bool known = (rgb || whiteIsZero || inks || photometric == PHOTOMETRIC_MINISBLACK) &&
                           (sampleFormat == SAMPLEFORMAT_UINT || sampleFormat == SAMPLEFORMAT_IEEEFP);
        const MTiffSamples kind{bits,        samples, sampleFormat == SAMPLEFORMAT_IEEEFP, rgb, inks,
                                whiteIsZero, alpha};
        const MPixelFormat format = known ? ConvertedFormat(kind) : FormatNone;
        return format == FormatNone ? ReadRendered() : ReadConverted(kind, format);
    }

    bool ReadConverted(const MTiffSamples& kind, MPixelFormat format) {
        // The picture comes first: its size has been found to be possible then, and that of the samples with
        // it.
        if (!AllocatePicture(picture, width, height, format)) return false;
        const std::unique_ptr<std::uint8_t[]> block(MGetMemory(RowBytes() * height));
        if (!block || !ReadSamples(block.get())) return false;
        for (std::size_t y = 0; y < height; ++y)
            ConvertRow(kind, block.get() + y * RowBytes(), width, picture.Pixels + y * picture.Stride);
        return true;
    }

    // libtiff gives premultiplied colours, red first. The rows stay in the order of the file, as everywhere
    // here.
    bool ReadRendered() {
        std::array<char, 1024> reason{};
        if (TIFFRGBAImageOK(tiff, reason.data()) == 0) {
            ReportCodec("TIFF", reason.data());
            return false;
        }
        if (!AllocatePicture(picture, width, height, FormatRGBA8)) return false;
        // Blocks of the array allocator are aligned for 32-bit numbers.
        auto* const raster = reinterpret_cast<std::uint32_t*>(picture.Pixels);
        const int orientation = Tag<std::uint16_t>(tiff, TIFFTAG_ORIENTATION);
        if (TIFFReadRGBAImageOriented(tiff, width, height, raster, orientation, 1) == 0) return false;
        const bool grey = photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE;
        const bool premultiplied = !grey || alpha != MTiffAlpha::Straight;
        for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
            const auto channel = [&](int shift) { return static_cast<std::uint8_t>(raster[i] >> shift); };
            MColour colour(channel(0), channel(8), channel(16), channel(24));
            if (premultiplied) colour = Unpremultiplied(colour);
            std::memcpy(raster + i, &colour, sizeof colour);
        }
        return true;
    }
};

bool SetTags(TIFF* tiff, const MPicture& picture) {
    const int channels = ChannelCount(picture.Format);
    const int channelClass = ChannelClass(picture.Format);
    const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.Width) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.Height) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, channelClass == 1 ? 8 : 16) &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, channels) &&
           TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT,
                        channelClass == 3 ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           (channels < 4 || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha)) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

bool WriteRows(TIFF* tiff, const MPicture& picture, std::uint8_t* bytes) {
    const bool swapped = ChannelClass(picture.Format) == 1 && ChannelCount(picture.Format) >= 3;
    const MByteOrder order = ChannelCount(picture.Format) == 4 ? MByteOrder::Rgba : MByteOrder::Rgb;
    for (std::uint32_t y = 0; y < picture.Height; ++y) {
        std::uint8_t* row = picture.Pixels + std::size_t{y} * picture.Stride;
        if (swapped) {
            CopyByteRow(picture, y, order, bytes);
            row = bytes;
        }
        if (TIFFWriteScanline(tiff, row, y, 0) != 1) return false;
    }
    return TIFFWriteDirectory(tiff) == 1;
}

} // namespace

bool SniffTiff(std::span<const std::uint8_t> start) {
    using namespace std::string_view_literals;
    // TIFF 6.0, section 2, and the same with 64-bit offsets
    return StartsWith(start, "II*\0"sv) || StartsWith(start, "MM\0*"sv) || StartsWith(start, "II+\0"sv) ||
           StartsWith(start, "MM\0+"sv);
}

bool DecodeTiff(MByteSource& file, std::int32_t frame, MPicture& picture) {
    Stream stream;
    stream.source = &file;
    const TiffPointer tiff = Open(stream, "rm");
    if (!tiff || frame < 0) return false;
    const auto frames = static_cast<std::uint32_t>(TIFFNumberOfDirectories(tiff.get()));
    const auto asked = static_cast<std::uint32_t>(frame);
    if (asked >= frames || TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(asked)) == 0) return false;
    if (!TiffReader(tiff.get(), file.Size(), picture).Read()) return false;
    SetFrames(picture, frames);
    return true;
}

bool EncodeTiff(const MPicture& picture, MByteSink& sink) {
    const std::uint64_t size = std::uint64_t{picture.Stride} * picture.Height;
    const std::unique_ptr<std::uint8_t[]> row(MGetMemory(picture.Stride));
    Stream stream;
    stream.sink = &sink;
    // Beyond 4 GB only 64-bit offsets reach; the rest of the space is for the tables.
    TiffPointer tiff = Open(stream, size < 0xF0000000U ? "w" : "w8");
    const bool written =
        row && tiff && SetTags(tiff.get(), picture) && WriteRows(tiff.get(), picture, row.get());
    tiff.reset();
    return written && !sink.Failed();
}
