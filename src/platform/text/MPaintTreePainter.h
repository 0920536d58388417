// Paints a colour glyph's tree with Cairo.
#pragma once

#include "imaging/MColour.h"
#include "platform/text/MDrawingCredit.h"
#include "platform/text/MOpenFace.h"
#include "platform/text/MPaintTree.h"

struct _cairo;

// In the current coordinates, which are font units with y upwards. False, with nothing painted, for a glyph
// that would cost more pixels than any real one does, or more time than there is `credit`.
bool PaintTree(_cairo* context, const MPaintTree& tree, const MOpenFace& face, MColour foreground,
               const MDrawingCredit* credit = nullptr);
