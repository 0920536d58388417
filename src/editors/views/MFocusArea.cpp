#include "editors/views/MFocusArea.h"

#include <QKeyEvent>
#include <QPainter>

MFocusArea::MFocusArea(const QString& name) {
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void MFocusArea::keyPressEvent(QKeyEvent* event) {
    if (!onKey || !onKey(*event)) QWidget::keyPressEvent(event);
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
