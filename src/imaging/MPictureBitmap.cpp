// Pictures to and from the bitmaps that are drawn with.
#include "foundation/MMemory.h"
#include "imaging/MPicture.h"
#include "imaging/MPixelLayout.h"

namespace {

// In the picture's own format, so that what it can't hold is lost before and after alike.
template<MPixelFormat Format>
void Premultiply(MPicture& picture) {
    for (std::size_t y = 0; y < picture.Height; ++y) {
        std::uint8_t* pixel = picture.Pixels + y * picture.Stride;
        for (std::size_t x = 0; x < picture.Width; ++x, pixel += pixels::bytesPerPixel<Format>) {
            const auto colour = pixels::Load<MColour, Format>(pixel);
            if (colour.a < 255) pixels::Store<Format>(pixel, Premultiplied(colour));
        }
    }
}

} // namespace

MPicture::MPicture(const MBitmapView& bitmap) : MPicture() {
    if (!bitmap.Pixels) return;
    *this = MPicture(bitmap.Width, bitmap.Height, FormatRGBA8);
    if (!IsValid()) return;
    for (std::size_t y = 0; y < Height; ++y) {
        const std::uint8_t* from = bitmap.Pixels + y * bitmap.Stride;
        std::uint8_t* to = Pixels + y * Stride;
        for (std::size_t x = 0; x < Width; ++x, from += sizeof(MColour), to += sizeof(MColour)) {
            pixels::Store<FormatRGBA8>(to, Unpremultiplied(pixels::Load<MColour, FormatRGBA8>(from)));
        }
    }
}

MPicture MPicture::CreateWicBitmap() const {
    if (!IsValid()) return {};
    MPicture bitmap(Width, Height, FormatRGBA8);
    if (!bitmap.IsValid()) return {};
    std::fill_n(bitmap.Pixels, std::size_t{bitmap.Stride} * Height, std::uint8_t{0});
    if (Format == FormatRGBA8 || !HasAlpha(Format)) {
        bitmap.CopyPixels(*this);
        if (Format == FormatRGBA8) Premultiply<FormatRGBA8>(bitmap);
        return bitmap;
    }
    MPicture copy(Width, Height, Format);
    copy.TopDown = TopDown;
    if (copy.CopyPixels(*this)) {
        pixels::WithFormat(Format, [&](auto constant) { Premultiply<constant()>(copy); });
        bitmap.CopyPixels(copy);
    } else {
        bitmap.CopyPixels(*this);
    }
    copy.Free();
    return bitmap;
}
