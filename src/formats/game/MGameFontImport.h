// A font that an engine loads, made into one of ours: a BMFont file of any form with its pages beside it.
//
// The rows of our cells are those of the line. A character that stands out of it, above or below, makes the
// line as much higher; a negative offset from the pen becomes a negative spacing. Where a base tells nothing,
// the baseline is measured, as always, by the empty rows under the letter "A".
#pragma once

#include "document/MColourFont.h"

#include <string>
#include <vector>

struct MGameFontImport {
    std::string Reason;             // why the font can't be opened, about "it", the file; empty if it was
    std::vector<std::string> Notes; // what of it didn't fit, one line for each kind
};

// Over the glyphs, metrics and pairs of `font`, and the settings' glyph height; with a reason, font and
// settings are as they were. At most 223 characters are taken, those of the lowest codes. The caller repacks.
MGameFontImport ImportGameFont(MColourFont& font, const MString& path);
// Whether a file of this extension, in upper case without the dot, may be one.
bool IsGameFontExtension(const MString& extension);
