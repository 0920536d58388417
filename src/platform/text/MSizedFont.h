// A font at one size, for text that is set as a Windows desktop sets its plain text: whole-pixel pens, one
// glyph for each 16-bit code, no other font in place of what a face lacks, outlines as they were drawn and not
// fitted to pixels.
#pragma once

#include "foundation/MString.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

class MOpenFace;

// Where a character's ink lies, in whole pixels, every touched pixel counted.
struct MInk {
    std::int32_t a = 0; // from the pen to the first column with ink; negative where it hangs out to the left
    std::int32_t b = 0; // columns with ink; 0 for a character without any
    std::int32_t c = 0; // from the last column with ink to the next pen; a + b + c is the advance
    std::int32_t above = 0; // from the baseline up to the first row with ink
    std::int32_t below = 0; // from the baseline down to the end of the last row with ink
};

struct MPixelRect {
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t right = 0;  // exclusive
    std::int64_t bottom = 0; // exclusive

    bool IsEmpty() const { return right <= left || bottom <= top; }
};

MPixelRect Intersect(const MPixelRect& first, const MPixelRect& second);

class MSizedFont {
public:
    bool valid = false;      // has outlines and a size; otherwise every operation fails
    std::int32_t ascent = 0; // from the top of the cell to the baseline, in whole pixels

    // The font that the system gives for this wish, without a size.
    MSizedFont(const MString& family, std::int32_t weight, bool italic);
    MSizedFont(const MSizedFont&) = delete;
    MSizedFont& operator=(const MSizedFont&) = delete;
    ~MSizedFont();

    // The cell of a line becomes this many pixels high. False for a height below 1, for one whose em would be
    // above 32767 pixels, and for a font without outlines.
    bool SetHeight(std::int32_t cellHeight);

    // False if the font has no outline for the character, not even the box for what is missing, or one that
    // reaches further than 32767 pixels.
    bool GetInk(char16_t character, MInk& ink);

    // The character's coverage, 0 to 255, of each pixel of `region`, row after row, with the pen at `x` on the
    // baseline `y`. Ink outside the region is left out at no cost. Valid until the next call; empty if there is
    // no ink to measure or the region is.
    std::span<const std::uint8_t> Draw(char16_t character, std::int64_t x, std::int64_t y,
                                       const MPixelRect& region);

private:
    std::unique_ptr<MOpenFace> face;
    std::int32_t loaded = -1; // the character in the face's slot
    MInk loadedInk;
    std::vector<std::uint8_t> pixels;

    bool Load(char16_t character);
    bool Synthesise(std::int64_t& advance);
};
