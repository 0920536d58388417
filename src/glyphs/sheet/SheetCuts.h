// Letters that touch, taken apart.
#pragma once

#include "glyphs/sheet/SheetGround.h"
#include "glyphs/sheet/SheetPieces.h"

// The pieces that a piece falls into where only ink of more than `threshold` counts; the rest of its ink goes
// to the nearest of them in its row or else the nearest of all. One piece if it stays whole.
std::vector<MSheetPiece> SplitSheetPiece(const MPicture& picture, const MSheetGround& ground,
                                         const MSheetPiece& piece, std::int32_t threshold);

struct MSheetSides {
    MSheetPiece left; // without runs if there is nothing on that side
    MSheetPiece right;
};

// The sides of a cut. What reaches over the column only as the tip of a stroke stays with its stroke, and light
// ink, as a shadow's, goes with the nearest dark one.
MSheetSides CutSheetPiece(const MPicture& picture, const MSheetGround& ground, const MSheetPiece& piece,
                          std::int32_t column);
