// The lines of writing on a sheet.
#pragma once

#include "glyphs/SheetCutter.h"

#include <cstdint>
#include <vector>

// The height that most ink of the pieces has, near that of the capitals; 0 without pieces.
double SheetLetterHeight(const std::vector<MSheetPiece>& pieces);

struct MSheetLineOfPieces {
    MSheetLine line;
    std::vector<std::uint32_t> pieces;
};

// Lines from the top down, with the pieces of each from left to right. Letters stand side by side in a line and
// may climb or fall along it; what is small, like dots and quotes, belongs to the line in whose height it is.
std::vector<MSheetLineOfPieces> FindSheetLines(const std::vector<MSheetPiece>& pieces, double letterHeight);

// The straight line that most of the points lie near.
struct MSheetPoint {
    double x;
    double y;
};
MSheetLine FitSheetLine(const std::vector<MSheetPoint>& points, double near, std::optional<double> slope);
