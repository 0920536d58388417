// The choice of a picture for a character as a user has it.

#include "editors/EditorTest.h"
#include "views/Fonts.h"

#include <QCheckBox>
#include <tuple>

using Desktop::DialogId;

namespace {

class AddPictureWindow : public WindowTest {
protected:
    TemporaryFolder folder;

    void SetUp() override {
        WindowTest::SetUp();
        WritePicture(folder, "glyph_R.png", 300, 200, MColour(0, 0, 255));
        settings.BackgroundColour = MColour(0, 255, 0);
        Path() = FromSystemPath(folder.path);
    }
    MString& Path() { return settings.Path(MPathKind::GlyphPicture); }
};

constexpr const char* amounts[] = {"Padding top", "Padding bottom", "Spacing before", "Spacing after"};

} // namespace

TEST_F(AddPictureWindow, LooksAsAUserExpects) {
    Path() = folder.File("glyph_R.png");
    MSettings& s = settings;
    std::tie(s.PaddingTop, s.PaddingBottom, s.SpacingBefore, s.SpacingAfter) = std::tuple(1, 2, 3, 4);
    settings.Trim = false;
    EXPECT_FALSE(RunAnd(DialogId::AddPicture, [&](QWidget& dialog) {
        EXPECT_EQ(Named<QLineEdit>(dialog, "Character")->text(), "#");
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(Named<QLineEdit>(dialog, amounts[i])->text(), QString::number(i + 1));
        EXPECT_FALSE(Named<QCheckBox>(dialog, "Trim horizontally")->isChecked());
        // The picture lies in the middle of its ground, which is clear of all controls.
        const QRect ground = Find(dialog, QColor(0, 255, 0));
        const QRect ink = Find(dialog, QColor(0, 0, 255));
        EXPECT_TRUE(ground.contains(ink));
        EXPECT_LE((ink.center() - ground.center()).manhattanLength(), 2);
        EXPECT_NEAR(ink.width() * 2, ink.height() * 3, 3);
        for (const QWidget* const control : GroundOf(dialog).findChildren<QWidget*>())
            EXPECT_FALSE(control->isVisible() && control->geometry().intersects(ground));
        TypeInto(Named<QLineEdit>(dialog, "Character"), "Q");
        TypeInto(Named<QLineEdit>(dialog, "Picture"), "/none.png");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(settings.Char, 35U) << "cancelled";
    EXPECT_TRUE(Path().Equals(folder.File("glyph_R.png")));
}

TEST_F(AddPictureWindow, AcceptsARelativePath) {
    std::filesystem::current_path(ToSystemPath(GetProgramFolder()));
    Path() = "Media/icons/lettrino-256.png";
    settings.BackgroundColour = MColour(244, 240, 232);
    EXPECT_FALSE(RunAnd(DialogId::AddPicture, [&](QWidget& dialog) {
        Screenshot(dialog, "add-picture");
        EXPECT_FALSE(Find(dialog, QColor(38, 48, 74)).isEmpty()) << "the ground of the icon";
    }));
}

TEST_F(AddPictureWindow, OkTakesWhatIsThere) {
    EXPECT_TRUE(RunAnd(DialogId::AddPicture, [&](QWidget& dialog) {
        const char* typed[] = {"3", "-4", "x", "1234567890123456"};
        for (int i = 0; i < 4; ++i)
            TypeInto(Named<QLineEdit>(dialog, amounts[i]), typed[i]);
        TypeInto(Named<QLineEdit>(dialog, "Character"), "Q");
        TypeInto(Named<QLineEdit>(dialog, "Picture"), "/none.png");
        auto* const trim = Named<QCheckBox>(dialog, "Trim horizontally");
        QTest::keyClick(trim, Qt::Key_Space);
        QTest::keyClick(trim, Qt::Key_Return);
    }));
    const MSettings& s = settings;
    EXPECT_EQ(std::tuple(s.PaddingTop, s.PaddingBottom, s.SpacingBefore, s.SpacingAfter, s.Char, s.Trim),
              std::tuple(3, -4, 0, INT32_MAX, std::uint32_t{'Q'}, false)); // fifteen digits count
    EXPECT_TRUE(Path().Equals(u"/none.png"));
}

TEST_F(AddPictureWindow, BrowsingShowsThePictureAndItsCharacter) {
    EXPECT_TRUE(RunAnd(DialogId::AddPicture, [&](QWidget& dialog) {
        EXPECT_TRUE(Find(dialog, QColor(0, 0, 255)).isEmpty());
        const auto browse = [&] {
            WhileOpen([&] { return Click(dialog, "Browse"), 0; },
                      [&](QWidget& files) {
                          EXPECT_EQ(files.windowTitle(), "Load Picture");
                          auto* const name = files.findChild<QLineEdit*>("fileNameEdit");
                          ASSERT_TRUE(name);
                          TypeInto(name, QString::fromStdString((folder.path / "glyph_R.png").string()));
                          QTest::keyClick(name, Qt::Key_Return);
                      });
        };
        browse();
        const QRect preview = Find(dialog, QColor(0, 255, 0));
        EXPECT_TRUE(PaintsAnew(dialog, preview, browse)) << "the same name, but maybe another picture";
        EXPECT_TRUE(
            PaintsAnew(dialog, preview, [&] { TypeInto(Named<QLineEdit>(dialog, "Picture"), "none.png"); }));
        browse();
        EXPECT_TRUE(Named<QLineEdit>(dialog, "Picture")->text().endsWith("/glyph_R.png"));
        EXPECT_EQ(Named<QLineEdit>(dialog, "Character")->text(), "R");
        EXPECT_FALSE(Find(dialog, QColor(0, 0, 255)).isEmpty());
        TypeInto(Named<QLineEdit>(dialog, "Picture"), "");
        EXPECT_TRUE(Find(dialog, QColor(0, 255, 0)).isEmpty()) << "no path, no preview";
        QTest::keyClick(&dialog, Qt::Key_Return);
    }));
    EXPECT_EQ(settings.Char, std::uint32_t{'R'});
    EXPECT_TRUE(Path().IsEmpty());
}
