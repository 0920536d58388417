// How long the glyphs of a font may take to be drawn. A file of a few kilobytes can hold outlines of tens of
// thousands of lines and hundreds of layers over one another, for each of its characters; so every font has a
// credit of processor time, which grows with each glyph and falls by what it took. One glyph may be slow, but
// not every glyph of a font.
#pragma once

#include <cstdint>

class MDrawingCredit {
public:
    static constexpr double most = 0.5; // seconds, and what there is at first

    // What a glyph on a canvas of so many pixels adds: several times what ordinary ones take.
    static double For(double pixels);
    // Before a glyph is drawn on such a canvas. False, and the glyph is to be left out, if nothing is left.
    bool Begin(double pixels);
    // Whether the glyph has used up everything since.
    bool IsOver() const;
    // When it is drawn, or was given up.
    void End();

private:
    double credit = most;
    double began = 0;
};

// Glyphs that were left empty because they took too much time or memory, of all fonts.
namespace LostGlyphs {

void Add();
// How many since the last call.
std::int32_t Take();

} // namespace LostGlyphs
