// Keeps the drawing surface of a window alive between paints, or makes one for a single paint.
#pragma once

#include "glyphs/MDirect2DSurface.h"

#include <memory>

class MWindowSurface {
public:
    Desktop::WindowHandle window = nullptr; // not owned
    Desktop::Rect rectangle;
    std::unique_ptr<MDirect2DSurface> surface; // null while nothing is bound

    MWindowSurface() = default;
    MWindowSurface(const MWindowSurface&) = delete;
    MWindowSurface& operator=(const MWindowSurface&) = delete;

    // Touches nothing if this window and rectangle are bound already. False for an empty rectangle, and if the
    // surface is not valid.
    bool Bind(Desktop::WindowHandle newWindow, const Desktop::Rect& newRectangle);
    void Release();
};
