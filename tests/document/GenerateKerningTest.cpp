#include "DocumentFixture.h"

#include <algorithm>
#include <array>

namespace {

Pairs PlainKerning(const MColourFont& font) {
    Pairs pairs;
    for (const auto& l : font.Glyphs) {
        for (const auto& r : font.Glyphs) {
            if (!l || !r || l->Height != r->Height || l->Height <= 0) continue;
            std::int32_t smallest = 100000;
            for (std::int32_t y = 0; y < l->Height; ++y) {
                std::int32_t gapL = 0, gapR = 0;
                while (gapL < l->Width && l->GetPixel(l->Width - 1 - gapL, y).a == 0)
                    ++gapL;
                while (gapR < r->Width && r->GetPixel(gapR, y).a == 0)
                    ++gapR;
                if (gapL < l->Width && gapR < r->Width) smallest = std::min(smallest, gapL + gapR);
            }
            if (smallest == 0 || smallest >= 100000 || l->Character < 33 || r->Character < 33) continue;
            pairs.push_back({l->Character, r->Character, -smallest});
        }
    }
    return pairs;
}

using GenerateKerningTest = DocumentTest;

TEST_F(GenerateKerningTest, AnyFontAsTheRowScan) {
    MColourFont font(nullptr);
    std::mt19937 random(11);
    for (int round = 0; round < 30; ++round) {
        font.Clear();
        for (char16_t c = 30; c < 45; ++c) {
            MGlyph& glyph = AddGlyph(font, c, static_cast<std::int32_t>(random() % 20),
                                     static_cast<std::int32_t>(8 + random() % 2));
            for (auto dots = random() % 12; dots > 0 && glyph.Picture.IsValid(); --dots) {
                glyph.SetPixel(static_cast<std::int32_t>(random() % 20),
                               static_cast<std::int32_t>(random() % 8), {0, 0, 0, 1});
            }
            // Differs from its picture.
            if (random() % 5 == 0) glyph.Width += static_cast<std::int32_t>(random() % 70);
            if (random() % 5 == 0) glyph.Height = std::array{5, 23, -7}[random() % 3];
        }
        font.SetKerning('a', 'b', 5); // is lost
        font.GenerateKerning();
        ASSERT_EQ(PairsOf(font), PlainKerning(font));
    }
}

// A glyph whose resize failed claims any size, but has the picture of before, which repeats.
TEST_F(GenerateKerningTest, RowsThatAGlyphOnlyClaimsTakeNoMemoryAndNoTime) {
    MColourFont font(nullptr);
    for (const char16_t c : {u'A', u'B', u'C'}) {
        MGlyph& glyph = AddGlyph(font, c, 10, c == u'B' ? 7 : 10);
        for (std::int32_t x = 2; x < 7; ++x)
            glyph.SetPixel(x, c == u'B' ? 3 : 6, {1, 2, 3}); // meet in row 66
        glyph.Width = glyph.Height = 2'000'000'000;
    }
    font.GetGlyph(u'C')->Picture.Free();
    font.GenerateKerning();
    EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'A', -5}, {'A', 'B', -5}, {'B', 'A', -5}, {'B', 'B', -5}}));
}

} // namespace
