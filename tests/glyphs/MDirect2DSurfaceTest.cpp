#include "glyphs/MDirect2DSurface.h"

#include "foundation/MFolders.h"
#include "glyphs/MWindowSurface.h"
#include "glyphs/Pixels.h"
#include "imaging/Pictures.h"
#include "platform/headless/Headless.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr MColour red(255, 0, 0);
constexpr MColour black(0, 0, 0);
constexpr MColour nothing(0, 0, 0, 0);
constexpr Desktop::Rect all{0, 0, 200, 100};
const char* const family = "Liberation Sans";

Desktop::WindowHandle SomeWindow() {
    static int window = 0;
    return reinterpret_cast<Desktop::WindowHandle>(&window);
}

struct Style {
    std::int32_t across = -1, down = -1; // alignment
    bool clip = false, wrap = true;
    std::int32_t weight = 400;
    bool italic = false;
    MString name = family;
};

class Direct2DSurface : public testing::Test {
protected:
    MSurfaceBitmap bitmap{200, 100};
    MDirect2DSurface surface{bitmap};

    void Text(const MString& text, Desktop::Rect rectangle, float size, const Style& style = {}) {
        surface.DrawText(rectangle, text, style.name, size, style.weight, style.italic, black, style.across,
                         style.down, false, style.clip, false, style.wrap);
    }
    // Of a text alone.
    Desktop::Rect InkOfText(const MString& text, Desktop::Rect rectangle, float size, const Style& style = {}) {
        surface.Clear(nothing);
        Text(text, rectangle, size, style);
        return InkOf(bitmap);
    }
};

} // namespace

TEST_F(Direct2DSurface, CoversItsBitmap) {
    EXPECT_TRUE(surface.valid);
    EXPECT_EQ(surface.area, all);
    ASSERT_TRUE(surface.Begin());
    surface.Clear(MColour(200, 100, 50, 128));
    EXPECT_EQ(PixelAt(bitmap, 3, 3), MColour(100, 50, 25, 128));
    surface.Clear(MColour(200, 100, 50, 0));
    EXPECT_EQ(PixelAt(bitmap, 3, 3), nothing);
    surface.End();
    EXPECT_TRUE(Headless::record.paintings.empty()) << "no window to show it";
}

TEST_F(Direct2DSurface, DefaultsOfTextAndWhatIsKeptWhileNothingChanges) {
    EXPECT_FALSE(InkOfText("A", all, 0, {.weight = 0, .name = MString()}).IsEmpty());
    EXPECT_TRUE(surface.textFormatKey.family.Equals(u"MS Shell Dlg"));
    EXPECT_EQ(std::pair(surface.textFormatKey.size, surface.textFormatKey.weight), std::pair(12, 400));
    const auto kept = std::pair(surface.textFormat.get(), surface.brush);
    Text("B", {5, 5, 50, 50}, 12.9F, {.name = MString()}); // sizes are whole numbers
    EXPECT_EQ(std::pair(surface.textFormat.get(), surface.brush), kept);
    for (const float size : {-3.0F, std::nanf(""), HUGE_VALF, 1e30F, 0.4F})
        EXPECT_EQ(InkOfText("A", all, size).IsEmpty(), size > 0) << size;
    EXPECT_FALSE(InkOfText("A", all, 20).IsEmpty()) << "a bad size does no lasting harm";
}

TEST_F(Direct2DSurface, TextStandsInItsRectangle) {
    // The cell of Liberation Sans is 2288 of 2048 units high, 1854 above the baseline; "H" is 1409 high.
    const Desktop::Rect box{20, 10, 180, 90};
    const auto leading = InkOfText("H", box, 32);
    EXPECT_EQ(leading.bottom, 10 + 29) << "the baseline";
    EXPECT_NEAR(leading.top, 39 - 22, 1);
    EXPECT_NEAR(leading.left, 20 + 2, 1);
    EXPECT_NEAR(InkOfText("H", box, 32, {.across = 1}).right, 180 - 2, 1);
    const auto centre = InkOfText("H", box, 32, {.across = 0, .down = 0});
    EXPECT_NEAR(centre.left + centre.right, 200, 2);
    EXPECT_NEAR(centre.bottom, 50 - 35.75 / 2 + 29, 1);
    EXPECT_NEAR(InkOfText("H", box, 32, {.down = 1}).bottom, 90 - 35.75 + 29, 1);

    const auto oneLine = InkOfText("HHH HHH", {0, 0, 90, 100}, 20, {.wrap = false});
    EXPECT_GT(oneLine.right, 90);
    EXPECT_LT(oneLine.bottom, 30);
    const auto wrapped = InkOfText("HHH HHH", {0, 0, 90, 100}, 20);
    EXPECT_LE(wrapped.right, 90);
    EXPECT_EQ(wrapped.bottom, oneLine.bottom + 22) << "lines are a cell apart";
    const auto clipped = InkOfText("HHHHHHH", {10, 0, 60, 15}, 20, {.clip = true, .wrap = false});
    EXPECT_EQ(std::pair(clipped.right, clipped.bottom), std::pair(60, 15));
    EXPECT_GT(InkOfText("H", {50, 0, 20, -5}, 20).Width(), 0) << "a box turned inside out hides nothing";
}

