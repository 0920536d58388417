// What a colour glyph is made of, read from the font and ready to be painted. All coordinates are font units
// with y upwards.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

// Not premultiplied, 0 to 1.
struct MPaintColour {
    float r = 0;
    float g = 0;
    float b = 0;
    float a = 1;
    bool foreground = false; // the colour of the text, with its alpha times `a`
};

struct MColourStop {
    float offset = 0; // may lie outside 0 to 1
    MPaintColour colour;
};

enum class MExtend : std::uint8_t { Pad, Repeat, Reflect };

enum class MPaintKind : std::uint8_t {
    Layers,    // the children, one over the other
    Solid,     // `colour`
    Linear,    // numbers: x0, y0, x1, y1, x2, y2
    Radial,    // numbers: x0, y0, r0, x1, y1, r1
    Sweep,     // numbers: x, y, first and last angle in degrees, counter-clockwise from the right
    Glyph,     // the child, where the outline of `glyph` is
    Box,       // the child, inside numbers: left, bottom, right, top
    Transform, // the child, transformed by numbers: xx, yx, xy, yy, dx, dy
    Composite, // child 0 (the source) on child 1 (the backdrop), by `mode`
};

struct MPaint {
    MPaintKind kind = MPaintKind::Layers;
    MExtend extend = MExtend::Pad;
    std::uint8_t mode = 0;   // 0 to 27, in the order of the OpenType table COLR, CompositeMode
    std::uint16_t glyph = 0; // number in the font
    std::array<float, 6> numbers{};
    MPaintColour colour;
    std::vector<MColourStop> stops; // of gradients, by ascending offset; at least one
    std::vector<std::uint32_t> children;
};

struct MPaintTree {
    std::vector<MPaint> paints; // the first is the root; children come after their parents
};
