// What the tests of font files share: a folder, a font, small pictures and comparison.
#pragma once

#include "DocumentFixture.h"
#include "TemporaryFolder.h"
#include "Text.h"

#include <string>
#include <tuple>

class FontFileTest : public DocumentTest {
protected:
    TemporaryFolder folder;
    MColourFont font{AnyWindow()};

    // A picture of 4 x 4 pixels, whose red is x and green y.
    void SaveGrid(const char* name, MPixelFormat format = FormatRGBA8) const {
        MPicture picture(4, 4, format);
        for (std::int32_t y = 0; y < 4; ++y) {
            for (std::int32_t x = 0; x < 4; ++x)
                picture.SetPixel(x, y, {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 0});
        }
        EXPECT_TRUE(picture.Save(folder.File(name)));
        picture.Free();
    }
};

// Bytes of a text as UTF-16 files have them.
inline std::string Utf16(std::string_view text) {
    std::string bytes;
    for (const char c : text)
        bytes += {c, '\0'};
    return bytes;
}

inline auto NumbersOf(const MGlyph& glyph) {
    return std::tuple(glyph.Width, glyph.Height, glyph.SpacingBefore, glyph.SpacingAfter);
}

inline void ExpectSameGlyphs(const MColourFont& a, const MColourFont& b) {
    ASSERT_EQ(a.GlyphCount(), b.GlyphCount());
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(a.GlyphCount()); ++i) {
        const MGlyph& x = *a.GetGlyphByIndex(i);
        const MGlyph& y = *b.GetGlyphByIndex(i);
        ASSERT_EQ(x.Character, y.Character);
        ASSERT_EQ(NumbersOf(x), NumbersOf(y));
        for (std::int32_t pixel = 0; pixel < x.Width * x.Height; ++pixel) {
            const MColour p = x.GetPixel(pixel % x.Width, pixel / x.Width);
            const MColour q = y.GetPixel(pixel % x.Width, pixel / x.Width);
            // Saving gives invisible pixels the colour of their neighbours.
            ASSERT_TRUE(p == q || (p.a == 0 && q.a == 0)) << int{x.Character} << ", pixel " << pixel;
        }
    }
}
