#include "document/MGlyph.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr MColour ink{9, 8, 7, 255};
constexpr MColour transparent{0, 0, 0, 0};

// A glyph with one row of ink in the columns `first` to `last`; each column's red is its number.
MGlyph& Ink(MGlyph& glyph, std::int32_t first, std::int32_t last) {
    for (std::int32_t x = first; x <= last; ++x)
        glyph.SetPixel(x, 1, {static_cast<std::uint8_t>(x), 0, 0, 255});
    return glyph;
}

TEST(Glyph, WithoutAreaKeepsItsNumbersOnly) {
    const MGlyph glyph(u'A', 0, 10, -1, 2, true);
    EXPECT_FALSE(glyph.Picture.IsValid());
    EXPECT_EQ(glyph.Height, 10);
    EXPECT_EQ(glyph.GetPixel(0, 0), transparent);
    EXPECT_EQ(MGlyph(0x10041, 1, 1, 0, 0, false).Character, u'A');
}

TEST(Glyph, AnswersInsideOnlyButWritesWrapped) {
    MGlyph glyph(u'A', 10, 3, 0, 0, false);
    glyph.SetPixel(10, -1, ink);
    EXPECT_EQ(glyph.GetPixel(0, 2), ink);
    EXPECT_EQ(glyph.GetPixel(10, 2), transparent);
    EXPECT_EQ(glyph.GetPixel(-1, 2), transparent);
    EXPECT_EQ(glyph.GetPixel(0, 3), transparent);
}

TEST(Glyph, TrimKeepsOneEmptyColumnAtTheRight) {
    const struct {
        std::int32_t first;
        std::int32_t last;
        std::vector<int> columns; // red of each column left, -1 for transparent
    } cases[] = {
        {3, 6, {3, 4, 5, 6, -1}},
        {2, 9, {2, 3, 4, 5, 6, 7, 8, 9, -1}},    // column 0, by wrapping around
        {1, 9, {-1, 1, 2, 3, 4, 5, 6, 7, 8, 9}}, // nothing to gain
        {0, 8, {0, 1, 2, 3, 4, 5, 6, 7, 8, -1}},
        {1, 0, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1}}, // no ink at all
    };
    for (const auto& c : cases) {
        MGlyph glyph(u'A', 10, 3, 4, 5, true);
        Ink(glyph, c.first, c.last).Trim();
        ASSERT_EQ(glyph.Width, static_cast<std::int32_t>(c.columns.size()));
        ASSERT_EQ(glyph.Picture.Width, c.columns.size());
        for (std::int32_t x = 0; x < glyph.Width; ++x) {
            const MColour pixel = glyph.GetPixel(x, 1);
            EXPECT_EQ(pixel.a == 0 ? -1 : pixel.r, c.columns[static_cast<std::size_t>(x)]);
        }
        EXPECT_EQ(glyph.SpacingBefore, 4);
    }
}

TEST(Glyph, TrimRowsTakesFromBothEnds) {
    MGlyph glyph(u'A', 2, 10, 0, 0, false);
    for (std::int32_t y = 0; y < 10; ++y)
        glyph.SetPixel(1, y, {static_cast<std::uint8_t>(y), 0, 0});
    glyph.TrimRows(6, 4); // nothing would be left
    glyph.TrimRows(0xFFFFFFFF, 5);
    glyph.TrimRows(0, 0); // a copy
    EXPECT_EQ(glyph.Height, 10);
    glyph.TrimRows(3, 2);
    EXPECT_EQ(glyph.Height, 5);
    EXPECT_EQ(glyph.Picture.Height, 5U);
    EXPECT_EQ(glyph.GetPixel(1, 0).r, 3);
    EXPECT_EQ(glyph.GetPixel(1, 4).r, 7);
}

} // namespace
