#include "editors/views/MFocusArea.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QPainter>

namespace {

class MAccessibleArea : public QAccessibleWidget {
public:
    explicit MAccessibleArea(MFocusArea& shown) : QAccessibleWidget(&shown), area(shown) {}

    // Given to the area after it was first asked for.
    QAccessible::Role role() const override { return area.role; }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value && area.value ? area.value() : QAccessibleWidget::text(kind);
    }
    QAccessible::State state() const override {
        QAccessible::State all = QAccessibleWidget::state();
        all.checkable = area.checked != nullptr;
        all.checked = area.checked && area.checked();
        return all;
    }

private:
    MFocusArea& area;
};

QAccessibleInterface* InterfaceOf(const QString&, QObject* object) {
    auto* const area = dynamic_cast<MFocusArea*>(object);
    return area ? new MAccessibleArea(*area) : nullptr;
}

} // namespace

void MFocusArea::TellChange() {
    QAccessibleValueChangeEvent shown(this, value ? value() : QString());
    QAccessible::updateAccessibility(&shown);
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent state(this, changed);
    if (checked) QAccessible::updateAccessibility(&state);
}

MFocusArea::MFocusArea(const QString& name) {
    static const bool installed = (QAccessible::installFactory(InterfaceOf), true);
    static_cast<void>(installed);
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void MFocusArea::keyPressEvent(QKeyEvent* event) {
    if (!onKey || !onKey(*event)) QWidget::keyPressEvent(event);
}

bool MFocusArea::event(QEvent* event) {
    if (event->type() == QEvent::FocusIn) setAttribute(Qt::WA_InputMethodEnabled, onText != nullptr);
    return QWidget::event(event);
}

void MFocusArea::inputMethodEvent(QInputMethodEvent* event) {
    if (onText) onText(event->commitString());
    event->accept();
}

void MFocusArea::paintEvent(QPaintEvent*) {
    if (!hasFocus()) return;
    // Two colours, of which one stands out on whatever lies below.
    constexpr int thickness = 2;
    const QRect place = frame ? frame() : rect();
    QPainter painter(this);
    painter.setPen(
        QPen(palette().color(QPalette::Highlight), thickness, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(place.adjusted(1, 1, -1, -1));
    painter.setPen(palette().color(QPalette::Base));
    painter.drawRect(place.adjusted(thickness, thickness, -thickness - 1, -thickness - 1));
}
