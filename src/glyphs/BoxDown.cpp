#include "glyphs/BoxDown.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace {

// A whole pixel at once, so that the loop over a row becomes vector code.
constexpr int alphaShift = std::endian::native == std::endian::little ? 24 : 0;

void FillPixels(std::uint8_t* to, std::size_t count, std::uint32_t pixel) {
    for (std::size_t x = 0; x < count; ++x)
        std::memcpy(to + x * 4, &pixel, 4);
}

void BoxRow(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* to, std::size_t count,
            std::uint32_t colour) {
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t sum =
            std::uint32_t{upper[2 * x]} + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1];
        const std::uint32_t pixel = colour | (sum >> 2) << alphaShift;
        std::memcpy(to + x * 4, &pixel, 4);
    }
}

} // namespace

void BoxDown(const MCoverageBlock& block, std::size_t top, const MColour& colour, MPicture& picture) {
    const auto pixel = std::bit_cast<std::uint32_t>(MColour(colour.r, colour.g, colour.b, 0));
    const std::size_t inked = block.width / 2;
    for (std::size_t y = 0; y < picture.Height; ++y) {
        std::uint8_t* const row = picture.Pixels + y * picture.Stride;
        if (y < top || y >= top + block.rows / 2) {
            FillPixels(row, picture.Width, pixel);
            continue;
        }
        const std::uint8_t* const upper = block.data + (y - top) * 2 * block.width;
        BoxRow(upper, upper + block.width, row, inked, pixel);
        FillPixels(row + inked * 4, picture.Width - inked, pixel);
    }
}

void RepeatCanvas(MPicture& picture, std::size_t width, std::size_t height) {
    if (picture.Width <= width && picture.Height <= height) return;
    for (std::size_t y = 0; y < picture.Height; ++y) {
        std::uint8_t* const row = picture.Pixels + y * picture.Stride;
        if (y >= height) {
            std::memcpy(row, picture.Pixels + (y % height) * picture.Stride, picture.Stride);
            continue;
        }
        for (std::size_t x = width; x < picture.Width; x += width)
            std::memcpy(row + x * 4, row, std::min(width, picture.Width - x) * 4);
    }
}
