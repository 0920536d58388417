// The main window: the menu, and below it nothing but the preview of the font.
#pragma once

#include "platform/qt/MClientArea.h"
#include "shell/Menu.h"

#include <QMainWindow>
#include <QTimer>

// The client area, in which the preview is painted.
class MPreviewWidget : public QWidget {
public:
    MPreviewWidget();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    MClientArea client;
    QTimer resized; // the size has stood for a moment
};

class MMainWindow : public QMainWindow {
public:
    // Opens with its frame at this place on the virtual screen.
    MMainWindow(const QString& title, const QRect& frame);

    Desktop::WindowHandle Handle() { return HandleOf(&preview); }

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    MPreviewWidget preview;
    const QRect wanted; // where the frame shall be when the window opens

    void BuildMenus();
    void Run(CommandId command);
    void LeaveRoomForFrame();
};
