// A sheet of letters as a user has it: found, put right and named by keyboard, until it is a font.

#include "TemporaryFolder.h"
#include "glyphs/SheetCutter.h"
#include "glyphs/SheetMaker.h"
#include "platform/qt/QtText.h"
#include "views/Fonts.h"

#include <QComboBox>
#include <cmath>

using Desktop::DialogId;
using Effect = SheetLook::Effect;
using Ground = SheetLook::Ground;

namespace {

class AddSheetWindow : public EditorWindowTest {
protected:
    TemporaryFolder folder;

    // The picture becomes the one that the dialog begins with.
    void Put(MadeSheet& made, const char* name) {
        const MString path = folder.File(name);
        ASSERT_TRUE(made.picture.Save(path));
        settings.Path(MPathKind::PictureSheet) = path;
    }
    // While no made sheet has its own settings in the place of the program's.
    bool Open(const std::function<void(QWidget&)>& act) {
        MSettings* const before = std::exchange(Settings, &settings);
        const bool accepted = RunAnd(DialogId::AddSheet, act);
        Settings = before;
        return accepted;
    }
    // Each letter's own dark ink, without what a shadow adds to the right and below.
    void ExpectLetters(const MadeSheet& made, double shadow = 0) {
        EXPECT_EQ(font->GlyphCount(), static_cast<std::int32_t>(made.letters.size()));
        for (const MadeLetter& letter : made.letters) {
            const MGlyph* const glyph = font->GetGlyph(letter.character);
            ASSERT_TRUE(glyph) << char(letter.character);
            QRect ink;
            for (std::int32_t y = 0; y < glyph->Height; ++y)
                for (std::int32_t x = 0; x < glyph->Width; ++x)
                    if (glyph->GetPixel(x, y).a > 128) ink |= QRect(x, y, 1, 1);
            EXPECT_NEAR(ink.width(), letter.width - shadow, 5) << char(letter.character);
            EXPECT_NEAR(ink.height(), letter.height - shadow, 5) << char(letter.character);
        }
    }
};

QWidget* FocusSheet(QWidget& dialog) {
    auto* const sheet = Named<QWidget>(dialog, "Sheet");
    sheet->setFocus();
    return sheet;
}

void SelectBox(QWidget& sheet, std::size_t place) {
    QTest::keyClick(&sheet, Qt::Key_Home);
    for (std::size_t i = 0; i < place; ++i)
        QTest::keyClick(&sheet, Qt::Key_Right);
}

QString OneLine(const MadeSheet& made) {
    return ToQt(made.text).remove('\n');
}

// The letters that a box covers, from left to right.
std::vector<MadeLetter> Covered(const MSheetBox& box, const MadeSheet& made) {
    std::vector<MadeLetter> letters;
    std::ranges::copy_if(made.letters, std::back_inserter(letters), [&](const MadeLetter& letter) {
        return letter.x > box.box.left && letter.x < box.box.right && letter.y > box.box.top - 20 &&
               letter.y < box.box.bottom + 20;
    });
    return letters;
}

} // namespace

// As the guide tells it.
TEST_F(AddSheetWindow, APhotoOfCrayonLettersBecomesAFont) {
    std::filesystem::current_path(LETTRINO_PICTURES);
    settings.Path(MPathKind::PictureSheet) = "sheet-photo.jpg";
    EXPECT_TRUE(Open([&](QWidget& dialog) {
        EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Characters");
        TypeInto(Named<QLineEdit>(dialog, "Characters"), "ABCDEFGH IJKLMNOP QRSTUVW XYZ!?.");
        QTRY_VERIFY(!LabelWith(dialog, "Box 1 of 29").isEmpty()); // searched anew, without a doubt
        TypeInto(Named<QLineEdit>(dialog, "Spacing before"), "7");
        TypeInto(Named<QLineEdit>(dialog, "Spacing after"), "7");
        FocusSheet(dialog);
        Screenshot(dialog, "add-sheet");
        EXPECT_EQ(LabelWith(dialog, "become glyphs"), "29 letters become glyphs.");
        ExpectTextFits(dialog);
        EXPECT_EQ(font->GlyphCount(), 0) << "nothing before OK";
        Click(dialog, "OK");
    }));
    EXPECT_EQ(font->GlyphCount(), 29);
    const MGlyph& letter = *font->GetGlyph(u'H');
    EXPECT_NEAR(letter.Width, 95, 9);
    EXPECT_EQ(letter.SpacingAfter, 7);
    const std::int32_t bar = letter.Height - font->Baseline - font->CapHeight / 2;
    EXPECT_GT(letter.GetPixel(letter.Width / 2, bar).a, 200);
    EXPECT_EQ(letter.GetPixel(letter.Width / 2, bar + 40).a, 0) << "paper";
}

