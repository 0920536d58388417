#include "editors/MKerningEditor.h"

#include "document/MKerningTable.h"
#include "document/MSettings.h"
#include "editors/FieldText.h"
#include "foundation/MNumbers.h"

MKerningEditor::MKerningEditor(MColourFont& font)
    : Font(font), Backup(font.Kerning.begin(), font.Kerning.end()) {
    FillList();
    SelectionChanged(0);
}

Desktop::Rect MKerningEditor::AreaBeside(const Desktop::Rect& list, const Desktop::Rect& leftField) {
    return {leftField.top, leftField.top, list.left - leftField.top, list.bottom};
}

MPairPreview MKerningEditor::LayOutPair(const Desktop::Rect& area, float scale, const MGlyph& glyph,
                                        std::int32_t amount) {
    // The middle is that of the area's size, though the area itself stands a little right and down of it.
    const auto cx = static_cast<float>(area.Width() / 2);
    const auto cy = static_cast<float>(area.Height() / 2);
    const std::int64_t apart = amount / 2;
    MPairPreview preview;
    preview.LeftX = ToInteger(cx - static_cast<float>(glyph.SpacingAfter + apart + glyph.Width) * scale);
    preview.RightX = ToInteger(cx + static_cast<float>(glyph.SpacingBefore + apart) * scale);
    preview.Y = ToInteger(cy - static_cast<float>(glyph.Height) * scale * 0.5F);
    return preview;
}

void MKerningEditor::FillList() {
    Lines.Fill({Font.Kerning.data, static_cast<std::size_t>(Font.Kerning.count)});
    Position = -1;
    ++Fillings;
}

MKerningPair* MKerningEditor::SelectedPair() const {
    return Position >= 0 && Position < Font.Kerning.count ? Font.Kerning.data + Position : nullptr;
}

void MKerningEditor::Show(const MKerningPair& pair) {
    Left = CharacterText(static_cast<char16_t>(pair.Left));
    Right = CharacterText(static_cast<char16_t>(pair.Right));
    ShowNumber(Amount, pair.Amount);
    Position = Lines.Find(pair.Left, pair.Right);
    DrawPreview(pair);
}

void MKerningEditor::ShowNamed() {
    const char16_t left = FieldCharacter(Left);
    const char16_t right = FieldCharacter(Right);
    if (!TakesKerning(left, right)) return;
    if (!Font.FindKerning(left, right)) {
        if (!Font.SetKerning(left, right, 0)) return;
        FillList();
    }
    Show(*Font.FindKerning(left, right));
}

// Whether there is a surface to draw on, which is begun then.
bool MKerningEditor::Begin() {
    return Surface.Bind(Window, Area) && Surface.surface->Begin();
}

void MKerningEditor::DrawPreview(const MKerningPair& pair) {
    const MGlyph* const left = Font.GetGlyph(static_cast<char16_t>(pair.Left));
    const MGlyph* const right = Font.GetGlyph(static_cast<char16_t>(pair.Right));
    const float scale = PreviewScale(Area, Font);
    if (!left || !(scale > 0) || !Begin()) return;
    MDirect2DSurface& surface = *Surface.surface;
    surface.Clear(Settings->BackgroundColour);
    const MPairPreview preview = LayOutPair(Area, scale, *left, pair.Amount);
    DrawScaledGlyph(surface, left, scale, preview.LeftX, preview.Y);
    DrawScaledGlyph(surface, right, scale, preview.RightX, preview.Y);
    const auto cx = static_cast<float>(Area.Width() / 2);
    surface.DrawLine({cx, 0}, {cx, static_cast<float>(Area.Height())}, 1.0F, GuideColour, true);
    surface.End();
}

void MKerningEditor::Paint() {
    if (const MKerningPair* const pair = SelectedPair()) {
        Show(*pair);
        return;
    }
    if (!Begin()) return;
    MDirect2DSurface& surface = *Surface.surface;
    surface.Clear(Settings->BackgroundColour);
    // White, so it is seen on a background of another colour only.
    surface.DrawText(Area, "No kerning pairs found...", MString(), 0, 0, false, {255, 255, 255, 255}, 0, 0,
                     false, true, true, true);
    surface.End();
}

void MKerningEditor::SelectionChanged(std::int32_t position) {
    if (!updating) return;
    Position = position < Lines.Count() ? position : -1;
    if (const MKerningPair* const pair = SelectedPair()) Show(*pair);
}

void MKerningEditor::LeftChanged(const MString& text) {
    if (!updating) return;
    Left = text;
    ShowNamed();
}

void MKerningEditor::RightChanged(const MString& text) {
    if (!updating) return;
    Right = text;
    ShowNamed();
}

void MKerningEditor::AmountChanged(const MString& text) {
    if (!updating) return;
    Amount = text;
    Font.ChangeKerning(FieldCharacter(Left), FieldCharacter(Right), FieldNumber(text));
    ShowNamed();
}

void MKerningEditor::MousePressed(MPoint point) {
    if (IsStrictlyInside(Area, point)) MouseX = point.x;
}

void MKerningEditor::MouseMoved(MPoint point) {
    if (!IsStrictlyInside(Area, point)) return;
    const auto way = static_cast<float>(std::int64_t{point.x} - MouseX);
    MouseX = point.x;
    const float scale = PreviewScale(Area, Font);
    MKerningPair* const pair = SelectedPair();
    if (pair && scale > 0) pair->Amount = ToInteger(static_cast<float>(pair->Amount) + scale * way);
}

void MKerningEditor::Generate() {
    Font.GenerateKerning();
    Font.SortKerningByAmount();
    FillList();
}

void MKerningEditor::Clear() {
    Font.ClearKerning();
    FillList();
}

void MKerningEditor::Cancel() {
    Font.ClearKerning();
    // As many calls of SetKerning, without their walks.
    MKerningTable table(Font);
    for (const MKerningPair& pair : Backup)
        table.Set(static_cast<std::int32_t>(pair.Left), pair.Right, pair.Amount);
    table.Store(Font);
    Surface.Release();
}
