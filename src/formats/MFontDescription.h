// One plain description of a font for whatever leaves the program: its metrics, and for each character where
// its ink lies and how far it moves the pen; and its pairs. Made once from the document, which it only looks
// at: the glyphs' pictures stay the font's, so a description is good until the font changes.
//
// All lengths are pixels. A line is Height rows high; its baseline lies Baseline rows above its lower edge, and
// rows are counted from its upper edge down.
#pragma once

#include "document/MColourFont.h"

#include <cstdint>
#include <span>
#include <vector>

// The smallest rectangle of a picture outside of which no alpha is above 0; all 0 without ink.
struct MInkBox {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Width = 0;
    std::int32_t Height = 0;

    bool IsEmpty() const { return Width == 0; }
    friend bool operator==(const MInkBox&, const MInkBox&) = default;
};

struct MGlyphDescription {
    char16_t Character = 0;
    const MGlyph* Glyph = nullptr; // not owned; null for the space, which has none
    MInkBox Ink;                   // in the glyph's picture, whose rows are the line's
    std::int32_t Width = 0;        // of the glyph's cell
    std::int32_t Before = 0;       // from the pen to the cell's left edge
    std::int32_t Advance = 0;      // from pen to pen
};

struct MFontDescription {
    std::int32_t Height = 0;
    std::int32_t Baseline = 0;
    std::int32_t CapHeight = 0;
    std::vector<MGlyphDescription> Glyphs; // ascending by character; the space always among them
    // Those of an amount that is not 0, both of whose characters there are; ascending by left, then right.
    std::vector<MKerningPair> Pairs;
    std::vector<MKerningPair> LostPairs; // those that name a character that there isn't

    // Null if there is none.
    const MGlyphDescription* Find(std::uint32_t character) const;
    std::int32_t AmountOf(std::uint32_t left, std::uint32_t right) const; // 0 without a pair
};

// `glyphHeight` is the font's, which the settings hold. Sums beyond 32 bits end at their limits.
MFontDescription DescribeFont(const MColourFont& font, std::int32_t glyphHeight);
