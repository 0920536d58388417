// One picture with many letters on it, and the text that tells which they are: from such a sheet to glyphs.
//
// It is done in two steps. FindSheetLetters looks at the picture and proposes: where the ground is, the lines
// of writing, which ink makes one letter, and which character that is. What it found is a plain record, which
// may be changed before AddSheetGlyphs makes glyphs from it.
#pragma once

#include "document/MColourFont.h"
#include "foundation/MString.h"
#include "imaging/MPicture.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What the letters stand on.
struct MSheetGround {
    bool alpha = false; // transparent; else paper
    MColour colour;     // of the paper, in the mean
    // Uneven paper: its colour at the middle of each cell, by rows; blue, green, red, 0 to 255. Empty for paper
    // of one colour.
    std::int32_t cellSize = 0;
    std::int32_t columns = 0;
    std::int32_t rows = 0;
    std::vector<std::array<float, 3>> field;
    float noise = 0;            // standard deviation of the paper, in levels
    std::int32_t threshold = 0; // what differs by more (or has more alpha) is ink
};

// Ink that touches in one row.
struct MSheetRun {
    std::int32_t y;
    std::int32_t left;
    std::int32_t right;         // exclusive
    std::uint8_t strongest = 0; // how far its ink is from the ground at most
};

// Ink that hangs together, corners included.
struct MSheetPiece {
    Desktop::Rect box;
    std::int64_t area = 0;       // pixels
    std::uint8_t strongest = 0;  // of its runs
    std::vector<MSheetRun> runs; // by rows
};

// One line of writing. The row of the picture that lies under its letters at column x is Base(x).
struct MSheetLine {
    double baseline = 0; // at column 0
    double slope = 0;    // rows for each column
    double capHeight = 0;

    double Base(double x) const { return baseline + slope * x; }
};

// What will become one glyph.
struct MSheetBox {
    Desktop::Rect box; // around its ink
    std::vector<std::uint32_t> pieces;
    std::uint32_t line = 0;
    char16_t character = 0; // 0: not known
    bool leftOut = false;   // becomes no glyph
    bool doubtful = false;  // the ink doesn't look like the character, or might be cut otherwise
    // Drawn by hand: all ink inside `box` that belongs to no other box. Of `pieces`, what lies outside of it is
    // anybody's; without any, specks count as ink too, since a drawn dot may be one.
    bool byHand = false;
};

// Fixed cells, as old games have them; the first one begins at the picture's corner.
struct MSheetGrid {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

struct MSheetWishes {
    enum class Ground : std::uint8_t { Auto, Alpha, Colour };
    Ground ground = Ground::Auto;
    MColour colour;                        // for Ground::Colour
    std::optional<MSheetGrid> grid;        // nothing: lines of writing, or a grid that is found
    Desktop::WindowHandle owner = nullptr; // of the progress window
};

struct MSheet {
    std::int32_t width = 0;
    std::int32_t height = 0;
    MSheetGround ground;
    std::vector<MSheetPiece> pieces;
    std::vector<MSheetPiece> specks; // too small or too faint for parts of letters
    std::vector<MSheetLine> lines;
    std::vector<MSheetBox> boxes;       // in reading order
    MString text;                       // without blanks
    std::vector<std::size_t> textLines; // how many characters each of its lines has
    std::optional<MSheetGrid> grid;
    double capHeight = 0; // of all lines; 0: not known
    // Why no glyphs should be made of it as it stands; empty if they may. One sentence in English for the user.
    std::string problem;
    std::int32_t doubtAt = -1; // the box where the problem is likely to be; -1: nowhere in particular
};

// `text` has the characters in reading order; blanks only separate, line breaks tell where a line of the sheet
// ends if there are as many lines of both. For an empty text the boxes get no characters. The picture may have
// any format. A picture in which no letters can be found has a `problem` and no boxes.
MSheet FindSheetLetters(const MPicture& picture, const MString& text, const MSheetWishes& wishes);

// Changes by hand. `box` and `other` are places in sheet.boxes; a place that isn't there changes nothing.
void JoinSheetBoxes(MSheet& sheet, std::size_t box, std::size_t other); // into the first of them
// Cuts at a column of the picture that was searched; a tip that reaches over it stays with its stroke. Nothing
// happens if one side would have no ink. A box drawn by hand is cut as a rectangle.
void SplitSheetBox(MSheet& sheet, std::size_t box, std::int32_t x, const MPicture& picture);
// Gives the box new edges; it then has all ink inside them that belongs to no other box.
void MoveSheetBox(MSheet& sheet, std::size_t box, const Desktop::Rect& edges);
// A box by hand, without a character, in the line that it stands on. Its place in sheet.boxes; nothing if no
// line was found on the sheet or none of the edges' inside lies on it.
std::optional<std::size_t> AddSheetBox(MSheet& sheet, const Desktop::Rect& edges);
// Measures base lines and cap height anew by the characters that the boxes have.
void MeasureSheetLetters(MSheet& sheet);
// Gives the boxes that aren't left out the characters of the text, one after the other, and measures the lines
// by them anew. `problem` tells if their numbers differ.
void NameSheetBoxes(MSheet& sheet, const MString& text);

// How much room a letter gets.
struct MSheetSpacing {
    std::int32_t before = 0; // pixels of the font; both 0: proposed from the distances on the sheet
    std::int32_t after = 0;
    bool trim = true; // of a grid: removes a cell's empty columns
};

// Makes a glyph of each box that has a character and isn't left out. `picture` is the one that was searched.
// Paper becomes transparent, and soft edges take on alpha so that the letter over its paper looks as on the
// sheet. A font that `isNew` takes glyph height, base line and cap height from the sheet; else the letters are
// scaled to the font's cap height and stand on its base line. Sorts the glyphs; the caller repacks. Why it
// failed, with the font as it was, or empty.
std::string AddSheetGlyphs(MColourFont& font, bool isNew, const MSheet& sheet, const MPicture& picture,
                           const MSheetSpacing& spacing);

// The sheet with its boxes, base lines and characters drawn in; what is in doubt is red. At most 4096 pixels
// wide and high. The picture is the caller's; invalid without memory.
MPicture DrawSheetReport(const MSheet& sheet, const MPicture& picture);
