#include "glyphs/BoxColours.h"

#include "glyphs/Pixels.h"
#include "imaging/Pictures.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

int Below(std::mt19937& random, int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
}

// Transparent, opaque and half-transparent pixels, alone and in areas of one colour.
void FillAtRandom(MSurfaceBitmap& bitmap, unsigned seed) {
    std::mt19937 random(seed);
    cairo_surface_flush(bitmap.image);
    for (std::int32_t y = 0; y < bitmap.height; ++y) {
        for (std::int32_t x = 0; x < bitmap.width; ++x) {
            std::uint8_t* const to = bitmap.pixels + static_cast<std::ptrdiff_t>(y) * bitmap.stride + x * 4;
            int alpha = 0;
            if (x >= bitmap.width / 3)
                alpha = y < bitmap.height / 3 ? 255 : Below(random, 256) * std::min(Below(random, 3), 1);
            for (int i = 0; i < 3; ++i)
                to[i] = static_cast<std::uint8_t>(alpha == 255 ? 9 * i : Below(random, alpha + 1));
            to[3] = static_cast<std::uint8_t>(alpha);
        }
    }
    cairo_surface_mark_dirty(bitmap.image);
}

} // namespace

TEST(BoxColours, IsThePartOfSmoothScalingThatAGlyphNeeds) {
    MSurfaceBitmap bitmap(96, 72);
    FillAtRandom(bitmap, 1);
    const OwnedPicture whole(bitmap.ToPicture());
    const OwnedPicture scaled(MPicture(whole, 48, 36, FormatRGBA8, true, false));
    for (const auto& [width, height] : {std::pair{48U, 36U}, {30U, 16U}, {1U, 1U}, {70U, 40U}}) {
        OwnedPicture glyph = BlankPicture(width, height, FormatRGBA8);
        BoxDownColours(bitmap, glyph);
        OwnedPicture expected = BlankPicture(width, height, FormatRGBA8);
        for (const auto& [x, y] : PlacesOf(expected))
            expected.SetPixel(x, y, scaled.GetPixel(x, y)); // wraps around, as a glyph of the canvas does
        EXPECT_TRUE(SamePicture(glyph, expected)) << width << " x " << height;
    }
}
