// The ink of a sheet as pieces that hang together.
#pragma once

#include "glyphs/SheetCutter.h"
#include "glyphs/sheet/SheetGround.h"

#include <cstdint>
#include <vector>

// All pieces of a picture of format 7 by their top rows. Nothing, if there is more ink apart than any writing
// has.
std::optional<std::vector<MSheetPiece>> FindSheetPieces(const MPicture& picture, const MSheetGround& ground,
                                                        Desktop::WindowHandle owner);

// The pieces that a piece falls into where only ink of more than `threshold` counts; the rest of its ink goes
// to the nearest of them in its row or else the nearest of all. One piece if it stays whole.
std::vector<MSheetPiece> SplitSheetPiece(const MPicture& picture, const MSheetGround& ground,
                                         const MSheetPiece& piece, std::int32_t threshold);

// Box and area from the runs.
void MeasureSheetPiece(MSheetPiece& piece);
Desktop::Rect Around(const Desktop::Rect& a, const Desktop::Rect& b);
