// A font at one size, for text that is set as a Windows desktop sets its plain text: whole-pixel pens, one
// glyph for each 16-bit code, no other font in place of what a face lacks, outlines as they were drawn and not
// fitted to pixels.
#pragma once

#include "foundation/MString.h"
#include "platform/text/MDrawingCredit.h"

#include <cstdint>
#include <memory>
#include <span>

class MOpenFace;

// Where a character's ink lies, in whole pixels, every touched pixel counted.
struct MInk {
    std::int32_t a = 0; // from the pen to the first column with ink; negative where it hangs out to the left
    std::int32_t b = 0; // columns with ink; 0 for a character without any
    std::int32_t c = 0; // from the last column with ink to the next pen; a + b + c is the advance
    std::int32_t above = 0; // from the baseline up to the first row with ink
    std::int32_t below = 0; // from the baseline down to the end of the last row with ink
};

// In pixels of a drawing; wide enough that no sum of a pen and an ink overflows.
struct MPixelRect {
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t right = 0;  // exclusive
    std::int64_t bottom = 0; // exclusive

    bool IsEmpty() const { return right <= left || bottom <= top; }
};

// What lies in both; empty if nothing does.
MPixelRect Intersect(const MPixelRect& first, const MPixelRect& second);

// Pixels of one row that share a coverage.
struct MSpan {
    std::int16_t x; // from the left edge of the region
    std::uint16_t length;
    std::uint8_t coverage; // 1 to 255
};
// `row` counts from the top of the region.
using MSpanSink = void (*)(std::int32_t row, std::span<const MSpan> spans, void* context);

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

    // The em becomes this many pixels, with the same limits.
    bool SetEm(std::int32_t pixels);

    // In pixels; 0 without a size.
    double Em() const { return static_cast<double>(em64) / 64; }

    // False if the font has no outline for the character, not even the box for what is missing, or one that
    // reaches further than 32767 pixels.
    bool GetInk(char16_t character, MInk& ink);

    // Tells the sink the character's coverage of the pixels of `region`, with the pen at `x` on the baseline
    // `y`. Runs without ink are not told, and no pixel is told twice; the order is open. Ink outside the region
    // costs nothing. A glyph that there is no time for is left out, and told to LostGlyphs. The region is at
    // most 32768 pixels wide and high where the ink meets it.
    void Draw(char16_t character, std::int64_t x, std::int64_t y, const MPixelRect& region, MSpanSink sink,
              void* context);

private:
    std::unique_ptr<MOpenFace> face;
    std::int32_t loaded = -1; // the character in the face's slot
    MInk loadedInk;
    MDrawingCredit credit;
    std::int64_t em64 = 0; // 64ths of a pixel

    bool SetSize(std::int64_t em); // in 64ths of a pixel
    bool Load(char16_t character);
    bool Synthesise(std::int64_t& advance);
};
