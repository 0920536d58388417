// The optical kerning as a user has it.

#include "document/OpticalKerning.h"

#include "foundation/MString.h"
#include "views/Fonts.h"

#include <QListView>
#include <QSlider>

using Desktop::DialogId;

namespace {

using OpticalKerningWindow = EditorWindowTest;

} // namespace

TEST_F(OpticalKerningWindow, APairThatIsNudgedByKeysStandsAndTheRestFollows) {
    AddLetters();
    const auto plain = MOpticalKerning(*font).Pairs({}, {});
    ASSERT_TRUE(RunAnd(DialogId::OpticalKerning, [&](QWidget& dialog) {
        EXPECT_EQ(LabelWith(dialog, " pairs").toStdString(), std::to_string(plain.size()) + " pairs");
        TypeInto(Named<QLineEdit>(dialog, "Text"), "LAVA To");
        auto* const line = Named<QWidget>(dialog, "Line of text");
        line->setFocus();
        // The first gap is that of "LA"; the blank is none.
        QTest::keyClick(line, Qt::Key_Down);
        EXPECT_EQ(LabelWith(dialog, "white").left(4), "L A:");
        QTest::keyClick(line, Qt::Key_Down);
        EXPECT_EQ(LabelWith(dialog, "white").left(4), "A V:");
        QTest::keyClick(line, Qt::Key_Left, Qt::ControlModifier);
        QTest::keyClick(line, Qt::Key_Left);
        EXPECT_EQ(Named<QListView>(dialog, "Model pairs")->model()->rowCount(), 1);
        Screenshot(dialog, "optical-kerning");
        QTest::keyClick(line, Qt::Key_Down);
        QTest::keyClick(line, Qt::Key_Down);
        EXPECT_EQ(LabelWith(dialog, "white").left(4), "T o:") << "no gap across a blank";
        Click(dialog, "OK");
    }));
    const auto amountOf = [&](char16_t left, char16_t right) {
        const auto isIt = [&](const MKerningPair& pair) { return pair.Left == left && pair.Right == right; };
        return std::ranges::find_if(plain, isIt)->Amount;
    };
    EXPECT_EQ(font->FindKerning(u'A', u'V')->Amount, amountOf(u'A', u'V') - 11);
    EXPECT_LT(font->FindKerning(u'V', u'A')->Amount, amountOf(u'V', u'A')) << "follows the model";
    EXPECT_TRUE(std::ranges::is_sorted(PairsOf(*font), {}, &MKerningPair::Amount));
    EXPECT_EQ(ToSystem(settings.KerningText), "LAVA To");
}

TEST_F(OpticalKerningWindow, TheMouseChoosesAndTheSliderTellsHowMuch) {
    AddLetters();
    RunAnd(DialogId::OpticalKerning, [&](QWidget& dialog) {
        TypeInto(Named<QLineEdit>(dialog, "Text"), "AV");
        auto* const line = Named<QWidget>(dialog, "Line of text");
        const QImage before = dialog.grab(line->geometry()).toImage();
        QTest::mouseClick(&dialog, Qt::LeftButton, {}, line->geometry().center());
        EXPECT_EQ(LabelWith(dialog, "white").left(4), "A V:");
        EXPECT_TRUE(line->hasFocus());
        EXPECT_TRUE(PaintsAnew(dialog, line->geometry(),
                               [&] { QTest::keyClick(line, Qt::Key_Right, Qt::ControlModifier); }));
        EXPECT_NE(dialog.grab(line->geometry()).toImage(), before);
        auto* const models = Named<QListView>(dialog, "Model pairs");
        EXPECT_EQ(models->model()->rowCount(), 1);
        Click(dialog, "Remove pair");
        EXPECT_EQ(models->model()->rowCount(), 0);
        Named<QSlider>(dialog, "Strength")->setValue(0);
        EXPECT_EQ(LabelWith(dialog, " pairs"), "0 pairs");
        Click(dialog, "Cancel");
    });
    EXPECT_EQ(font->KerningCount(), 0);
}

TEST_F(OpticalKerningWindow, AFontWithoutLettersSaysSo) {
    AddBlock(u'@');
    RunAnd(DialogId::OpticalKerning, [&](QWidget& dialog) {
        for (const auto* const button : dialog.findChildren<QAbstractButton*>())
            EXPECT_EQ(button->isEnabled(), button->text() != "OK" && button->text() != "&Remove pair")
                << button->text().toStdString();
        TypeInto(Named<QLineEdit>(dialog, "Text"), "@@");
        auto* const line = Named<QWidget>(dialog, "Line of text");
        line->setFocus();
        for (const auto key : {Qt::Key_Down, Qt::Key_Left, Qt::Key_Delete})
            QTest::keyClick(line, key);
    });
}
