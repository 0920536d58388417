#include "platform/text/MSizedFont.h"

#include "foundation/MNumbers.h"
#include "platform/text/MOpenFace.h"

#include <ft2build.h>

#include <algorithm>
#include <array>
#include <cmath>
#include FT_FREETYPE_H
#include FT_BBOX_H
#include FT_OUTLINE_H

namespace {

// FreeType's rasteriser counts pixels in 15 bits, and a font in 16 bits the pixels of its em.
constexpr std::int64_t maximumPixels = 32767;

constexpr std::int64_t maximumAdvance = 1 << 30;

constexpr std::int64_t Floor(std::int64_t position) {
    return position >> 6;
}

constexpr std::int64_t Ceil(std::int64_t position) {
    return (position + 63) >> 6;
}

FT_Fixed ToFixed(double value) {
    return ToInteger(value * 65536.0);
}

struct Call {
    std::int32_t lastRow;
    MSpanSink sink;
    void* context;
};

// FreeType also tells spans of no length at the clip's edge and cells whose coverage rounds to nothing.
void TellSpans(int y, int count, const FT_Span* spans, void* user) {
    const auto& call = *static_cast<const Call*>(user);
    std::array<MSpan, 32> inked;
    std::size_t kept = 0;
    const auto tell = [&] {
        if (kept > 0) call.sink(call.lastRow - y, std::span(inked).first(kept), call.context);
        kept = 0;
    };
    for (const FT_Span& span : std::span(spans, static_cast<std::size_t>(count))) {
        if (span.len == 0 || span.coverage == 0) continue;
        if (kept == inked.size()) tell();
        inked[kept++] = {span.x, span.len, span.coverage};
    }
    tell();
}

// FreeType's rasteriser goes through all edges of a row for each of them. Outlines have a few tens of edges to
// a row, those of ornaments some hundred.
bool IsTooDense(const FT_Outline& outline) {
    constexpr double mostSteps = 1e8;
    double edges = 0; // pixels of height
    FT_Pos low = 0;
    FT_Pos high = 0;
    for (int i = 0; i < outline.n_points; ++i) {
        const FT_Pos y = outline.points[i].y;
        low = i == 0 ? y : std::min(low, y);
        high = i == 0 ? y : std::max(high, y);
        if (i > 0) edges += std::abs(static_cast<double>(y - outline.points[i - 1].y)) / 64;
    }
    const double rows = std::max(static_cast<double>(high - low) / 64, 1.0);
    return edges * edges / rows > mostSteps;
}

} // namespace

MPixelRect Intersect(const MPixelRect& first, const MPixelRect& second) {
    return {std::max(first.left, second.left), std::max(first.top, second.top),
            std::min(first.right, second.right), std::min(first.bottom, second.bottom)};
}

MSizedFont::MSizedFont(const MString& family, std::int32_t weight, bool italic) {
    if (const auto match = MatchFont(family, weight, italic)) face = std::make_unique<MOpenFace>(*match);
}

MSizedFont::~MSizedFont() = default;

bool MSizedFont::SetSize(std::int64_t em) {
    valid = false;
    loaded = -1;
    ascent = 0;
    em64 = 0;
    if (!face || !face->face || !FT_IS_SCALABLE(face->face)) return false;
    if (em < 1 || em > maximumPixels * 64 || FT_Set_Char_Size(face->face, 0, em, 72, 72) != 0) return false;
    const std::int64_t units = face->unitsPerEm * std::int64_t{64};
    ascent = static_cast<std::int32_t>((em * face->cellAscent * 2 + units) / (units * 2));
    em64 = em;
    valid = true;
    return true;
}

bool MSizedFont::SetHeight(std::int32_t cellHeight) {
    if (!face || !face->face || cellHeight < 1) return SetSize(0);
    const std::int64_t cell = std::int64_t{face->cellAscent} + face->cellDescent;
    if (!SetSize((std::int64_t{cellHeight} * 64 * face->unitsPerEm + cell / 2) / cell)) return false;
    // From the height itself, which the size in 64ths is only near to.
    ascent = static_cast<std::int32_t>((std::int64_t{cellHeight} * face->cellAscent * 2 + cell) / (cell * 2));
    return true;
}

bool MSizedFont::SetEm(std::int32_t pixels) {
    return SetSize(std::int64_t{pixels} * 64);
}

