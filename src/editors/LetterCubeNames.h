// The names dialog of the letter cubes: MSettings::LetterCubesNames in a text box of several lines.
#pragma once

#include "foundation/MString.h"

// The text of the box, whose lines end in "\n", into the settings: with "\r\n" between the lines, and at most
// 1000 units of that.
void StoreLetterCubeNames(const MString& text);
