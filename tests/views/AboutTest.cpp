// The About dialog as a user sees it.

#include "licensing/MLicense.h"
#include "views/Windows.h"

using Desktop::DialogId;

namespace {

class AboutWindow : public WindowTest {};

} // namespace

TEST_F(AboutWindow, LooksAsAUserExpects) {
    EXPECT_TRUE(RunAnd(DialogId::About, [](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Lettrino - About");
        EXPECT_EQ(dialog.size(), QSize(680, 420));
        const QPoint middle = dialog.geometry().center() - QApplication::primaryScreen()->geometry().center();
        EXPECT_LE(middle.manhattanLength(), 40) << "but for the frame";
        auto* const ok = dialog.findChild<QAbstractButton*>();
        EXPECT_EQ(ok->geometry().right() + 1, 640);
        EXPECT_EQ(ok->geometry().bottom() + 1, 380);
        EXPECT_TRUE(dialog.accessibleDescription().contains("evaluation version"));
        ExpectTextFits(dialog);
        Screenshot(dialog, "about");
        QTest::keyClick(&dialog, Qt::Key_Return);
    }));
}

TEST_F(AboutWindow, TellsTheUsersName) {
    settings.Keys[0] = "Ann Example";
    MLicense license(settings);
    License = &license;
    EXPECT_FALSE(RunAnd(DialogId::About, [](QWidget& dialog) {
        EXPECT_TRUE(dialog.accessibleDescription().endsWith("licensed to:\nAnn Example"));
        Screenshot(dialog, "about-licensed");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    License = nullptr;
}

TEST_F(AboutWindow, AClickAnywhereEndsIt) {
    for (const auto button : {Qt::LeftButton, Qt::RightButton}) {
        RunAnd(DialogId::About, [&](QWidget& dialog) {
            QTest::mouseClick(&dialog, button, {}, QPoint(100, 200));
            EXPECT_EQ(dialog.isVisible(), button == Qt::RightButton);
        });
    }
}