// What the mapper asks where the family lacks a bold or an italic face.
bool MSizedFont::Synthesise(std::int64_t& advance) {
    FT_GlyphSlot const slot = face->face->glyph;
    if (face->match.embolden) {
        const FT_Pos strength = FT_MulFix(face->unitsPerEm, face->face->size->metrics.y_scale) / 24;
        if (FT_Outline_Embolden(&slot->outline, strength) != 0) return false;
        advance += strength;
    }
    if (const auto& [xx, xy, yx, yy] = face->match.matrix;
        face->match.matrix != std::array<double, 4>{1, 0, 0, 1}) {
        const FT_Matrix matrix{ToFixed(xx), ToFixed(xy), ToFixed(yx), ToFixed(yy)};
        FT_Outline_Transform(&slot->outline, &matrix);
        advance = FT_MulFix(advance, matrix.xx);
    }
    return true;
}

bool MSizedFont::Load(char16_t character) {
    if (!valid) return false;
    if (loaded == character) return true;
    loaded = -1;
    FT_GlyphSlot const slot = face->face->glyph;
    const FT_Int32 flags = FT_LOAD_NO_HINTING | FT_LOAD_NO_AUTOHINT | FT_LOAD_NO_BITMAP;
    // Outlines are programs in some fonts, and one may run for a tenth of a second.
    if (!credit.Begin(0)) {
        LostGlyphs::Add();
        return false;
    }
    const bool read = FT_Load_Glyph(face->face, face->GlyphIndex(character), flags) == 0;
    credit.End();
    if (!read) return false;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return false;
    std::int64_t advance = (slot->linearHoriAdvance + 512) >> 10; // 16.16 to 26.6
    if (!Synthesise(advance)) return false;

    MInk ink;
    if (FT_BBox box{}; slot->outline.n_points > 0 && FT_Outline_Get_BBox(&slot->outline, &box) == 0 &&
                       box.xMin < box.xMax && box.yMin < box.yMax) {
        for (const FT_Pos edge : {box.xMin, box.yMin, box.xMax, box.yMax})
            if (edge > maximumPixels * 64 || edge < -maximumPixels * 64) return false;
        ink.a = static_cast<std::int32_t>(Floor(box.xMin));
        ink.b = static_cast<std::int32_t>(Ceil(box.xMax)) - ink.a;
        ink.above = static_cast<std::int32_t>(Ceil(box.yMax));
        ink.below = static_cast<std::int32_t>(-Floor(box.yMin));
        if (ink.b > maximumPixels) return false;
    }
    const std::int64_t wholeAdvance = std::clamp((advance + 32) >> 6, -maximumAdvance, maximumAdvance);
    ink.c = static_cast<std::int32_t>(wholeAdvance - ink.a - ink.b);
    loadedInk = ink;
    loaded = character;
    return true;
}

bool MSizedFont::GetInk(char16_t character, MInk& ink) {
    if (!Load(character)) return false;
    ink = loadedInk;
    return true;
}

void MSizedFont::Draw(char16_t character, std::int64_t x, std::int64_t y, const MPixelRect& region,
                      MSpanSink sink, void* context) {
    if (!Load(character) || loadedInk.b == 0) return;
    const MPixelRect ink{x + loadedInk.a, y - loadedInk.above, x + loadedInk.a + loadedInk.b,
                         y + loadedInk.below};
    const MPixelRect visible = Intersect(ink, region);
    if (visible.IsEmpty()) return;

    const FT_Outline& loadedOutline = face->face->glyph->outline;
    if (IsTooDense(loadedOutline) || !credit.Begin(static_cast<double>(visible.right - visible.left) *
                                                   static_cast<double>(visible.bottom - visible.top))) {
        LostGlyphs::Add();
        return;
    }
    // The region's left edge and the last visible row are the origin, and y grows upwards.
    Call call{static_cast<std::int32_t>(visible.bottom - region.top) - 1, sink, context};
    FT_Outline* const outline = &face->face->glyph->outline;
    const FT_Pos shiftX = (x - region.left) * 64;
    const FT_Pos shiftY = (visible.bottom - y) * 64;
    FT_Raster_Params params{};
    params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
    params.gray_spans = TellSpans;
    params.user = &call;
    params.clip_box = {visible.left - region.left, 0, visible.right - region.left,
                       visible.bottom - visible.top};
    FT_Outline_Translate(outline, shiftX, shiftY);
    FT_Outline_Render(FreeTypeLibrary(), outline, &params);
    FT_Outline_Translate(outline, -shiftX, -shiftY);
    credit.End();
}
