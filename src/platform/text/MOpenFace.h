// A face that is open for reading, with what the font mapper asks of its outlines.
#pragma once

#include "platform/text/MSystemFonts.h"

#include <cstdint>
#include <vector>

// FreeType's own, so that whoever draws text need not see its headers.
struct FT_LibraryRec_;
struct FT_FaceRec_;

// The one instance of FreeType; null if it can't be had.
FT_LibraryRec_* FreeTypeLibrary();

class MOpenFace {
public:
    FT_FaceRec_* face = nullptr; // owned; null if the file can't be opened
    // Owned where it is another one: a face whose bitmaps hide its outlines is opened once with and once
    // without them.
    FT_FaceRec_* bitmaps = nullptr;
    MFontMatch match;
    // From the baseline up and down to the edges of the cell of a line, in font units, and the units of an em.
    // The cell is that of the Windows metrics (usWinAscent and usWinDescent of the OpenType table OS/2), or of
    // the horizontal header or the bounding box where a face has none. Their sum is above 0.
    std::int32_t cellAscent = 0;
    std::int32_t cellDescent = 0;
    std::int32_t unitsPerEm = 0;

    explicit MOpenFace(const MFontMatch& fontMatch);
    MOpenFace(const MOpenFace&) = delete;
    MOpenFace& operator=(const MOpenFace&) = delete;
    ~MOpenFace();

    // The glyph of a character, 0 (the missing-glyph box) if the face lacks it. A face that is a set of symbols
    // has its characters from U+F000 on and answers to their last eight bits too.
    std::uint32_t GlyphIndex(char32_t character) const;

    // From one glyph's pen to the next, in font units.
    std::int32_t Advance(std::uint32_t glyph) const;
    // A table of the font's file; empty if it has none of this name, or not as large as it says.
    std::vector<std::uint8_t> Table(const char (&tag)[5]) const;
    bool HasTable(const char (&tag)[5]) const;

private:
    std::vector<std::uint8_t> withoutBitmaps; // the file that `face` reads then

    void OpenOutlines();
    void ApplyVariations();
    void ReadCell();
};
