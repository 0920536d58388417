#include "formats/game/AtlasPacking.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <vector>

namespace {

std::vector<MAtlasBox> RandomBoxes(unsigned seed, std::int32_t largest, int count = 120) {
    std::mt19937 random(seed);
    std::vector<MAtlasBox> boxes;
    for (int i = 0; i < count; ++i) {
        const auto side = [&] { return static_cast<std::int32_t>(random() % static_cast<unsigned>(largest)); };
        boxes.push_back({side(), side(), -1, -1, -1});
    }
    return boxes;
}

// Every box inside its page, and the gap around each.
void ExpectApart(const std::vector<MAtlasBox>& boxes, const MAtlasPages& pages, std::int32_t gap) {
    for (const MAtlasBox& a : boxes) {
        if (a.Width < 1 || a.Height < 1) continue;
        ASSERT_TRUE(a.X >= gap && a.Y >= gap && a.X + a.Width + gap <= pages.Width &&
                    a.Y + a.Height + gap <= pages.Height && a.Page >= 0 && a.Page < pages.Count);
        for (const MAtlasBox& b : boxes) {
            if (&a == &b || a.Page != b.Page || b.Width < 1 || b.Height < 1) continue;
            ASSERT_TRUE(a.X + a.Width + gap <= b.X || b.X + b.Width + gap <= a.X ||
                        a.Y + a.Height + gap <= b.Y || b.Y + b.Height + gap <= a.Y);
        }
    }
}

TEST(AtlasPacking, KeepsBoxesApartOnPagesAsAsked) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const auto size = static_cast<MPageSize>(seed % 3);
        const auto gap = static_cast<std::int32_t>(seed % 4);
        const std::int32_t largest = seed % 5 == 0 ? 128 : 4096;
        std::vector<MAtlasBox> boxes = RandomBoxes(seed, seed % 7 == 0 ? 3 : 50);
        const auto pages = PackBoxes(boxes, {size, gap, largest});
        ASSERT_TRUE(pages);
        ExpectApart(boxes, *pages, gap);
        EXPECT_LE(std::max(pages->Width, pages->Height), largest);
        EXPECT_EQ(size == MPageSize::Four ? (pages->Width | pages->Height) % 4 : 0, 0);
        if (size == MPageSize::PowerOfTwo) {
            EXPECT_TRUE(std::has_single_bit(static_cast<unsigned>(pages->Width)) &&
                        std::has_single_bit(static_cast<unsigned>(pages->Height)));
        }
        EXPECT_EQ(pages->Count > 1, largest == 128 && seed % 7 != 0);
    }
}

TEST(AtlasPacking, OddBoxes) {
    std::vector<MAtlasBox> none;
    EXPECT_EQ(PackBoxes(none, {})->Count, 1);
    std::vector<MAtlasBox> empty{{0, 5, 9, 9, 9}, {5, 0, 9, 9, 9}};
    EXPECT_EQ(PackBoxes(empty, {})->Width, 4);
    EXPECT_EQ(empty[0].X, 0);
    // The tallest and the widest that a page takes, and one pixel more.
    std::vector<MAtlasBox> bars{{62, 1, 0, 0, 0}, {1, 60, 0, 0, 0}};
    const auto page = PackBoxes(bars, {MPageSize::Free, 1, 64});
    ASSERT_TRUE(page);
    EXPECT_EQ(std::tuple(page->Width, page->Height, page->Count), std::tuple(64, 64, 1));
    bars[0].Width = 63;
    EXPECT_FALSE(PackBoxes(bars, {MPageSize::Free, 1, 64}));
    std::vector<MAtlasBox> exact(16, MAtlasBox{8, 8, 0, 0, 0});
    const auto square = PackBoxes(exact, {MPageSize::PowerOfTwo, 0, 4096});
    EXPECT_EQ(square->Width * square->Height, 32 * 32) << "nothing is wasted on equal squares";
}

// What the export promises: text glyphs fill nine tenths of their page.
TEST(AtlasPacking, FillsThePage) {
    std::vector<MAtlasBox> boxes = RandomBoxes(5, 20, 222);
    std::int64_t ink = 0;
    for (MAtlasBox& box : boxes) {
        box.Width = 6 + 2 * box.Width;
        box.Height += 30;
        ink += std::int64_t{box.Width} * box.Height;
    }
    const auto page = PackBoxes(boxes, {MPageSize::Free, 1, 4096});
    ASSERT_TRUE(page);
    EXPECT_GT(static_cast<double>(ink) / (page->Width * page->Height), 0.88);
}

} // namespace
