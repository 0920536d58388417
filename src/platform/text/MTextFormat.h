// Text in one family, size, weight and slant, laid out in a box: shaped by Pango, with other fonts in place of
// what the family lacks, lines broken at words, and glyphs in the font's colours if wanted.
#pragma once

#include "foundation/MString.h"
#include "imaging/MColour.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

class MGlyphPainter;
struct _cairo;
struct _PangoContext;
struct _PangoFont;
struct _PangoGlyphItem;
struct _PangoLayout;

enum class MTextAlignment : std::uint8_t { Near, Centre, Far };

struct MTextStyle {
    MString family;
    std::int32_t size = 12; // pixels of an em
    std::int32_t weight = 400;
    bool italic = false;
    MTextAlignment horizontal = MTextAlignment::Near; // of each line
    MTextAlignment vertical = MTextAlignment::Near;   // of all lines
    bool wrap = true;                                 // at the width of the box
};

struct MTextBox {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
};

class MTextFormat {
public:
    bool valid = false; // there is a font for it

    explicit MTextFormat(const MTextStyle& textStyle);
    MTextFormat(const MTextFormat&) = delete;
    MTextFormat& operator=(const MTextFormat&) = delete;
    ~MTextFormat();

    // In coordinates whose unit is the pixel with y downwards. The first baseline lies the family's ascent
    // below the top of the lines, in a whole pixel, and every line is as high as a cell of the family, also
    // where another font steps in. What doesn't fit the box stands out of it, unless `clip` is set. False if
    // there is nothing to draw with.
    bool Draw(_cairo* cairo, const MString& text, const MTextBox& box, MColour colour, bool colours,
              bool clip);
    // The advance of a text in one line, in pixels.
    double Width(const MString& text);

private:
    struct Unref {
        void operator()(void* object) const;
    };

    MTextStyle style;
    std::shared_ptr<MGlyphPainter> own;
    // Pango takes another font for the family, since it can't read files of this form (WOFF, Type 1). It then
    // lays the family's characters out as boxes of their advances, and they are drawn without its help.
    bool ownGlyphs = false;
    std::unique_ptr<_PangoContext, Unref> context;
    std::unique_ptr<_PangoLayout, Unref> layout;
    // One for each font that has come up. They stay while the format does.
    std::map<_PangoFont*, std::shared_ptr<MGlyphPainter>> painters;

    void SetOwnGlyphs(const std::string& utf8);
    void SetText(const MString& text, int width);
    MGlyphPainter& PainterOf(_PangoFont* font);
    void DrawRun(_cairo* cairo, const _PangoGlyphItem& run, double& x, double y, MColour colour, bool colours);
    void DrawLines(_cairo* cairo, const MTextBox& box, MColour colour, bool colours);
};
