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
    ASSERT_TRUE(font.SetHeight(2288)); // the unit of this face
    EXPECT_EQ(font.ascent, 1854);
    EXPECT_EQ(Sum(Draw(font, u'j', 1'000'000'000'000, 0, {0, 0, 8, 8})), 0) << "far outside";
    EXPECT_EQ(Sum(Draw(font, u'j', 0, 0, {8, 8, 0, 0})), 0);
    ASSERT_TRUE(font.GetInk(u' ', ink));
    EXPECT_EQ((std::array{ink.a, ink.b, ink.c}), (std::array{0, 0, 569})) << "no ink, an advance only";
    EXPECT_TRUE(font.SetHeight(30'000));
    ASSERT_TRUE(font.GetInk(u'I', ink));
    EXPECT_GT(ink.above, 10'000);
    EXPECT_EQ(Sum(Draw(font, u'I', -ink.a - ink.b / 2, ink.above / 2, {0, 0, 64, 64})), 64 * 64 * 255)
        << "inside the stem";
}
