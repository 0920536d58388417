// A sheet of letters as it is put right by hand: one box is selected, and what is done to the sheet is done to
// it and can be taken back. It knows nothing of a window.
#pragma once

#include "glyphs/SheetCutter.h"

#include <cstdint>
#include <optional>
#include <vector>

class MSheetEditor {
public:
    MSheet Sheet;
    std::int32_t Selected = -1; // the place of a box; -1 if there is none, past the last when that was named
    std::int32_t Cut = -1;      // the column where the selected box may be cut; -1 while nobody asks
    bool Edited = false;        // boxes are others than those that were found

    // Another sheet, on which the doubt, or else the first box, is selected. There is nothing to take back.
    void Use(MSheet sheet);
    // Names the boxes by a text, in their order; what was typed before goes.
    void UseText(const MString& text);

    const MSheetBox* SelectedBox() const;
    // The box at a place of the sheet, the selected one first; -1 if there is none.
    std::int32_t BoxAt(std::int32_t x, std::int32_t y) const;
    void Select(std::int32_t box);
    void Step(std::int32_t boxes);     // on in reading order, stopping at the ends
    void StepLine(std::int32_t lines); // to the nearest box of the next line up or down
    void StepToDoubt();                // the next box in doubt, or without a character, from the start again

    // Names the selected box and goes to the next that isn't left out. After the last none is selected, so that
    // a letter too many names nothing.
    void Type(char16_t character);
    // The other way: goes back, and takes the name there away.
    void Untype();
    void Join(std::int32_t other); // the selected box with another
    void LeaveOut();               // or back in
    void Move(const Desktop::Rect& edges,
              bool goesOn);               // `goesOn`: part of the change before, as while dragging
    void Add(const Desktop::Rect& edges); // and selects it
    void Undo();
    bool CanUndo() const { return !history.empty(); }

    // Where the selected box would best be cut: the column with the least ink about its middle.
    void BeginCut();
    void MoveCut(std::int32_t column);     // within the box
    void CutHere(const MPicture& picture); // the one that was searched
    void LeaveCut() { Cut = -1; }

private:
    // What a change may touch.
    struct State {
        std::vector<MSheetBox> boxes;
        std::optional<std::vector<MSheetPiece>> pieces; // of changes that cut some
        std::vector<MSheetLine> lines;
        double capHeight;
        std::string problem;
        std::int32_t doubtAt;
        std::int32_t selected;
        bool typed;
    };
    std::vector<State> history;
    bool typed = false; // a name was given by hand

    void Remember(bool pieces = false);
    void ForgetProblem(); // of a text that no longer names the boxes
    void Rename();        // after boxes were joined, cut, added or left out
};
