#include "editors/PreviewArea.h"

#include "foundation/MNumbers.h"

#include <algorithm>

float PreviewScale(const Desktop::Rect& area, const MColourFont& font) {
    constexpr std::int32_t free = 100;
    const std::int32_t width = font.MaxGlyphWidth();
    const std::int32_t height = font.MaxGlyphHeight();
    if (width < 1 || height < 1) return 0;
    return std::min(static_cast<float>(area.Width() - free) / static_cast<float>(width),
                    static_cast<float>(area.Height() - free) / static_cast<float>(height));
}

bool IsStrictlyInside(const Desktop::Rect& area, MPoint point) {
    return point.x > area.left && point.x < area.right && point.y > area.top && point.y < area.bottom;
}

bool IsVisible(const MGlyph* glyph) {
    return glyph && glyph->Picture.IsValid() && glyph->Width > 0 && glyph->Height > 0;
}

void DrawScaledGlyph(MDirect2DSurface& surface, const MGlyph* glyph, float scale, std::int32_t x,
                     std::int32_t y) {
    if (!IsVisible(glyph)) return;
    // No side is longer than the area: the scale is made for the largest glyph.
    const auto scaled = [scale](std::int32_t size) {
        return static_cast<std::uint32_t>(std::max(ToInteger(static_cast<float>(size) * scale), 0));
    };
    MPicture picture(glyph->Picture, scaled(glyph->Width), scaled(glyph->Height), glyph->Picture.Format, true,
                     false);
    surface.DrawPictureAt(picture, x, y, true);
    picture.Free();
}
