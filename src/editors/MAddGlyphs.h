// The dialog in which a font is chosen: family, style, height and colour, and the characters that are wanted.
// It works on the settings and holds no copy: whatever the user changes stands there at once and stays after
// Cancel, all but the glyph height, which is taken over on OK alone.
#pragma once

#include "editors/MCharacterGrid.h"
#include "foundation/MString.h"
#include "imaging/MColour.h"
#include "platform/Desktop.h"

#include <cstdint>
#include <vector>

class MAddGlyphs {
public:
    std::vector<MString> Families;
    std::int32_t FamilyIndex = -1; // of the settings' family; -1 if it is not installed
    std::vector<MString> Styles;   // of the faces of the family; two may have one name
    std::int32_t StyleIndex = -1;  // of the settings' weight and slant, brought to those of the nearest face
    MCharacterGrid Grid;

    // Fills the lists, which may change weight and slant in the settings.
    MAddGlyphs();

    // The parts of the window that are painted, from those of its controls. The grid keeps a margin of 10
    // pixels to the window's edges and to the column of controls that begins with the list of families.
    static Desktop::Rect GridArea(const Desktop::Rect& familyList, const Desktop::Rect& cancelButton,
                                  std::int32_t margin = 10);
    static Desktop::Rect SwatchArea(const Desktop::Rect& cancelButton, const Desktop::Rect& colourLabel);
    // Shows the text colour; a press strictly inside opens the choice of colours.
    static void PaintSwatch(Desktop::WindowHandle window, const Desktop::Rect& swatch);

    // Another family starts at its face that is nearest to the regular one.
    void ChangeFamily(std::int32_t index);
    void ChangeStyle(std::int32_t index);
    static void ChangeColourFont(bool on);
    // Has the user choose the text colour. True if he did: the swatch is to be painted.
    static bool ChooseColour(Desktop::WindowHandle window);

    // A button pressed on the grid, or the mouse moved over it with a button held: the left one marks the
    // character there, the right one alone takes the mark away, and so for all on the way from the place
    // before. True if the grid is to be painted.
    bool Drag(std::int32_t x, std::int32_t y, bool leftButton, bool rightButton, bool moved = false);
    // All of the grid. True if that changed something.
    static bool MarkAll();
    // The same for the character at the cursor.
    bool ToggleAtCursor();
    // Marks all from the code where the cursor was, along its row or column, to where it is.
    void MarkPassed(std::int32_t before) const;

    // What the controls say in the end. An empty family leaves that of the settings alone.
    static void Accept(const MString& family, std::int32_t glyphHeight, bool colourFont);

private:
    std::int32_t lastX = 0; // of the mouse
    std::int32_t lastY = 0;

    void FillStyles();
};
