// Which pieces make one letter, and which character it is.
#pragma once

#include "glyphs/SheetCutter.h"
#include "glyphs/sheet/SheetLines.h"

// Makes the sheet's boxes from the pieces of its lines. With a text, what is open to doubt is joined as the
// text wants it, if it wants no more than that.
void MakeSheetBoxes(MSheet& sheet, const std::vector<MSheetLineOfPieces>& lines, double letterHeight);

// Gives the boxes the sheet's text, measures lines and cap height by the letters whose edges are known, and
// marks what doesn't look like its character. Tells the `problem` where the numbers differ.
void NameBoxes(MSheet& sheet);

// How unlike a box is to a character, about 0 to 1.
double SheetUnlikeness(const MSheet& sheet, const Desktop::Rect& box, std::uint32_t line, char16_t character);
