// The OpenType tables COLR (versions 0 and 1) and CPAL: glyphs as layers of colour and as graphs of paints.
// Every reading is bounded: a graph that runs in a circle, is nested too deeply, has too many paints or points
// outside the table is refused as a whole.
#pragma once

#include "imaging/MColour.h"
#include "platform/text/MPaintTree.h"
#include "platform/text/MTableView.h"

#include <cstdint>
#include <optional>
#include <span>

// An entry of palette 0 of the table CPAL, with straight alpha. None if it has no such entry or is cut short.
std::optional<MColour> PaletteColour(std::span<const std::uint8_t> cpal, std::size_t entry);

class MColourTable {
public:
    static constexpr std::size_t maximumDepth = 64;
    static constexpr std::size_t maximumPaints = 16384; // of one glyph
    static constexpr std::size_t maximumStops = 65536;  // of one glyph

    bool valid = false;  // has glyphs in colour, in a version that is known
    bool graphs = false; // has the paints of version 1
    bool layers = false; // has the layers of version 0

    MColourTable() = default;
    // The bytes are not copied; they must outlive the table.
    MColourTable(std::span<const std::uint8_t> colr, std::span<const std::uint8_t> cpal);

    // The glyph's paints, from version 1 if it has them there, else its layers. None if it has neither or they
    // are refused. Palette 0; what varies is taken at its default.
    std::optional<MPaintTree> Read(std::uint16_t glyph) const;

private:
    std::span<const std::uint8_t> colours;
    std::span<const std::uint8_t> palettes;
    friend class MPaintReader;
};
