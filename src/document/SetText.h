// A line of text set with a colour font.
#pragma once

#include "document/MColourFont.h"

// The text on the background, opaque, as high as the highest picture of a glyph and as wide as the line: from
// the pen's start, or the first ink if that lies before it, to its end, or the last ink. The pen advances by
// the glyphs' spacings and widths, the pairs' kerning, and the space width. Characters that the font lacks take
// no room. The picture is the caller's; it is invalid if the line has no width or height, or without memory.
MPicture SetText(const MColourFont& font, const MString& text, const MColour& background);
