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
#include <QScrollArea>
#include <cstdint>
#include <functional>

// A mouse event on the dialog's ground, outside of its controls.
struct MMouse {
    std::int32_t x; // pixels of the screen, from the ground's corner
    std::int32_t y;
    bool left; // down, by this press or before
    bool right;
    bool moved;      // else a button was just pressed
    bool rightPress; // which was the right one
};

// Where a layout has room to spare, as in a preview: behind `at` up to `most` units can be taken out. No control
// may begin or end among them.
struct MSpareRoom {
    int at = 0;
    int most = 0;
};

class MDialogView : public QDialog {
public:
    // The title is the product's name and " - " and `title`. The size is in dialog units. A dialog that is
    // larger than the screen loses what it has to spare, then its font is made smaller, as far as it can be
    // read, and what is too large even then is scrolled.
    MDialogView(QWidget* owner, const char* title, int width, int height, MSpareRoom spareAcross = {},
                MSpareRoom spareDown = {});

    Desktop::WindowHandle Handle() { return HandleOf(&ground); }

private:
    QScrollArea area;

protected:
    QWidget ground; // holds all controls
    MClientArea client{ground};
    QRegion painted; // what of the ground is being painted anew, for `client.draw`
    // Of every press of a button, and of moves while one is held; not on controls.
    std::function<void(const MMouse&)> onMouse;
    std::function<void()> onOk; // before the dialog ends with OK
    QPushButton ok{"OK"};       // the default button
    QPushButton cancel{"Cancel"};

    MDialogUnits Units() const { return MDialogUnits{fontMetrics()}; }
    // The largest dialog that the screen shows whole, in Qt's pixels.
    QSize Room() const;
    // That of the ground, in Qt's pixels; the dialog shows as much of it as the screen has room for.
    void SetSize(const QSize& size);
    // Puts a control there, in dialog units. A size of 0 is the one it asks for itself.
    void Place(QWidget& control, int x, int y, int width, int height);
    // A label at a place, for the control beside it, which takes its name from it for those who can't see.
    // Its underlined letter, marked by '&', leads to the control.
    QLabel* AddLabel(const QString& text, QWidget& control, int x, int y, int width, int height);
    // OK and Cancel, 45 by 14 units, with their left and top edges. To be called after all other controls were
    // placed, so that they come last when going from one to the next by keyboard.
    void AddButtons(int okX, int okY, int cancelX, int cancelY);
    // Where a control stands, in pixels of the screen from the ground's corner.
    Desktop::Rect RectOf(const QWidget& control) const;
    // Has a part of the ground painted anew, in time.
    void Repaint(const Desktop::Rect& part);

    bool eventFilter(QObject* object, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    MSpareRoom across;
    MSpareRoom down;
    int narrower = 0; // by so many units than the layout
    int lower = 0;

    void Fit(int width, int height);
    int BarExtent() const;
    // A rectangle of the layout in the ground's pixels.
    QRect ToPixels(int x, int y, int width, int height) const;
    void Tell(const QMouseEvent& event, bool moved);
};

// The number in a field, as FieldNumber reads it.
std::int32_t NumberIn(const QLineEdit& field);
// Leave the field alone if it shows just that, so that nothing is told of a change.
void Fill(QLineEdit& field, const MString& text);
void Fill(QLineEdit& field, std::int32_t number);
