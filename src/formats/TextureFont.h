// By what texture fonts are recognised. Reading and writing them are MColourFont::Load and Save.
#pragma once

#include "formats/MTextFile.h"

// Reads the first line of a file that was opened for reading. False if there is none, or if it does not begin
// with the two words of the header; the version behind them doesn't matter.
bool ReadTextureFontHeader(MTextFile& file);
