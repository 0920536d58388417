#include "glyphs/MGlyphRenderer.h"

#include "document/MSettings.h"
#include "foundation/MMemory.h"
#include "foundation/MNumbers.h"
#include "platform/text/MSystemFonts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace {

constexpr std::u16string_view measureText = u"Ij";
constexpr const char16_t* referenceFamily = u"Arial Black";

// The proportions of the reference family, for machines without it: the cell, the baseline in it, and the ink
// of the measure text above and below the baseline. In units of its design.
constexpr std::int64_t referenceCell = 2888;
constexpr std::int64_t referenceAscent = 2254;
constexpr std::int64_t referenceAbove = 1466;
constexpr std::int64_t referenceBelow = 431;

constexpr std::int64_t CeilDivide(std::int64_t value, std::int64_t by) {
    return (value + by - 1) / by;
}

std::int32_t CeilScaled(std::int32_t pixels, std::int32_t scale) {
    return ToInteger(std::ceil(static_cast<float>(pixels) / static_cast<float>(scale)));
}

std::int32_t Saturate(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

} // namespace

MGlyphRenderer::MGlyphRenderer(Desktop::WindowHandle ownerWindow) : owner(ownerWindow) {
    const auto height = static_cast<float>(Settings->GlyphHeight);
    canvasWidth = ToInteger(height * static_cast<float>(scale) * 1.5F);
    if (canvasWidth > 0 && canvasWidth % 4 != 0)
        canvasWidth = Saturate((std::int64_t{canvasWidth} / 4 + 1) * 4);
    canvasHeight = ToInteger(static_cast<float>(canvasWidth) * 1.5F);
    if (canvasWidth < 1 || canvasHeight < 1) return;
    // A canvas of three bytes a pixel that no memory holds is one that can't be had.
    if (std::uint64_t{static_cast<std::uint32_t>(canvasWidth)} * static_cast<std::uint32_t>(canvasHeight) >
        MemoryLimit() / 3)
        return;
    font = std::make_unique<MSizedFont>(Settings->FontName, Settings->Weight, Settings->Italic);
    if (!Measure()) return;
    // A size that no font reaches leaves every character without widths, and so without a glyph.
    font->SetHeight(Saturate(std::int64_t{fontHeight} * scale));
    ready = true;
}

bool MGlyphRenderer::Measure() {
    const std::int32_t h = Settings->GlyphHeight;
    if (Settings->FontName.Equals(referenceFamily) && IsFamilyInstalled(referenceFamily)) {
        fontHeight = h;
        verticalOffset = 0;
        return true;
    }
    const Rows reference = MeasureReference();
    font->SetHeight(h);
    const Rows own = MeasureFont(*font);
    if (reference.Extent() <= 0 || own.Extent() <= 0) return false;
    const float ratio = static_cast<float>(reference.Extent()) / static_cast<float>(own.Extent());
    fontHeight = ToInteger(static_cast<float>(h) * ratio);
    verticalOffset = ToInteger(static_cast<float>(reference.top) - static_cast<float>(own.top) * ratio);
    verticalOffset = Saturate(std::int64_t{verticalOffset} * scale);
    return true;
}

MGlyphRenderer::Rows MGlyphRenderer::MeasureReference() const {
    const std::int64_t h = Settings->GlyphHeight;
    if (IsFamilyInstalled(referenceFamily)) {
        MSizedFont reference(referenceFamily, Settings->Weight, Settings->Italic);
        reference.SetHeight(Settings->GlyphHeight);
        return MeasureFont(reference);
    }
    const std::int64_t baseline = (h * referenceAscent * 2 + referenceCell) / (referenceCell * 2);
    return {static_cast<std::int32_t>(baseline - CeilDivide(h * referenceAbove, referenceCell)),
            static_cast<std::int32_t>(baseline + CeilDivide(h * referenceBelow, referenceCell) - 1)};
}

MGlyphRenderer::Rows MGlyphRenderer::MeasureFont(MSizedFont& sized) const {
    const MPixelRect measured{ToInteger(static_cast<float>(Settings->GlyphHeight) * 0.2F), 0, canvasWidth,
                              canvasHeight};
    Rows rows;
    std::int64_t pen = measured.left;
    for (const char16_t character : measureText) {
        MInk ink;
        if (!sized.GetInk(character, ink)) continue;
        sized.Draw(
            character, pen, sized.ascent, measured,
            [](std::int32_t row, std::span<const MSpan>, void* context) {
                auto& found = *static_cast<Rows*>(context);
                found.top = found.top < 0 ? row : std::min(found.top, row);
                found.bottom = std::max(found.bottom, row);
            },
            &rows);
        pen += std::int64_t{ink.a} + ink.b + ink.c;
    }
    return rows;
}

std::unique_ptr<MGlyph> MGlyphRenderer::RenderGlyph(char16_t character) {
    MInk ink;
    if (!ready || !font->GetInk(character, ink)) return nullptr;
    const std::int32_t width = CeilScaled(ink.b, scale);
    // Ink of two canvas pixels or less is no glyph, whatever character it is.
    if (width <= 1) return nullptr;
    // Every pixel is written below, so the glyph's picture is not cleared first.
    auto glyph = std::make_unique<MGlyph>(character, 0, Settings->GlyphHeight, CeilScaled(ink.a, scale),
                                          CeilScaled(ink.c, scale), false);
    glyph->Width = width;
    if (glyph->Height > 0)
        glyph->Picture =
            MPicture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(glyph->Height), FormatRGBA8);
    DrawPlain(character, ink, *glyph);
    return glyph;
}

// White on black would be grey as bright as its coverage; so the coverage is the alpha.
void MGlyphRenderer::DrawPlain(char16_t character, const MInk& ink, MGlyph& glyph) {
    if (!glyph.Picture.IsValid()) return;
    const std::int64_t baseline = std::int64_t{verticalOffset} + font->ascent;
    // Pixels of the glyph are blocks of the canvas, so the region has even edges. Past the canvas there is no
    // ink.
    const MPixelRect ownPart{0, 0, std::min(std::int64_t{glyph.Width} * scale, std::int64_t{canvasWidth}),
                             std::min(std::int64_t{glyph.Height} * scale, std::int64_t{canvasHeight})};
    const MPixelRect region = Intersect(ownPart, {0, (baseline - ink.above) & ~std::int64_t{1}, ownPart.right,
                                                  (baseline + ink.below + 1) & ~std::int64_t{1}});
    sums.Clear(static_cast<std::size_t>(std::max<std::int64_t>(region.right, 0) / scale),
               static_cast<std::size_t>(std::max<std::int64_t>(region.bottom - region.top, 0) / scale));
    font->Draw(character, -std::int64_t{ink.a}, baseline, region, MBoxSums::Add, &sums);
    sums.Store(static_cast<std::size_t>(region.top / scale), Settings->Colour, glyph.Picture);
    RepeatCanvas(glyph.Picture, static_cast<std::size_t>(canvasWidth / scale),
                 static_cast<std::size_t>(canvasHeight / scale));
}