TEST_F(Direct2DSurface, AnotherFontStepsInOnTheSameBaseline) {
    const auto other = InkOfText(MString(u"\u0531"), all, 40); // a letter that only DejaVu has
    EXPECT_GT(other.Width(), 10);
    EXPECT_NEAR(other.bottom, InkOfText("H", all, 40).bottom, 2);
}

TEST_F(Direct2DSurface, WeightAndSlant) {
    // The second has neither a bold nor an italic face, and a baseline far down.
    for (const char* name : {"Liberation Sans", "DejaVu Math TeX Gyre"}) {
        MSurfaceBitmap tall(300, 600);
        MDirect2DSurface onTall(tall);
        const auto columns = [&](std::int32_t weight, bool italic) {
            onTall.Clear(nothing);
            onTall.DrawText({50, 0, 300, 600}, "I", name, 80, weight, italic, black, -1, -1, false, false,
                            false, true);
            return InkOf(tall).Width();
        };
        const std::int32_t bold = columns(700, false);
        EXPECT_GT(bold, columns(400, false)) << name;
        EXPECT_GT(columns(700, true), bold + 5) << name;
    }
}

TEST_F(Direct2DSurface, RectanglesAndLines) {
    surface.DrawRectangle({10, 20, 30, 40}, red, true, 0, false);
    EXPECT_EQ(InkOf(bitmap), (Desktop::Rect{10, 20, 30, 40}));
    EXPECT_EQ(PixelAt(bitmap, 29, 39), red);
    surface.Clear(nothing);
    surface.DrawRectangle({10, 20, 30, 40}, red, false, 4, false);
    EXPECT_EQ(InkOf(bitmap), (Desktop::Rect{8, 18, 32, 42})) << "half the stroke on either side, mitred";
    EXPECT_EQ(PixelAt(bitmap, 8, 18), red);
    EXPECT_EQ(PixelAt(bitmap, 20, 30), nothing);
    surface.Clear(nothing);
    surface.DrawRectangle({10, 20, 10, 40}, red, false, 4, false);
    EXPECT_TRUE(InkOf(bitmap).IsEmpty());
    surface.DrawLine({50, 50}, {100, 50}, 10, red, false);
    EXPECT_EQ(InkOf(bitmap), (Desktop::Rect{45, 45, 105, 55})) << "round ends";
    EXPECT_LT(PixelAt(bitmap, 45, 45).a, 128);
    surface.DrawLine({0, 0}, {100, 50}, -10, red, false);
    surface.DrawLine({std::nanf(""), 0}, {HUGE_VALF, 50}, 2, red, false);
    surface.DrawRectangle({0, 0, 2, 2}, red, true, 0, false);
    EXPECT_EQ(PixelAt(bitmap, 1, 1), red) << "nothing breaks the surface";
}

TEST_F(Direct2DSurface, CoordinatesOfTheWindowAreMapped) {
    MDirect2DSurface part(SomeWindow(), {100, 50, 160, 90});
    Headless::Reset();
    part.Clear(black);
    part.DrawRectangle({110, 60, 115, 62}, red, true, 0, true);
    part.DrawRectangle({20, 12, 25, 14}, red, true, 0, false);
    part.DrawPictureFitted(FilledPicture(4, 3, red), {130, 70, 134, 73}, true);
    part.End();
    const Headless::Painting& painting = Headless::record.paintings.at(0);
    EXPECT_TRUE(painting.window == SomeWindow() && painting.area == part.area);
    EXPECT_EQ(InkOf(painting, black), (Desktop::Rect{10, 10, 34, 23}));
    for (const auto& [x, y] : {std::pair(10, 11), {14, 10}, {20, 13}, {24, 12}, {30, 22}, {33, 20}})
        EXPECT_EQ(PixelAt(painting, x, y), red) << x;
}

TEST_F(Direct2DSurface, PicturesAreCentredAndNeverEnlarged) {
    const std::tuple<unsigned, unsigned, Desktop::Rect, Desktop::Rect> cases[] = {
        {20, 10, {0, 0, 20, 10}, {0, 0, 20, 10}},
        {20, 10, {0, 0, 40, 30}, {10, 10, 30, 20}},
        // The middle of 41 is 20; half of 5 falls between pixels and is cut off on both sides.
        {5, 5, {0, 0, 41, 41}, {17, 17, 22, 22}},
        {21, 10, {3, 5, 44, 36}, {12, 15, 33, 25}},
        {200, 100, {10, 10, 60, 60}, {10, 22, 60, 47}},
        {100, 200, {0, 0, 50, 50}, {12, 0, 37, 50}},
        {10, 2, {11, 0, 16, 9}, {11, 3, 15, 4}},
        {7, 1, {0, 0, 5, 90}, {}}, // less than a row is nothing
    };
    for (const auto& [width, height, rectangle, expected] : cases) {
        surface.Clear(nothing);
        surface.DrawPictureFitted(FilledPicture(width, height, red), rectangle, false);
        EXPECT_EQ(InkOf(bitmap), expected) << width << " by " << height;
    }
}

