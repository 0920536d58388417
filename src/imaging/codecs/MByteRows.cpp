#include "imaging/codecs/MByteRows.h"

#include "imaging/MPixelLayout.h"

#include <utility>

namespace {

template<MByteOrder Order>
std::uint8_t* Put(std::uint8_t* to, const MColour& colour) {
    constexpr bool redFirst = Order == MByteOrder::Rgb || Order == MByteOrder::Rgba;
    if constexpr (Order == MByteOrder::Grey) {
        *to++ = colour.r;
        return to;
    }
    *to++ = redFirst ? colour.r : colour.b;
    *to++ = colour.g;
    *to++ = redFirst ? colour.b : colour.r;
    if constexpr (Order == MByteOrder::Bgra || Order == MByteOrder::Rgba) *to++ = colour.a;
    return to;
}

template<MPixelFormat Format, MByteOrder Order>
void CopyRow(const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
    constexpr bool same = (Format == FormatR8 && Order == MByteOrder::Grey) ||
                          (Format == FormatRGB8 && Order == MByteOrder::Bgr) ||
                          (Format == FormatRGBA8 && Order == MByteOrder::Bgra);
    if constexpr (same) {
        std::memcpy(to, from, width * pixels::bytesPerPixel<Format>);
    } else {
        for (std::size_t x = 0; x < width; ++x, from += pixels::bytesPerPixel<Format>) {
            to = Put<Order>(to, pixels::Load<MColour, Format>(from));
        }
    }
}

} // namespace

int ChannelCount(MPixelFormat format) {
    return pixels::WithFormat(format, 0, [](auto constant) { return pixels::channelCount<constant()>; });
}

void CopyByteRow(const MPicture& picture, std::size_t y, MByteOrder order, std::uint8_t* row) {
    const std::uint8_t* const from = picture.Pixels + y * picture.Stride;
    pixels::WithFormat(picture.Format, [&](auto constant) {
        constexpr MPixelFormat format = constant();
        switch (order) {
        case MByteOrder::Grey: return CopyRow<format, MByteOrder::Grey>(from, picture.Width, row);
        case MByteOrder::Bgr: return CopyRow<format, MByteOrder::Bgr>(from, picture.Width, row);
        case MByteOrder::Rgb: return CopyRow<format, MByteOrder::Rgb>(from, picture.Width, row);
        case MByteOrder::Bgra: return CopyRow<format, MByteOrder::Bgra>(from, picture.Width, row);
        case MByteOrder::Rgba: return CopyRow<format, MByteOrder::Rgba>(from, picture.Width, row);
        }
    });
}

void SwapRedAndBlue(std::uint8_t* pixels, std::size_t count, int channels) {
    if (channels == 3) {
        for (std::size_t i = 0; i < count; ++i)
            std::swap(pixels[i * 3], pixels[i * 3 + 2]);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) { // as words, which the compiler widens
        std::uint32_t pixel;
        std::memcpy(&pixel, pixels + i * 4, sizeof pixel);
        pixel = (pixel & 0xFF00FF00U) | (pixel >> 16 & 0xFFU) | (pixel & 0xFFU) << 16;
        std::memcpy(pixels + i * 4, &pixel, sizeof pixel);
    }
}
