#include "shell/window/MMainWindow.h"

#include "foundation/MFolders.h"
#include "imaging/MFileTypes.h"
#include "platform/qt/DraggedFile.h"
#include "platform/qt/MCursors.h"
#include "platform/qt/QtText.h"
#include "shell/Commands.h"
#include "shell/Preview.h"
#include "shell/Program.h"
#include "shell/window/MMnemonics.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMenuBar>
#include <QWindow>
#include <memory>

namespace {

constexpr int settled = 150; // milliseconds without a new size, after which it counts as the last one
// The frame is the desktop's, which tells its thickness only some time after the window is shown.
constexpr int frameKnown = 100; // milliseconds
constexpr QSize smallestClient(240, 120);

// The file that is dragged. Empty while a dialog works on the font, which must not be replaced below it.
MString FileToOpen(const QMimeData& data) {
    return QApplication::activeModalWidget() ? MString() : DraggedFile(data);
}

// A picture, which the window's title describes.
class MAccessiblePreview : public QAccessibleWidget {
public:
    explicit MAccessiblePreview(QWidget& shown) : QAccessibleWidget(&shown, QAccessible::Graphic) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value || kind == QAccessible::Description
                   ? widget()->window()->windowTitle()
                   : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* InterfaceOf(const QString&, QObject* object) {
    auto* const preview = dynamic_cast<MPreviewWidget*>(object);
    return preview ? new MAccessiblePreview(*preview) : nullptr;
}

} // namespace

MPreviewWidget::MPreviewWidget() : client(*this) {
    QAccessible::installFactory(InterfaceOf);
    client.draw = [this] {
        if (resized.isActive()) {
            DrawPreviewQuickly();
        } else {
            PaintMainWindow();
        }
    };
    resized.setSingleShot(true);
    resized.setInterval(settled);
    resized.callOnTimeout(this, [this] { update(); });
    setMinimumSize(smallestClient);
    setAccessibleName(QStringLiteral("Preview of the font"));
}

void MPreviewWidget::paintEvent(QPaintEvent*) {
    client.Paint();
}

void MPreviewWidget::resizeEvent(QResizeEvent*) {
    if (IsPreviewSlow()) resized.start();
}

MMainWindow::MMainWindow(const QString& title, const QRect& frame) : wanted(frame) {
    setWindowTitle(title);
    setCentralWidget(&preview);
    // The menu bar keeps the keyboard otherwise once it was used, and letters typed later would run commands.
    preview.setFocusPolicy(Qt::StrongFocus);
    preview.setFocus();
    setAcceptDrops(true);
    BuildMenus();
    setGeometry(frame);
}

// The font is another one after most commands, also after some that failed or were cancelled, and none of them
// may leave the picture of the one before.
void MMainWindow::Run(CommandId command) {
    const MBusyCursor busy;
    RunCommand(command);
    preview.update();
}

void MMainWindow::BuildMenus() {
    MMnemonics barLetters;
    for (const Menu& menu : menus) {
        QMenu* const popup = menuBar()->addMenu(barLetters.Mark(menu.title));
        MMnemonics letters;
        for (const MenuItem& item : menu.items) {
            if (!*item.text) {
                popup->addSeparator();
                continue;
            }
            QAction* const action = popup->addAction(letters.Mark(item.text));
            action->setShortcut(QKeySequence(QString(item.key), QKeySequence::PortableText));
            // Desktops that move items by their names shall leave these where they are.
            action->setMenuRole(QAction::NoRole);
            connect(action, &QAction::triggered, this, [this, command = item.command] { Run(command); });
        }
    }
}

bool MMainWindow::event(QEvent* event) {
    const bool result = QMainWindow::event(event);
    const bool placed = event->type() == QEvent::Move || event->type() == QEvent::Resize;
    if (placed && isVisible()) {
        const QRect frame = frameGeometry();
        RecordWindowRect({frame.x(), frame.y(), frame.x() + frame.width(), frame.y() + frame.height()});
    }
    return result;
}

void MMainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    QTimer::singleShot(frameKnown, this, [this] { LeaveRoomForFrame(); });
}

// Until here the window was placed as if it had no frame.
void MMainWindow::LeaveRoomForFrame() {
    if (geometry() != wanted) return;
    const QMargins frame = windowHandle()->frameMargins();
    if (!frame.isNull()) setGeometry(wanted.marginsRemoved(frame));
}

void MMainWindow::dragEnterEvent(QDragEnterEvent* event) {
    // Others are refused while they are still held.
    const MString extension = ExtensionOf(FileToOpen(*event->mimeData()));
    if (extension.Equals("SM") || FileTypes.IsPicture(extension)) event->acceptProposedAction();
}

void MMainWindow::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    const auto open = [this, file = FileToOpen(*event->mimeData())] {
        const MBusyCursor busy;
        OpenDroppedFile(file);
        preview.update();
    };
    // What opens may ask the user, and whoever gave the file must not wait for the answer.
    QMetaObject::invokeMethod(this, open, Qt::QueuedConnection);
}

namespace Desktop {

namespace {

std::unique_ptr<MMainWindow> window;

} // namespace

WindowHandle OpenMainWindow(const MString& title, const Rect& frame) {
    window =
        std::make_unique<MMainWindow>(ToQt(title), QRect(frame.left, frame.top, frame.Width(), frame.Height()));
    window->show();
    return window->Handle();
}

int RunMessageLoop() {
    const int code = window->isVisible() ? QApplication::exec() : 0;
    window.reset();
    return code;
}

} // namespace Desktop
