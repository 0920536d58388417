// The painted part of a widget: what the program shows there by Desktop::Present, kept until it is painted
// over. A widget that has one is what the seam calls a window.
//
// The program counts in pixels of the screen, Qt in pixels of its own, which are larger on a screen of high
// density. The conversions are here.
#pragma once

#include "platform/Desktop.h"

#include <QImage>
#include <QPoint>
#include <QWidget>
#include <functional>

class MClientArea {
public:
    QImage image; // of the whole widget, in pixels of the screen; transparent where nothing was shown yet
    // Draws the content, by Desktop::Present. Called when the widget has another size than what was shown last,
    // or is painted again.
    std::function<void()> draw;

    // The widget must outlive it, and hand on its paint events.
    explicit MClientArea(QWidget& widget);
    MClientArea(const MClientArea&) = delete;
    MClientArea& operator=(const MClientArea&) = delete;
    ~MClientArea();

    void Paint();
    void Show(const Desktop::Rect& area, const Desktop::PaintImage& picture);

    static MClientArea* Of(Desktop::WindowHandle window); // null for a window without one

private:
    QWidget& owner;
    bool painting = false;
    bool fresh = false; // shown since the last paint event, so that this need not draw again

    void FitImage();
};

inline Desktop::WindowHandle HandleOf(QWidget* widget) {
    return reinterpret_cast<Desktop::WindowHandle>(widget);
}

inline QWidget* WidgetOf(Desktop::WindowHandle window) {
    return reinterpret_cast<QWidget*>(window);
}

// Pixels of the screen, of a rectangle or a point that is given in the widget's own.
Desktop::Rect ToScreenPixels(const QWidget& widget, const QRect& rectangle);
QPoint ToScreenPixels(const QWidget& widget, const QPointF& point);
// The smallest rectangle of the widget's own pixels that covers it.
QRect ToWidgetPixels(const QWidget& widget, const Desktop::Rect& rectangle);
