// The life of the one document.
#pragma once

#include "document/MColourFont.h"

MColourFont& CurrentOrNewFont();
// An empty one in the place of the current font.
MColourFont& ReplaceCurrentFont();
void DestroyCurrentFont();

// What every edit of the glyphs ends with.
void RepackAndDraw(MColourFont& font);
