// Between pictures and DDS textures. Nothing but the extension leads here.
#include "imaging/MPixelLayout.h"
#include "imaging/codecs/MCodec.h"
#include "imaging/codecs/MDds.h"

#include <cstring>

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

void CopyIn(const MDdsImage& image, MPicture& picture) {
    const bool redFirst = image.format == MDdsFormat::Rgba8 || image.format == MDdsFormat::Rgba8Int;
    for (std::size_t y = 0; y < picture.Height; ++y) {
        const std::uint8_t* from = image.GetImage() + y * image.RowPitch();
        std::uint8_t* to = picture.Pixels + y * picture.Stride;
        std::memcpy(to, from, picture.Stride);
        if (!redFirst && image.format != MDdsFormat::Bgrx8) continue;
        for (std::size_t x = 0; x < picture.Width; ++x, to += sizeof(MColour)) {
            if (redFirst) {
                std::swap(to[0], to[2]);
            } else {
                to[3] = 255;
            }
        }
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
    const MDdsImage& image = IsCompressed(loaded.format) ? decompressed : loaded;
    const MPixelFormat format = PictureFormat(image.format);
    if (format == FormatNone || !image.GetImage()) return false;
    if (!AllocatePicture(picture, image.width, image.height, format)) return false;
    CopyIn(image, picture);
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
