// A sheet with what was found on it.

#include "glyphs/MDirect2DSurface.h"
#include "glyphs/SheetCutter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double largest = 4096;
const MColour behind(236, 236, 236);
const MColour letterColour(30, 110, 220);
const MColour doubtColour(220, 30, 30);
const MColour leftOutColour(150, 150, 150);
const MColour baseColour(20, 160, 70);

} // namespace

MPicture DrawSheetReport(const MSheet& sheet, const MPicture& picture) {
    if (!picture.IsValid()) return {};
    const double scale = std::min(1.0, largest / std::max(picture.Width, picture.Height));
    const auto at = [&](double value) { return static_cast<std::int32_t>(std::lround(value * scale)); };
    const std::int32_t width = std::max(1, at(picture.Width));
    const std::int32_t height = std::max(1, at(picture.Height));
    MSurfaceBitmap bitmap(width, height);
    MDirect2DSurface surface(bitmap);
    if (!surface.Begin()) return {};
    surface.Clear(behind);
    surface.DrawPictureFitted(picture, {0, 0, width, height}, false);
    for (const MSheetLine& line : sheet.lines) {
        surface.DrawLine({0, static_cast<float>(line.Base(0) * scale)},
                         {static_cast<float>(width), static_cast<float>(line.Base(picture.Width) * scale)}, 1,
                         baseColour, false);
    }
    const std::int32_t text = std::clamp(at(sheet.capHeight / 2), 10, 40);
    for (std::size_t i = 0; i < sheet.boxes.size(); ++i) {
        const MSheetBox& box = sheet.boxes[i];
        const bool doubt = box.doubtful || static_cast<std::int32_t>(i) == sheet.doubtAt;
        const MColour& colour = box.leftOut ? leftOutColour : doubt ? doubtColour : letterColour;
        const Desktop::Rect frame{at(box.box.left) - 1, at(box.box.top) - 1, at(box.box.right) + 1,
                                  at(box.box.bottom) + 1};
        surface.DrawRectangle(frame, colour, false, doubt ? 2.0F : 1.0F, false);
        if (box.character == 0) continue;
        // Above the letter, or inside where there is no room.
        const std::int32_t top = std::max(0, frame.top - text - text / 3);
        surface.DrawText({frame.left, top, frame.left + 3 * text, top + text + text / 3},
                         MString(std::u16string_view(&box.character, 1)), "DejaVu Sans",
                         static_cast<float>(text), 700, false, colour, 2, 2, false, false, false, false);
    }
    surface.End();
    return bitmap.ToPicture();
}
