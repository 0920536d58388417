// What the dialog for sheets shows: the picture, and what was found on it.

#include "document/MSettings.h"
#include "editors/FieldText.h"
#include "editors/MAddSheet.h"

#include <algorithm>

namespace {

const MColour letterColour(30, 110, 220);
const MColour unnamedColour(190, 110, 0);
const MColour doubtColour(220, 30, 30);
const MColour leftOutColour(130, 130, 130);
const MColour baseColour(20, 160, 70);
const MColour selectedColour(230, 60, 190);
const MColour white(255, 255, 255);

bool Meet(const Desktop::Rect& a, const Desktop::Rect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

Desktop::Rect Grown(const Desktop::Rect& box, std::int32_t by) {
    return {box.left - by, box.top - by, box.right + by, box.bottom + by};
}

MPointF Point(double x, double y) {
    return {static_cast<float>(x), static_cast<float>(y)};
}

} // namespace

void MAddSheet::Paint() {
    if (Lens.Area != Area)
        Lens.ShowAll(Area, static_cast<std::int32_t>(picture.Width), static_cast<std::int32_t>(picture.Height));
    if (!surface.Bind(Window, Area) || !surface.surface->Begin()) return;
    MDirect2DSurface& on = *surface.surface;
    on.Clear(Settings->BackgroundColour);
    if (picture.IsValid()) {
        DrawPicture(on);
        DrawLines(on);
        for (std::size_t i = 0; i < Editor.Sheet.boxes.size(); ++i)
            DrawBox(on, i);
        DrawSelection(on);
    }
    on.End();
}

// Scaled once for each place of the lens.
void MAddSheet::DrawPicture(MDirect2DSurface& on) {
    const Desktop::Rect part = Lens.Visible();
    const Desktop::Rect place = Lens.ToDialog(part);
    if (part.IsEmpty() || place.IsEmpty()) return;
    if (!(part == shownPart) || !(place == shownPlace) || !shown.IsValid()) {
        MPicture view;
        view.Width = static_cast<std::uint32_t>(part.Width());
        view.Height = static_cast<std::uint32_t>(part.Height());
        view.Format = picture.Format;
        view.Stride = picture.Stride;
        view.Pixels = picture.PixelAddress(part.left, part.top);
        shown.Free();
        shown = MPicture(view, static_cast<std::uint32_t>(place.Width()),
                         static_cast<std::uint32_t>(place.Height()), FormatRGBA8, true, false);
        shownPart = part;
        shownPlace = place;
    }
    on.DrawPictureAt(shown, place.left, place.top, true);
}

void MAddSheet::DrawLines(MDirect2DSurface& on) const {
    for (const MSheetLine& line : Editor.Sheet.lines) {
        const auto row = [&](std::int32_t x) {
            const Desktop::Rect place = Lens.ToDialog({x, static_cast<std::int32_t>(line.Base(x) + 0.5), x, 0});
            return Point(place.left, place.top);
        };
        on.DrawLine(row(0), row(Lens.Width), Density, baseColour, true);
    }
}

void MAddSheet::DrawBox(MDirect2DSurface& on, std::size_t index) const {
    const MSheetBox& box = Editor.Sheet.boxes[index];
    const Desktop::Rect place = Lens.ToDialog(box.box);
    if (!Meet(Grown(place, Scaled(20)), Area)) return;
    const bool doubtful = box.doubtful || static_cast<std::int32_t>(index) == Editor.Sheet.doubtAt;
    const MColour& colour = box.leftOut          ? leftOutColour
                            : doubtful           ? doubtColour
                            : box.character == 0 ? unnamedColour
                                                 : letterColour;
    on.DrawRectangle(Grown(place, 1), colour, false, Density, true);
    if (box.leftOut) {
        on.DrawLine(Point(place.left, place.top), Point(place.right, place.bottom), Density, colour, true);
        on.DrawLine(Point(place.left, place.bottom), Point(place.right, place.top), Density, colour, true);
        return;
    }
    if (box.character == 0) return;
    // On a plate at the upper left corner, small enough to leave the letter alone.
    const auto size = std::clamp(static_cast<float>(place.Height()) * 0.3F, 8 * Density, 13 * Density);
    const auto height = static_cast<std::int32_t>(size * 1.25F);
    const std::int32_t top = std::max(place.top - 1 - height, Area.top);
    const Desktop::Rect plate{place.left - 1, top, place.left - 1 + height, top + height};
    on.DrawRectangle(plate, colour, true, 1, true);
    on.DrawText(plate, CharacterText(box.character), "DejaVu Sans", size, 700, false, white, 0, 0, false, true,
                true, false);
}

void MAddSheet::DrawSelection(MDirect2DSurface& on) const {
    const MSheetBox* const box = Editor.SelectedBox();
    if (!box) return;
    const Desktop::Rect place = Lens.ToDialog(box->box);
    on.DrawRectangle(Grown(place, Scaled(2)), selectedColour, false, 2 * Density, true);
    const std::int32_t reach = Scaled(2.5F);
    const bool roomy = std::min(place.Width(), place.Height()) > 10 * reach; // else they would hide the letter
    const std::int32_t middleX = place.left + place.Width() / 2;
    const std::int32_t middleY = place.top + place.Height() / 2;
    for (const MPoint at : {MPoint{place.left - reach, middleY}, MPoint{place.right + reach, middleY},
                            MPoint{middleX, place.top - reach}, MPoint{middleX, place.bottom + reach}})
        if (roomy)
            on.DrawRectangle({at.x - reach, at.y - reach, at.x + reach, at.y + reach}, selectedColour, true, 1,
                             true);
    if (Editor.Cut < 0) return;
    const std::int32_t x = Lens.ToDialog({Editor.Cut, 0, Editor.Cut, 0}).left;
    on.DrawLine(Point(x, place.top - Scaled(8)), Point(x, place.bottom + Scaled(8)), 2 * Density,
                selectedColour, true);
}
