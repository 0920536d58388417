#include "editors/GlyphPreview.h"

#include "foundation/MNumbers.h"

namespace {

float CentreOf(std::int32_t first, std::int32_t last) {
    const std::int64_t centre = (std::int64_t{first} + last) / 2;
    return static_cast<float>(centre);
}

} // namespace

MGlyphPreview LayOutGlyph(const Desktop::Rect& area, float scale, const MGlyph& glyph,
                          const MColourFont& font) {
    const auto scaled = [scale](std::int32_t value) { return static_cast<float>(value) * scale; };
    const auto truncated = [](float value) { return static_cast<float>(ToInteger(value)); };
    const float cx = CentreOf(area.left, area.right);
    const float cy = CentreOf(area.top, area.bottom);
    const float halfWidth = scaled(glyph.Width) * 0.5F;

    MGlyphPreview preview;
    preview.X = ToInteger(cx - halfWidth);
    preview.Y = ToInteger(cy - scaled(glyph.Height) * 0.5F);
    const auto x = static_cast<float>(preview.X);
    const auto y = static_cast<float>(preview.Y);
    preview.LeftGuide = ToInteger(x - scaled(glyph.SpacingBefore));
    preview.RightGuide = ToInteger(truncated(cx + halfWidth) + scaled(glyph.SpacingAfter));
    preview.BaselineGuide = ToInteger(truncated(y + scaled(glyph.Height)) - scaled(font.Baseline));
    preview.CapHeightGuide = ToInteger(static_cast<float>(preview.BaselineGuide) - scaled(font.CapHeight));
    return preview;
}

MDraggedGuide DragGuide(const Desktop::Rect& area, float scale, const MGlyph& glyph, const MColourFont& font,
                        MPoint mouse, bool rightButton) {
    const float cx = CentreOf(area.left, area.right);
    const float cy = CentreOf(area.top, area.bottom);
    const auto x = static_cast<float>(mouse.x);
    const auto y = static_cast<float>(mouse.y);
    const float halfWidth = static_cast<float>(glyph.Width) * scale * 0.5F;
    const float halfHeight = static_cast<float>(glyph.Height) * scale * 0.5F;
    if (rightButton && y <= cy) {
        const auto aboveBaseline = static_cast<float>(std::int64_t{glyph.Height / 2} - font.Baseline);
        return {MGuide::CapHeight, ToInteger((aboveBaseline * scale + cy - y) / scale)};
    }
    if (rightButton) return {MGuide::Baseline, ToInteger((halfHeight + cy - y) / scale)};
    if (x > cx) return {MGuide::SpacingAfter, ToInteger((x - (halfWidth + cx)) / scale)};
    return {MGuide::SpacingBefore, ToInteger((cx - halfWidth - x) / scale)};
}
