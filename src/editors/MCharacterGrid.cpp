#include "editors/MCharacterGrid.h"

#include "document/MSettings.h"
#include "editors/FieldText.h"
#include "foundation/MNumbers.h"
#include "glyphs/MDirect2DSurface.h"
#include "glyphs/MGdiSurface.h"

#include <algorithm>

namespace {

constexpr std::int32_t firstShown = 32; // the code of the cell at the top left
constexpr MColour black{0, 0, 0};

float TextSize(const Desktop::Rect& cell) {
    return static_cast<float>(cell.Height()) * 0.75F;
}

bool Same(const Desktop::Rect& a, const Desktop::Rect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

} // namespace

Desktop::Rect MCharacterGrid::Cell(std::int32_t code) const {
    const std::int32_t i = (code - firstShown) % Columns;
    const std::int32_t j = (code - firstShown) / Columns;
    const std::int32_t width = Area.Width();
    const std::int32_t height = Area.Height();
    const std::int32_t left = i * width / Columns + Area.left;
    const std::int32_t top = j * height / Rows + Area.top;
    return {left + 1, top + 1, left + width / Columns - 1, top + height / Rows - 1};
}

std::int32_t MCharacterGrid::HitTest(std::int32_t x, std::int32_t y) const {
    if (x < Area.left || x > Area.right || y < Area.top || y > Area.bottom || Area.IsEmpty()) return -1;
    const std::int32_t column = (x - Area.left) * Columns / Area.Width();
    const std::int32_t row = (y - Area.top) * Rows / Area.Height();
    return column + row * Columns + firstShown;
}

MColour MCharacterGrid::SelectedShade(const MColour& face) {
    const auto shade = [](int channel) {
        const int target = channel <= 128 ? 255 : 0;
        return static_cast<std::uint8_t>((channel * 8 + target * 2) / 10);
    };
    return {shade(face.r), shade(face.g), shade(face.b)};
}

bool MCharacterGrid::Mark(std::int32_t code, bool wanted) {
    if (!Counts(code)) return false;
    std::uint8_t& mark = Settings->Selected[static_cast<std::size_t>(code)];
    const bool before = mark != 0;
    mark = wanted ? 1 : 0;
    return before != wanted;
}

void MCharacterGrid::MoveCursor(std::int32_t columns, std::int32_t rows) {
    std::int32_t column = (Cursor - firstShown) % Columns + columns;
    std::int32_t row = (Cursor - firstShown) / Columns + rows;
    Clamp(column, 0, Columns - 1);
    Clamp(row, 0, Rows - 1);
    const std::int32_t code = column + row * Columns + firstShown;
    if (Counts(code)) Cursor = code;
}

MCharacterGrid::Marks MCharacterGrid::CurrentMarks() {
    Marks marks;
    for (std::size_t code = FirstCode; code <= LastCode; ++code)
        marks[code] = Settings->Selected[code] != 0;
    return marks;
}

Desktop::Rect MCharacterGrid::OnSurface(const Desktop::Rect& rectangle) const {
    return {rectangle.left - Area.left, rectangle.top - Area.top, rectangle.right - Area.left,
            rectangle.bottom - Area.top};
}

std::unique_ptr<MSurfaceBitmap> MCharacterGrid::Draw(const Marks& marks) const {
    auto drawn = Settings->ColourFont ? DrawColours(marks) : DrawPlain(marks);
    return drawn->IsValid() ? std::move(drawn) : nullptr;
}

std::unique_ptr<MSurfaceBitmap> MCharacterGrid::DrawPlain(const Marks& marks) const {
    MGdiSurface surface(nullptr, Area);
    surface.FillRectangle(OnSurface(Area), Face);
    for (std::int32_t code = FirstCode; code <= LastCode; ++code) {
        const Desktop::Rect cell = OnSurface(Cell(code));
        if (marks[static_cast<std::size_t>(code)]) surface.FillRectangle(cell, SelectedShade(Face));
        surface.DrawText(cell, CharacterText(static_cast<char16_t>(code)), Settings->FontName, TextSize(cell),
                         Settings->Weight, Settings->Italic, black, 0);
    }
    return std::move(surface.bitmap);
}

std::unique_ptr<MSurfaceBitmap> MCharacterGrid::DrawColours(const Marks& marks) const {
    auto bitmap = std::make_unique<MSurfaceBitmap>(Area.Width(), Area.Height());
    MDirect2DSurface surface(*bitmap);
    if (!surface.Begin()) return bitmap;
    surface.Clear(Face);
    for (std::int32_t code = FirstCode; code <= LastCode; ++code) {
        const Desktop::Rect cell = OnSurface(Cell(code));
        if (marks[static_cast<std::size_t>(code)])
            surface.DrawRectangle(cell, SelectedShade(Face), true, 0, true);
        surface.DrawText(cell, CharacterText(static_cast<char16_t>(code)), Settings->FontName, TextSize(cell),
                         Settings->Weight, Settings->Italic, black, 0, 0, true, false, true, true);
    }
    surface.End();
    return bitmap;
}

bool MCharacterGrid::IsShown(const Look& look) const {
    return shown && Same(look.area, shownLook.area) && look.face == shownLook.face &&
           look.family.Equals(shownLook.family) && look.weight == shownLook.weight &&
           look.italic == shownLook.italic && look.colourFont == shownLook.colourFont;
}

void MCharacterGrid::Exchange(const Marks& marks) {
    const Marks changed = marks ^ shownMarks;
    if (changed.none()) return;
    if (!reversed) reversed = Draw(~shownMarks);
    if (!reversed) return;
    for (std::int32_t code = FirstCode; code <= LastCode; ++code) {
        const Desktop::Rect cell = OnSurface(Cell(code));
        if (!changed[static_cast<std::size_t>(code)] || cell.IsEmpty()) continue;
        for (std::int32_t y = cell.top; y < cell.bottom; ++y) {
            const std::int64_t first = std::int64_t{y} * shown->stride + std::int64_t{cell.left} * 4;
            std::uint8_t* const row = shown->pixels + first;
            std::swap_ranges(row, row + std::int64_t{cell.Width()} * 4, reversed->pixels + first);
        }
    }
    shownMarks = marks;
}

void MCharacterGrid::Paint(Desktop::WindowHandle window) {
    if (Settings->FontName.IsEmpty() || Area.IsEmpty()) return;
    const Marks marks = CurrentMarks();
    Look look{Area, Face, Settings->FontName, Settings->Weight, Settings->Italic, Settings->ColourFont};
    if (!IsShown(look)) {
        Release();
        shown = Draw(marks);
        shownMarks = marks;
        shownLook = std::move(look);
    }
    if (!shown) return;
    Exchange(marks);
    Desktop::Present(window, Area, {shown->width, shown->height, shown->stride, shown->pixels});
}

void MCharacterGrid::Release() {
    shown.reset();
    reversed.reset();
}
