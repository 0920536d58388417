// The kerning editor without its window: what its controls show, and what each change of them does. It changes
// the font's pairs in place. The view tells what the user did, and afterwards shows whatever stands here.
#pragma once

#include "editors/MKerningLines.h"
#include "editors/PreviewArea.h"
#include "glyphs/MWindowSurface.h"

#include <cstdint>
#include <vector>

// Where the two glyphs of a pair stand, in the dialog's client coordinates.
struct MPairPreview {
    std::int32_t LeftX = 0;
    std::int32_t RightX = 0;
    std::int32_t Y = 0; // of both
};

class MKerningEditor {
public:
    MColourFont& Font; // not owned
    // Where the preview is drawn; nothing is drawn on no window.
    Desktop::WindowHandle Window = nullptr;
    Desktop::Rect Area;
    MWindowSurface Surface; // of the preview, until the dialog closes
    // Changes of the controls are the user's. The view clears it while it fills the controls itself; changes of
    // fields and of the selection are ignored then.
    bool updating = true;
    std::vector<MKerningPair> Backup;
    std::int32_t MouseX = 0; // where the last press or move was

    // The controls.
    MKerningLines Lines;
    std::int32_t Position = -1; // the selected line, -1 for none
    std::int32_t Fillings = 0;  // how often the list was filled
    MString Left;
    MString Right;
    MString Amount;

    // Makes the backup, fills the list and shows the first pair, undrawn.
    explicit MKerningEditor(MColourFont& font);

    // The preview's place: left of the list, from the top of the field of the left character to the list's
    // bottom.
    static Desktop::Rect AreaBeside(const Desktop::Rect& list, const Desktop::Rect& leftField);
    // `glyph` is the left one. Its height and its spacing before serve for the right one as well.
    static MPairPreview LayOutPair(const Desktop::Rect& area, float scale, const MGlyph& glyph,
                                   std::int32_t amount);

    // Fills the fields, selects the line, and draws. `pair` is one of the font's.
    void Show(const MKerningPair& pair);
    // The window is being painted: the pair at the selected position, or the notice that there is none.
    void Paint();

    void SelectionChanged(std::int32_t position);
    // Any field, with the text that it has now. An empty character field names "?". The pair that the two name
    // is shown, and is added first, with amount 0, if the font has none. Characters below 33 name nothing.
    void LeftChanged(const MString& text);
    void RightChanged(const MString& text);
    void AmountChanged(const MString& text);

    void MousePressed(MPoint point); // the left button
    // With the left button held. Changes the amount of the selected pair by the scale times the way moved. What
    // the controls and the preview show stays behind, until the pair is shown again.
    void MouseMoved(MPoint point);

    // Both leave the preview and the fields as they were, and no line selected.
    void Generate();
    void Clear();
    void Ok() { Surface.Release(); }
    // Puts back the pairs of the opening, in their order.
    void Cancel();

private:
    MKerningPair* SelectedPair() const;
    void FillList();
    void ShowNamed();
    bool Begin();
    void DrawPreview(const MKerningPair& pair);
};
