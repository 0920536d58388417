// What characters look like from afar, by which a box on a sheet is held against the character it got.
#pragma once

#include <cstdint>

// Edges over the base line, in cap heights.
struct MSheetShape {
    float top;
    float bottom;
    bool known;
};

MSheetShape ShapeOfCharacter(char16_t character);
// Letters and digits that end flat on the base line; and that begin flat at the cap height.
bool StandsFlat(char16_t character);
bool IsFlatCapital(char16_t character);
// Whether it may be of parts that stand side by side.
bool IsOfPartsSideBySide(char16_t character);
