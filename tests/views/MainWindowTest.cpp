// The whole program in its window, driven by keys and clicks as a person would.

#include "Text.h"
#include "document/MColourFont.h"
#include "platform/qt/MClientArea.h"
#include "platform/qt/QtText.h"
#include "shell/Program.h"
#include "shell/Shell.h"
#include "shell/UserFolders.h"
#include "views/Windows.h"

#include <QApplication>
#include <QBackingStore>
#include <QComboBox>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <deque>
#include <set>
#include <vector>

namespace {

// Does one step after another, each as soon as the window or dialog that it waits for is in front.
class Person {
public:
    struct Step {
        QString title; // that the window in front ends with; empty for the main window with nothing before it
        std::function<void(QWidget&)> act;
    };

    explicit Person(std::deque<Step> toDo) : steps(std::move(toDo)) {
        timer.callOnTimeout([this] { Look(); });
        timer.start(10);
        waited.start();
    }

    bool IsDone() const { return steps.empty(); }

private:
    std::deque<Step> steps;
    QTimer timer;
    QElapsedTimer waited;
    std::vector<QWidget*> busy; // with a step each, of which the last one goes on

    void Look() {
        QWidget* const modal = QApplication::activeModalWidget();
        QWidget* const main = MainWindow ? WidgetOf(MainWindow)->window() : nullptr;
        if (!main || steps.empty()) return;
        // Nobody waits for the box that an unlicensed copy starts with.
        if (modal && modal->windowTitle().endsWith(" - About") && !steps.front().title.endsWith("About"))
            return static_cast<void>(modal->close());
        if (waited.elapsed() > 60000) {
            ADD_FAILURE() << "nothing came with the title " << steps.front().title.toStdString() << ", but "
                          << (modal ? modal->windowTitle().toStdString() : "the main window");
            steps.clear();
            if (modal) modal->close();
            main->close();
            return;
        }
        QWidget* const front = modal ? modal : main;
        if (modal ? steps.front().title.isEmpty() || !front->windowTitle().endsWith(steps.front().title)
                  : !steps.front().title.isEmpty())
            return;
        // A command that opens a dialog ends with that dialog, whose own steps come meanwhile.
        if (std::find(busy.begin(), busy.end(), front) != busy.end()) return;
        busy.push_back(front);
        const Step step = steps.front();
        steps.pop_front();
        waited.restart();
        QTimer::singleShot(0, [this, step, front = QPointer(front)] {
            if (front) step.act(*front);
            busy.pop_back();
        });
    }
};

// What is to be seen of a window, without painting it anew as QWidget::grab does. Qt's offscreen screen shows
// of a dense window a quarter at best, and of windows that lie over one another any; what was painted there is
// in the window's own image.
QImage Shown(QWidget& window) {
    if (QGuiApplication::platformName() != "offscreen")
        return window.screen()->grabWindow(window.winId()).toImage();
    const QPaintDevice* const painted = window.backingStore()->paintDevice();
    return painted->devType() == QInternal::Image ? *static_cast<const QImage*>(painted) : QImage();
}

class MainWindowTest : public UserTest {
protected:
    static void Run(const MString& file, std::deque<Person::Step> steps) {
        steps.push_back({"", [](QWidget& window) { window.close(); }});
        const Person person(std::move(steps));
        EXPECT_EQ(RunProgram(file), 0);
        EXPECT_TRUE(person.IsDone());
    }
    static Person::Step Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        return {"", [=](QWidget& window) {
                    window.activateWindow();
                    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
                    QTest::keyClick(&window, key, modifiers);
                }};
    }
    static Person::Step ChooseFile(const char* title, const MString& path) {
        return {title, [path](QWidget& dialog) {
                    auto* const name = dialog.findChild<QLineEdit*>("fileNameEdit");
                    ASSERT_NE(name, nullptr);
                    // Its list of files comes in its own time: it would take the Enter, and before it is there
                    // the dialog may forget the name or not find the file. So a person types once more.
                    name->setCompleter(nullptr);
                    const QPointer<QWidget> open(&dialog);
                    for (int i = 0; i < 100 && open && open->isVisible(); ++i) {
                        name->clear();
                        QTest::keyClicks(name, QString::fromStdString(ToSystem(path)));
                        QTest::keyClick(name, Qt::Key_Return);
                        if (open && open->isVisible()) QTest::qWait(100);
                    }
                }};
    }
    // The characters dialog, in which one types a glyph height and takes the font.
    static Person::Step AddCharacters(const char* height) {
        return {"Add/Change characters", [height](QWidget& dialog) {
                    QTest::keyClicks(Named<QComboBox>(dialog, "Font family"), "DejaVu Sans");
                    TypeInto(Named<QLineEdit>(dialog, "Glyph height"), height);
                    Click(dialog, "OK");
                }};
    }
    static void CopyIcon(const char* name) {
        std::filesystem::copy_file(ToSystemPath(GetProgramFolder() + "/Media/icons/lettrino-16.png"),
                                   Home().path / name);
    }
    static Person::Step Look(const std::function<void(QWidget&)>& look) { return {"", look}; }
};

} // namespace

