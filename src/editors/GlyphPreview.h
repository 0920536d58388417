// The formulas of the glyph editor's preview: where the glyph and its four guides stand, and what a guide means
// that is dragged. All places are in the dialog's client coordinates.
#pragma once

#include "editors/PreviewArea.h"

// A glyph in the middle of the area. The guides lie where the pen starts and ends, on the baseline, and on the
// top of the capitals; far outside if the numbers are.
struct MGlyphPreview {
    std::int32_t X = 0; // of the glyph's left edge
    std::int32_t Y = 0; // of its top
    std::int32_t LeftGuide = 0;
    std::int32_t RightGuide = 0;
    std::int32_t BaselineGuide = 0;
    std::int32_t CapHeightGuide = 0;
};

MGlyphPreview LayOutGlyph(const Desktop::Rect& area, float scale, const MGlyph& glyph, const MColourFont& font);

enum class MGuide { SpacingBefore, SpacingAfter, Baseline, CapHeight };

struct MDraggedGuide {
    MGuide Guide;
    std::int32_t Value;
};

// The mouse at a place of the area. The left button moves the guide of the half, left or right, that the mouse
// is in, the right button that of the half above or below; the guide comes to the mouse, wherever it was.
// `scale` is above 0.
MDraggedGuide DragGuide(const Desktop::Rect& area, float scale, const MGlyph& glyph, const MColourFont& font,
                        MPoint mouse, bool rightButton);
