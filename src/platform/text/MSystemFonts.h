// The fonts of this machine, as fontconfig knows them, and the font mapper: which face of which file stands for
// a family, a weight and a slant.
#pragma once

#include "foundation/MString.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct MSystemFace {
    MString family;
    std::int32_t weight = 400; // 1 to 1000, as OpenType counts
    bool italic = false;       // slanted in any way
    MString style;             // the face's own name for itself; may be empty
    // How its coloured glyphs are stored, in the order in which a glyph's are looked for: "COLR v1", "COLR v0",
    // "SVG", "sbix", "CBDT". Empty for a face without colours.
    std::vector<MString> colourForms;
};

// Every scalable face, once for each of its family names: a condensed face is found under the family that it
// shares with its wider sisters, and under the name that it has alone. In no order; equal entries occur.
std::vector<MSystemFace> ListSystemFaces();

// Makes the faces of a font file available until the program ends, as if they were installed. False if the file
// is not a font, or is one that would take the machine's time or memory; `reason` tells which.
bool AddFontFile(const MString& path, std::string* reason = nullptr);

// Whether a face has this family name; letter case doesn't matter.
bool IsFamilyInstalled(const MString& family);

// A face in a file, and what must be done to its outlines so that they look as was asked.
struct MFontMatch {
    std::string family;        // the face's own name
    std::int32_t weight = 400; // as it comes out
    std::string file;
    // Of the face in the file; bits 16 to 30 are the named instance, from 1, as FreeType counts.
    std::int32_t index = 0;
    std::string variations;                   // "wght=650,wdth=80": coordinates of a variable face; else empty
    bool embolden = false;                    // it has no bold, and bold was asked for
    std::array<double, 4> matrix{1, 0, 0, 1}; // xx, xy, yx, yy: slants a face that has no italic

    friend bool operator==(const MFontMatch&, const MFontMatch&) = default;
};

// An installed family gives its own nearest face, and any other name what the system puts in its place; for
// "Arial Black" that is the heaviest sans. A weight below 1 is 400. None only where there is no font at all.
std::optional<MFontMatch> MatchFont(const MString& family, std::int32_t weight, bool italic);
