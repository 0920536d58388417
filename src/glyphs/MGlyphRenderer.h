// Makes glyphs out of the characters of an installed font. It lives for one run and is asked character by
// character.
//
// Every glyph is drawn at twice its size and averaged down. The glyph height of the settings is not a size of
// the font: it is the cell height of the reference family "Arial Black", and any other family is scaled until
// its "Ij" is as tall as that of the reference. So all families come out equally tall, and every glyph exactly
// as high as the glyph height.
//
// With Colour font off a glyph is the text colour with the coverage as alpha. With it on the font's own colours
// are drawn, through a surface, and what the font doesn't colour stays white. The widths come from the outlines
// either way, but for a character that has none.
//
// The canvas on which glyphs are drawn, three heights wide and four and a half high, exists only as a rule for
// what is cut off: just the pixels that carry ink are ever made. What lies beyond its right edge wraps around,
// as in any picture.
#pragma once

#include "document/MGlyph.h"
#include "glyphs/MBoxSums.h"
#include "glyphs/MDirect2DSurface.h"
#include "platform/Desktop.h"
#include "platform/text/MSizedFont.h"

#include <cstdint>
#include <memory>

class MGlyphRenderer {
public:
    std::int32_t scale = 2; // canvas pixels to a glyph's pixel
    std::int32_t canvasWidth = 0;
    std::int32_t canvasHeight = 0;
    Desktop::WindowHandle owner = nullptr;
    std::unique_ptr<MSizedFont> font;
    std::unique_ptr<MSurfaceBitmap> bitmap;    // these two for colour fonts only
    std::unique_ptr<MDirect2DSurface> surface; // on the bitmap
    float colourSizeFactor = 1.0F;
    bool ready = false;
    std::int32_t fontHeight = 0;     // cell height of the family, at the glyph's size
    std::int32_t verticalOffset = 0; // from the canvas top to the top of the cell, in canvas pixels

    // For the family, weight and slant of the settings. Not ready if the canvas would have no size or be larger
    // than memory, or if there is no font.
    explicit MGlyphRenderer(Desktop::WindowHandle ownerWindow);

    // Null if the font can't tell the character's widths, or if its ink would be at most one pixel wide.
    std::unique_ptr<MGlyph> RenderGlyph(char16_t character);

    // An em of the face in pixels of a glyph: of its colours, where these are drawn.
    double EmPixels() const;

private:
    // First and last canvas row with ink; both -1 without any.
    struct Rows {
        std::int32_t top = -1;
        std::int32_t bottom = -1;

        std::int32_t Extent() const { return bottom - top + 1; }
    };

    MBoxSums sums; // kept for its memory
    // The family has no plain "Ij" to be sized by, so its widths are those of the size at which its colours are
    // drawn.
    bool widthsAtColourSize = false;

    bool Measure();
    Rows MeasureReference() const;
    Rows MeasureFont(MSizedFont& sized) const;
    Rows MeasureColours();
    Desktop::Rect MeasureRectangle() const;
    float ColourSize() const; // pixels of an em on the canvas
    void DrawText(const MString& text, const Desktop::Rect& rectangle, float size);
    bool GetColourInk(char16_t character, MInk& ink);
    void DrawColours(char16_t character, const MInk& ink, MGlyph& glyph);
    void DrawPlain(char16_t character, const MInk& ink, MGlyph& glyph);
};
