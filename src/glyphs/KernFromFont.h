#pragma once

#include "document/MColourFont.h"

enum class KernFromFontResult { Kerned, NoFont, NoKerning, TooSlow };

// Replaces all pairs by those of the face that the settings name, scaled to the size at which its characters
// are rendered for the settings' glyph height and rounded to whole pixels, halves away from zero; pairs that
// round to 0 are left out. Characters that the font of pictures has and the face lacks stay without. Nothing
// changes unless the result is Kerned.
KernFromFontResult KernFromFont(MColourFont& font);
