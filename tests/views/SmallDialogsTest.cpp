// The dialogs that are no more than a few fields or a picture: the glyph height, the license keys, the names of
// the letter cubes, About.

#include "licensing/MLicense.h"
#include "platform/qt/QtText.h"
#include "views/Windows.h"

#include <QPlainTextEdit>

using Desktop::DialogId;

namespace {

class SmallDialogs : public WindowTest {
protected:
    MLicense license{settings};

    void SetUp() override {
        WindowTest::SetUp();
        License = &license;
    }
    void TearDown() override {
        License = nullptr;
        WindowTest::TearDown();
    }
};

TEST_F(SmallDialogs, GlyphHeightIsLimitedOnOk) {
    for (const auto& [typed, end, height] : {std::tuple("64", Qt::Key_Return, 64),
                                             {"5", Qt::Key_Return, 16},
                                             {"", Qt::Key_Return, 16},
                                             {"99999999999999999", Qt::Key_Return, 1024},
                                             {"77", Qt::Key_Escape, 100}}) {
        settings.GlyphHeight = 100;
        const bool ok = RunAnd(DialogId::GlyphHeight, [typed = typed, end = end](QWidget& dialog) {
            auto* const field = Named<QLineEdit>(dialog, "Glyph height");
            EXPECT_EQ(field->text(), "100");
            TypeInto(field, typed);
            QTest::keyClick(field, end);
        });
        EXPECT_EQ(ok, end == Qt::Key_Return);
        EXPECT_EQ(settings.GlyphHeight, height) << typed;
    }
}

TEST_F(SmallDialogs, TheFirstLicenseKeyIsTheUsersName) {
    EXPECT_TRUE(RunAnd(DialogId::LicenseKeys, [](QWidget&) {
        for (const char* key : {"Ann Example", "two", "three"}) {
            QTest::keyClicks(QApplication::focusWidget(), key);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        EXPECT_EQ(static_cast<QAbstractButton*>(QApplication::focusWidget())->text(), "OK");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    }));
    EXPECT_TRUE(settings.Keys[2].Equals(u"three"));
    EXPECT_FALSE(RunAnd(DialogId::About, [](QWidget& dialog) {
        EXPECT_TRUE(dialog.accessibleDescription().endsWith("licensed to:\nAnn Example"));
        Screenshot(dialog, "about-licensed");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
}

TEST_F(SmallDialogs, LetterCubeNames) {
    const QString old = ToQt(settings.LetterCubesNames);
    // Untouched; changed; changed and cancelled.
    for (const int step : {0, 1, 2}) {
        const bool ok = RunAnd(DialogId::LetterCubesNames, [&](QWidget& dialog) {
            auto* const box = Named<QPlainTextEdit>(dialog, "Names, one to a line");
            EXPECT_TRUE(box->toPlainText().startsWith(step < 2 ? "Mary\nJohn\n" : "Ann"));
            if (step > 0) {
                QTest::keySequence(box, QKeySequence::SelectAll);
                QTest::keyClicks(box, step == 1 ? "Ann\u00a0a" : "Zoe");
                QTest::keyClick(box, Qt::Key_Return, Qt::ShiftModifier); // a new line like any other
                QTest::keyClicks(box, "Bob");
            }
            QTest::keyClick(box, Qt::Key_Tab);
            QTest::keyClick(QApplication::focusWidget(), step < 2 ? Qt::Key_Return : Qt::Key_Escape);
        });
        EXPECT_EQ(ok, step < 2);
        EXPECT_EQ(ToQt(settings.LetterCubesNames), step > 0 ? QString("Ann\u00a0a\r\nBob") : old);
    }
    RunAnd(DialogId::LetterCubesNames, [](QWidget& dialog) {
        Named<QPlainTextEdit>(dialog, "Names, one to a line")->setPlainText(QString("xy\n").repeated(400));
        Click(dialog, "OK");
    });
    EXPECT_EQ(settings.LetterCubesNames.Length(), 1000) << "as many as the settings file has room for";
}

TEST_F(SmallDialogs, About) {
    EXPECT_TRUE(RunAnd(DialogId::About, [](QWidget& dialog) {
        EXPECT_EQ(dialog.size(), QSize(680, 420));
        const QPoint middle = dialog.geometry().center() - QApplication::primaryScreen()->geometry().center();
        EXPECT_LE(middle.manhattanLength(), 40) << "but for the frame";
        auto* const ok = dialog.findChild<QAbstractButton*>();
        EXPECT_EQ(ok->geometry().bottomRight() + QPoint(1, 1), QPoint(640, 380));
        EXPECT_TRUE(dialog.accessibleDescription().contains("evaluation version"));

        QTest::mouseClick(&dialog, Qt::RightButton, {}, QPoint(100, 200));
        EXPECT_TRUE(dialog.isVisible());
        QTest::keyClick(&dialog, Qt::Key_Return);
    }));
    EXPECT_TRUE(RunAnd(DialogId::About, [](QWidget& dialog) {
        QTest::mouseClick(&dialog, Qt::LeftButton, {}, QPoint(100, 200)); // anywhere
        EXPECT_FALSE(dialog.isVisible());
    }));
}

} // namespace
