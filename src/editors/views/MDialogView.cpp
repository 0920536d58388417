#include "editors/views/MDialogView.h"

#include "editors/FieldText.h"
#include "foundation/Product.h"
#include "platform/qt/QtText.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QStyle>
#include <algorithm>

namespace {

constexpr double smallestFont = 6.5; // points

// Room for the title bar and what the desktop keeps at its edges.
constexpr int frame = 48;

// Of a length in units, so that it comes to at most `room` pixels, as far as there are some to spare.
int UnitsToTake(int length, double pixelsPerUnit, int room, int spare) {
    return std::clamp(length - static_cast<int>(room / pixelsPerUnit), 0, spare);
}

// Where a place of the layout is, when `taken` units are missing behind `at`.
int WithoutSpare(int place, int at, int taken) {
    return place - std::clamp(place - at, 0, taken);
}

} // namespace

MDialogView::MDialogView(QWidget* owner, const char* title, int width, int height, MSpareRoom spareAcross,
                         MSpareRoom spareDown)
    : QDialog(owner), area(this), across(spareAcross), down(spareDown) {
    setWindowTitle(ToQt(ProductName) + " - " + title);
    area.setFrameShape(QFrame::NoFrame);
    area.setFocusPolicy(Qt::NoFocus); // Tab goes through the controls alone
    ground.installEventFilter(this);
    area.setWidget(&ground);
    Fit(width, height);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now && ground.isAncestorOf(now)) area.ensureWidgetVisible(now);
    });
}

void MDialogView::Fit(int width, int height) {
    const QSize room = Room();
    QSize size;
    for (;;) {
        const MDialogUnits units = Units();
        lower = UnitsToTake(height, units.down, room.height(), down.most);
        const bool scrolled = (height - lower) * units.down > room.height();
        narrower = UnitsToTake(width, units.across, room.width() - (scrolled ? BarExtent() : 0), across.most);
        size = ToPixels(0, 0, width, height).size();
        const double points = font().pointSizeF() - 0.5;
        if ((size.width() <= room.width() && size.height() <= room.height()) || points < smallestFont) break;
        QFont smaller = font();
        smaller.setPointSizeF(points);
        setFont(smaller);
    }
    SetSize(size);
}

void MDialogView::SetSize(const QSize& size) {
    const QSize room = Room();
    ground.setFixedSize(size);
    const QSize bars(size.height() > room.height() ? BarExtent() : 0,
                     size.width() > room.width() ? BarExtent() : 0);
    setFixedSize((size + bars).boundedTo(room));
    area.setGeometry(rect());
}

QSize MDialogView::Room() const {
    return screen()->availableSize() - QSize(frame, frame);
}

int MDialogView::BarExtent() const {
    return style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &area);
}

QRect MDialogView::ToPixels(int x, int y, int width, int height) const {
    const int left = WithoutSpare(x, across.at, narrower);
    const int top = WithoutSpare(y, down.at, lower);
    return Units().ToPixels(left, top, WithoutSpare(x + width, across.at, narrower) - left,
                            WithoutSpare(y + height, down.at, lower) - top);
}

void MDialogView::Place(QWidget& control, int x, int y, int width, int height) {
    control.setParent(&ground);
    control.setFont(font());
    QRect place = ToPixels(x, y, width, height);
    const QSize wanted = control.sizeHint();
    if (width == 0) place.setWidth(wanted.width());
    if (height == 0) place.setHeight(wanted.height());
    control.setGeometry(place);
}

QLabel* MDialogView::AddLabel(const QString& text, QWidget& control, int x, int y, int width, int height) {
    auto* const label = new QLabel(text, &ground);
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
    return ToScreenPixels(ground, QRect(control.mapTo(&ground, QPoint(0, 0)), control.size()));
}

void MDialogView::Repaint(const Desktop::Rect& part) {
    ground.update(ToWidgetPixels(ground, part));
}

bool MDialogView::eventFilter(QObject* object, QEvent* event) {
    if (object != &ground || event->type() != QEvent::Paint) return QDialog::eventFilter(object, event);
    painted = static_cast<QPaintEvent*>(event)->region();
    client.Paint();
    return true;
}

// With all buttons that are down, also at the press of one. The ground hands its events on to the dialog.
void MDialogView::Tell(const QMouseEvent& event, bool moved) {
    const QPoint at = ToScreenPixels(ground, ground.mapFrom(this, event.position()));
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
