// The choice of a picture for a character as a user has it.

#include "TemporaryFolder.h"
#include "views/Fonts.h"

#include <QCheckBox>
#include <QFileDialog>

using Desktop::DialogId;

namespace {

class AddPictureWindow : public WindowTest {
protected:
    TemporaryFolder folder;

    void SetUp() override {
        WindowTest::SetUp();
        MPicture picture(300, 200, FormatRGBA8);
        picture.Fill(MColour(0, 0, 255));
        picture.Save(folder.File("glyph_R.png"));
        picture.Free();
        settings.BackgroundColour = MColour(0, 255, 0);
        Path() = FromSystemPath(folder.path);
    }
    MString& Path() { return settings.Path(MPathKind::GlyphPicture); }

    static QAbstractButton* Browse(QWidget& dialog) {
        for (auto* const button : dialog.findChildren<QAbstractButton*>()) {
            if (button->text() == "&Browse") return button;
        }
        return nullptr;
    }
    static const QStringList& Amounts() {
        static const QStringList names{"Padding top", "Padding bottom", "Spacing before", "Spacing after"};
        return names;
    }
};

} // namespace

TEST_F(AddPictureWindow, LooksAsAUserExpects) {
    Path() = folder.File("glyph_R.png");
    EXPECT_FALSE(RunAnd(DialogId::AddPicture, [&](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Lettrino - Add/Change picture");
        EXPECT_TRUE(Named<QLineEdit>(dialog, "Picture")->hasFocus());
        EXPECT_EQ(Named<QLineEdit>(dialog, "Character")->text(), "#");
        for (const QString& name : Amounts())
            EXPECT_EQ(Named<QLineEdit>(dialog, name)->text(), "0");
        EXPECT_TRUE(Named<QCheckBox>(dialog, "Trim horizontally")->isChecked());
        ExpectTextFits(dialog);
        EXPECT_EQ(TabOrder(dialog),
                  (QStringList{"Picture", "Browse", "Character", "Padding top", "Padding bottom",
                               "Spacing before", "Spacing after", "Trim horizontally", "OK", "Cancel"}));
        // The picture lies in the middle of its ground, which is clear of all controls.
        const QRect ground = Find(dialog, QColor(0, 255, 0));
        const QRect ink = Find(dialog, QColor(0, 0, 255));
        EXPECT_TRUE(ground.contains(ink));
        EXPECT_NEAR(ink.center().x(), ground.center().x(), 1);
        EXPECT_NEAR(ink.center().y(), ground.center().y(), 1);
        EXPECT_NEAR(ink.width() * 2, ink.height() * 3, 3);
        for (const QWidget* const control : dialog.findChildren<QWidget*>())
            EXPECT_FALSE(control->isVisible() && control->geometry().intersects(ground));
    }));
    EXPECT_EQ(settings.Char, 35U);
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
            TypeInto(Named<QLineEdit>(dialog, Amounts()[i]), typed[i]);
        TypeInto(Named<QLineEdit>(dialog, "Character"), "Q");
        TypeInto(Named<QLineEdit>(dialog, "Picture"), "/none.png");
        auto* const trim = Named<QCheckBox>(dialog, "Trim horizontally");
        QTest::keyClick(trim, Qt::Key_Space);
        QTest::keyClick(trim, Qt::Key_Return);
    }));
    EXPECT_EQ(settings.PaddingTop, 3);
    EXPECT_EQ(settings.PaddingBottom, -4);
    EXPECT_EQ(settings.SpacingBefore, 0);
    EXPECT_EQ(settings.SpacingAfter, INT32_MAX) << "fifteen digits";
    EXPECT_EQ(settings.Char, std::uint32_t{'Q'});
    EXPECT_TRUE(Path().Equals(u"/none.png"));
    EXPECT_FALSE(settings.Trim);
}

TEST_F(AddPictureWindow, CancelWritesNothing) {
    EXPECT_FALSE(RunAnd(DialogId::AddPicture, [&](QWidget& dialog) {
        TypeInto(Named<QLineEdit>(dialog, "Character"), "Q");
        TypeInto(Named<QLineEdit>(dialog, "Picture"), "/none.png");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(settings.Char, 35U);
    EXPECT_TRUE(Path().Equals(FromSystemPath(folder.path)));
}

TEST_F(AddPictureWindow, BrowsingShowsThePictureAndItsCharacter) {
    EXPECT_TRUE(RunAnd(DialogId::AddPicture, [&](QWidget& dialog) {
        EXPECT_TRUE(Find(dialog, QColor(0, 0, 255)).isEmpty());
        WhileOpen([&] { return QTest::mouseClick(Browse(dialog), Qt::LeftButton), 0; },
                  [&](QWidget& files) {
                      auto* const chooser = qobject_cast<QFileDialog*>(&files);
                      ASSERT_TRUE(chooser);
                      EXPECT_EQ(chooser->windowTitle(), "Load Picture");
                      auto* const name = chooser->findChild<QLineEdit*>("fileNameEdit");
                      ASSERT_TRUE(name);
                      TypeInto(name, QString::fromStdString((folder.path / "glyph_R.png").string()));
                      QTest::keyClick(name, Qt::Key_Return);
                  });
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
