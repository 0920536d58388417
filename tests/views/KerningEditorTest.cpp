// The kerning editor as a user has it.

#include "platform/qt/MClientArea.h"
#include "views/Fonts.h"

#include <QListView>

using Desktop::DialogId;

namespace {

class KerningEditor : public EditorWindowTest {
protected:
    static QString Shown(QWidget& dialog) {
        return TextsOf(dialog, {"Left character", "Right character", "Kerning"});
    }
};

TEST_F(KerningEditor, GeneratedAndTypedPairs) {
    AddLetters();
    font->SetKerning('A', 'A', -1);
    EXPECT_TRUE(RunAnd(DialogId::KerningEditor, [&](QWidget& dialog) {
        auto* const list = Named<QListView>(dialog, "Kerning pairs");
        EXPECT_EQ(Shown(dialog), "A|A|-1");
        // In a field of one character a key takes the place of what stands there, "?" of what is deleted.
        auto* const left = Named<QLineEdit>(dialog, "Left character");
        QTest::mouseClick(left, Qt::LeftButton);
        QTest::keyClicks(left, "VA");
        EXPECT_EQ(Shown(dialog), "A|A|-1");
        QTest::keyClick(left, Qt::Key_Backspace);
        EXPECT_EQ(Shown(dialog), "?|A|0");
        PressMnemonic(Qt::Key_G);
        EXPECT_GT(list->model()->rowCount(), 500);
        EXPECT_FALSE(list->currentIndex().isValid());
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        EXPECT_EQ(Named<QLineEdit>(dialog, "Kerning")->text().toInt(), font->Kerning.data[0].Amount);
        // From the list by keyboard alone; a field is entered with its text selected.
        for (const char* const typed : {"A", "V", "-77"}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QTest::keyClicks(QApplication::focusWidget(), typed);
        }
        EXPECT_EQ(Shown(dialog), "A|V|-77");
        EXPECT_EQ(list->currentIndex().data().toString(), "A    V");
        EXPECT_TRUE(list->viewport()->rect().intersects(list->visualRect(list->currentIndex())));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }));
    EXPECT_EQ(font->FindKerning('A', 'V')->Amount, -77);
}

TEST_F(KerningEditor, ADragIsSeenWhenThePairIsShownAgain) {
    AddBlock(u'A', 10);
    font->SetKerning('A', 'A', -1);
    settings.BackgroundColour = {0, 255, 0};
    EXPECT_TRUE(RunAnd(DialogId::KerningEditor, [&](QWidget& dialog) {
        QTest::qWait(50); // all is painted
        const QRect preview = Find(dialog, QColor(0, 255, 0));
        const QRect list = Named<QListView>(dialog, "Kerning pairs")->geometry();
        const int top = Named<QLineEdit>(dialog, "Left character")->geometry().top();
        EXPECT_EQ(preview, QRect(QPoint(top, top), QPoint(list.left() - top - 1, list.bottom())));
        const QRect ink = Find(dialog, QColor(0, 0, 255));
        const double scale = ScaleOf(preview);
        EXPECT_NEAR(ink.width(), 20 * scale, 3);
        // Both the way and the scale are in pixels of the screen.
        const double density = qGuiApp->devicePixelRatio();
        const QPoint way(static_cast<int>(4 / density / density), 0);
        Drag(dialog, Qt::LeftButton, {preview.center(), preview.center() + way});
        const int amount = font->Kerning.data[0].Amount;
        EXPECT_EQ(amount, static_cast<int>(-1 + 4 * scale));
        Drag(dialog, Qt::RightButton, {preview.center(), preview.center() + way});
        EXPECT_EQ(font->Kerning.data[0].Amount, amount);
        QTest::qWait(50);
        EXPECT_EQ(Shown(dialog), "A|A|-1");
        auto* const pairs = Named<QListView>(dialog, "Kerning pairs");
        QTest::mouseClick(pairs->viewport(), Qt::LeftButton, {},
                          pairs->visualRect(pairs->currentIndex()).center());
        EXPECT_EQ(Shown(dialog), QString("A|A|%1").arg(amount));
        EXPECT_GT(Find(dialog, QColor(0, 0, 255)).width(), ink.width());
        Screenshot(dialog, "kerning-editor-dragged");
        QTest::keyClick(pairs, Qt::Key_Return);
    }));
}

TEST_F(KerningEditor, ClearAndEscapeBringThePairsBack) {
    AddBlock(u'A');
    font->SetKerning('A', 'B', -1);
    font->SetKerning('A', 'A', -2);
    settings.BackgroundColour = {70, 80, 90};
    EXPECT_FALSE(RunAnd(DialogId::KerningEditor, [&](QWidget& dialog) {
        QTest::qWait(50);
        const QImage& shown = MClientArea::Of(HandleOf(&GroundOf(dialog)))->image;
        const QImage pair = shown.copy();
        PressMnemonic(Qt::Key_L);
        EXPECT_EQ(font->KerningCount(), 0);
        EXPECT_EQ(Named<QListView>(dialog, "Kerning pairs")->model()->rowCount(), 0);
        // The preview stays until it is painted again, to which buttons that change their looks are no reason.
        EXPECT_EQ(shown, pair);
        dialog.update();
        QTest::qWait(50);
        EXPECT_TRUE(Find(dialog, QColor(0, 0, 255)).isNull());
        TypeInto(Named<QLineEdit>(dialog, "Kerning"), "4");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(PairsOf(*font), (Pairs{{'A', 'B', -1}, {'A', 'A', -2}}));
}

} // namespace
