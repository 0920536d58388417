// Gradients of colour glyphs as sources of Cairo.
#pragma once

#include "imaging/MColour.h"
#include "platform/text/MPaintTree.h"

#include <vector>

struct _cairo;

// A stop whose colour is known, not premultiplied.
struct MResolvedStop {
    double offset;
    double r;
    double g;
    double b;
    double a;
};

MResolvedStop Resolve(const MPaintColour& colour, MColour foreground, double offset = 0);

// Makes a solid or a gradient the source of what is filled next, in the current coordinates. `extents` is where
// that will be, in device coordinates: left, top, right, bottom. False if there is nothing to paint, as with a
// gradient whose geometry says nothing.
bool SetSource(_cairo* context, const MPaint& paint, MColour foreground, const std::array<double, 4>& extents);
