// The progress window. The program does not return to the message loop during long work, so each change lets
// the window be shown and painted before it goes on; what the user types or clicks meanwhile waits.

#include "platform/Desktop.h"
#include "platform/qt/MClientArea.h"
#include "platform/qt/MDialogUnits.h"
#include "platform/qt/QtText.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QThread>
#include <QWindow>
#include <memory>

namespace {

constexpr qint64 longestWait = 250; // milliseconds

class MProgressWindow : public QDialog {
public:
    QLabel text{this};
    QProgressBar bar{this};

    explicit MProgressWindow(QWidget* owner) : QDialog(owner, Qt::Dialog | Qt::FramelessWindowHint) {
        // Modal, so that the window behind can't be closed while its font is being worked on.
        setWindowModality(Qt::ApplicationModal);
        const MDialogUnits units{fontMetrics()};
        setFixedSize(units.ToPixels(0, 0, 300, 65).size());
        text.setGeometry(units.ToPixels(10, 10, 280, 20));
        text.setTextFormat(Qt::PlainText);
        text.setBuddy(&bar);
        bar.setGeometry(units.ToPixels(10, 40, 280, 14));
        bar.setRange(0, 100);
        bar.setAccessibleName(QStringLiteral("Progress"));
    }

    // It has no title bar, and would run into the window behind it.
    void paintEvent(QPaintEvent* event) override {
        QDialog::paintEvent(event);
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::Dark));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }

    void Refresh() {
        repaint();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }

protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
    void keyPressEvent(QKeyEvent* event) override { event->accept(); }
};

std::unique_ptr<MProgressWindow> progress;

} // namespace

namespace Desktop {

bool OpenProgress(WindowHandle owner) {
    progress = std::make_unique<MProgressWindow>(owner ? WidgetOf(owner)->window() : nullptr);
    progress->show();
    // The desktop takes a moment until it shows a window, and the work begins right after this.
    QElapsedTimer waited;
    waited.start();
    while (!progress->windowHandle()->isExposed() && waited.elapsed() < longestWait) {
        QThread::msleep(1);
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    return true;
}

void SetProgressPercent(std::int32_t percent) {
    if (!progress) return;
    progress->bar.setValue(percent);
    progress->Refresh();
}

void SetProgressText(const MString& text) {
    if (!progress) return;
    progress->text.setText(ToQt(text));
    progress->Refresh();
}

void CloseProgress() {
    progress.reset();
}

} // namespace Desktop
