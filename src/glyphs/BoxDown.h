// From coverage at twice the size to a glyph's pixels: a flat colour whose alpha is the average of two by two.
#pragma once

#include "imaging/MPicture.h"

#include <cstddef>
#include <cstdint>

// Rows of coverage one after another. `width` and `rows` are even.
struct MCoverageBlock {
    const std::uint8_t* data = nullptr; // not owned
    std::size_t width = 0;
    std::size_t rows = 0;
};

// Fills the picture, which is of format 7, with `colour`. Alpha is the sum of four coverages by 4, truncated,
// where the block lies (from column 0 and row `top` of the picture on) and 0 elsewhere. The block lies inside
// the picture.
void BoxDown(const MCoverageBlock& block, std::size_t top, const MColour& colour, MPicture& picture);

// Copies the first `width` columns and `height` rows of the picture over whatever lies beyond, again and again.
void RepeatCanvas(MPicture& picture, std::size_t width, std::size_t height);
