// How many pixels the pictures of all glyphs have together.
#pragma once

#include "document/MColourFont.h"

#include <cstdint>

inline std::uint64_t GlyphPixels(const MColourFont& font) {
    std::uint64_t pixels = 0;
    for (const auto& slot : font.Glyphs) {
        if (slot && slot->Picture.IsValid())
            pixels += std::uint64_t{slot->Picture.Width} * slot->Picture.Height;
    }
    return pixels;
}
