// What all dialogs of the program share: a window laid out in dialog units by its own font, which can be
// painted on by the program between its controls, and the few ways in which dialogs read and fill their
// controls.
#pragma once

#include "foundation/MString.h"
#include "platform/qt/MClientArea.h"
#include "platform/qt/MDialogUnits.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <cstdint>
#include <functional>

// A mouse event on the dialog's own ground, outside of its controls.
struct MMouse {
    std::int32_t x; // pixels of the screen, from the dialog's corner
    std::int32_t y;
    bool left; // down, by this press or before
    bool right;
    bool moved;      // else a button was just pressed
    bool rightPress; // which was the right one
};

class MDialogView : public QDialog {
public:
    // The title is the product's name and " - " and `title`. The size is in dialog units. A font with which the
    // dialog is larger than the screen is made smaller, as far as it can be read.
    MDialogView(QWidget* owner, const char* title, int width, int height);

    Desktop::WindowHandle Handle() { return HandleOf(this); }

protected:
    MClientArea client;
    // Of every press of a button, and of moves while one is held; not on controls.
    std::function<void(const MMouse&)> onMouse;
    std::function<void()> onOk; // before the dialog ends with OK
    QPushButton ok{"OK"};       // the default button
    QPushButton cancel{"Cancel"};

    MDialogUnits Units() const { return MDialogUnits{fontMetrics()}; }
    // Puts a control there, in dialog units. A size of 0 is the one it asks for itself.
    void Place(QWidget& control, int x, int y, int width, int height);
    // A label at a place, for the control beside it, which takes its name from it for those who can't see.
    // Its underlined letter, marked by '&', leads to the control.
    QLabel* AddLabel(const QString& text, QWidget& control, int x, int y, int width, int height);
    // OK and Cancel, 45 by 14 units, with their left and top edges. To be called after all other controls were
    // placed, so that they come last when going from one to the next by keyboard.
    void AddButtons(int okX, int okY, int cancelX, int cancelY);
    // Where a control stands, in pixels of the screen from the dialog's corner.
    Desktop::Rect RectOf(const QWidget& control) const;
    // Has a part of the dialog's ground painted anew, in time.
    void Repaint(const Desktop::Rect& area);

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void Tell(const QMouseEvent& event, bool moved);
};

// The number in a field, as FieldNumber reads it.
std::int32_t NumberIn(const QLineEdit& field);
// Leave the field alone if it shows just that, so that nothing is told of a change.
void Fill(QLineEdit& field, const MString& text);
void Fill(QLineEdit& field, std::int32_t number);
