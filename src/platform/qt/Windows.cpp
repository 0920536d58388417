// What the desktop knows of windows, screens and colours.

#include "foundation/Product.h"
#include "platform/Desktop.h"
#include "platform/qt/Guide.h"
#include "platform/qt/MClientArea.h"
#include "platform/qt/QtText.h"

#include <QApplication>
#include <QDesktopServices>
#include <QLockFile>
#include <QPalette>
#include <QScreen>
#include <QStandardPaths>
#include <memory>
#include <utility>

namespace Desktop {

namespace {

Rect FromQtRect(const QRect& rectangle) {
    return {rectangle.x(), rectangle.y(), rectangle.x() + rectangle.width(),
            rectangle.y() + rectangle.height()};
}

} // namespace

MString WindowTitle(WindowHandle window) {
    return window ? FromQt(WidgetOf(window)->window()->windowTitle()) : MString();
}

void SetWindowTitle(WindowHandle window, const MString& title) {
    if (window) WidgetOf(window)->window()->setWindowTitle(ToQt(title));
}

void CloseWindow(WindowHandle window) {
    if (window) WidgetOf(window)->window()->close();
}

// What is painted on it is black, so that a dark desktop's own colour would hide it.
MColour ButtonColour() {
    constexpr int darkest = 160; // a contrast of 8 to black
    QColor colour = QApplication::palette().color(QPalette::Button);
    if (qGray(colour.rgb()) < darkest) colour = QColor(240, 240, 240);
    const auto channel = [](int value) { return static_cast<std::uint8_t>(value); };
    return {channel(colour.red()), channel(colour.green()), channel(colour.blue())};
}

void OpenInBrowser(const MString& url) {
    if (QDesktopServices::openUrl(InstalledGuide(ToQt(url)))) return;
    ShowMessage(nullptr, "No browser could be started for:\n\n" + url, ProductName, Buttons::Ok, Icon::Error);
}

// Each window holds a lock of its own as long as it runs.
std::int32_t EarlierWindows() {
    constexpr std::int32_t most = 16;
    static std::unique_ptr<QLockFile> mine;
    static std::int32_t number = 0;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    for (; !mine && number < most; ++number) {
        auto lock = std::make_unique<QLockFile>(folder + "/lettrino-window-" + QString::number(number));
        lock->setStaleLockTime(0); // only that of a process which is gone
        if (lock->tryLock(0)) {
            mine = std::move(lock);
            break;
        }
        if (lock->error() != QLockFile::LockFailedError) return 0;
    }
    return mine ? number : 0;
}

Rect PrimaryScreen() {
    const QScreen* const screen = QApplication::primaryScreen();
    return screen ? Rect{0, 0, screen->geometry().width(), screen->geometry().height()} : Rect{};
}

Rect VirtualScreen() {
    const QScreen* const screen = QApplication::primaryScreen();
    return screen ? FromQtRect(screen->virtualGeometry()) : Rect{};
}

} // namespace Desktop