TEST_F(MainWindowTest, TheMenuHoldsEveryItemInOrder) {
    Run({}, {Look([](QWidget& window) {
            auto* const bar = static_cast<QMainWindow&>(window).menuBar();
            QStringList lines;
            const auto plain = [](QString text) { return text.remove('&'); };
            // Each has an underlined letter, which no other of the menu has.
            const auto expectLetters = [](const QList<QAction*>& items) {
                std::set<QString> letters{QString()};
                for (const QAction* const item : items) {
                    const QString letter = item->text().section('&', 1, 1).left(1).toLower();
                    EXPECT_TRUE(item->isSeparator() || letters.insert(letter).second)
                        << item->text().toStdString();
                }
            };
            expectLetters(bar->actions());
            for (const QAction* const menu : bar->actions()) {
                lines << plain(menu->text());
                expectLetters(menu->menu()->actions());
                for (const QAction* const item : menu->menu()->actions()) {
                    EXPECT_TRUE(item->isEnabled());
                    lines << (item->isSeparator() ? "-"
                                                  : plain(item->text()) + '\t' + item->shortcut().toString());
                }
            }
            EXPECT_EQ(lines.join('\n').toStdString(),
                      "FILE\nNew...\tF2\nOpen...\tCtrl+O\nSave as...\tCtrl+S\n-\nImport HTML...\t\n"
                      "Import photofont...\t\nImport game font...\t\n-\nExport as HTML...\t\nExport as single "
                      "files...\t\nExport as cubes...\t\nExport as game font...\t\n"
                      "Export as web font...\t\n-\nExit\t\n"
                      "EDIT\nAdd/change characters...\tF3\nAdd/change picture...\tF4\nAdd picture "
                      "sheet...\t\nGlyphs editor...\tF5\n"
                      "Kerning editor...\tF6\nOptical kerning...\t\nChange glyph height...\tF7\n-\nRemove "
                      "non-ASCII characters\t\n"
                      "Trim vertically\t\n"
                      "SETTINGS\nSet background colour...\t\nEnter license keys...\t\n"
                      "HELP\nUser guide\tF1\nCommunity\t\n-\nOrdering information...\t\nAbout Lettrino\t");
            Screenshot(window, "main-window-empty");
            EXPECT_TRUE(window.focusWidget()) << "to which the menu bar gives the keyboard back";
        })});
}

TEST_F(MainWindowTest, TheWholeRoad) {
    const MString saved = Home().File("road.sm");
    Run({}, {Key(Qt::Key_S, Qt::ControlModifier), // without a font nothing happens
             Key(Qt::Key_F2),
             AddCharacters("64"),
             Look([](QWidget& window) {
                 EXPECT_TRUE(window.windowTitle().startsWith("Lettrino - 26 Glyphs ("))
                     << window.windowTitle().toStdString();
                 Screenshot(window, "main-window");
             }),
             Key(Qt::Key_F6),
             {"Kerning editor",
              [](QWidget& dialog) {
                  Click(dialog, "Generate");
                  Click(dialog, "OK");
              }},
             Key(Qt::Key_S, Qt::ControlModifier),
             ChooseFile("Save Font", Home().File("road.txt")),
             {"Lettrino",
              [&](QWidget& box) {
                  auto& message = static_cast<QMessageBox&>(box);
                  EXPECT_EQ(message.icon(), QMessageBox::Information);
                  EXPECT_EQ(FromSystem(message.text().toStdString()),
                            "Colour font successfully saved as:\n\n\"" + saved + "\"");
                  QTest::keyClick(&box, Qt::Key_Escape);
              }},
             Key(Qt::Key_O, Qt::ControlModifier),
             ChooseFile("Open Font", saved),
             Look([](QWidget&) {
                 ASSERT_NE(CurrentFont, nullptr);
                 EXPECT_EQ(CurrentFont->GlyphCount(), 26);
                 EXPECT_NE(CurrentFont->FindKerning(u'A', u'V'), nullptr);
                 EXPECT_EQ(Settings->GlyphHeight, 64);
             })});
    EXPECT_TRUE(std::filesystem::exists(Home().path / SettingsFile()));
}

