// How far the white beside a glyph's ink reaches, row by row: what kerning by the eye is measured from.
#pragma once

#include "document/MGlyph.h"

#include <cstdint>
#include <vector>

// In pixels, from the pen position before the glyph and from the one behind it; so the spacings count, and ink
// that reaches over them gives negative numbers. Rows are those of the glyph's picture, the first one on top.
//
// A soft edge counts by its coverage: each pixel adds the light that all ink before it lets through, so a
// column of half coverage in front of a solid one makes half a pixel of white. A row that lets light through to
// its other end has white up to `far` in that share.
struct MInkProfile {
    std::vector<float> before;
    std::vector<float> behind;
    // The rows that hold ink of at least half coverage, as [top, bottom); equal for a glyph without.
    std::int32_t top = 0;
    std::int32_t bottom = 0;

    // Rows that the picture lacks or that are empty have `far` on either side.
    MInkProfile(const MGlyph& glyph, float far);

    // No row's white may exceed that of a neighbouring row by more than one pixel, so that light enters a
    // narrow counter no deeper than an eye looks into it.
    void Smooth();
};
