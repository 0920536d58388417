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

// More of them are no letters.
inline constexpr std::size_t MostSheetPieces = 4000; // a font has 223

// Box and area from the runs.
void MeasureSheetPiece(MSheetPiece& piece);
Desktop::Rect Around(const Desktop::Rect& a, const Desktop::Rect& b);
