// The grid of characters on which the user marks those that are wanted: 16 columns and 14 rows with the codes
// 32 to 255, of which the first stays empty. What is marked, and the font that the characters are shown in,
// stand in the settings.
//
// Coordinates are pixels of the window.
#pragma once

#include "foundation/MString.h"
#include "glyphs/MSurfaceBitmap.h"
#include "imaging/MColour.h"
#include "platform/Desktop.h"

#include <bitset>
#include <cstdint>
#include <memory>

class MCharacterGrid {
public:
    static constexpr std::int32_t Columns = 16;
    static constexpr std::int32_t Rows = 14;
    static constexpr std::int32_t FirstCode = 33;
    static constexpr std::int32_t LastCode = 255;
    using Marks = std::bitset<LastCode + 1>; // by code

    Desktop::Rect Area;
    MColour Face{240, 240, 240}; // of the ground, the desktop's colour of buttons
    std::int32_t Cursor = 65;    // the code that the keyboard works on, 33 to 255

    // The cell of a code from 32 on, one pixel inside of its share of the area.
    Desktop::Rect Cell(std::int32_t code) const;
    // The code at a point, -1 outside of the area, whose limits belong to it. Not every result is one that
    // counts: the empty cell gives 32, the lower limit 256 and more. The right limit gives the first column of
    // the next row.
    std::int32_t HitTest(std::int32_t x, std::int32_t y) const;
    static bool Counts(std::int32_t code) { return code >= FirstCode && code <= LastCode; }
    // The ground of a marked cell: a fifth of the way from the face to white, or from a bright face to black.
    static MColour SelectedShade(const MColour& face);

    // Marks the code, or takes the mark away. True if that changed something; the grid is to be painted then.
    static bool Mark(std::int32_t code, bool wanted);
    static Marks CurrentMarks();
    // By columns and rows; stays where it is rather than leave the grid or stand on the empty cell.
    void MoveCursor(std::int32_t columns, std::int32_t rows);

    // The grid with these marks, drawn from scratch: with Colour font on in the font's colours and at an em of
    // three quarters of a cell of the grid, else plain and at that height of a cell of the font. Null without
    // memory.
    std::unique_ptr<MSurfaceBitmap> Draw(const Marks& marks) const;
    // Shows the grid in the window. Nothing without a font's name, or for an empty area. Drawn from scratch
    // only when something other than marks has changed, since many paintings follow each other while the user
    // drags.
    void Paint(Desktop::WindowHandle window);
    // Forgets what was drawn.
    void Release();

private:
    // All that a painting shows but the marks.
    struct Look {
        Desktop::Rect area;
        MColour face;
        MString family;
        std::int32_t weight = 0;
        bool italic = false;
        bool colourFont = false;
    };

    // A mark changes nothing outside of its own cell, neither when texts reach over others. So a change is a
    // cell exchanged between two pictures: what is shown, and the same with every mark reversed.
    std::unique_ptr<MSurfaceBitmap> shown;
    std::unique_ptr<MSurfaceBitmap> reversed; // drawn with the first change
    Marks shownMarks;
    Look shownLook;

    bool IsShown(const Look& look) const;
    Desktop::Rect OnSurface(const Desktop::Rect& rectangle) const;
    void Exchange(const Marks& marks);
    std::unique_ptr<MSurfaceBitmap> DrawPlain(const Marks& marks) const;
    std::unique_ptr<MSurfaceBitmap> DrawColours(const Marks& marks) const;
};
