// Looking at what was drawn.
#pragma once

#include "document/MGlyph.h"
#include "glyphs/MSurfaceBitmap.h"
#include "platform/headless/Headless.h"

#include <algorithm>
#include <concepts>
#include <cstring>
#include <ostream>

inline std::ostream& operator<<(std::ostream& out, const MColour& colour) {
    return out << '(' << int{colour.r} << ", " << int{colour.g} << ", " << int{colour.b} << ", "
               << int{colour.a} << ')';
}

// Premultiplied, as it lies there.
inline MColour PixelAt(const MSurfaceBitmap& bitmap, std::int32_t x, std::int32_t y) {
    MColour colour;
    std::memcpy(&colour, bitmap.Row(y) + static_cast<std::ptrdiff_t>(x) * 4, 4);
    return colour;
}

inline MColour PixelAt(const Headless::Painting& painting, std::int32_t x, std::int32_t y) {
    MColour colour;
    std::memcpy(&colour, painting.pixels.data() + (std::ptrdiff_t{y} * painting.width + x) * 4, 4);
    return colour;
}

namespace Desktop {
inline std::ostream& operator<<(std::ostream& out, const Rect& r) {
    return out << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom;
}
} // namespace Desktop

// Around all pixels for which this holds; empty if there are none.
template<typename Pixels, std::predicate<MColour> IsInk>
Desktop::Rect InkOf(const Pixels& pixels, const IsInk& isInk) {
    Desktop::Rect ink{pixels.width, pixels.height, 0, 0};
    for (std::int32_t y = 0; y < pixels.height; ++y) {
        for (std::int32_t x = 0; x < pixels.width; ++x) {
            if (!isInk(PixelAt(pixels, x, y))) continue;
            ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1), y + 1};
        }
    }
    return ink.IsEmpty() ? Desktop::Rect{} : ink;
}
// Around all that differ from the ground.
template<typename Pixels>
Desktop::Rect InkOf(const Pixels& pixels, MColour ground = {0, 0, 0, 0}) {
    return InkOf(pixels, [&](const MColour& pixel) { return pixel != ground; });
}

// The inked rows of a glyph, from `top` up to but not including `end`.
struct MRows {
    std::int32_t top = 0;
    std::int32_t end = 0;

    std::int32_t Count() const { return end - top; }
};

inline MRows RowsOf(const MGlyph& glyph) {
    std::uint32_t top = 0;
    std::uint32_t bottom = 0;
    glyph.GetVerticalMargins(top, bottom);
    return {static_cast<std::int32_t>(top), static_cast<std::int32_t>(glyph.Picture.Height - bottom)};
}
