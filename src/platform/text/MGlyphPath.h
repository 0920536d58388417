// Outlines of a face as paths of Cairo.
#pragma once

#include "platform/text/MOpenFace.h"

struct _cairo;

// Adds the glyph's outline to the current path, in font units with y upwards. `embolden` makes it heavier where
// the font mapper asked for that. False if the face has no outline for it.
bool AddGlyphPath(_cairo* context, const MOpenFace& face, std::uint32_t glyph, bool embolden);
