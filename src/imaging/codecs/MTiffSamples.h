// TIFF samples of the kinds that no picture format holds as they are, and libtiff does not render, or not
// whole.
#pragma once

#include "imaging/MColour.h"

#include <cstddef>
#include <cstdint>

enum class MTiffAlpha { None, Straight, Premultiplied };

struct MTiffSamples {
    std::uint16_t bits = 8;
    std::uint16_t count = 1; // for each pixel
    bool floats = false;     // IEEE 754, otherwise unsigned
    bool rgb = false;        // otherwise grey
    bool inks = false;       // cyan, magenta, yellow and black; `rgb` and `alpha` mean nothing then
    bool whiteIsZero = false;
    MTiffAlpha alpha = MTiffAlpha::None; // of the last sample
};

// Format 7 for floats of 16 and 32 bits; of 16-bit numbers, format 8 for grey with alpha and for premultiplied
// colours, and format 5 for inks. None for all other kinds.
MPixelFormat ConvertedFormat(const MTiffSamples& kind);

// `width` pixels of such a kind, in the byte order of the machine. Floats count from 0 to 1, as those of the
// pictures do, so that a file looks the same with channels of 16 and of 32 bits: what lies outside gives the
// nearer end, what is not a number gives 0.
void ConvertRow(const MTiffSamples& kind, const std::uint8_t* from, std::size_t width, std::uint8_t* to);
