// Gradients that are drawn here, pixel by pixel: the sweep, which Cairo doesn't have, and the linear one, which
// it has but draws several times slower.
#pragma once

#include "platform/text/MGradients.h"

#include <array>
#include <vector>

// At least one, by ascending offset.
using MStops = std::vector<MResolvedStop>;

// The colour at a place of the line of stops, which goes on in the first and the last colour.
MResolvedStop ColourAt(const MStops& stops, double t);

// A gradient whose place t is 0 at (x, y) and grows by 1 along (dx, dy), in the coordinates of the context;
// made the source of what is filled next inside `extents`, which are device coordinates. False if there is
// nothing to paint.
struct MLinearPlace {
    double x;
    double y;
    double dx;
    double dy;
};
bool SetLinearImage(_cairo* context, const MLinearPlace& place, const MStops& stops, MExtend extend,
                    const std::array<double, 4>& extents);

// The same for one that turns around (x, y) from `start` to `end`, in degrees counter-clockwise where y is
// upwards.
bool SetSweepImage(_cairo* context, double x, double y, double start, double end, const MStops& stops,
                   MExtend extend, const std::array<double, 4>& extents);
