// Rectangles and plain text drawn off-screen as a Windows desktop draws its own text, and shown in a window in
// one go. The size of a text is the height of a cell of the font, as that of a plain glyph is, and not of its
// em; and like there no other font steps in for what a face lacks.
//
// Coordinates are those of the surface, whose corner is the left and top of `area`.
#pragma once

#include "foundation/MString.h"
#include "glyphs/MSurfaceBitmap.h"
#include "imaging/MColour.h"
#include "platform/Desktop.h"
#include "platform/text/MSizedFont.h"

#include <cstdint>
#include <memory>
#include <string_view>

// What a font was made for.
struct MGdiFontKey {
    MString family;
    std::int32_t size = 0; // pixels of a cell
    std::int32_t weight = 0;
    bool italic = false;
};

class MGdiSurface {
public:
    bool valid = false;
    Desktop::WindowHandle window = nullptr; // not owned
    Desktop::Rect area;                     // the part of the window that is covered
    std::unique_ptr<MSurfaceBitmap> bitmap; // its alpha means nothing
    std::unique_ptr<MSizedFont> font;       // the last one used
    MGdiFontKey fontKey;                    // of `font`

    // Not valid for an empty rectangle and without memory; every operation then does nothing.
    MGdiSurface(Desktop::WindowHandle owner, const Desktop::Rect& rectangle);

    void FillRectangle(const Desktop::Rect& rectangle, const MColour& colour);
    // Cut at the rectangle. Alignment 0 centres the text, 1 puts it at the right, anything else at the left; a
    // text of one line also in the middle, at the bottom, or at the top, and one of several always at the top.
    // An empty family is "MS Shell Dlg", a size not above 0 is 12, a weight not above 0 is 400.
    void DrawText(const Desktop::Rect& rectangle, const MString& text, const MString& family, float size,
                  std::int32_t weight, bool italic, const MColour& colour, std::int32_t alignment);
    void Present() const;

private:
    bool TakeFont(MGdiFontKey key);
    void DrawLine(std::u16string_view line, const Desktop::Rect& rectangle, std::int64_t top,
                  const MColour& colour, std::int32_t alignment);
};
