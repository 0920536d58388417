// MPicture::CopyPixels. Which pairs of formats convert, and which of them heed TopDown, is uneven by custom:
// callers rely on pairs that are copied bit for bit and on pairs that do nothing.
#include "imaging/MPicture.h"
#include "imaging/MPixelLayout.h"

namespace {

const std::uint8_t* Row(const MPicture& picture, std::size_t y) {
    return picture.Pixels + y * picture.Stride;
}

std::uint8_t* Row(MPicture& picture, std::size_t y) {
    return picture.Pixels + y * picture.Stride;
}

template<MPixelFormat To, MPixelFormat From, typename Colour>
void ConvertRows(MPicture& target, const MPicture& source, bool heedTopDown) {
    const bool turn = heedTopDown && target.TopDown != source.TopDown;
    for (std::size_t y = 0; y < target.Height; ++y) {
        const std::uint8_t* from = Row(source, turn ? source.Height - 1 - y : y);
        std::uint8_t* to = Row(target, y);
        for (std::size_t x = 0; x < target.Width; ++x) {
            pixels::Store<To>(to, pixels::Load<Colour, From>(from));
            from += pixels::bytesPerPixel<From>;
            to += pixels::bytesPerPixel<To>;
        }
    }
}

// Through MColour, as far as the pair is one of those that convert.
template<MPixelFormat To>
void ConvertToBytes(MPicture& target, const MPicture& source) {
    pixels::WithFormat(source.Format, [&](auto constant) {
        constexpr MPixelFormat from = constant();
        constexpr bool halfWithoutAlpha = from == FormatRHalf || from == FormatRGBHalf;
        constexpr bool skipped = To == FormatRGBA8 ? halfWithoutAlpha : pixels::channelCount<from> == 4;
        if constexpr (!skipped) ConvertRows<To, from, MColour>(target, source, false);
    });
}

} // namespace

bool MPicture::CopyPixels(const MPicture& source) {
    if (!IsValid() || !source.IsValid() || Width != source.Width || Height != source.Height) return false;
    // Stride alone decides here: formats of equal size are copied bit for bit.
    if (Stride == source.Stride && TopDown == source.TopDown) {
        std::memmove(Pixels, source.Pixels, std::size_t{Stride} * Height);
        return true;
    }
    if (Format == source.Format) {
        const std::size_t rowBytes = std::size_t{Width} * BytesPerPixel(Format);
        for (std::size_t y = 0; y < Height; ++y) {
            std::memmove(Row(*this, y), Row(source, TopDown == source.TopDown ? y : Height - 1 - y), rowBytes);
        }
        return true;
    }
    const auto pair = [&](MPixelFormat to, MPixelFormat from) { return Format == to && source.Format == from; };
    if (pair(FormatRGB8, FormatRGBA8)) {
        ConvertRows<FormatRGB8, FormatRGBA8, MColour>(*this, source, true);
    } else if (pair(FormatRGBA8, FormatRGB8)) {
        ConvertRows<FormatRGBA8, FormatRGB8, MColour>(*this, source, true);
    } else if (pair(FormatRGB16, FormatRGBA16)) {
        ConvertRows<FormatRGB16, FormatRGBA16, MColour16>(*this, source, false);
    } else if (pair(FormatRGBA16, FormatRGB16)) {
        ConvertRows<FormatRGBA16, FormatRGB16, MColour16>(*this, source, false);
    } else if (Format == FormatRGBA8) {
        ConvertToBytes<FormatRGBA8>(*this, source);
    } else if (Format == FormatRGB8) {
        ConvertToBytes<FormatRGB8>(*this, source);
    }
    return true;
}
