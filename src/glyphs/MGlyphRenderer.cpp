#include "glyphs/MGlyphRenderer.h"

#include "document/MSettings.h"
#include "foundation/MMemory.h"
#include "foundation/MNumbers.h"
#include "glyphs/BoxColours.h"
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

MString OneCharacter(char16_t character) {
    return MString(std::u16string_view(&character, 1));
}

// Whether a pixel of the row from column `first` to before `end` is visible.
bool HasInk(const std::uint8_t* row, std::int32_t first, std::int32_t end) {
    for (std::ptrdiff_t x = first; x < end; ++x)
        if (row[x * 4 + 3] > 0) return true;
    return false;
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
    if (Settings->ColourFont) {
        bitmap = std::make_unique<MSurfaceBitmap>(canvasWidth, canvasHeight);
        surface = std::make_unique<MDirect2DSurface>(*bitmap);
        if (!surface->valid) return;
    }
    font = std::make_unique<MSizedFont>(Settings->FontName, Settings->Weight, Settings->Italic);
    if (!Measure()) return;
    // A size that no font reaches leaves every character without widths, and so without a glyph.
    if (widthsAtColourSize) {
        font->SetEm(ToInteger(ColourSize()));
    } else {
        font->SetHeight(Saturate(std::int64_t{fontHeight} * scale));
    }
    ready = true;
}

float MGlyphRenderer::ColourSize() const {
    return static_cast<float>(std::int64_t{Settings->GlyphHeight} * scale) * colourSizeFactor;
}

double MGlyphRenderer::EmPixels() const {
    return (Settings->ColourFont ? double{ColourSize()} : font->Em()) / scale;
}

Desktop::Rect MGlyphRenderer::MeasureRectangle() const {
    return {ToInteger(static_cast<float>(Settings->GlyphHeight) * 0.2F), 0, canvasWidth, canvasHeight};
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
    if (Settings->ColourFont) {
        const Rows coloured = MeasureColours();
        // One row less than the extents above, and kept so: sizes of colour fonts rest on it.
        if (const std::int32_t extent = coloured.bottom - coloured.top; extent > 0) {
            colourSizeFactor = static_cast<float>(reference.Extent()) / static_cast<float>(extent);
            verticalOffset = ToInteger(static_cast<float>(reference.top) -
                                       colourSizeFactor * static_cast<float>(coloured.top));
            widthsAtColourSize = own.top < 0;
        }
    }
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
    const Desktop::Rect rectangle = MeasureRectangle();
    const MPixelRect measured{rectangle.left, rectangle.top, rectangle.right, rectangle.bottom};
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

void MGlyphRenderer::DrawText(const MString& text, const Desktop::Rect& rectangle, float size) {
    constexpr std::int32_t nearest = -1; // alignment at the left and the top
    surface->DrawText(rectangle, text, Settings->FontName, size, Settings->Weight, Settings->Italic,
                      MColour(255, 255, 255), nearest, nearest, true, false, true, true);
}

MGlyphRenderer::Rows MGlyphRenderer::MeasureColours() {
    Rows rows;
    if (!surface->Begin()) return rows;
    surface->Clear(MColour(0, 0, 0, 0));
    DrawText(MString(measureText), MeasureRectangle(), static_cast<float>(Settings->GlyphHeight));
    surface->End();
    const auto isEmpty = [&](std::int32_t y) { return !HasInk(bitmap->Row(y), 0, canvasWidth); };
    std::int32_t top = 0;
    while (top < canvasHeight && isEmpty(top))
        ++top;
    if (top == canvasHeight) return rows;
    rows.top = top;
    rows.bottom = canvasHeight - 1;
    while (isEmpty(rows.bottom))
        --rows.bottom;
    return rows;
}

// For a character that the face has no outline for but may have in colour, or another font in its place: the
// ink as it comes out, found by drawing it.
bool MGlyphRenderer::GetColourInk(char16_t character, MInk& ink) {
    if (!surface || !surface->Begin()) return false;
    const MString text = OneCharacter(character);
    const std::int32_t pen = canvasWidth / 4;
    surface->Clear(MColour(0, 0, 0, 0));
    DrawText(text, {pen, verticalOffset, canvasWidth, canvasHeight}, ColourSize());
    surface->End();
    std::int32_t first = canvasWidth;
    std::int32_t last = -1;
    for (std::int32_t y = 0; y < canvasHeight; ++y) {
        const std::uint8_t* const row = bitmap->Row(y);
        if (!HasInk(row, 0, canvasWidth)) continue;
        while (first > 0 && HasInk(row, 0, first))
            --first;
        while (last < canvasWidth - 1 && HasInk(row, last + 1, canvasWidth))
            ++last;
    }
    if (last < first || !surface->textFormat) return false;
    ink.a = first - pen;
    ink.b = last + 1 - first;
    ink.c = ToInteger(std::floor(surface->textFormat->Width(text) + 0.5)) - ink.a - ink.b;
    return true;
}

std::unique_ptr<MGlyph> MGlyphRenderer::RenderGlyph(char16_t character) {
    if (!ready) return nullptr;
    MInk ink;
    const bool outlined = font->GetInk(character, ink) && ink.b > 0;
    if (!outlined && !(Settings->ColourFont && GetColourInk(character, ink))) return nullptr;
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
    if (!glyph->Picture.IsValid()) return glyph;
    if (Settings->ColourFont) {
        DrawColours(character, ink, *glyph);
    } else {
        DrawPlain(character, ink, *glyph);
    }
    return glyph;
}

void MGlyphRenderer::DrawColours(char16_t character, const MInk& ink, MGlyph& glyph) {
    if (!surface || !surface->Begin()) {
        glyph.Picture.Fill(MColour(0, 0, 0, 0));
        return;
    }
    const MColour& background = Settings->BackgroundColour;
    // Only what becomes the glyph is cleared and drawn.
    surface->PushClip(
        {0, 0, Saturate(std::int64_t{glyph.Width} * scale), Saturate(std::int64_t{glyph.Height} * scale)});
    surface->Clear(MColour(background.r, background.g, background.b, 0));
    DrawText(OneCharacter(character),
             {-ink.a, verticalOffset, ink.b, Saturate(std::int64_t{fontHeight} * scale + verticalOffset)},
             ColourSize());
    surface->PopClip();
    surface->End();
    BoxDownColours(*bitmap, glyph.Picture);
}

// White on black would be grey as bright as its coverage; so the coverage is the alpha.
void MGlyphRenderer::DrawPlain(char16_t character, const MInk& ink, MGlyph& glyph) {
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
