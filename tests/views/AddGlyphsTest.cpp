// The choice of font and characters as a user has it.

#include "glyphs/MFontList.h"
#include "views/Fonts.h"

#include <QAccessible>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>

using Desktop::DialogId;

namespace {

class AddGlyphsWindow : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        settings.FontName = "DejaVu Sans";
    }
    void TearDown() override {
        FontList.reset();
        WindowTest::TearDown();
    }

    // Where a character stands in the grid.
    static QPoint CellOf(QWidget& dialog, char16_t character) {
        const QRect grid = Named<QWidget>(dialog, "Characters")->geometry();
        const int place = character - 32;
        return {grid.left() + (place % 16 * 2 + 1) * grid.width() / 32,
                grid.top() + (place / 16 * 2 + 1) * grid.height() / 28};
    }
    std::string Selected() const {
        std::string all;
        for (std::size_t code = 33; code < 127; ++code)
            if (settings.Selected[code] != 0) all += static_cast<char>(code);
        return all;
    }
    static QImage Shown(QWidget& dialog) { return dialog.grab().toImage(); }
    static bool GridPaintsAnew(QWidget& dialog, const std::function<void()>& act) {
        return PaintsAnew(dialog, Named<QWidget>(dialog, "Characters")->geometry(), act);
    }
};

} // namespace

TEST_F(AddGlyphsWindow, LooksAsAUserExpects) {
    settings.FontName = "DejaVu Serif";
    settings.ColourFont = true;
    EXPECT_FALSE(RunAnd(DialogId::AddGlyphs, [&](QWidget& dialog) {
        auto* const family = Named<QComboBox>(dialog, "Font family");
        EXPECT_EQ(family->currentText(), "DejaVu Serif");
        EXPECT_EQ(Named<QComboBox>(dialog, "Style")->currentText(), "Normal");
        EXPECT_EQ(Named<QLineEdit>(dialog, "Glyph height")->text(), "100");
        EXPECT_TRUE(Named<QCheckBox>(dialog, "Colour font")->isChecked());
        const QRect grid = Named<QWidget>(dialog, "Characters")->geometry();
        EXPECT_EQ(grid.topLeft(), QPoint(10, 10));
        EXPECT_EQ(grid.right() + 1, family->x() - 10);
        EXPECT_EQ(ColourAt(dialog, Named<QWidget>(dialog, "Colour")->geometry().center()), QColor(255, 0, 0));
    }));
}