TEST_F(Direct2DSurface, PicturesComeOutToThePixel) {
    const OwnedPicture picture = RandomPicture(40, 30, FormatRGBA8, 1);
    const auto expectPremultiplied = [&](const MPicture& source, std::int32_t left, std::int32_t top) {
        const OwnedPicture expected(source.CreateWicBitmap());
        for (const auto& [x, y] : PlacesOf(source))
            ASSERT_EQ(PixelAt(bitmap, left + x, top + y), expected.GetPixel(x, y)) << x << ", " << y;
    };
    // Of floats, drawing takes on no more than CopyPixels does: those without alpha come out as nothing.
    for (MPixelFormat format = 1; format <= 9; ++format) {
        surface.Clear(nothing);
        const OwnedPicture other = RandomPicture(40, 30, format, 2);
        surface.DrawPictureAt(other, 10, 20, false);
        expectPremultiplied(other, 10, 20);
    }

    // A picture that must shrink is what smooth scaling makes of it.
    surface.Clear(nothing);
    surface.DrawPictureFitted(picture, {0, 0, 16, 90}, false);
    const OwnedPicture smaller(MPicture(picture, 16, 12, FormatRGBA8, true, false));
    expectPremultiplied(smaller, 0, 39);

    // Over what is there already.
    surface.Clear(MColour(255, 255, 255));
    surface.DrawPictureAt(FilledPicture(10, 10, MColour(0, 0, 0, 128)), 0, 0, false);
    EXPECT_EQ(PixelAt(bitmap, 5, 5), MColour(127, 127, 127));
    surface.DrawPictureAt(picture, INT32_MAX, INT32_MIN, true);
}

TEST(Direct2DSurfaces, InvalidOnesDoNothing) {
    MSurfaceBitmap none(0, 10);
    EXPECT_FALSE(MSurfaceBitmap(40'000, 40'000).IsValid() || none.ToPicture().IsValid());
    MDirect2DSurface onNone(none);
    MDirect2DSurface onEmpty(SomeWindow(), {5, 5, 5, 9});
    MDirect2DSurface onHuge(SomeWindow(), {0, 0, INT32_MAX, INT32_MAX});
    MDirect2DSurface onNoWindow(nullptr, {0, 0, 10, 10});
    EXPECT_FALSE(onNone.valid || onEmpty.valid || onHuge.valid);
    EXPECT_TRUE(onNoWindow.valid) << "without a window there is just nowhere to draw";
    const OwnedPicture picture = FilledPicture(2, 2, red);
    Headless::Reset();
    for (MDirect2DSurface* surface : {&onNone, &onEmpty, &onHuge, &onNoWindow}) {
        EXPECT_EQ(surface->Begin(), surface->valid);
        surface->Clear(red);
        surface->PushClip({0, 0, 1, 1});
        surface->DrawText({0, 0, 9, 9}, "A", "", 0, 0, false, red, 0, 0, true, true, true, true);
        surface->DrawLine({0, 0}, {5, 5}, 1, red, true);
        surface->DrawRectangle({0, 0, 5, 5}, red, true, 1, true);
        surface->DrawPictureAt(picture, 0, 0, true);
        surface->DrawPictureFitted(picture, {0, 0, 5, 5}, true);
        surface->DrawPictureFile(GetProgramFolder() + "/Media/skins/About.png", {0, 0, 5, 5}, true);
        surface->PopClip();
        surface->End();
    }
    EXPECT_TRUE(Headless::record.paintings.empty());
}

TEST(WindowSurface, KeepsItsSurfaceWhileNothingChanges) {
    MWindowSurface holder;
    EXPECT_FALSE(holder.Bind(SomeWindow(), {0, 0, 0, 10}) || holder.surface);
    ASSERT_TRUE(holder.Bind(SomeWindow(), {0, 0, 20, 10}));
    const MDirect2DSurface* const first = holder.surface.get();
    holder.surface->Clear(red);
    EXPECT_TRUE(holder.Bind(SomeWindow(), {0, 0, 20, 10}));
    EXPECT_EQ(holder.surface.get(), first);
    Headless::Reset();
    holder.surface->End();
    EXPECT_EQ(Headless::record.paintings.at(0).pixels.at(2), 255) << "and what was drawn on it";
    EXPECT_FALSE(holder.Bind(SomeWindow(), {0, 0, 0, 0})) << "an empty rectangle binds nothing";
    EXPECT_EQ(holder.surface.get(), first);
    EXPECT_TRUE(holder.Bind(SomeWindow(), {0, 0, 21, 10}));
    EXPECT_EQ(holder.surface->area.right, 21);
    holder.Release();
    EXPECT_EQ(holder.surface, nullptr);
}
