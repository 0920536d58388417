// Draws glyphs of one face on a Cairo image, plain or in the colours of the font.
#pragma once

#include "imaging/MColour.h"
#include "platform/text/MColourTable.h"
#include "platform/text/MDrawingCredit.h"
#include "platform/text/MOpenFace.h"
#include "platform/text/MSvgGlyphs.h"

#include <cstdint>
#include <memory>
#include <vector>

struct _cairo;

class MGlyphPainter {
public:
    MOpenFace face;

    // One painter serves all that draw with the same face at the same time.
    static std::shared_ptr<MGlyphPainter> Shared(const MFontMatch& match);

    explicit MGlyphPainter(const MFontMatch& match);

    // With the glyph's origin at (x, y) of the current coordinates, whose unit is the pixel with y downwards,
    // and an em of `em` pixels. With `colours` a glyph that the font colours comes in the font's colours, from
    // the first of these that has it: COLR version 1, COLR version 0, SVG, bitmaps. Any other is filled with
    // `colour`. A glyph that takes too much time is empty, and told to LostGlyphs.
    void Draw(_cairo* context, std::uint32_t glyph, double x, double y, double em, MColour colour,
              bool colours);

private:
    std::vector<std::uint8_t> colr;
    std::vector<std::uint8_t> cpal;
    MColourTable layers;
    std::unique_ptr<MSvgGlyphs> documents;
    bool hasBitmaps = false;
    MDrawingCredit credit;
    // The last glyph that was read, since grids and measurements ask again.
    std::uint32_t treeGlyph = UINT32_MAX;
    std::optional<MPaintTree> tree;

    const MPaintTree* TreeOf(std::uint32_t glyph);
    void DrawWhole(_cairo* context, std::uint32_t glyph, double em, MColour colour, bool colours);
    bool DrawColours(_cairo* context, std::uint32_t glyph, double em, MColour colour);
    bool SelectBitmap(std::uint32_t glyph, double em);
    bool DrawBitmap(_cairo* context, std::uint32_t glyph, double em);
};