TEST_F(AddGlyphsWindow, ChangesStayAfterCancelButTheHeight) {
    EXPECT_FALSE(RunAnd(DialogId::AddGlyphs, [&](QWidget& dialog) {
        EXPECT_TRUE(GridPaintsAnew(
            dialog, [&] { Named<QComboBox>(dialog, "Font family")->setCurrentText("Liberation Serif"); }));
        EXPECT_TRUE(settings.FontName.Equals(u"Liberation Serif"));
        auto* const style = Named<QComboBox>(dialog, "Style");
        EXPECT_EQ(style->count(), 4);
        style->setFocus();
        EXPECT_TRUE(GridPaintsAnew(dialog, [&] { QTest::keyClick(style, Qt::Key_End); }));
        EXPECT_EQ(style->currentText(), "Bold Italic");
        QTest::keyClick(style, Qt::Key_F, Qt::AltModifier);
        EXPECT_TRUE(Named<QComboBox>(dialog, "Font family")->hasFocus());
        EXPECT_TRUE(GridPaintsAnew(dialog, [&] {
            QTest::mouseClick(Named<QCheckBox>(dialog, "Colour font"), Qt::LeftButton, {}, QPoint(8, 8));
        }));
        TypeInto(Named<QLineEdit>(dialog, "Glyph height"), "77");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(settings.Weight, 700);
    EXPECT_TRUE(settings.Italic);
    EXPECT_TRUE(settings.ColourFont);
    EXPECT_EQ(settings.GlyphHeight, 100);
}

TEST_F(AddGlyphsWindow, DragsMarkAndUnmarkAllThatTheyPass) {
    settings.Selected.fill(0);
    RunAnd(DialogId::AddGlyphs, [&](QWidget& dialog) {
        const auto cell = [&](char16_t character) { return CellOf(dialog, character); };
        Drag(dialog, Qt::LeftButton, {cell(u'A'), cell(u'O')});
        EXPECT_EQ(Selected(), "ABCDEFGHIJKLMNO") << "a quick one";
        Drag(dialog, Qt::LeftButton, {cell(u'R')});
        EXPECT_EQ(Selected(), "ABCDEFGHIJKLMNOR") << "nothing between two drags";
        EXPECT_TRUE(GridPaintsAnew(dialog, [&] {
            Drag(dialog, Qt::RightButton, {cell(u'b'), cell(u'B'), cell(u'C')});
        }));
        EXPECT_EQ(Selected(), "ADEFGHIJKLMNO") << "R lies on the way";
        EXPECT_TRUE(Named<QWidget>(dialog, "Characters")->hasFocus());
        QTest::mousePress(&dialog, Qt::LeftButton, {}, cell(u'e'));
        QTest::mousePress(&dialog, Qt::RightButton, {}, cell(u'D')); // unmarks, though the left one is held
        QTest::mouseRelease(&dialog, Qt::RightButton);
        QTest::mouseRelease(&dialog, Qt::LeftButton);
        QTest::mouseMove(&dialog, cell(u'f')); // no button is held
        EXPECT_EQ(Selected(), "AEFGHIJKLMNOe");
        Screenshot(dialog, "add-glyphs-marked");
    });
}

TEST_F(AddGlyphsWindow, AMissingFamilyIsNamed) {
    settings.FontName = "Never Installed";
    RunAnd(DialogId::AddGlyphs, [&](QWidget& dialog) {
        auto* const family = Named<QComboBox>(dialog, "Font family");
        EXPECT_EQ(family->currentText(), "");
        EXPECT_EQ(family->placeholderText(), "Never Installed (not installed)");
        Screenshot(dialog, "add-glyphs-missing");
    });
}

TEST_F(AddGlyphsWindow, TheGridWorksByKeyboard) {
    settings.Selected.fill(0);
    EXPECT_TRUE(RunAnd(DialogId::AddGlyphs, [&](QWidget& dialog) {
        auto* const grid = Named<QWidget>(dialog, "Characters");
        auto* const tree = QAccessible::queryAccessibleInterface(grid);
        const QImage before = Shown(dialog);
        grid->setFocus();
        EXPECT_NE(Shown(dialog), before) << "a frame shows where the keyboard is";
        EXPECT_EQ(tree->role(), QAccessible::CheckBox);
        EXPECT_FALSE(tree->state().checked);
        EXPECT_EQ(grid->accessibleDescription(), "A (65), not selected");
        EXPECT_TRUE(GridPaintsAnew(dialog, [&] { QTest::keyClick(grid, Qt::Key_Space); }));
        EXPECT_TRUE(tree->state().checked);
        EXPECT_EQ(tree->text(QAccessible::Value).toStdString(), "A (65), selected");
        for (const auto key : {Qt::Key_Right, Qt::Key_Space, Qt::Key_Down, Qt::Key_Space, Qt::Key_Left,
                               Qt::Key_Up, Qt::Key_Space, Qt::Key_End, Qt::Key_Space})
            QTest::keyClick(grid, key);
        EXPECT_EQ(Selected(), "BOR");
        QTest::keyClicks(grid, "z");
        QTest::keyClick(grid, Qt::Key_Space);
        for (const auto key : {Qt::Key_Left, Qt::Key_Left, Qt::Key_Up})
            QTest::keyClick(grid, key, Qt::ShiftModifier);
        EXPECT_EQ(Selected(), "BORhxyz") << "also what is passed with Shift";
        EXPECT_TRUE(grid->hasFocus()) << "arrows stay in the grid";
        EXPECT_TRUE(GridPaintsAnew(dialog, [&] { QTest::keySequence(grid, QKeySequence::SelectAll); }));
        TypeInto(Named<QLineEdit>(dialog, "Glyph height"), "-a7b");
        QTest::keyClick(grid, Qt::Key_Return);
    }));
    EXPECT_EQ(settings.SelectedCount(), 223);
    EXPECT_EQ(settings.GlyphHeight, 16) << "of 7";
}

TEST_F(AddGlyphsWindow, TheSwatchOpensTheChoiceOfColours) {
    // As another program may have left it; no other test chooses colours before.
    QColorDialog::setCustomColor(0, Qt::red);
    const auto choose = [](QWidget& colours) {
        auto* const chooser = qobject_cast<QColorDialog*>(&colours);
        ASSERT_TRUE(chooser);
        EXPECT_EQ(QColorDialog::customColor(0), QColor(Qt::white));
        EXPECT_EQ(chooser->currentColor(), QColor(9, 9, 9));
        chooser->setCurrentColor(QColor(1, 200, 3));
        chooser->accept();
    };
    RunAnd(DialogId::AddGlyphs, [&](QWidget& dialog) {
        auto* const swatch = Named<QWidget>(dialog, "Colour");
        auto* const tree = QAccessible::queryAccessibleInterface(swatch);
        EXPECT_EQ(tree->role(), QAccessible::PushButton);
        const std::function<void()> ways[] = {
            [&] { QTest::keyClick(swatch, Qt::Key_Space); },
            [&] { QTest::keyClick(swatch, Qt::Key_Return); },
            [&] { QTest::mousePress(&dialog, Qt::LeftButton, {}, swatch->geometry().center()); },
            [&] { QTest::mousePress(&dialog, Qt::RightButton, {}, swatch->geometry().center()); },
        };
        for (const auto& way : ways) {
            settings.Colour = MColour(9, 9, 9);
            dialog.activateWindow(); // which this screen leaves undone when a dialog on it ends
            EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
            Named<QLineEdit>(dialog, "Glyph height")->setFocus();
            PressMnemonic(Qt::Key_C);
            EXPECT_TRUE(swatch->hasFocus());
            WhileOpen([&] { return way(), 0; }, choose);
            EXPECT_EQ(settings.Colour, MColour(1, 200, 3));
            EXPECT_EQ(ColourAt(dialog, swatch->geometry().center()), QColor(1, 200, 3));
        }
        EXPECT_EQ(tree->text(QAccessible::Value).toStdString(), "#01c803");
        EXPECT_TRUE(dialog.isVisible());
    });
}
