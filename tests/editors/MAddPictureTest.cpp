#include "editors/MAddPicture.h"

#include "DocumentFixture.h"
#include "TemporaryFolder.h"
#include "Text.h"
#include "document/MSettings.h"
#include "glyphs/Pixels.h"

namespace {

class AddPictureDialog : public DocumentTest {
protected:
    TemporaryFolder folder;

    MString& Remembered() { return settings.Path(MPathKind::GlyphPicture); }

    MString WritePicture(const char* name, std::uint32_t width, std::uint32_t height, const MColour& colour) {
        MPicture picture(width, height, FormatRGBA8);
        picture.Fill(colour);
        picture.Save(folder.File(name));
        picture.Free();
        return folder.File(name);
    }
};

MColour ColourAt(const Headless::Painting& painting, std::int32_t x, std::int32_t y) {
    MColour colour;
    std::memcpy(&colour, painting.pixels.data() + (std::ptrdiff_t{y} * painting.width + x) * 4, 4);
    return colour;
}

} // namespace

TEST_F(AddPictureDialog, StartsWithWhatIsRememberedAndOnlyOkWrites) {
    settings.Char = 0x20AC;
    settings.PaddingTop = 1;
    settings.PaddingBottom = -2;
    settings.SpacingBefore = 3;
    settings.SpacingAfter = 4;
    settings.Trim = false;
    Remembered() = "/pictures/";
    MAddPicture dialog;
    EXPECT_EQ(Narrow(dialog.Character), "\xE2\x82\xAC");
    EXPECT_EQ(Narrow(dialog.Path), "/pictures/");
    EXPECT_EQ(dialog.PaddingTop, 1);
    EXPECT_EQ(dialog.PaddingBottom, -2);
    EXPECT_EQ(dialog.SpacingBefore, 3);
    EXPECT_EQ(dialog.SpacingAfter, 4);
    EXPECT_FALSE(dialog.Trim);

    dialog.Path = MString(std::u16string(300, u'x'));
    dialog.Character = "Zebra";
    dialog.PaddingTop = -10;
    dialog.Trim = true;
    EXPECT_EQ(Narrow(Remembered()), "/pictures/");
    EXPECT_EQ(settings.PaddingTop, 1);
    dialog.Accept();
    EXPECT_EQ(Remembered().length, 260);
    EXPECT_EQ(settings.Char, std::uint32_t{'Z'});
    EXPECT_EQ(settings.PaddingTop, -10) << "nothing is checked";
    EXPECT_TRUE(settings.Trim);
    dialog.Character = MString();
    dialog.Accept();
    EXPECT_EQ(settings.Char, std::uint32_t{'?'});
}

TEST_F(AddPictureDialog, BrowsingTellsTheCharacter) {
    MAddPicture dialog;
    EXPECT_FALSE(dialog.Browse(AnyWindow()));
    EXPECT_TRUE(dialog.Path.IsEmpty());
    const struct {
        const char* file;
        const char* character;
    } cases[] = {{"/p/font_B.png", "B"}, {"/p/glyph65.png", "A"}, {"/p/x32.png", "A"}};
    for (const auto& c : cases) {
        Headless::script.files = {c.file};
        EXPECT_TRUE(dialog.Browse(AnyWindow()));
        EXPECT_EQ(Narrow(dialog.Path), c.file);
        EXPECT_EQ(Narrow(dialog.Character), c.character) << c.file;
        EXPECT_EQ(Narrow(Remembered()), c.file) << "as by every file dialog";
    }
    EXPECT_EQ(settings.Char, 35U);
    EXPECT_EQ(Narrow(Headless::record.fileDialogs.back().title), "Load Picture");
}

TEST_F(AddPictureDialog, ThePreviewIsThePictureOnTheBackground) {
    settings.BackgroundColour = MColour(0, 0, 200);
    const Desktop::Rect area =
        MAddPicture::PreviewArea({12, 30, 60, 44}, {90, 60, 200, 80}, {162, 300, 240, 110});
    EXPECT_EQ(area, (Desktop::Rect{12, 60, 132, 110}));
    MAddPicture dialog;
    dialog.PaintPreview(AnyWindow(), area);
    EXPECT_TRUE(Headless::record.paintings.empty()) << "no path";
    dialog.Path = WritePicture("a.png", 200, 200, MColour(250, 0, 0));
    dialog.PaintPreview(AnyWindow(), area);
    ASSERT_EQ(Headless::record.paintings.size(), 1U);
    EXPECT_EQ(ColourAt(Headless::record.paintings[0], 60, 25), MColour(250, 0, 0)) << "shrunk to 50, centred";
    EXPECT_EQ(ColourAt(Headless::record.paintings[0], 34, 25), MColour(0, 0, 200));
    dialog.PaintPreview(AnyWindow(), area);
    EXPECT_EQ(Headless::record.paintings[1].pixels, Headless::record.paintings[0].pixels);
    dialog.Path = folder.Write("none.png", "no picture");
    dialog.PaintPreview(AnyWindow(), area);
    EXPECT_EQ(ColourAt(Headless::record.paintings[2], 60, 25), MColour(0, 0, 200));
    // The same name, but another picture.
    Headless::script.files = {WritePicture("none.png", 10, 10, MColour(0, 250, 0))};
    ASSERT_TRUE(dialog.Browse(AnyWindow()));
    dialog.PaintPreview(AnyWindow(), area);
    EXPECT_EQ(ColourAt(Headless::record.paintings[3], 60, 25), MColour(0, 250, 0));
    EXPECT_EQ(ColourAt(Headless::record.paintings[3], 50, 25), MColour(0, 0, 200)) << "not enlarged";
}
