#include "editors/views/MDialogView.h"

#include "editors/FieldText.h"
#include "foundation/Product.h"
#include "platform/qt/QtText.h"

#include <QMouseEvent>
#include <QScreen>

namespace {

constexpr double smallestFont = 6.5; // points

// Room for the title bar and what the desktop keeps at its edges.
constexpr int frame = 48;

} // namespace

MDialogView::MDialogView(QWidget* owner, const char* title, int width, int height)
    : QDialog(owner), client(*this) {
    setWindowTitle(ToQt(ProductName) + " - " + title);
    const QSize room = screen()->availableSize() - QSize(frame, frame);
    QSize size = Units().ToPixels(0, 0, width, height).size();
    while (size.width() > room.width() || size.height() > room.height()) {
        QFont smaller = font();
        smaller.setPointSizeF(smaller.pointSizeF() - 0.5);
        if (smaller.pointSizeF() < smallestFont) break;
        setFont(smaller);
        size = Units().ToPixels(0, 0, width, height).size();
    }
    setFixedSize(size);
}

void MDialogView::Place(QWidget& control, int x, int y, int width, int height) {
    control.setParent(this);
    control.setFont(font());
    QRect place = Units().ToPixels(x, y, width, height);
    const QSize wanted = control.sizeHint();
    if (width == 0) place.setWidth(wanted.width());
    if (height == 0) place.setHeight(wanted.height());
    control.setGeometry(place);
}

QLabel* MDialogView::AddLabel(const QString& text, QWidget& control, int x, int y, int width, int height) {
    auto* const label = new QLabel(text, this);
    label->setBuddy(&control);
    if (control.accessibleName().isEmpty()) control.setAccessibleName(QString(text).remove('&'));
    Place(*label, x, y, width, height);
    return label;
}

void MDialogView::AddButtons(int okX, int okY, int cancelX, int cancelY) {
    Place(ok, okX, okY, 45, 14);
    Place(cancel, cancelX, cancelY, 45, 14);
    ok.setDefault(true);
    connect(&ok, &QPushButton::clicked, this, [this] {
        if (onOk) onOk();
        accept();
    });
    connect(&cancel, &QPushButton::clicked, this, &QDialog::reject);
}

Desktop::Rect MDialogView::RectOf(const QWidget& control) const {
    return ToScreenPixels(*this, QRect(control.mapTo(this, QPoint(0, 0)), control.size()));
}

void MDialogView::Repaint(const Desktop::Rect& area) {
    update(ToWidgetPixels(*this, area));
}

void MDialogView::paintEvent(QPaintEvent* event) {
    QDialog::paintEvent(event);
    client.Paint();
}

// With all buttons that are down, also at the press of one.
void MDialogView::Tell(const QMouseEvent& event, bool moved) {
    const QPoint at = ToScreenPixels(*this, event.position());
    const bool left = event.buttons().testFlag(Qt::LeftButton);
    const bool right = event.buttons().testFlag(Qt::RightButton);
    const bool rightPress = !moved && event.button() == Qt::RightButton;
    if (onMouse && (left || right)) onMouse({at.x(), at.y(), left, right, moved, rightPress});
}

void MDialogView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton || event->button() == Qt::RightButton) Tell(*event, false);
}

void MDialogView::mouseMoveEvent(QMouseEvent* event) {
    Tell(*event, true);
}

std::int32_t NumberIn(const QLineEdit& field) {
    return FieldNumber(FromQt(field.text()));
}

void Fill(QLineEdit& field, const MString& text) {
    if (field.text() != ToQt(text)) field.setText(ToQt(text));
}

void Fill(QLineEdit& field, std::int32_t number) {
    Fill(field, MString(number));
}
