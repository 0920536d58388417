#include "platform/text/MGlyphPath.h"

#include <cairo.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

struct Pen {
    cairo_t* context;
    double x = 0;
    double y = 0;
    bool open = false;

    void To(const FT_Vector& point) {
        x = static_cast<double>(point.x);
        y = static_cast<double>(point.y);
    }
};

int MoveTo(const FT_Vector* to, void* user) {
    auto& pen = *static_cast<Pen*>(user);
    if (pen.open) cairo_close_path(pen.context);
    pen.open = true;
    pen.To(*to);
    cairo_move_to(pen.context, pen.x, pen.y);
    return 0;
}

int LineTo(const FT_Vector* to, void* user) {
    auto& pen = *static_cast<Pen*>(user);
    pen.To(*to);
    cairo_line_to(pen.context, pen.x, pen.y);
    return 0;
}

int ConicTo(const FT_Vector* control, const FT_Vector* to, void* user) {
    auto& pen = *static_cast<Pen*>(user);
    const auto cx = static_cast<double>(control->x);
    const auto cy = static_cast<double>(control->y);
    const double x1 = pen.x + (cx - pen.x) * 2 / 3;
    const double y1 = pen.y + (cy - pen.y) * 2 / 3;
    pen.To(*to);
    cairo_curve_to(pen.context, x1, y1, pen.x + (cx - pen.x) * 2 / 3, pen.y + (cy - pen.y) * 2 / 3, pen.x,
                   pen.y);
    return 0;
}

int CubicTo(const FT_Vector* first, const FT_Vector* second, const FT_Vector* to, void* user) {
    auto& pen = *static_cast<Pen*>(user);
    pen.To(*to);
    cairo_curve_to(pen.context, static_cast<double>(first->x), static_cast<double>(first->y),
                   static_cast<double>(second->x), static_cast<double>(second->y), pen.x, pen.y);
    return 0;
}

} // namespace

bool AddGlyphPath(cairo_t* context, const MOpenFace& face, std::uint32_t glyph, bool embolden) {
    if (!face.face || !FT_IS_SCALABLE(face.face)) return false;
    if (FT_Load_Glyph(face.face, glyph, FT_LOAD_NO_SCALE) != 0) return false;
    FT_GlyphSlot const slot = face.face->glyph;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return false;
    if (embolden) FT_Outline_Embolden(&slot->outline, face.unitsPerEm / 24);
    static constexpr FT_Outline_Funcs walk{MoveTo, LineTo, ConicTo, CubicTo, 0, 0};
    Pen pen{context};
    if (FT_Outline_Decompose(&slot->outline, &walk, &pen) != 0) return false;
    if (pen.open) cairo_close_path(context);
    return true;
}