TEST_F(MainWindowTest, TheProgressWindowIsSeenAndMoves) {
    std::set<int> percents;
    std::set<QRgb> middles; // of the bar, as it stands on the screen
    QTimer look;
    look.callOnTimeout([&] {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            auto* const bar = window->findChild<QProgressBar*>();
            if (!bar || bar->window() != window || !window->windowHandle()->isExposed()) continue;
            percents.insert(bar->value());
            EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
            const QImage shown = Shown(*window);
            EXPECT_NE(shown.pixel(0, 0), shown.pixel(3, 3)) << "a frame, which the desktop gives it none of";
            const QPointF middle = bar->geometry().center() + QPoint(0, bar->height() / 4);
            const QPoint pixel = (middle * shown.width() / window->width()).toPoint();
            ASSERT_TRUE(shown.rect().contains(pixel));
            middles.insert(shown.pixel(pixel));
            if (bar->value() > 60 && bar->value() < 90) Keep(QPixmap::fromImage(shown), "progress");
        }
    });
    look.start(0);
    Run({}, {Key(Qt::Key_F3),
             {"Add/Change characters",
              [](QWidget& dialog) {
                  EXPECT_FALSE(QGuiApplication::overrideCursor()) << "each control has its own";
                  Settings->Selected.fill(1);
                  TypeInto(Named<QLineEdit>(dialog, "Glyph height"), "1024");
                  Click(dialog, "OK");
              }},
             Look([](QWidget&) { EXPECT_GT(CurrentFont->GlyphCount(), 180); })});
    EXPECT_GT(percents.size(), 50U) << "of 0 to 100";
    EXPECT_GT(middles.size(), 1U) << "the bar goes past its middle";
}

// A texture font is opened, on a picture letters are looked for, others are refused while they are still held.
TEST_F(MainWindowTest, DroppedFilesAreOpened) {
    const MString font = Home().Write("drop.sm", "Showmarquee TextureFont\nCHA\tA\t0\t0\t20\t100\n");
    CopyIcon("drop.png");
    const auto drop = [](QWidget& window, const QString& file) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file), QUrl("http://x/second.sm")});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window, &enter);
        if (!enter.isAccepted()) return false;
        QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window, &dropped);
        return true;
    };
    Run({}, {Look([&](QWidget& window) {
                 EXPECT_FALSE(drop(window, "/a/page.html"));
                 EXPECT_TRUE(drop(window, ToQt(font)));
                 const auto isOpen = [&] { return window.windowTitle() == "Lettrino - 1 Glyphs (128 x 256)"; };
                 EXPECT_TRUE(QTest::qWaitFor(isOpen, 2000));
                 EXPECT_TRUE(drop(window, ToQt(Home().File("drop.png"))));
             }),
             {"Add picture sheet",
              [](QWidget& dialog) {
                  EXPECT_TRUE(Named<QLineEdit>(dialog, "Picture")->text().endsWith("/drop.png"));
                  TypeInto(Named<QLineEdit>(dialog, "Characters"), "L");
                  Click(dialog, "OK");
              }},
             Look([&](QWidget& window) { EXPECT_EQ(window.windowTitle().left(19), "Lettrino - 2 Glyphs"); })});
}

// By the window's own image: a grab would paint it anew and hide a picture that stayed.
TEST_F(MainWindowTest, AnOpenThatFailedLeavesNoOldPicture) {
    const MString broken = Home().Write("broken.sm", "no font at all");
    CopyIcon("broken.png");
    const auto isBlank = [](QWidget& window) {
        const QImage image = Shown(window);
        const QColor ground = image.pixelColor(image.width() / 2, image.height() - 2);
        for (int y = image.height() / 4; y < image.height(); y += 3) {
            for (int x = 0; x < image.width(); x += 3)
                if (image.pixelColor(x, y) != ground) return false;
        }
        return true;
    };
    Run({}, {Key(Qt::Key_F2), AddCharacters("100"), Look([&](QWidget& window) {
                 QTest::qWait(50);
                 EXPECT_FALSE(isBlank(window));
             }),
             Key(Qt::Key_O, Qt::ControlModifier), ChooseFile("Open Font", broken), Look([&](QWidget& window) {
                 EXPECT_TRUE(QTest::qWaitFor([&] { return isBlank(window); }, 2000));
                 EXPECT_EQ(window.windowTitle().toStdString(), "Lettrino - 0 Glyphs");
             })});
}

TEST_F(MainWindowTest, OpensWhereItWasLeft) {
    // What the desktop says of a window comes a little later.
    constexpr int soon = 200;
    constexpr QRect place(40, 50, 340, 280);
    QRect left;
    Run({}, {Look([&](QWidget& window) {
            QTest::qWait(soon);
            window.setGeometry(place);
            EXPECT_TRUE(QTest::qWaitFor([&] { return window.geometry() == place; }));
            QTest::qWait(soon);
            left = window.frameGeometry();
        })});
    for (int i = 0; i < 2; ++i) {
        Run({}, {Look([&](QWidget& window) {
                QTest::qWait(soon);
                EXPECT_TRUE(QTest::qWaitFor([&] { return window.frameGeometry() == left; }));
            })});
    }
}
