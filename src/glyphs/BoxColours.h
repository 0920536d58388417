// From a drawing at twice the size to a glyph's pixels, colours kept.
#pragma once

#include "glyphs/MSurfaceBitmap.h"
#include "imaging/MPicture.h"

// Fills the picture, which is of format 7, from the top left of the bitmap, whose size is even: each pixel is
// the average of two by two, made straight first. Transparent ones lower the alpha and leave the colour alone,
// as in MPicture's smooth scaling, of which this is the part that a glyph needs. What lies beyond the bitmap's
// half size wraps around.
void BoxDownColours(const MSurfaceBitmap& bitmap, MPicture& picture);
