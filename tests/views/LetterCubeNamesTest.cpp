// The names of the letter cubes, as a user writes them.

#include "platform/qt/QtText.h"
#include "views/Windows.h"

#include <QPlainTextEdit>

using Desktop::DialogId;

namespace {

class LetterCubeNames : public WindowTest {};

TEST_F(LetterCubeNames, OkStoresWhatWasTyped) {
    EXPECT_TRUE(RunAnd(DialogId::LetterCubesNames, [&](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Lettrino - Export as letter cubes");
        auto* const box = Named<QPlainTextEdit>(dialog, "Names, one to a line");
        EXPECT_TRUE(box->hasFocus());
        EXPECT_EQ(box->blockCount(), 10);
        EXPECT_TRUE(box->toPlainText().startsWith("Mary\nJohn\n"));
        ExpectTextFits(dialog);
        Screenshot(dialog, "letter-cube-names");
        QTest::keySequence(box, QKeySequence::SelectAll);
        QTest::keyClicks(box, "Ann\u00a0a");
        QTest::keyClick(box, Qt::Key_Return); // a new line, not the end
        QTest::keyClicks(box, "Bob");
        QTest::keyClick(box, Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }));
    EXPECT_EQ(ToQt(settings.LetterCubesNames), QString("Ann\u00a0a\r\nBob"));
}

TEST_F(LetterCubeNames, EscapeLeavesThem) {
    const QString old = ToQt(settings.LetterCubesNames);
    EXPECT_FALSE(RunAnd(DialogId::LetterCubesNames, [&](QWidget& dialog) {
        QTest::keyClicks(QApplication::focusWidget(), "Zoe");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(ToQt(settings.LetterCubesNames), old);
    EXPECT_TRUE(RunAnd(DialogId::LetterCubesNames, [](QWidget&) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }));
    EXPECT_EQ(ToQt(settings.LetterCubesNames), old);
}

TEST_F(LetterCubeNames, AThousandUnitsAreKept) {
    EXPECT_TRUE(RunAnd(DialogId::LetterCubesNames, [&](QWidget& dialog) {
        Named<QPlainTextEdit>(dialog, "Names, one to a line")->setPlainText(QString("xy\n").repeated(400));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }));
    EXPECT_EQ(settings.LetterCubesNames.Length(), 1000);
}

} // namespace
