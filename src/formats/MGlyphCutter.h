// Cuts glyphs out of the picture of a font that is being read. Shared by the readers whose records are
// rectangles of one picture.
#pragma once

#include "document/MColourFont.h"

#include <cstdint>

// A glyph as a file tells it, in pixels of the picture that the file was written for.
struct MGlyphRecord {
    std::uint32_t character;
    std::int32_t x;
    std::int32_t y;
    std::int32_t width;
    std::int32_t height;
    std::int32_t spacingBefore;
    std::int32_t spacingAfter;
};

class MGlyphCutter {
public:
    // For a picture that has another size than the file tells: x, width and spacings follow the one factor, y
    // and height the other, truncated toward zero.
    float horizontalScale = 1.0F;
    float verticalScale = 1.0F;

    // `source` is valid, of any format, and outlives the cutter.
    explicit MGlyphCutter(const MPicture& source);

    // Scales the record and gives the font a glyph of it, in the place of an earlier one of the same character.
    // A rectangle outside the picture wraps around. With no slot left the record is dropped. A glyph too large
    // for what memory the readers allow themselves keeps its numbers and has no picture.
    void Cut(MColourFont& font, MGlyphRecord record);

private:
    const MPicture& picture;
    std::uint64_t bytesLeft;  // for the pictures of all glyphs together
    std::uint64_t pixelsLeft; // the same in pixels, before the spare ones are asked for

    bool TakePixels(std::uint64_t count);

    void CopyPixels(MGlyph& glyph, std::int32_t left, std::int32_t top) const;
};
