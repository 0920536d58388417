// A line of text set with a colour font.
#pragma once

#include "document/MColourFont.h"

#include <cstdint>
#include <span>
#include <vector>

struct MPlacedGlyph {
    const MGlyph* glyph; // the font's
    std::int64_t x;      // of its left edge
    // Follows the glyph before it without a blank or a character that the font lacks, so that the two are
    // kerned.
    bool joined;
};

// In the font's pixels, from the pen's start.
struct MTextLine {
    std::vector<MPlacedGlyph> glyphs;
    std::int64_t left = 0;   // the pen's start, or the first ink if that lies before it
    std::int64_t right = 0;  // the pen's end, or the last ink
    std::int32_t height = 0; // of the highest picture of a glyph in the font

    std::int64_t Width() const { return right - left; }
};

// The pen advances by the glyphs' spacings and widths, by `kerning`, of which the first pair of two characters
// counts, and by the space width. Characters that the font lacks take no room.
MTextLine LayOutText(const MColourFont& font, const MString& text, std::span<const MKerningPair> kerning);
// The line on the background, opaque. The picture is the caller's; it is invalid if the line has no width or
// height, or without memory.
MPicture DrawTextLine(const MTextLine& line, const MColour& background);

// Both, with the font's own kerning.
MPicture SetText(const MColourFont& font, const MString& text, const MColour& background);