// Letters as close as the face has them, with a shadow that lies under the next one.
TEST_F(AddSheetWindow, TouchingShadowsAreSplitByKeys) {
    MadeSheet made({.family = "DejaVu Sans",
                    .weight = 700,
                    .effect = Effect::Shadow,
                    .ground = Ground::Transparent,
                    .extraGap = 0});
    Put(made, "shadows.png");
    const MSheet found = FindSheetLetters(made.picture, made.text, {});
    int corrections = 0;
    EXPECT_TRUE(Open([&](QWidget& dialog) {
        TypeInto(Named<QLineEdit>(dialog, "Characters"), OneLine(made));
        QWidget* const sheet = FocusSheet(dialog);
        // From the end, so that those before keep their places.
        for (std::size_t i = found.boxes.size(); i-- > 0;) {
            const auto letters = Covered(found.boxes[i], made);
            for (std::size_t part = letters.size(); part-- > 1;) {
                SelectBox(*sheet, i);
                PressMnemonic(Qt::Key_S);
                const QString before = LabelWith(dialog, "cut at column ");
                const auto wanted =
                    static_cast<int>(std::lround((letters[part].x - letters[part].width / 2 +
                                                  letters[part - 1].x + letters[part - 1].width / 2) /
                                                 2)) -
                    found.boxes[i].box.left;
                int column = before.mid(before.indexOf("column") + 7).section('.', 0, 0).toInt();
                for (; column != wanted; column += column < wanted ? 1 : -1)
                    QTest::keyClick(sheet, column < wanted ? Qt::Key_Right : Qt::Key_Left);
                if (corrections++ == 0) Screenshot(dialog, "add-sheet-cut");
                QTest::keyClick(sheet, Qt::Key_Return);
            }
        }
        EXPECT_EQ(LabelWith(dialog, "become glyphs").left(25), "82 letters become glyphs.");
        Click(dialog, "OK");
    }));
    EXPECT_LE(corrections, 7);
    ExpectLetters(made, 5);
}

// No text: a stain is left out, a broken letter joined, and all named by typing. A letter may be taken back.
TEST_F(AddSheetWindow, BrokenLettersAreJoinedAndNamedByTyping) {
    MadeSheet made({.family = "Liberation Sans",
                    .italic = true,
                    .extraGap = 12,
                    .wander = 4,
                    .lines = {u"ABCDH", u"aecnz"}});
    const auto paint = [&](double x, double y, int right, int down, const MColour& colour) {
        for (int j = 0; j < down; ++j)
            for (int i = 0; i < right; ++i)
                made.picture.SetPixel(static_cast<int>(x) + i, static_cast<int>(y) + j, colour);
    };
    const MadeLetter& broken = made.letters[4];
    paint(broken.x - 2, broken.y - 40, 5, 80, MColour(255, 255, 255)); // through the bar of "H"
    paint(made.picture.Width - 24.0, made.letters[9].y, 14, 14, MColour(90, 60, 20));
    Put(made, "torn.png");
    EXPECT_TRUE(Open([&](QWidget& dialog) {
        EXPECT_EQ(LabelWith(dialog, "letters were found").left(2), "12");
        QWidget* const sheet = FocusSheet(dialog);
        QTest::keyClick(sheet, Qt::Key_End); // the stain
        QTest::keyClick(sheet, Qt::Key_Delete);
        EXPECT_TRUE(LabelWith(dialog, "Box 12").contains("left out"));
        SelectBox(*sheet, 4);
        PressMnemonic(Qt::Key_J);
        EXPECT_TRUE(sheet->hasFocus());
        EXPECT_TRUE(LabelWith(dialog, "Box 5 of 11").contains("no character"));
        QTest::keyClick(sheet, Qt::Key_Home);
        QTest::keyClicks(sheet, "ABCDx");
        QTest::keyClick(sheet, Qt::Key_Backspace); // of the next, which has no name, so back to the last
        QTest::keyClicks(sheet, "Haecnz");
        EXPECT_EQ(LabelWith(dialog, "become glyphs"), "10 letters become glyphs.");
        QTest::keyClick(sheet, Qt::Key_Backspace);
        QTest::keyClick(sheet, Qt::Key_A);
        EXPECT_EQ(LabelWith(dialog, "Two boxes").left(18), "Two boxes are \"a\".");
        for (int i = 0; i < 2; ++i)
            QTest::keyClick(sheet, Qt::Key_Z, Qt::ControlModifier);
        Screenshot(dialog, "add-sheet-typed");
        Click(dialog, "OK");
    }));
    ExpectLetters(made);
}

