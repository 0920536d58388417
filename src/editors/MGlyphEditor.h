// The glyph editor without its window: what its controls show, and what each change of them does. It changes
// the font in place. The view tells what the user did, and afterwards shows whatever stands here.
#pragma once

#include "editors/GlyphPreview.h"

#include <cstdint>
#include <vector>

class MGlyphEditor {
public:
    MColourFont& Font; // not owned
    // Where the preview is drawn; nothing is drawn on no window.
    Desktop::WindowHandle Window = nullptr;
    Desktop::Rect Area;
    // Changes of the controls are the user's. The view clears it while it fills the controls itself; changes of
    // fields and of the selection are ignored then.
    bool updating = true;

    struct Spacing {
        std::int32_t Before;
        std::int32_t After;
    };
    std::vector<Spacing> Backup; // of the glyphs, by their position at opening
    std::int32_t SpaceWidthBackup;
    std::int32_t BaselineBackup;
    std::int32_t CapHeightBackup;

    // The controls.
    std::vector<char16_t> Lines; // the list: one character for each glyph, in the order of the slots
    std::int32_t Position = -1;  // the selected line, -1 for none
    std::int32_t Fillings = 0;   // how often the list was filled
    MString Character;
    MString Unicode;
    MString Resolution;
    MString SpacingBefore;
    MString SpacingAfter;
    MString Baseline;
    MString CapHeight;
    MString SpaceWidth;

    // Makes the backup, fills the list and shows the first glyph, undrawn.
    explicit MGlyphEditor(MColourFont& font);

    // The preview's place: left of the list and as high as it; `group` is the box of the glyph's fields.
    static Desktop::Rect AreaBeside(const Desktop::Rect& list, const Desktop::Rect& group);

    // Fills the fields, selects the line, and draws. Nothing happens if the font has no such glyph.
    void Show(char16_t character);
    // Of the glyph in the character field; nothing if there is none or it can't be seen.
    void DrawPreview();

    void SelectionChanged(std::int32_t position);
    // Any field, with the text that it has now. A text of exactly one character shows that glyph; the spacings
    // go to the glyph in the character field, the other numbers to the font.
    void CharacterChanged(const MString& text);
    void SpacingBeforeChanged(const MString& text);
    void SpacingAfterChanged(const MString& text);
    void BaselineChanged(const MString& text);
    void CapHeightChanged(const MString& text);
    void SpaceWidthChanged(const MString& text);

    // A press or a move in the dialog with these buttons held; with both, the right one decides.
    void Mouse(MPoint point, bool leftButton, bool rightButton);

    // Removes the glyph in the character field with its kerning; an empty field names "?".
    void DeleteGlyph();
    // Puts back the spacings by position, and the metrics. A deleted glyph doesn't come back, so the glyphs
    // behind it get their neighbours' spacings.
    void Cancel();

private:
    MGlyph* NamedGlyph() const;
    void FillList();
    void ChangeSpacing(std::int32_t MGlyph::*spacing, const MString& text);
};
