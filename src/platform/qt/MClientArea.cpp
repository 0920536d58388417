#include "platform/qt/MClientArea.h"

#include <QHash>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

QHash<const QWidget*, MClientArea*>& Areas() {
    static QHash<const QWidget*, MClientArea*> areas;
    return areas;
}

} // namespace

Desktop::Rect ToScreenPixels(const QWidget& widget, const QRect& rectangle) {
    const double ratio = widget.devicePixelRatioF();
    const auto scaled = [ratio](int value) { return static_cast<std::int32_t>(std::lround(value * ratio)); };
    return {scaled(rectangle.x()), scaled(rectangle.y()), scaled(rectangle.x() + rectangle.width()),
            scaled(rectangle.y() + rectangle.height())};
}

QPoint ToScreenPixels(const QWidget& widget, const QPointF& point) {
    const double ratio = widget.devicePixelRatioF();
    return {static_cast<int>(std::floor(point.x() * ratio)), static_cast<int>(std::floor(point.y() * ratio))};
}

QRect ToWidgetPixels(const QWidget& widget, const Desktop::Rect& rectangle) {
    const double ratio = widget.devicePixelRatioF();
    const int left = static_cast<int>(std::floor(rectangle.left / ratio));
    const int top = static_cast<int>(std::floor(rectangle.top / ratio));
    const int right = static_cast<int>(std::ceil(rectangle.right / ratio));
    const int bottom = static_cast<int>(std::ceil(rectangle.bottom / ratio));
    return {left, top, right - left, bottom - top};
}

MClientArea::MClientArea(QWidget& widget) : owner(widget) {
    Areas().insert(&owner, this);
}

MClientArea::~MClientArea() {
    Areas().remove(&owner);
}

MClientArea* MClientArea::Of(Desktop::WindowHandle window) {
    return Areas().value(WidgetOf(window), nullptr);
}

void MClientArea::FitImage() {
    const Desktop::Rect client = ToScreenPixels(owner, owner.rect());
    if (image.width() != client.Width() || image.height() != client.Height()) {
        image = QImage(client.Width(), client.Height(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        fresh = false;
    }
    image.setDevicePixelRatio(owner.devicePixelRatioF());
}

void MClientArea::Paint() {
    FitImage();
    if (!fresh && draw) {
        painting = true;
        draw();
        painting = false;
    }
    fresh = false;
    QPainter(&owner).drawImage(QPointF(0, 0), image);
}

void MClientArea::Show(const Desktop::Rect& area, const Desktop::PaintImage& picture) {
    FitImage();
    const int left = std::max(area.left, 0);
    const int right = std::min(area.left + picture.width, image.width());
    const int top = std::max(area.top, 0);
    const int bottom = std::min(area.top + picture.height, image.height());
    for (int y = top; y < bottom && left < right; ++y) {
        const std::uint8_t* const from = picture.pixels +
                                         static_cast<std::ptrdiff_t>(y - area.top) * picture.stride +
                                         static_cast<std::ptrdiff_t>(left - area.left) * 4;
        auto* const to = reinterpret_cast<QRgb*>(image.scanLine(y)) + left;
        std::memcpy(to, from, static_cast<std::size_t>(right - left) * 4);
        std::for_each(to, to + (right - left), [](QRgb& pixel) { pixel |= 0xFF000000U; });
    }
    if (painting) return;
    fresh = true;
    owner.update();
}

namespace Desktop {

void Present(WindowHandle window, const Rect& area, const PaintImage& image) {
    if (MClientArea* const client = MClientArea::Of(window)) client->Show(area, image);
}

Rect ClientRect(WindowHandle window) {
    const QWidget* const widget = WidgetOf(window);
    if (!widget || widget->window()->isMinimized()) return {};
    return ToScreenPixels(*widget, widget->rect());
}

} // namespace Desktop