TEST_F(AddSheetWindow, TheMouseDrawsJoinsAndDragsAndNothingIsLostOnCancel) {
    MadeSheet made({.lines = {u"AB"}});
    Put(made, "two.png");
    AddBlock(u'A');
    EXPECT_FALSE(Open([&](QWidget& dialog) {
        QWidget* const sheet = Named<QWidget>(dialog, "Sheet");
        const QRect area = sheet->geometry();
        const QImage whole = dialog.grab(area).toImage();
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up}) { // another ground, and the first one again
            QTest::keyClick(Named<QComboBox>(dialog, "Ground"), key);
            EXPECT_EQ(dialog.grab(area).toImage() == whole, key == Qt::Key_Up);
        }
        const double density = dialog.devicePixelRatio();
        const double fits = density * std::min(area.width() / double(made.picture.Width),
                                               area.height() / double(made.picture.Height));
        const double shown = (fits < 1 ? fits : std::floor(fits)) / density; // small ones by whole numbers
        const auto at = [&](double x, double y) {
            return (area.center() +
                    QPointF((x - made.picture.Width / 2.0) * shown, (y - made.picture.Height / 2.0) * shown))
                .toPoint();
        };
        const MadeLetter& a = made.letters[0];
        QTest::mouseClick(&dialog, Qt::LeftButton, {}, at(a.x, a.y));
        const auto sizeTold = [&](int part) {
            return LabelWith(dialog, "Box 1 of").section(", ", 1).section(' ', part, part).toInt();
        };
        const auto widthTold = [&] { return sizeTold(0); };
        const int width = widthTold();
        EXPECT_NEAR(width, a.width, 2);
        QTest::keyClick(sheet, Qt::Key_Plus, Qt::ControlModifier);
        QTest::keyClick(sheet, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClick(sheet, Qt::Key_Left, Qt::ControlModifier);
        const int height = sizeTold(2);
        QTest::keyClick(sheet, Qt::Key_Down, Qt::ShiftModifier);
        EXPECT_EQ(sizeTold(2), height + 1);
        QTest::keyClick(sheet, Qt::Key_Up, Qt::ShiftModifier);
        EXPECT_EQ(widthTold(), width + 1) << "its edge by a pixel, and all of it the other way";
        QTest::keyClick(sheet, Qt::Key_0, Qt::ControlModifier);
        const QPoint edge = at(a.x + a.width / 2, a.y);
        EXPECT_TRUE(PaintsAnew(dialog, area, [&] {
            Drag(dialog, Qt::LeftButton, {edge, at(a.x + a.width / 2 + 9, a.y)});
        }));
        EXPECT_NEAR(widthTold(), width + 9, 2);
        const QPoint corner = at(2, 2);
        Drag(dialog, Qt::LeftButton, {corner, corner + QPoint(10, 10), at(12, 12)});
        EXPECT_EQ(LabelWith(dialog, "Box ").section(",", 0, 0), "Box 1 of 3: no character");
        QTest::mouseClick(&dialog, Qt::LeftButton, Qt::ControlModifier, at(a.x, a.y));
        EXPECT_EQ(LabelWith(dialog, "Box ").section(":", 0, 0), "Box 1 of 2");
        for (int i = 0; i < 7; ++i)
            Click(dialog, "Undo");
        EXPECT_EQ(widthTold(), width);
        Click(dialog, "Cancel");
    }));
    EXPECT_EQ(font->GlyphCount(), 1);
}

TEST_F(AddSheetWindow, SaysWhatIsWrongWithAFile) {
    folder.Write("page.png", "no picture");
    settings.Path(MPathKind::PictureSheet) = folder.File("page.png");
    Open([&](QWidget& dialog) {
        EXPECT_EQ(LabelWith(dialog, "This file"), "This file is no picture that can be read.");
        auto* const path = Named<QLineEdit>(dialog, "Picture");
        TypeInto(path, "/none.png");
        EXPECT_EQ(LabelWith(dialog, "There is"), "There is no such file.");
        for (const auto key : {Qt::Key_A, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Down, Qt::Key_End})
            QTest::keyClick(FocusSheet(dialog), key);
        Click(dialog, "Cancel");
    });
}
