#include "glyphs/MSurfaceBitmap.h"

#include "foundation/MMemory.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr std::int32_t largestSide = 32767; // Cairo's own limit

// 2 to the 24th by each alpha, rounded up: with it a division of 16 bits by an alpha is exact.
constexpr auto reciprocals = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t a = 1; a < 256; ++a)
        table[a] = ((1U << 24) + a - 1) / a;
    return table;
}();

void StorePremultiplied(MColour colour, std::uint8_t* to) {
    const auto channel = [&](std::uint8_t value) {
        return static_cast<std::uint8_t>(colour.a < 255 ? value * colour.a >> 8 : value);
    };
    colour = MColour(channel(colour.r), channel(colour.g), channel(colour.b), colour.a);
    std::memcpy(to, &colour, sizeof colour);
}

} // namespace

MColour Straight(MColour premultiplied) {
    const int a = premultiplied.a;
    if (a == 255) return premultiplied;
    if (a == 0) return {0, 0, 0, 0};
    const std::uint64_t factor = reciprocals[static_cast<std::size_t>(a)];
    const auto channel = [&](int value) {
        const auto rounded = static_cast<std::uint64_t>(value * 255 + a / 2) * factor >> 24;
        return static_cast<std::uint8_t>(std::min<std::uint64_t>(rounded, 255));
    };
    return {channel(premultiplied.r), channel(premultiplied.g), channel(premultiplied.b), premultiplied.a};
}

MSurfaceBitmap::MSurfaceBitmap(std::int32_t bitmapWidth, std::int32_t bitmapHeight) {
    if (bitmapWidth < 1 || bitmapHeight < 1 || bitmapWidth > largestSide || bitmapHeight > largestSide) return;
    if (static_cast<std::size_t>(bitmapWidth) * static_cast<std::size_t>(bitmapHeight) > MemoryLimit() / 4)
        return;
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, bitmapWidth, bitmapHeight);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return;
    }
    width = bitmapWidth;
    height = bitmapHeight;
    stride = cairo_image_surface_get_stride(surface);
    pixels = cairo_image_surface_get_data(surface);
    image = surface;
}

MSurfaceBitmap::MSurfaceBitmap(const MPicture& picture)
    : MSurfaceBitmap(picture.IsValid() ? static_cast<std::int32_t>(std::min(picture.Width, 65536U)) : 0,
                     picture.IsValid() ? static_cast<std::int32_t>(std::min(picture.Height, 65536U)) : 0) {
    if (!IsValid()) return;
    cairo_surface_flush(image);
    for (std::int32_t y = 0; y < height; ++y) {
        std::uint8_t* const row = pixels + static_cast<std::ptrdiff_t>(y) * stride;
        const std::uint8_t* const source = picture.PixelAddress(0, y);
        for (std::int32_t x = 0; x < width; ++x) {
            MColour colour;
            if (picture.Format == FormatRGBA8) {
                std::memcpy(&colour, source + static_cast<std::ptrdiff_t>(x) * 4, 4);
            } else {
                colour = picture.GetPixel(x, y);
            }
            StorePremultiplied(colour, row + static_cast<std::ptrdiff_t>(x) * 4);
        }
    }
    cairo_surface_mark_dirty(image);
}

MSurfaceBitmap::~MSurfaceBitmap() {
    if (image) cairo_surface_destroy(image);
}

const std::uint8_t* MSurfaceBitmap::Row(std::int32_t y) const {
    return IsValid() && y >= 0 && y < height ? pixels + static_cast<std::ptrdiff_t>(y) * stride : nullptr;
}

MPicture MSurfaceBitmap::ToPicture() const {
    if (!IsValid()) return {};
    MPicture picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), FormatRGBA8);
    for (std::int32_t y = 0; picture.IsValid() && y < height; ++y) {
        const std::uint8_t* const row = Row(y);
        std::uint8_t* const to = picture.PixelAddress(0, y);
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            MColour colour;
            std::memcpy(&colour, row + x * 4, 4);
            colour = Straight(colour);
            std::memcpy(to + x * 4, &colour, 4);
        }
    }
    return picture;
}
