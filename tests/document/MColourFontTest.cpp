#include "document/MColourFont.h"

#include "DocumentFixture.h"
#include "document/MKerningTable.h"

#include <random>

namespace {

class ColourFontTest : public DocumentTest {
protected:
    MColourFont font{nullptr};
};

TEST_F(ColourFontTest, TheSpaceIsHalfAsWideAsTheHeight) {
    EXPECT_EQ(font.SpaceWidth, 50);
    font.SetGlyphHeight(103);
    EXPECT_EQ(std::pair(settings.GlyphHeight, font.SpaceWidth), std::pair(103, 51));
}

TEST_F(ColourFontTest, SlotsArePlacesAndNotCharacters) {
    for (const char16_t c : std::u16string_view(u"CAB"))
        AddGlyph(font, c, 1, 1);
    EXPECT_EQ(SlotsOf(font), "CAB");
    AddGlyph(font, u'A', 5, 7); // keeps its slot
    EXPECT_EQ(SlotsOf(font), "CAB");
    EXPECT_EQ(std::pair(font.MaxGlyphWidth(), font.MaxGlyphHeight()), std::pair(5, 7));
    font.RemoveGlyph(u'A');
    EXPECT_EQ(SlotsOf(font), "C.B");
    EXPECT_EQ(font.GetGlyphByIndex(1)->Character, u'B');
    EXPECT_EQ(font.GetGlyphByIndex(2), nullptr);
    EXPECT_EQ(font.GetGlyphIndex(u'B'), 1);
    EXPECT_EQ(font.GetGlyphIndex(u'A'), -1);
    AddGlyph(font, u'Z', 1, 1); // into the hole
    EXPECT_EQ(SlotsOf(font), "CZB");
    font.RemoveGlyph(u'Z');
    font.SortGlyphs();
    EXPECT_EQ(SlotsOf(font), "BC");
    EXPECT_EQ(font.GlyphCount(), 2);
}

TEST_F(ColourFontTest, ClearKeepsTheNumbers) {
    AddGlyph(font, u'A', 10, 10);
    font.SetKerning('A', 'V', -1);
    font.Baseline = 3;
    ASSERT_TRUE(font.Repack());
    font.Clear();
    EXPECT_EQ(font.GlyphCount() + font.KerningCount(), 0);
    EXPECT_FALSE(font.Picture.IsValid());
    EXPECT_EQ(std::pair(font.PictureWidth, font.Baseline), std::pair(128, 3));
}

TEST_F(ColourFontTest, KerningPairs) {
    for (const auto& [left, right] : {std::pair(32, 'A'), {'A', 32}, {-40, 'A'}})
        EXPECT_FALSE(font.SetKerning(left, static_cast<std::uint32_t>(right), 1)) << left;
    EXPECT_TRUE(font.SetKerning('A', 'V', -3));
    EXPECT_TRUE(font.SetKerning('V', 'A', 0));
    EXPECT_TRUE(font.SetKerning('A', 'V', -4));
    EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'V', -4}, {'V', 'A', 0}}));
    font.ChangeKerning(u'V', 'A', 9);
    font.ChangeKerning(u'X', 'Y', 9);
    EXPECT_EQ(font.FindKerning(u'V', 'A')->Amount, 9);
    EXPECT_EQ(font.FindKerningIndex(u'V', 'A'), 1);
    EXPECT_EQ(font.FindKerningIndex(u'X', 'Y'), -1);
    font.SetKerning('A', 'b', 9);
    font.SetKerning('A', 'a', -9);
    font.SortKerningByAmount();
    EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'a', -9}, {'A', 'V', -4}, {'V', 'A', 9}, {'A', 'b', 9}}));
}

TEST_F(ColourFontTest, RemovingAGlyphFillsItsPairsFromTheEnd) {
    for (const auto& [left, right, amount] :
         Pairs{{'A', 'B', 1}, {'C', 'D', 2}, {'E', 'A', 3}, {'D', 'E', 4}, {'A', 'A', 5}})
        font.SetKerning(static_cast<std::int32_t>(left), right, amount);
    font.RemoveGlyph(u'A');
    EXPECT_EQ(PairsOf(font), (Pairs{{'D', 'E', 4}, {'C', 'D', 2}}));
}

TEST_F(ColourFontTest, AKerningTableIsAsManyCallsOfSetKerning) {
    font.SetKerning('A', 'B', 1);
    MColourFont plain(nullptr);
    plain.SetKerning('A', 'B', 1);
    MKerningTable table(font);
    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        const bool wide = random() % 4 == 0; // beyond 16 bits it is stored, but never found again
        const auto left = static_cast<std::int32_t>(20 + random() % 40 + (wide ? 0x10000 : 0));
        const auto right = static_cast<std::uint32_t>(20 + random() % 40);
        ASSERT_EQ(table.Set(left, right, i), plain.SetKerning(left, right, i));
    }
    ASSERT_TRUE(table.Store(font));
    EXPECT_TRUE(std::ranges::equal(font.Kerning, plain.Kerning));
}

} // namespace
