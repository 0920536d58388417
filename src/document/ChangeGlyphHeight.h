// Change glyph height: what follows the dialog in which the user chose the new height.
#pragma once

#include "document/MColourFont.h"

#include <cstdint>

// The glyph height at which a font of this cap height at `oldHeight` gets capitals of 70 % of `newHeight`. Not
// limited. `capHeight` and `oldHeight` are above 0.
std::int32_t NormalisedGlyphHeight(std::int32_t capHeight, std::int32_t oldHeight, std::int32_t newHeight);

// The settings' glyph height is the new one, `oldHeight` is that of the glyphs. If the font has a cap height,
// asks whether to normalise it, which changes the new height; cancelling that puts the old one back. Scales and
// repacks where the height changed. True if it did: the caller draws.
bool ChangeGlyphHeight(MColourFont& font, std::int32_t oldHeight);
