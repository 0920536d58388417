// A font file whose glyphs are pictures, before it is bytes: what of the document goes into which glyph, and
// whether the tables can hold it.
//
// How the document maps onto the file: the em is the glyph height, so at a size of that many pixels each
// picture is drawn pixel by pixel; ascent and descent are the parts of the line above and below the baseline,
// without a gap, so a line of text is one glyph height. A glyph's picture is cut to its ink and one clear pixel
// around it, where the glyph has one: scaled, soft edges stay soft, while tiles that fill their glyph leave no
// gap. Its outline is the silhouette of it, for whatever draws no pictures, and has the picture's box, since a
// picture of the table sbix is placed by that box (github.com/MicrosoftDocs/typography-issues/issues/191).
#pragma once

#include "formats/MFontDescription.h"

#include <cstdint>
#include <string>
#include <vector>

struct MOutlinePoint {
    std::int32_t X = 0;
    std::int32_t Y = 0;
};
// In font units, y upwards; the inside on the right of the way.
using MOutline = std::vector<std::vector<MOutlinePoint>>;

// Pixels; y upwards from the baseline.
struct MGlyphBox {
    std::int32_t Left = 0;
    std::int32_t Bottom = 0;
    std::int32_t Width = 0;
    std::int32_t Height = 0;
};

struct MWebFontGlyph {
    char16_t Character = 0; // 0 for the one of missing characters
    std::int32_t Advance = 0;
    MInkBox Picture;                           // the part of the source's picture; empty without ink
    MGlyphBox Box;                             // where it stands
    const MGlyphDescription* Source = nullptr; // null for the one of missing characters
    MOutline Outline;
};

struct MWebFontPair {
    std::uint16_t Left; // glyphs
    std::uint16_t Right;
    std::int32_t Amount;
};

// All lengths are pixels but those of outlines.
struct MWebFont {
    std::u16string Family;
    std::int32_t Scale = 16; // font units of one pixel
    std::int32_t Height = 0;
    std::int32_t Ascent = 0;  // from the baseline up
    std::int32_t Descent = 0; // from the baseline down
    std::int32_t CapHeight = 0;
    std::int32_t XHeight = 0;          // 0 without an "x"
    std::vector<MWebFontGlyph> Glyphs; // the one of missing characters, then ascending by character
    std::vector<MWebFontPair> Pairs;   // ascending by left, then right
    std::vector<std::int32_t> Strikes; // heights of the sets of pictures, ascending; the font's own among them
    std::vector<std::uint32_t> LostCharacters; // that no font file maps: surrogates, U+FFFE and U+FFFF
    std::string Reason;                        // why there is no such font; empty if all is well

    std::int32_t UnitsPerEm() const { return Height * Scale; }
};

// Any text: control characters become blanks, lone surrogates U+FFFD, and a text without anything visible the
// program's name. At most 1,000 units are taken.
std::u16string CleanFamilyName(const MString& name);

// The plan looks at the description and the glyphs of the font, which must live as long. Traces the outlines.
// `strikes` are heights of smaller sets of pictures that the file shall have as well.
MWebFont PlanWebFont(const MFontDescription& font, const MString& family,
                     std::vector<std::int32_t> strikes = {});
