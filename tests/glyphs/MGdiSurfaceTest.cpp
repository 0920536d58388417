#include "glyphs/MGdiSurface.h"

#include "glyphs/Pixels.h"
#include "platform/headless/Headless.h"

#include <gtest/gtest.h>

namespace {

constexpr MColour white(255, 255, 255);
constexpr MColour black(0, 0, 0);
constexpr const char* family = "Liberation Sans";

class GdiSurface : public testing::Test {
protected:
    MGdiSurface surface{nullptr, {100, 50, 300, 150}};
    const Desktop::Rect all{0, 0, 200, 100};

    GdiSurface() { Headless::Reset(); }

    // Around what is not white, after drawing on white.
    Desktop::Rect InkOfText(const char* text, const Desktop::Rect& rectangle, float size,
                            std::int32_t alignment = -1) {
        surface.FillRectangle(all, white);
        surface.DrawText(rectangle, text, family, size, 400, false, black, alignment);
        return InkOf(*surface.bitmap, white);
    }
};

} // namespace

TEST_F(GdiSurface, FillsInItsOwnCoordinatesAndIsShownInOneGo) {
    ASSERT_TRUE(surface.valid);
    surface.FillRectangle(all, white);
    surface.FillRectangle({-5, 90, 10, 500}, MColour(10, 20, 30, 0));
    surface.FillRectangle({50, 50, 40, 60}, black);
    EXPECT_EQ(PixelAt(*surface.bitmap, 9, 90), MColour(10, 20, 30)) << "alpha means nothing";
    EXPECT_EQ(PixelAt(*surface.bitmap, 9, 89), white);
    EXPECT_EQ(PixelAt(*surface.bitmap, 10, 90), white);
    EXPECT_EQ(PixelAt(*surface.bitmap, 45, 55), white) << "turned inside out";
    EXPECT_TRUE(Headless::record.paintings.empty());
    surface.Present();
    ASSERT_EQ(Headless::record.paintings.size(), 1U);
    EXPECT_EQ(Headless::record.paintings[0].area, surface.area);
    EXPECT_EQ(Headless::record.paintings[0].pixels[(95 * 200 + 5) * 4], 30);
}

TEST_F(GdiSurface, TheSizeOfTextIsThatOfItsCell) {
    // The cell of Liberation Sans is 2288 units high, 1854 of them above the baseline; "H" is 1409 high, 1479
    // wide.
    const Desktop::Rect box{20, 10, 180, 90};
    const auto leading = InkOfText("H", box, 64.9F), centre = InkOfText("H", box, 64, 0);
    const auto trailing = InkOfText("H", box, 64, 1);
    EXPECT_EQ(leading.bottom, 10 + 52) << "the baseline";
    EXPECT_NEAR(leading.bottom - leading.top, 39.4, 1);
    EXPECT_NEAR(leading.left, 20 + 4.7, 1);
    EXPECT_EQ(centre.bottom, 10 + 8 + 52);
    EXPECT_NEAR(centre.left, 100 - 20.7 + 4.7, 1);
    EXPECT_EQ(trailing.bottom, 90 - 64 + 52);
    EXPECT_NEAR(trailing.right, 180 - 4.7, 1);
}

TEST_F(GdiSurface, TextIsCutAtItsRectangle) {
    const auto cut = InkOfText("HHHHHHHH", {30, 5, 70, 30}, 40, 0);
    EXPECT_EQ(std::tuple(cut.left, cut.right, cut.bottom), std::tuple(30, 70, 30));
    EXPECT_NEAR(InkOfText("HHHH", {150, 0, 400, 100}, 40).right, 199, 1) << "and at the surface";
    EXPECT_TRUE(InkOfText("HHHH", {70, 0, 30, 100}, 40).IsEmpty());
    const auto lines = InkOfText("H\n\nH", all, 30, 1);
    EXPECT_EQ(lines.bottom, 60 + InkOfText("H", all, 30).bottom) << "several lines start at the top";
}

TEST_F(GdiSurface, CoverageBlends) {
    surface.FillRectangle(all, MColour(100, 0, 200));
    surface.DrawText(all, "H", family, 64, 400, false, MColour(255, 255, 255), -1);
    bool mixed = false;
    for (std::int32_t x = 0; x < 60; ++x) {
        const MColour colour = PixelAt(*surface.bitmap, x, 30);
        // Red goes 155 of the way that green goes 255.
        EXPECT_NEAR((colour.r - 100) * 255, colour.g * 155, 255);
        mixed |= colour.g > 0 && colour.g < 255;
    }
    EXPECT_TRUE(mixed);
}

TEST_F(GdiSurface, DefaultsOfTextAndOneFontWhileNothingChanges) {
    surface.DrawText(all, "A", MString(), 0, 0, false, black, 0);
    EXPECT_TRUE(surface.fontKey.family.Equals(u"MS Shell Dlg"));
    EXPECT_EQ(std::pair(surface.fontKey.size, surface.fontKey.weight), std::pair(12, 400));
    const auto* font = surface.font.get();
    surface.DrawText(all, "B", MString(), 12.9F, 400, false, white, 1);
    EXPECT_EQ(surface.font.get(), font);
    for (const float size : {-3.0F, 0.4F, 1e30F})
        surface.DrawText(all, "A", family, size, 400, false, black, 0);
}

TEST(GdiSurfaces, ThatCannotBeMadeDoNothing) {
    for (const Desktop::Rect& area : {Desktop::Rect{5, 5, 2, 10}, Desktop::Rect{INT32_MIN, 0, INT32_MAX, 10}}) {
        MGdiSurface surface(nullptr, area);
        EXPECT_FALSE(surface.valid);
        surface.FillRectangle({0, 0, 10, 10}, black);
        surface.DrawText({0, 0, 10, 10}, "A", family, 10, 400, false, black, 0);
        surface.Present();
    }
}
