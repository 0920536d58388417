// From coverage at twice the size to a glyph's pixels: a flat colour whose alpha is the average of two by two.
#pragma once

#include "imaging/MPicture.h"
#include "platform/text/MSizedFont.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class MBoxSums {
public:
    std::size_t width = 0; // pixels of the glyph, half as many as are drawn
    std::size_t rows = 0;
    std::vector<std::uint16_t> sums; // of the four coverages that make a pixel

    void Clear(std::size_t newWidth, std::size_t newRows);
    // A sink for MSizedFont::Draw; `context` is the object. Spans lie inside twice its size.
    static void Add(std::int32_t row, std::span<const MSpan> spans, void* context);
    // The sums become the rows of the picture from `top` on, from column 0. Each pixel is `colour`, and its
    // alpha a quarter of its sum, truncated. The picture is of format 7, and all of it is written: the rest
    // with alpha 0.
    void Store(std::size_t top, const MColour& colour, MPicture& picture) const;
};

// Copies the first `width` columns and `height` rows of the picture over whatever lies beyond, again and again.
void RepeatCanvas(MPicture& picture, std::size_t width, std::size_t height);
