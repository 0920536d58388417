#include "glyphs/MWindowSurface.h"

namespace {

bool Same(const Desktop::Rect& a, const Desktop::Rect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

} // namespace

bool MWindowSurface::Bind(Desktop::WindowHandle newWindow, const Desktop::Rect& newRectangle) {
    if (newRectangle.IsEmpty()) return false;
    if (surface && window == newWindow && Same(rectangle, newRectangle)) return true;
    Release();
    window = newWindow;
    rectangle = newRectangle;
    surface = std::make_unique<MDirect2DSurface>(window, rectangle);
    return surface->valid;
}

void MWindowSurface::Release() {
    if (!surface) return;
    surface.reset();
    rectangle = {};
    window = nullptr;
}
