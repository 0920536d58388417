#include "document/MGlyph.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>
#include <vector>

constexpr MColour ink{9, 8, 7, 255};
constexpr MColour transparent{0, 0, 0, 0};

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
    for (const auto& [x, y] : {std::pair(10, 2), {-1, 2}, {0, 3}})
        EXPECT_EQ(glyph.GetPixel(x, y), transparent) << x << ", " << y;
}

TEST(Glyph, TrimKeepsOneEmptyColumnAtTheRight) {
    // The first and the last column with ink; the red of each column left, -1 for transparent.
    const std::tuple<int, int, std::vector<int>> cases[] = {
        {3, 6, {3, 4, 5, 6, -1}},
        {2, 9, {2, 3, 4, 5, 6, 7, 8, 9, -1}},    // column 0, by wrapping around
        {1, 9, {-1, 1, 2, 3, 4, 5, 6, 7, 8, 9}}, // nothing to gain
        {0, 8, {0, 1, 2, 3, 4, 5, 6, 7, 8, -1}},
        {1, 0, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1}}, // no ink at all
    };
    for (const auto& [first, last, columns] : cases) {
        MGlyph glyph(u'A', 10, 3, 4, 5, true);
        for (std::int32_t x = first; x <= last; ++x)
            glyph.SetPixel(x, 1, {static_cast<std::uint8_t>(x), 0, 0, 255});
        glyph.Trim();
        EXPECT_EQ(glyph.Picture.Width, columns.size());
        std::vector<int> left;
        for (std::int32_t x = 0; x < glyph.Width; ++x)
            left.push_back(glyph.GetPixel(x, 1).a == 0 ? -1 : glyph.GetPixel(x, 1).r);
        EXPECT_EQ(left, columns);
        EXPECT_EQ(glyph.SpacingBefore, 4);
    }
}
