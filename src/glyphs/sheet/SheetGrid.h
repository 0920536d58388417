// Sheets of fixed cells.
#pragma once

#include "glyphs/SheetCutter.h"

// Makes one box of each cell that has ink; what reaches over cells is cut. The text's blanks stand for empty
// cells where that fits the picture, else they only separate. False, with the sheet as it was, where more than
// MostSheetPieces cells have ink.
bool UseSheetGrid(MSheet& sheet, const MSheetGrid& grid);

// The largest cells that divide the picture evenly, cut no piece, and hold as many letters as the text has
// characters. Nothing if there are none, nor if they are far larger than letters of this height.
std::optional<MSheetGrid> FindSheetGrid(const MSheet& sheet, double letterHeight);
