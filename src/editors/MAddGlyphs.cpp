#include "editors/MAddGlyphs.h"

#include "document/MSettings.h"
#include "foundation/MNumbers.h"
#include "glyphs/MFontList.h"
#include "glyphs/MWindowSurface.h"

#include <algorithm>
#include <cstdlib>

MAddGlyphs::MAddGlyphs() {
    const MFontList& list = InstalledFonts();
    for (std::int32_t i = 0; i < list.count; ++i) {
        const MString& family = list.Face(i)->family;
        if (!Families.empty() && Families.back().Equals(family)) continue;
        if (FamilyIndex < 0 && family.Equals(Settings->FontName))
            FamilyIndex = static_cast<std::int32_t>(Families.size());
        Families.push_back(family);
    }
    FillStyles();
    Grid.Face = Desktop::ButtonColour();
}

void MAddGlyphs::FillStyles() {
    const MFontList& list = InstalledFonts();
    Styles.clear();
    for (std::int32_t i = 0; i < list.count; ++i) {
        if (list.Face(i)->family.Equals(Settings->FontName)) Styles.push_back(FaceStyleName(*list.Face(i)));
    }
    std::int32_t index = -1;
    list.ClosestFace(Settings->FontName, Settings->Weight, Settings->Italic, index, StyleIndex);
}

Desktop::Rect MAddGlyphs::GridArea(const Desktop::Rect& familyList, const Desktop::Rect& cancelButton,
                                   std::int32_t margin) {
    return {margin, margin, familyList.left - margin, cancelButton.bottom};
}

Desktop::Rect MAddGlyphs::SwatchArea(const Desktop::Rect& cancelButton, const Desktop::Rect& colourLabel) {
    return {cancelButton.left, colourLabel.top, cancelButton.right, colourLabel.bottom};
}

void MAddGlyphs::PaintSwatch(Desktop::WindowHandle window, const Desktop::Rect& swatch) {
    MWindowSurface surface;
    if (!surface.Bind(window, swatch) || !surface.surface->Begin()) return;
    surface.surface->Clear(Settings->Colour);
    surface.surface->End();
}

void MAddGlyphs::ChangeFamily(std::int32_t index) {
    if (index < 0 || index >= static_cast<std::int32_t>(Families.size())) return;
    FamilyIndex = index;
    Settings->FontName = Families[static_cast<std::size_t>(index)];
    Settings->Weight = 400;
    Settings->Italic = false;
    FillStyles();
}

void MAddGlyphs::ChangeStyle(std::int32_t index) {
    const MFontList& list = InstalledFonts();
    std::int32_t seen = 0;
    for (std::int32_t i = 0; i < list.count; ++i) {
        const MFontFace& face = *list.Face(i);
        if (!face.family.Equals(Settings->FontName) || seen++ != index) continue;
        Settings->Weight = face.weight;
        Settings->Italic = face.italic;
        StyleIndex = index;
        return;
    }
}

void MAddGlyphs::ChangeColourFont(bool on) {
    Settings->ColourFont = on;
}

bool MAddGlyphs::ChooseColour(Desktop::WindowHandle window) {
    return Desktop::ChooseColour(window, Settings->Colour);
}

bool MAddGlyphs::Drag(std::int32_t x, std::int32_t y, bool leftButton, bool rightButton, bool moved) {
    if (!leftButton && !rightButton) return false;
    const std::int64_t fromX = moved ? lastX : x;
    const std::int64_t fromY = moved ? lastY : y;
    lastX = x;
    lastY = y;
    // A quick mouse is told at few places: no step of the way is longer than half of a cell.
    const std::int64_t step = std::max(
        std::min(Grid.Area.Width() / MCharacterGrid::Columns, Grid.Area.Height() / MCharacterGrid::Rows) / 2,
        1);
    const std::int64_t steps = std::max(std::abs(x - fromX), std::abs(y - fromY)) / step + 1;
    bool changed = false;
    for (std::int64_t i = 1; i <= steps; ++i) {
        const std::int32_t code = Grid.HitTest(static_cast<std::int32_t>(fromX + (x - fromX) * i / steps),
                                               static_cast<std::int32_t>(fromY + (y - fromY) * i / steps));
        if (!MCharacterGrid::Counts(code)) continue;
        Grid.Cursor = code;
        changed |= MCharacterGrid::Mark(code, leftButton);
    }
    return changed;
}

bool MAddGlyphs::MarkAll() {
    bool changed = false;
    for (std::int32_t code = MCharacterGrid::FirstCode; code <= MCharacterGrid::LastCode; ++code)
        changed |= MCharacterGrid::Mark(code, true);
    return changed;
}

bool MAddGlyphs::ToggleAtCursor() {
    return MCharacterGrid::Mark(Grid.Cursor, Settings->Selected[static_cast<std::size_t>(Grid.Cursor)] == 0);
}

void MAddGlyphs::MarkPassed(std::int32_t before) const {
    const bool sameColumn = (Grid.Cursor - before) % MCharacterGrid::Columns == 0;
    const std::int32_t step = (sameColumn ? MCharacterGrid::Columns : 1) * (Grid.Cursor < before ? -1 : 1);
    for (std::int32_t code = before; code != Grid.Cursor + step; code += step)
        MCharacterGrid::Mark(code, true);
}

void MAddGlyphs::Accept(const MString& family, std::int32_t glyphHeight, bool colourFont) {
    if (!family.IsEmpty()) Settings->FontName = family;
    Settings->GlyphHeight = glyphHeight;
    Clamp(Settings->GlyphHeight, SmallestGlyphHeight, LargestGlyphHeight);
    Settings->ColourFont = colourFont;
}
