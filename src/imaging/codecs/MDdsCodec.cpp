// Between pictures and DDS textures. Nothing but the extension leads here.
#include "imaging/MPixelLayout.h"
#include "imaging/codecs/MByteRows.h"
#include "imaging/codecs/MCodec.h"
#include "imaging/codecs/MDds.h"

#include <cstring>
#include <limits>

namespace {

// Of the decompressed formats, these have a picture format.
MPixelFormat PictureFormat(MDdsFormat format) {
    switch (format) {
    case MDdsFormat::Rgba16Float: return FormatRGBAHalf;
    case MDdsFormat::Rgba16:
    case MDdsFormat::Rgba16Int: return FormatRGBA16;
    case MDdsFormat::Rgba8:
    case MDdsFormat::Rgba8Int:
    case MDdsFormat::Bgra8:
    case MDdsFormat::Bgrx8: return FormatRGBA8;
    default: return FormatNone;
    }
}

MDdsFormat DdsFormat(MPixelFormat format) {
    switch (ChannelClass(format)) {
    case 1: return MDdsFormat::Rgba8;
    case 2: return MDdsFormat::Rgba16;
    default: return MDdsFormat::Rgba16Float;
    }
}

// The image's block becomes the picture's, whose pixels have the same size.
void TakeOver(MDdsImage& image, MPixelFormat format, MPicture& picture) {
    picture.Width = image.width;
    picture.Height = image.height;
    picture.Format = format;
    picture.Stride = static_cast<std::uint32_t>(image.RowPitch());
    picture.Pixels = image.pixels.release();
    const std::size_t count = std::size_t{picture.Width} * picture.Height;
    if (image.format == MDdsFormat::Rgba8 || image.format == MDdsFormat::Rgba8Int) {
        SwapRedAndBlue(picture.Pixels, count, 4);
    } else if (image.format == MDdsFormat::Bgrx8) {
        for (std::size_t i = 0; i < count; ++i)
            picture.Pixels[i * sizeof(MColour) + 3] = 255;
    }
}

// All four channels in the class of the format, red first; opaque without an alpha of its own.
template<MPixelFormat Format>
void CopyOut(const MPicture& picture, std::uint8_t* to) {
    using Colour = pixels::ColourOf<Format>;
    using Value = decltype(Colour::r);
    for (std::size_t y = 0; y < picture.Height; ++y) {
        const std::uint8_t* from = picture.Pixels + y * picture.Stride;
        for (std::size_t x = 0; x < picture.Width; ++x, from += pixels::bytesPerPixel<Format>) {
            const Colour colour = pixels::Load<Colour, Format>(from);
            Value alpha = colour.a;
            if constexpr (pixels::channelCount<Format> < 4 && pixels::channelClass<Format> == 3) alpha = 1.0F;
            const Value channels[] = {colour.r, colour.g, colour.b, alpha};
            std::memcpy(to, channels, sizeof channels);
            to += sizeof channels;
        }
    }
}

} // namespace

bool DecodeDds(MByteSource& file, std::int32_t, MPicture& picture) {
    MDdsImage loaded;
    if (!LoadDds(file, loaded) || loaded.depth > 1 || loaded.arraySize != 1) return false;
    MDdsImage decompressed;
    if (IsCompressed(loaded.format) && !DecompressDds(loaded, decompressed)) return false;
    MDdsImage& image = IsCompressed(loaded.format) ? decompressed : loaded;
    const MPixelFormat format = PictureFormat(image.format);
    constexpr std::uint64_t longestRow = std::numeric_limits<std::uint32_t>::max();
    if (format == FormatNone || !image.GetImage() || image.RowPitch() > longestRow) return false;
    TakeOver(image, format, picture);
    return true;
}

bool EncodeDds(const MPicture& picture, MByteSink& sink) {
    MDdsImage image;
    image.format = DdsFormat(picture.Format);
    image.width = picture.Width;
    image.height = picture.Height;
    image.pixels.reset(MGetMemory(image.SlicePitch()));
    if (!image.pixels) return false;
    pixels::WithFormat(picture.Format,
                       [&](auto constant) { CopyOut<constant()>(picture, image.pixels.get()); });
    if (image.format != MDdsFormat::Rgba8) return SaveDds(image, sink);
    MDdsImage compressed;
    return CompressDds(image, compressed) && SaveDds(compressed, sink);
}
