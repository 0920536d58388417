#include "DocumentFixture.h"
#include "foundation/MMemory.h"

#include <limits>
#include <tuple>

namespace {

class WholeFontEditsTest : public DocumentTest {
protected:
    MColourFont font{nullptr};

    void AddInk(char16_t character, std::int32_t firstRow, std::int32_t lastRow) {
        MGlyph& glyph = AddGlyph(font, character, 10, 30);
        for (std::int32_t y = firstRow; y <= lastRow; ++y)
            glyph.SetPixel(4, y, {1, 2, 3, 255});
    }
};

TEST_F(WholeFontEditsTest, ScaleTruncatesFloats) {
    const std::tuple<float, std::int32_t, std::int32_t> cases[] = {
        {0.5F, 33, 16}, {0.5F, -1, 0}, {0.5F, -3, -1}, {27.0F / 19.0F, 19, 26}, {2.0F, 3, 6}};
    for (const auto& [factor, before, after] : cases) {
        font.Clear();
        MGlyph& glyph = AddGlyph(font, u'A', 33, 20);
        glyph.SpacingBefore = before;
        glyph.SpacingAfter = -before;
        font.SetKerning('A', 'A', before);
        font.Baseline = font.CapHeight = font.SpaceWidth = before;
        font.Scale(factor);
        EXPECT_EQ(std::tuple(glyph.SpacingBefore, glyph.SpacingAfter), std::tuple(after, -after)) << before;
        EXPECT_EQ(std::tuple(font.Baseline, font.CapHeight, font.SpaceWidth), std::tuple(after, after, after));
        EXPECT_EQ(font.Kerning.data[0].Amount, after); // stays, also with amount 0
    }
    MGlyph& glyph = AddGlyph(font, u'B', 33, 20);
    for (std::int32_t pixel = 0; pixel < 33 * 20; ++pixel)
        if (pixel % 33 >= 16) glyph.SetPixel(pixel % 33, pixel / 33, {1, 2, 3});
    font.Scale(0.5F);
    EXPECT_EQ(std::tuple(glyph.GetPixel(6, 9).a, glyph.GetPixel(9, 9).a), std::tuple(0, 255))
        << "all of it, smaller";
    EXPECT_EQ(std::tuple(glyph.Width, glyph.Height, glyph.Picture.Width, glyph.Picture.Height),
              std::tuple(16, 10, 16U, 10U));
    EXPECT_EQ(settings.GlyphHeight, 100); // the caller's to set
}

TEST_F(WholeFontEditsTest, AFailedResizeKeepsThePictureButNotTheNumbers) {
    MGlyph& glyph = AddGlyph(font, u'A', 10, 10);
    SetMemoryLimit(1000);
    font.Scale(5);
    SetMemoryLimit(0);
    EXPECT_EQ(std::pair(glyph.Width, glyph.Picture.Width), std::pair(50, 10U));
    font.Scale(0.01F);
    EXPECT_EQ(std::pair(glyph.Width, glyph.Height), std::pair(0, 0));
    EXPECT_EQ(glyph.Picture.Width, 10U);
    font.Scale(std::numeric_limits<float>::infinity());
    EXPECT_TRUE(glyph.Picture.IsValid());
}

TEST_F(WholeFontEditsTest, TrimVertically) {
    AddInk(u'A', 5, 20);
    AddInk(u'g', 8, 26);
    settings.GlyphHeight = 30;
    font.Baseline = 9;
    font.CapHeight = 15;
    font.TrimVertically();
    EXPECT_EQ(std::tuple(settings.GlyphHeight, font.Baseline, font.CapHeight), std::tuple(22, 6, 15));
    EXPECT_EQ(font.GetGlyph(u'A')->Height, 22);
    EXPECT_NE(font.GetGlyph(u'A')->GetPixel(4, 0).a, 0);
    font.GetGlyph(u'A')->SetPixel(4, 0, {0, 0, 0, 0});
    font.TrimVertically(); // at the top alone
    EXPECT_EQ(std::tuple(settings.GlyphHeight, font.Baseline), std::tuple(21, 6));
    AddGlyph(font, u'B', 3, 21); // transparent: margins of 0 stop all trimming
    font.TrimVertically();
    EXPECT_EQ(settings.GlyphHeight, 21);
}

TEST_F(WholeFontEditsTest, TrimmingAnEmptyFontTakes10000OnEitherSide) {
    font.TrimVertically();
    EXPECT_EQ(std::pair(settings.GlyphHeight, font.Baseline), std::pair(-19900, -10000));
    settings.GlyphHeight = font.Baseline = std::numeric_limits<std::int32_t>::min();
    font.TrimVertically();
    EXPECT_EQ(settings.GlyphHeight, std::numeric_limits<std::int32_t>::min());
}

TEST_F(WholeFontEditsTest, RemoveNonAscii) {
    for (const char16_t c : {u'A', char16_t{127}, char16_t{128}, u'\u20AC'})
        AddGlyph(font, c, 1, 1);
    font.SetKerning('A', 127, 1);
    font.SetKerning('A', 0x20AC, 2);
    font.SetKerning('A', 0x3042, 3); // names no glyph
    font.RemoveNonAscii();
    EXPECT_EQ(font.GlyphCount(), 2);
    EXPECT_EQ(font.Glyphs[2], nullptr); // a hole
    EXPECT_EQ(font.KerningCount(), 2);
}

} // namespace
