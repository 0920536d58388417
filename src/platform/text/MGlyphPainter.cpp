#include "platform/text/MGlyphPainter.h"

#include "imaging/MPixelBudget.h"
#include "platform/text/MGlyphPath.h"
#include "platform/text/MPaintTreePainter.h"

#include <cairo.h>
#include <ft2build.h>

#include <algorithm>
#include <array>
#include <bit>
#include FT_FREETYPE_H

static_assert(std::endian::native == std::endian::little, "bitmap glyphs come as blue, green, red, alpha");

MGlyphPainter::MGlyphPainter(const MFontMatch& match) : face(match) {
    if (!face.face) return;
    colr = face.Table("COLR");
    cpal = face.Table("CPAL");
    layers = MColourTable(colr, cpal);
    documents = std::make_unique<MSvgGlyphs>(face.Table("SVG "), cpal);
    hasBitmaps = FT_HAS_FIXED_SIZES(face.bitmaps) && FT_HAS_COLOR(face.bitmaps);
}

std::shared_ptr<MGlyphPainter> MGlyphPainter::Shared(const MFontMatch& match) {
    static std::vector<std::weak_ptr<MGlyphPainter>> painters;
    std::erase_if(painters, [](const auto& painter) { return painter.expired(); });
    for (const auto& known : painters)
        if (auto painter = known.lock(); painter && painter->face.match == match) return painter;
    auto painter = std::make_shared<MGlyphPainter>(match);
    painters.push_back(painter);
    return painter;
}

const MPaintTree* MGlyphPainter::TreeOf(std::uint32_t glyph) {
    if (!layers.valid || glyph > UINT16_MAX) return nullptr;
    if (glyph != treeGlyph) tree = layers.Read(static_cast<std::uint16_t>(glyph));
    treeGlyph = glyph;
    return tree ? &*tree : nullptr;
}

void MGlyphPainter::Draw(cairo_t* context, std::uint32_t glyph, double x, double y, double em, MColour colour,
                         bool colours) {
    if (!face.face || !(em > 0)) return;
    double left = 0, top = 0, right = 0, bottom = 0;
    cairo_clip_extents(context, &left, &top, &right, &bottom);
    if (!credit.Begin((right - left) * (bottom - top))) {
        LostGlyphs::Add();
        return;
    }
    cairo_save(context);
    cairo_translate(context, x, y);
    // The mapper's slant, for a y that points downwards.
    const auto& [xx, xy, yx, yy] = face.match.matrix;
    const cairo_matrix_t slant{xx, -yx, -xy, yy, 0, 0};
    if (xx * yy - xy * yx != 0) cairo_transform(context, &slant);
    DrawWhole(context, glyph, em, colour, colours);
    cairo_restore(context);
    credit.End();
}

void MGlyphPainter::DrawWhole(cairo_t* context, std::uint32_t glyph, double em, MColour colour, bool colours) {
    if (!colours || !DrawColours(context, glyph, em, colour)) {
        const double scale = em / face.unitsPerEm;
        cairo_scale(context, scale, -scale);
        cairo_new_path(context);
        if (AddGlyphPath(context, face, glyph, face.match.embolden)) {
            cairo_set_source_rgba(context, colour.r / 255.0, colour.g / 255.0, colour.b / 255.0,
                                  colour.a / 255.0);
            cairo_fill(context);
        }
        cairo_new_path(context);
    }
}

bool MGlyphPainter::DrawColours(cairo_t* context, std::uint32_t glyph, double em, MColour colour) {
    const double scale = em / face.unitsPerEm;
    if (const MPaintTree* const paints = TreeOf(glyph)) {
        cairo_save(context);
        cairo_scale(context, scale, -scale);
        const bool painted = PaintTree(context, *paints, face, colour, &credit);
        cairo_restore(context);
        if (painted) return true;
        if (credit.IsOver()) {
            LostGlyphs::Add();
            return true;
        }
    }
    if (glyph <= UINT16_MAX && !documents->IsEmpty()) {
        cairo_save(context);
        cairo_scale(context, scale, scale);
        const bool painted =
            documents->Draw(context, static_cast<std::uint16_t>(glyph), face.unitsPerEm, colour);
        cairo_restore(context);
        if (painted) return true;
    }
    return DrawBitmap(context, glyph, em);
}

namespace {

// By its size alone: a strike of few bytes can unpack to gigabytes, for each glyph.
bool IsWithinBudget(FT_Face face, std::uint32_t glyph) {
    if (FT_Load_Glyph(face, glyph, FT_LOAD_COLOR | FT_LOAD_BITMAP_METRICS_ONLY) != 0) return false;
    const FT_GlyphSlot slot = face->glyph;
    if (slot->format != FT_GLYPH_FORMAT_BITMAP) return true;
    // What the file has for each glyph, of which there are hundreds; a claim of few doesn't make it much.
    constexpr std::uint64_t mostBytes = 4096;
    const std::uint64_t glyphs = static_cast<std::uint64_t>(std::max<FT_Long>(face->num_glyphs, 1));
    const std::uint64_t bytes = face->stream ? face->stream->size / glyphs : 0;
    return TakePixels(slot->bitmap.width, slot->bitmap.rows, std::min(bytes / 4, mostBytes));
}

} // namespace

// Loads the glyph from the smallest strike that is at least as large as asked, else from the largest.
bool MGlyphPainter::SelectBitmap(std::uint32_t glyph, double em) {
    if (!hasBitmaps) return false;
    FT_Face const ft = face.bitmaps;
    FT_Int best = 0;
    for (FT_Int i = 1; i < ft->num_fixed_sizes; ++i) {
        const FT_Pos size = ft->available_sizes[i].y_ppem;
        const FT_Pos chosen = ft->available_sizes[best].y_ppem;
        const bool large = static_cast<double>(size) >= em * 64;
        const bool chosenLarge = static_cast<double>(chosen) >= em * 64;
        if (large == chosenLarge ? (large ? size < chosen : size > chosen) : large) best = i;
    }
    return FT_Select_Size(ft, best) == 0 && IsWithinBudget(ft, glyph) &&
           FT_Load_Glyph(ft, glyph, FT_LOAD_COLOR) == 0 && ft->glyph->format == FT_GLYPH_FORMAT_BITMAP &&
           ft->glyph->bitmap.pixel_mode == FT_PIXEL_MODE_BGRA && ft->size->metrics.y_ppem > 0;
}

bool MGlyphPainter::DrawBitmap(cairo_t* context, std::uint32_t glyph, double em) {
    if (!SelectBitmap(glyph, em)) return false;
    FT_GlyphSlot const slot = face.bitmaps->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    if (bitmap.width == 0 || bitmap.rows == 0 || bitmap.pitch < 0) return true;
    cairo_surface_t* const image =
        cairo_image_surface_create_for_data(bitmap.buffer, CAIRO_FORMAT_ARGB32, static_cast<int>(bitmap.width),
                                            static_cast<int>(bitmap.rows), bitmap.pitch);
    cairo_save(context);
    const double scale = em / face.bitmaps->size->metrics.y_ppem;
    cairo_scale(context, scale, scale);
    cairo_set_source_surface(context, image, slot->bitmap_left, -slot->bitmap_top);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_GOOD);
    cairo_paint(context);
    cairo_restore(context);
    cairo_surface_destroy(image);
    return true;
}
