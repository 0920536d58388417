// A part of a dialog's ground that can be reached by keyboard. It shows nothing of its own but a frame while it
// has the focus; the mouse is the dialog's.
#pragma once

#include <QWidget>
#include <functional>

class MFocusArea : public QWidget {
public:
    std::function<bool(const QKeyEvent&)> onKey; // whether it meant anything
    std::function<QRect()> frame;                // in the area's own pixels; without it, around the area

    explicit MFocusArea(const QString& name);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
