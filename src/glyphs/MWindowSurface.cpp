#include "glyphs/MWindowSurface.h"

bool MWindowSurface::Bind(Desktop::WindowHandle newWindow, const Desktop::Rect& newRectangle) {
    if (newRectangle.IsEmpty()) return false;
    if (surface && window == newWindow && rectangle == newRectangle) return true;
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
