#include "editors/MGlyphEditor.h"

#include "document/MSettings.h"
#include "editors/FieldText.h"
#include "glyphs/MWindowSurface.h"

namespace {

// Here an empty field shows 0 as well.
void Write(MString& text, std::int32_t value) {
    if (text.IsEmpty()) text = MString(value);
    ShowNumber(text, value);
}

} // namespace

MGlyphEditor::MGlyphEditor(MColourFont& font)
    : Font(font), SpaceWidthBackup(font.SpaceWidth), BaselineBackup(font.Baseline),
      CapHeightBackup(font.CapHeight) {
    for (const auto& slot : Font.Glyphs) {
        if (slot) Backup.push_back({slot->SpacingBefore, slot->SpacingAfter});
    }
    FillList();
    SelectionChanged(0);
}

Desktop::Rect MGlyphEditor::AreaBeside(const Desktop::Rect& list, const Desktop::Rect& group) {
    return {list.top, list.top, list.left - group.top, list.bottom};
}

MGlyph* MGlyphEditor::NamedGlyph() const {
    return Font.GetGlyph(FieldCharacter(Character));
}

void MGlyphEditor::FillList() {
    Lines.clear();
    for (const auto& slot : Font.Glyphs) {
        if (slot) Lines.push_back(slot->Character);
    }
    Position = -1;
    ++Fillings;
}

void MGlyphEditor::Show(char16_t character) {
    const MGlyph* const glyph = Font.GetGlyph(character);
    if (!glyph) return;
    Character = CharacterText(character);
    Unicode = MString(character);
    Resolution = MString(glyph->Width) + " x " + MString(glyph->Height);
    Write(SpacingBefore, glyph->SpacingBefore);
    Write(SpacingAfter, glyph->SpacingAfter);
    Write(Baseline, Font.Baseline);
    Write(CapHeight, Font.CapHeight);
    Write(SpaceWidth, Font.SpaceWidth);
    Position = Font.GetGlyphIndex(character);
    DrawPreview();
}

void MGlyphEditor::DrawPreview() {
    const MGlyph* const glyph = NamedGlyph();
    const float scale = PreviewScale(Area, Font);
    if (!IsVisible(glyph) || !(scale > 0)) return;
    MWindowSurface window;
    if (!window.Bind(Window, Area) || !window.surface->Begin()) return;
    MDirect2DSurface& surface = *window.surface;
    surface.Clear(Settings->BackgroundColour);
    const MGlyphPreview preview = LayOutGlyph(Area, scale, *glyph, Font);
    DrawScaledGlyph(surface, glyph, scale, preview.X, preview.Y);

    const auto line = [&](std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1) {
        surface.DrawLine({static_cast<float>(x0), static_cast<float>(y0)},
                         {static_cast<float>(x1), static_cast<float>(y1)}, 1.0F, GuideColour, true);
    };
    for (const std::int32_t x : {preview.LeftGuide, preview.RightGuide}) {
        if (x > Area.left && x < Area.right) line(x, Area.top, x, Area.bottom);
    }
    for (const std::int32_t y : {preview.BaselineGuide, preview.CapHeightGuide}) {
        if (y > Area.top && y < Area.bottom) line(Area.left, y, Area.right, y);
    }
    surface.End();
}

void MGlyphEditor::SelectionChanged(std::int32_t position) {
    if (!updating) return;
    const MGlyph* const glyph = Font.GetGlyphByIndex(static_cast<std::uint32_t>(position));
    Position = glyph ? position : -1;
    if (glyph) Show(glyph->Character);
}

void MGlyphEditor::CharacterChanged(const MString& text) {
    if (!updating) return;
    Character = text;
    if (text.Length() == 1) Show(text.GetChar(0));
}

void MGlyphEditor::ChangeSpacing(std::int32_t MGlyph::*spacing, const MString& text) {
    MGlyph* const glyph = NamedGlyph();
    const std::int32_t value = FieldNumber(text);
    if (!glyph || glyph->*spacing == value) return;
    glyph->*spacing = value;
    DrawPreview();
}

void MGlyphEditor::SpacingBeforeChanged(const MString& text) {
    if (!updating) return;
    SpacingBefore = text;
    ChangeSpacing(&MGlyph::SpacingBefore, text);
}

void MGlyphEditor::SpacingAfterChanged(const MString& text) {
    if (!updating) return;
    SpacingAfter = text;
    ChangeSpacing(&MGlyph::SpacingAfter, text);
}

void MGlyphEditor::BaselineChanged(const MString& text) {
    if (!updating) return;
    Baseline = text;
    Font.Baseline = FieldNumber(text);
    DrawPreview();
}

void MGlyphEditor::CapHeightChanged(const MString& text) {
    if (!updating) return;
    CapHeight = text;
    Font.CapHeight = FieldNumber(text);
    DrawPreview();
}

void MGlyphEditor::SpaceWidthChanged(const MString& text) {
    if (!updating) return;
    SpaceWidth = text;
    Font.SpaceWidth = FieldNumber(text);
}

void MGlyphEditor::Mouse(MPoint point, bool leftButton, bool rightButton) {
    if (!leftButton && !rightButton) return;
    MGlyph* const glyph = NamedGlyph();
    const float scale = PreviewScale(Area, Font);
    if (!glyph || !(scale > 0) || !IsStrictlyInside(Area, point)) return;
    const MDraggedGuide dragged = DragGuide(Area, scale, *glyph, Font, point, rightButton);
    switch (dragged.Guide) {
    case MGuide::SpacingBefore: glyph->SpacingBefore = dragged.Value; break;
    case MGuide::SpacingAfter: glyph->SpacingAfter = dragged.Value; break;
    case MGuide::Baseline: Font.Baseline = dragged.Value; break;
    case MGuide::CapHeight: Font.CapHeight = dragged.Value; break;
    }
    Show(glyph->Character);
}

void MGlyphEditor::DeleteGlyph() {
    Font.RemoveGlyph(FieldCharacter(Character));
    const std::int32_t position = Position < Font.GlyphCount() - 2 ? Position : 0;
    FillList();
    SelectionChanged(position);
}

void MGlyphEditor::Cancel() {
    for (std::size_t i = 0; i < Backup.size(); ++i) {
        MGlyph* const glyph = Font.GetGlyphByIndex(static_cast<std::uint32_t>(i));
        if (!glyph) break;
        glyph->SpacingBefore = Backup[i].Before;
        glyph->SpacingAfter = Backup[i].After;
    }
    Font.SpaceWidth = SpaceWidthBackup;
    Font.Baseline = BaselineBackup;
    Font.CapHeight = CapHeightBackup;
}
