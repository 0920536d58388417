// One letter taken off its sheet.
#pragma once

#include "glyphs/SheetCutter.h"

// A letter alone, and where it stood.
struct MSheetLetter {
    MPicture picture;      // format 7, the caller's; invalid without memory or ink
    std::int32_t left = 0; // its place on the sheet
    std::int32_t top = 0;
};

// The letter's own ink and the soft edge around it, in the picture of format 7 that was searched; what belongs
// to other boxes is left out, paper becomes transparent. Without margins.
MSheetLetter TakeSheetLetter(const MSheet& sheet, const MPicture& picture, std::size_t box);
