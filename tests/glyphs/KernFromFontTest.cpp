#include "glyphs/KernFromFont.h"

#include "DocumentFixture.h"
#include "glyphs/MGlyphRenderer.h"
#include "glyphs/Pixels.h"

#include <array>
#include <cmath>

namespace {

using KernFromFontTest = DocumentTest;

} // namespace

// Beside what the tables of the files say, in units of 2048 an em.
TEST_F(KernFromFontTest, IsThatOfTheFileAtEveryHeight) {
    constexpr const char16_t* pairs[] = {u"AV", u"To", u"AA", u"Y\u00E9", u"11", u"fl"};
    const std::pair<const char*, std::array<int, 6>> faces[] = {
        {"DejaVu Sans", {-131, -348, 57, -272, 0, 0}},
        {"DejaVu Serif", {-102, -159, 0, -178, 0, 0}},
        {"Liberation Serif", {-264, -143, 0, 0, -76, 0}}};
    for (const auto& [family, units] : faces) {
        for (const std::int32_t height : {24, 100, 1000}) {
            settings.FontName = family;
            settings.GlyphHeight = height;
            MColourFont font(nullptr);
            // The glyphs' own pictures do not matter, only which characters there are.
            for (char16_t c = 33; c <= 255; ++c)
                AddGlyph(font, c, 1, 1);
            ASSERT_EQ(KernFromFont(font), KernFromFontResult::Kerned);
            EXPECT_GT(font.KerningCount(), 50);
            for (std::size_t i = 0; i < units.size(); ++i) {
                const double exact = units[i] * MGlyphRenderer(nullptr).EmPixels() / 2048;
                const MKerningPair* const pair = font.FindKerning(pairs[i][0], pairs[i][1]);
                EXPECT_EQ(pair ? pair->Amount : 0, std::lround(exact)) << family << height << " " << i;
            }
        }
    }
}

TEST_F(KernFromFontTest, TheEmIsThatOfTheRenderedGlyphs) {
    settings.FontName = "DejaVu Sans";
    settings.GlyphHeight = 400;
    settings.Selected.fill(0);
    settings.Selected[u'H'] = 1;
    MColourFont font(nullptr);
    ASSERT_TRUE(font.GenerateSelectedCharacters());
    // In the face's outline it is 1493 of 2048 units high.
    EXPECT_NEAR(MGlyphRenderer(nullptr).EmPixels() * 1493 / 2048, RowsOf(*font.GetGlyph(u'H')).Count(), 1.5);
}

TEST_F(KernFromFontTest, AFaceWithoutKerningChangesNothing) {
    settings.FontName = "DejaVu Sans Mono";
    settings.GlyphHeight = 100;
    MColourFont font(nullptr);
    AddGlyph(font, u'A', 1, 1);
    AddGlyph(font, u'V', 1, 1);
    font.SetKerning(u'A', u'V', -3);
    EXPECT_EQ(KernFromFont(font), KernFromFontResult::NoKerning);
    EXPECT_EQ(font.KerningCount(), 1);
}
