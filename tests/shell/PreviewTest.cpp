#include "shell/Preview.h"

#include "DocumentFixture.h"
#include "glyphs/Pixels.h"
#include "shell/Program.h"
#include "shell/ShellFixture.h"

#include <gmock/gmock.h>

namespace {

class Preview : public RunningTest {
protected:
    ~Preview() override { ForgetPreview(); }

    // A font whose packed picture is this.
    static MColourFont& FontWith(std::uint32_t width, std::uint32_t height, MColour colour) {
        MColourFont& font = CurrentOrNewFont();
        font.Repack();
        font.Picture.Free();
        font.Picture = MPicture(width, height, FormatRGBA8);
        font.Picture.Fill(colour);
        return font;
    }
    static MColour Shown(std::int32_t x, std::int32_t y) {
        return PixelAt(Headless::record.paintings.back(), x, y);
    }
    static constexpr MColour red{255, 0, 0};
    static constexpr MColour green{0, 255, 0};
};

} // namespace

TEST_F(Preview, ShowsThePictureOnTheBackground) {
    settings.BackgroundColour = green;
    Headless::script.client = {0, 0, 40, 20};
    FontWith(80, 20, red).Draw(); // shrunk to half, and in the middle
    EXPECT_EQ(InkOf(Headless::record.paintings.back(), green), (Desktop::Rect{0, 5, 40, 15}));
    EXPECT_EQ(Shown(20, 10), red);
    FontWith(10, 400, red).Draw();
    EXPECT_TRUE(InkOf(Headless::record.paintings.back(), green).IsEmpty()) << "half a pixel wide";
}

TEST_F(Preview, TheTitleCountsAndMeasures) {
    MColourFont& font = CurrentOrNewFont();
    font.Draw();
    font.Repack();
    font.Draw();
    AddGlyph(font, u'A', 30, 100);
    font.Draw();
    font.Draw();
    using testing::ElementsAre;
    EXPECT_THAT(Headless::record.titles,
                ElementsAre(MString("Lettrino - 0 Glyphs"), MString("Lettrino - 0 Glyphs (128 x 128)"),
                            MString("Lettrino - 1 Glyphs (128 x 128)")))
        << "the same title is not set again";

    Headless::script.client = {}; // minimised
    font.RemoveGlyph(u'A');
    const std::size_t paintings = Headless::record.paintings.size();
    font.Draw();
    EXPECT_EQ(Headless::record.titles.size(), 3U);
    EXPECT_EQ(Headless::record.paintings.size(), paintings);
    MColourFont(nullptr).Draw();
    EXPECT_EQ(Headless::record.titles.size(), 3U) << "a font without a window";
}

TEST_F(Preview, PaintingAgainWithNothingChangedResamplesNothing) {
    Headless::script.client = {0, 0, 40, 20};
    MColourFont& font = FontWith(400, 200, red);
    font.Draw();
    // What is painted now can't come from the picture.
    font.Picture.Fill(green);
    PaintMainWindow();
    EXPECT_EQ(Shown(20, 10), red) << "the shrunk picture is kept";
    Headless::script.client = {0, 0, 60, 30};
    DrawPreviewQuickly();
    EXPECT_EQ(Shown(30, 15), red) << "also in place of one of another size, while the window is resized";
    PaintMainWindow();
    EXPECT_EQ(Shown(30, 15), green) << "until its size stands";
    FontWith(400, 200, red).Draw();
    EXPECT_EQ(Shown(30, 15), red) << "a repack brings another picture";
}
