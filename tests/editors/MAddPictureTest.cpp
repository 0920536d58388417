#include "editors/MAddPicture.h"

#include "EditorTest.h"

namespace {

class AddPictureDialog : public EditorTest {
protected:
    TemporaryFolder folder;

    MString& Remembered() { return settings.Path(MPathKind::GlyphPicture); }
};

} // namespace

TEST_F(AddPictureDialog, OkWritesALongPathCutAndAnyCharacter) {
    settings.Char = 0x20AC;
    MAddPicture dialog;
    EXPECT_EQ(Narrow(dialog.Character), "\xE2\x82\xAC");
    dialog.Path = MString(std::u16string(300, u'x'));
    for (const auto& [typed, character] : {std::pair(u"Zebra", u'Z'), {u"", u'?'}}) {
        dialog.Character = typed;
        dialog.Accept();
        EXPECT_EQ(settings.Char, std::uint32_t{character});
    }
    EXPECT_EQ(Remembered().length, 260);
}

TEST_F(AddPictureDialog, ThePreviewIsThePictureOnTheBackground) {
    settings.BackgroundColour = MColour(0, 0, 200);
    const Desktop::Rect area =
        MAddPicture::PreviewArea({12, 30, 60, 44}, {90, 60, 200, 80}, {162, 300, 240, 110});
    EXPECT_EQ(area, (Desktop::Rect{12, 60, 132, 110}));
    MAddPicture dialog;
    const auto painted = [&](std::int32_t x) {
        dialog.PaintPreview(AnyWindow(), area);
        return Painted(x, 85);
    };
    dialog.PaintPreview(AnyWindow(), area);
    EXPECT_EQ(Paintings(), 0U) << "no path";
    const MColour red(250, 0, 0);
    const MColour green(0, 250, 0);
    dialog.Path = WritePicture(folder, "a.png", 200, 200, red);
    EXPECT_EQ(painted(72), red) << "shrunk to 50, centred";
    EXPECT_EQ(painted(46), settings.BackgroundColour);
    EXPECT_EQ(painted(72), red) << "painted again";
    dialog.Path = folder.Write("none.png", "no picture");
    EXPECT_EQ(painted(72), settings.BackgroundColour);
    bool told = false;
    for (std::int32_t x = area.left; x < area.right; ++x)
        told |= Painted(x, 80) != settings.BackgroundColour;
    EXPECT_TRUE(told) << "that it is no picture";
    EXPECT_FALSE(dialog.Browse(AnyWindow()));
    Headless::script.files = {WritePicture(folder, "none.png", 10, 10, green)}; // the same name
    ASSERT_TRUE(dialog.Browse(AnyWindow()));
    EXPECT_EQ(Narrow(dialog.Character), "e") << "by the name";
    EXPECT_EQ(painted(72), green);
    EXPECT_EQ(painted(62), settings.BackgroundColour) << "not enlarged";
}
