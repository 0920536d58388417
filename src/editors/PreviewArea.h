// What the previews of the glyph editor and of the kerning editor have in common.
#pragma once

#include "document/MColourFont.h"
#include "glyphs/MDirect2DSurface.h"

#include <cstdint>

// A place in a dialog, in its client coordinates.
struct MPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

// Screen pixels for one pixel of a glyph, the same for all glyphs of the font: the largest width and the
// largest height just leave 100 pixels of the area free. 0 for a font without a width or a height. There is no
// preview unless it is above 0; in an area below 100 pixels it is negative.
float PreviewScale(const Desktop::Rect& area, const MColourFont& font);

bool IsStrictlyInside(const Desktop::Rect& area, MPoint point);

// Width and height above 0, and a picture.
bool IsVisible(const MGlyph* glyph);

// The glyph scaled smoothly, its top left corner at (x, y) of the dialog. Nothing for one that is not visible.
void DrawScaledGlyph(MDirect2DSurface& surface, const MGlyph* glyph, float scale, std::int32_t x,
                     std::int32_t y);

inline constexpr MColour GuideColour{255, 0, 0, 255};
