// The dialog that makes glyphs of a picture with many letters on it. What it found on the picture is shown in
// boxes, which are named and put right by hand; the font is not touched until OK. The view tells what the user
// did, and afterwards shows whatever stands here.
#pragma once

#include "editors/MPictureLens.h"
#include "editors/MSheetEditor.h"
#include "glyphs/MWindowSurface.h"
#include "imaging/MPicture.h"

#include <cstdint>

// What of a box the mouse takes hold of: any of its edges, or all of it.
struct MSheetGrip {
    bool left = false;
    bool top = false;
    bool right = false;
    bool bottom = false;
    bool inside = false;
};

class MAddSheet {
public:
    // Where the picture is drawn; nothing is drawn on no window.
    Desktop::WindowHandle Window = nullptr;
    Desktop::Rect Area;
    float Density = 1; // pixels of the screen for one of an ordinary one, for what is drawn over the picture

    // The controls. A number's text counts as FieldNumber reads it.
    MString Path;
    MString Text;      // the characters on the sheet in reading order; empty if they are typed box by box
    MString CellWidth; // of a sheet with fixed cells; 0 for letters that stand free
    MString CellHeight;
    bool KeepCells = false; // a cell's width becomes the glyph's
    MString SpacingBefore;  // both 0: as the letters were drawn
    MString SpacingAfter;
    MSheetWishes::Ground Ground = MSheetWishes::Ground::Auto;
    MColour GroundColour{255, 255, 255};

    MSheetEditor Editor;
    MPictureLens Lens;

    // Starts with the picture that the settings remember.
    MAddSheet();
    MAddSheet(const MAddSheet&) = delete;
    MAddSheet& operator=(const MAddSheet&) = delete;
    ~MAddSheet();

    // Has the user choose a file; true if he did.
    bool Browse();
    void PathChanged(const MString& path);
    void TextChanged(const MString& text);
    void TextDone();       // no key follows for now: all but small sheets are searched anew only here
    void ChoicesChanged(); // cells or ground: searches anew, and drops what was done by hand

    // In pixels of the dialog.
    MSheetGrip GripAt(MPoint point) const; // of the selected box
    // Selects the box that is there, or takes hold of the selected one; `join` joins it with the selected one.
    // On empty ground a new box begins.
    void Pressed(MPoint point, bool join);
    void Dragged(MPoint point);
    // Moves the selected box, or its right and lower edge, by pixels that can be seen.
    void Nudge(std::int32_t x, std::int32_t y, bool edges);
    void NudgeCut(std::int32_t x);
    void CutHere();
    void Zoom(std::int32_t steps); // about the selected box
    void Reveal();                 // the selected box

    // One line for the selected box; "Box 3 of 62: "C", 40 x 61 pixels".
    MString BoxText() const;
    // What is amiss or left to do; never empty.
    MString Notice() const;
    bool CanFinish() const;
    // Gives the glyphs to the current font. Why it failed, with the font as it was, or empty.
    std::string Finish();

    void Paint();

private:
    MPicture picture;        // of format 7, owned
    MString unread;          // why there is none
    bool unsearched = false; // the text has changed since the sheet was searched by it
    MWindowSurface surface;
    MPicture shown; // what the lens shows of the picture, owned
    Desktop::Rect shownPart;
    Desktop::Rect shownPlace;

    enum class Drag : std::uint8_t { Nothing, Cut, Box, NewBox };
    Drag drag = Drag::Nothing;
    bool dragged = false; // far enough to be meant
    MSheetGrip grip;
    MPoint pressed;       // in the dialog
    Desktop::Rect before; // the box when it was taken hold of

    void Load(Desktop::WindowHandle progressOwner);
    void Find(Desktop::WindowHandle progressOwner);
    void Forget();
    MString Trouble() const; // why no glyphs can be made; empty if they can
    std::int32_t Scaled(float size) const;
    void DrawPicture(MDirect2DSurface& on);
    void DrawLines(MDirect2DSurface& on) const;
    void DrawBox(MDirect2DSurface& on, std::size_t place) const;
    void DrawSelection(MDirect2DSurface& on) const;
};
