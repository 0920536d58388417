// A part of a dialog's ground that can be reached by keyboard. It shows nothing of its own but a frame while it
// has the focus; the mouse is the dialog's.
#pragma once

#include <QAccessible>
#include <QWidget>
#include <functional>

class MFocusArea : public QWidget {
public:
    std::function<bool(const QKeyEvent&)> onKey; // whether it meant anything
    // What was put together from several keys, as letters with accents are. Given once, at the start.
    std::function<void(const QString&)> onText;
    std::function<QRect()> frame; // in the area's own pixels; without it, around the area

    // What it is for those who can't see it, and what it shows now; `checked` where that is a box to be
    // checked.
    QAccessible::Role role = QAccessible::Graphic;
    std::function<QString()> value;
    std::function<bool()> checked;

    explicit MFocusArea(const QString& name);
    // What is shown is another now.
    void TellChange();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
