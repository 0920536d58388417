// What the program has the desktop do, as it comes to the user.

#include "Text.h"
#include "editors/views/MLineList.h"
#include "foundation/Product.h"
#include "platform/qt/Guide.h"
#include "platform/qt/QtText.h"
#include "views/Windows.h"

#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTreeView>

using Desktop::Answer;
using Desktop::Buttons;

TEST(TheDesktop, BlackCanBeReadOnItsButtonColour) {
    const QPalette before = QApplication::palette();
    for (const auto& [button, light] :
         {std::pair(QColor(50, 50, 54), false), std::pair(QColor(239, 235, 231), true)}) {
        QPalette palette = before;
        palette.setColor(QPalette::Button, button);
        QApplication::setPalette(palette);
        const MColour given = Desktop::ButtonColour();
        EXPECT_GT(qGray(given.r, given.g, given.b), 150);
        EXPECT_EQ(QColor(given.r, given.g, given.b) == button, light) << "a light one is the desktop's own";
    }
    QApplication::setPalette(before);
}

TEST(TheDesktop, EnterTakesTheFirstButtonAndEscapeTheHarmlessOne) {
    for (const auto& [buttons, enter, escape] : {std::tuple(Buttons::Ok, Answer::Ok, Answer::Ok),
                                                 {Buttons::OkCancel, Answer::Ok, Answer::Cancel},
                                                 {Buttons::YesNo, Answer::Yes, Answer::No},
                                                 {Buttons::YesNoCancel, Answer::Yes, Answer::Cancel}}) {
        const auto answerTo = [&, shown = buttons](Qt::Key key) {
            return WhileOpen(
                [&] {
                    return Desktop::ShowMessage(nullptr, "Text", "Caption", shown, Desktop::Icon::Question);
                },
                [&](QWidget& box) { QTest::keyClick(&box, key); });
        };
        EXPECT_EQ(answerTo(Qt::Key_Return), enter);
        EXPECT_EQ(answerTo(Qt::Key_Escape), escape);
    }
}

TEST(TheDesktop, FileDialogsShowPatternsPlacesAndWholeColumns) {
    const QTemporaryDir folder;
    QFile(folder.filePath("a file of some length.sm")).open(QFile::WriteOnly);
    Desktop::FileDialog dialog;
    dialog.title = "Open Font";
    dialog.folder = FromQt(folder.filePath("gone/too"));
    dialog.filters = {{"Colour fonts", "*.SM"}, {"PNG Files (*.PNG)", "*.PNG"}};
    dialog.places = {FromQt(folder.path()), "/no such folder"};
    const QList<QUrl> usual = QFileDialog().sidebarUrls();
    WhileOpen([&] { return Desktop::ShowFileDialog(nullptr, dialog, "sm"); },
              [&](QWidget& window) {
                  auto& chooser = dynamic_cast<QFileDialog&>(window);
                  EXPECT_EQ(chooser.directory().path(), folder.path());
                  EXPECT_TRUE(chooser.nameFilters()[0].contains("*.SM")) << "told to the user";
                  EXPECT_EQ(chooser.nameFilters()[1].count("*.PNG"), 1);
                  EXPECT_TRUE(chooser.sidebarUrls().contains(QUrl::fromLocalFile(folder.path())));
                  EXPECT_FALSE(chooser.sidebarUrls().contains(QUrl::fromLocalFile("/no such folder")));
                  const auto* const list = chooser.findChild<QTreeView*>("treeView");
                  EXPECT_LE(list->header()->length(), list->viewport()->width());
                  for (int column = 1; column < list->header()->count(); ++column)
                      EXPECT_GE(list->columnWidth(column), list->header()->sectionSizeHint(column));
                  Screenshot(window, "open");
              });
    EXPECT_EQ(QFileDialog().sidebarUrls(), usual) << "other programs' dialogs have no places of ours";
}

TEST(TheDesktop, TheGuideOpensWithoutANetwork) {
    for (const char* const page : {"/lettrinomanual", "/lettrinomanual#buy", "/community/"}) {
        const QUrl url = InstalledGuide(ToQt(MakerSite + page));
        ASSERT_TRUE(url.isLocalFile()) << page;
        QFile file(url.toLocalFile());
        ASSERT_TRUE(file.open(QFile::ReadOnly)) << page;
        const QString text = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(
            text.contains("id=\"" + (url.hasFragment() ? url.fragment() : QString("user-guide")) + '"'));
        EXPECT_FALSE(text.contains(".md\"")) << "its links lead to pages, too";
    }
    EXPECT_EQ(InstalledGuide("http://else.example/lettrinomanual").host(), "else.example");
}

// The offscreen desktop has no browser.
TEST(TheDesktop, ABrowserThatCannotBeStartedIsTold) {
    WhileOpen([] { return Desktop::OpenInBrowser("http://else.example/page"), 0; },
              [](QWidget& box) {
                  EXPECT_TRUE(dynamic_cast<QMessageBox&>(box).text().contains("http://else.example/page"));
                  QTest::keyClick(&box, Qt::Key_Return);
              });
}

TEST(TheDesktop, ListsOfPairsHaveColumns) {
    MLineList list;
    list.UseColumns(2);
    list.lines.text = [](int row) { return QString(row == 0 ? "I    A" : "WW    A"); };
    list.lines.Refill(2);
    list.resize(160, 100);
    const QImage shown = list.grab().toImage();
    const auto side = [&](int row, bool right) {
        const QRectF line = QRectF(list.visualRect(list.lines.index(row))).translated(list.viewport()->pos());
        const QRectF part(line.left() + (right ? line.width() / 2 : 0), line.top(), line.width() / 2,
                          line.height());
        const double density = shown.devicePixelRatio();
        return shown.copy(QRectF(part.topLeft() * density, part.size() * density).toAlignedRect());
    };
    EXPECT_EQ(side(0, true), side(1, true));
    EXPECT_NE(side(0, false), side(1, false));
}
