#include "platform/text/MSizedFont.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

int Sum(std::span<const std::uint8_t> coverage) {
    return std::accumulate(coverage.begin(), coverage.end(), 0);
}

// The coverage of a region, row after row.
std::vector<std::uint8_t> Draw(MSizedFont& font, char16_t character, std::int64_t x, std::int64_t y,
                               const MPixelRect& region) {
    if (region.IsEmpty()) return {};
    const auto width = static_cast<std::size_t>(region.right - region.left);
    const auto height = static_cast<std::size_t>(region.bottom - region.top);
    std::pair canvas(width, std::vector<std::uint8_t>(width * height));
    font.Draw(
        character, x, y, region,
        [](std::int32_t row, std::span<const MSpan> spans, void* context) {
            auto& [columns, pixels] = *static_cast<decltype(canvas)*>(context);
            for (const MSpan& span : spans) {
                EXPECT_GT(span.coverage, 0);
                for (int i = 0; i < span.length; ++i) {
                    const std::size_t at = static_cast<std::size_t>(row) * columns;
                    std::uint8_t& pixel = pixels.at(at + static_cast<std::size_t>(span.x + i));
                    EXPECT_EQ(pixel, 0) << "told twice";
                    pixel = span.coverage;
                }
            }
        },
        &canvas);
    return canvas.second;
}

// The whole ink of a character.
std::vector<std::uint8_t> DrawAll(MSizedFont& font, char16_t character, MInk& ink) {
    EXPECT_TRUE(font.GetInk(character, ink));
    return Draw(font, character, 0, 0, {ink.a, -ink.above, ink.a + ink.b, ink.below});
}

} // namespace

TEST(SizedFont, CellIsAsHighAsAsked) {
    // usWinAscent 1854 and usWinDescent 434 of 2048 units.
    MSizedFont font("Liberation Sans", 400, false);
    ASSERT_TRUE(font.SetHeight(2288));
    EXPECT_EQ(font.ascent, 1854);
    MInk ink;
    ASSERT_TRUE(font.GetInk(u'H', ink));
    EXPECT_EQ((std::array{ink.above, ink.below, ink.a + ink.b + ink.c}), (std::array{1409, 0, 1479}));
    ASSERT_TRUE(font.GetInk(u' ', ink));
    EXPECT_EQ((std::array{ink.a, ink.b, ink.c}), (std::array{0, 0, 569})) << "no ink, an advance only";
    EXPECT_EQ(Sum(Draw(font, u' ', 0, 0, {0, 0, 10, 10})), 0);
    ASSERT_TRUE(font.SetHeight(100));
    EXPECT_EQ(font.ascent, 81);
}

TEST(SizedFont, WhatTheFaceLacksIsItsOwnBox) {
    MSizedFont font("Liberation Sans", 400, false);
    ASSERT_TRUE(font.SetHeight(200));
    // An ideograph, a private code and half a surrogate pair, none of which this face has.
    MInk box;
    const auto drawn = DrawAll(font, u'\u4E00', box);
    EXPECT_GT(Sum(drawn), 0);
    for (const char16_t code : {char16_t{0xE000}, char16_t{0xD800}, char16_t{1}}) {
        MInk ink;
        EXPECT_EQ(DrawAll(font, code, ink), drawn) << int{code};
    }
}

TEST(SizedFont, RegionsAreCutsOfOneDrawing) {
    MSizedFont font("Liberation Serif", 400, true);
    ASSERT_TRUE(font.SetHeight(150));
    MInk ink;
    const auto whole = DrawAll(font, u'j', ink);
    EXPECT_LT(ink.a, 0);
    const auto width = static_cast<std::size_t>(ink.b);
    for (const auto& row : {std::size_t{0}, whole.size() / width - 1})
        EXPECT_GT(Sum(std::span(whole).subspan(row * width, width)), 0) << "an outermost row is inked";

    // One column and row inside on the left and top, two and three beyond on the right and bottom.
    const MPixelRect region{101, 203, 100 + ink.b + 2, 200 + ink.above + ink.below + 3};
    const auto cut = Draw(font, u'j', 100 - ink.a, 200 + ink.above, region);
    ASSERT_EQ(cut.size(), (width + 1) * static_cast<std::size_t>(region.bottom - region.top));
    for (std::size_t i = 0; i < cut.size(); ++i) {
        const std::size_t x = i % (width + 1) + 1;
        const std::size_t y = i / (width + 1) + 3;
        const int expected = x < width && y * width < whole.size() ? whole[y * width + x] : 0;
        ASSERT_EQ(int{cut[i]}, expected) << x << ", " << y;
    }
    EXPECT_EQ(Sum(Draw(font, u'j', 1'000'000'000'000, 0, {0, 0, 8, 8})), 0);
    EXPECT_EQ(Sum(Draw(font, u'j', 0, 0, {8, 8, 0, 0})), 0);
}

TEST(SizedFont, MadeBoldIsHeavierAndMadeItalicLeans) {
    const auto draw = [](std::int32_t weight, bool italic, char16_t code, MInk& ink) {
        MSizedFont font("DejaVu Math TeX Gyre", weight, italic);
        EXPECT_TRUE(font.SetHeight(300));
        return DrawAll(font, code, ink);
    };
    MInk regular, bold, italic;
    const int regularSum = Sum(draw(400, false, u'I', regular));
    EXPECT_GT(Sum(draw(700, false, u'I', bold)), regularSum * 11 / 10);
    EXPECT_GT(bold.a + bold.b + bold.c, regular.a + regular.b + regular.c);
    const int italicSum = Sum(draw(400, true, u'I', italic));
    EXPECT_NEAR(italicSum, regularSum, regularSum / 100.0);
    // A shear of 0.2 over the height of the letter.
    EXPECT_NEAR(italic.b, regular.b + 0.2 * regular.above, 2);
    EXPECT_EQ(italic.a + italic.b + italic.c, regular.a + regular.b + regular.c);
}

TEST(SizedFont, SizesThatNoFontHas) {
    MSizedFont font("Liberation Sans", 400, false);
    MInk ink;
    EXPECT_FALSE(font.GetInk(u'A', ink)) << "no size yet";
    for (const std::int32_t height : {0, -5, INT32_MIN, 40'000, 1'400'000, INT32_MAX}) {
        EXPECT_FALSE(font.SetHeight(height)) << height;
        EXPECT_FALSE(font.GetInk(u'A', ink)) << height;
        EXPECT_EQ(Sum(Draw(font, u'A', 0, 0, {0, 0, 10, 10})), 0) << height;
    }
    EXPECT_TRUE(font.SetHeight(30'000));
    ASSERT_TRUE(font.GetInk(u'I', ink));
    EXPECT_GT(ink.above, 10'000);
    EXPECT_EQ(Sum(Draw(font, u'I', -ink.a - ink.b / 2, ink.above / 2, {0, 0, 64, 64})), 64 * 64 * 255)
        << "inside the stem";
}
