#include "platform/text/MPaintTreePainter.h"

#include "platform/text/MGlyphPath.h"
#include "platform/text/MGradients.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Beyond this Cairo's fixed-point coordinates, 23 bits of whole pixels, come near their end.
constexpr double farthest = 1e6;
// A glyph of more paints than this is painted aside first, since its pixels or its groups may run out.
constexpr std::size_t manyPaints = 48;
constexpr double mostPixels = 2e9;
constexpr int mostGroups = 24; // inside one another; each takes the memory of the clip's extents

// In the order of OpenType's CompositeMode.
constexpr std::array operators{
    CAIRO_OPERATOR_CLEAR,      CAIRO_OPERATOR_SOURCE,
    CAIRO_OPERATOR_DEST,       CAIRO_OPERATOR_OVER,
    CAIRO_OPERATOR_DEST_OVER,  CAIRO_OPERATOR_IN,
    CAIRO_OPERATOR_DEST_IN,    CAIRO_OPERATOR_OUT,
    CAIRO_OPERATOR_DEST_OUT,   CAIRO_OPERATOR_ATOP,
    CAIRO_OPERATOR_DEST_ATOP,  CAIRO_OPERATOR_XOR,
    CAIRO_OPERATOR_ADD,        CAIRO_OPERATOR_SCREEN,
    CAIRO_OPERATOR_OVERLAY,    CAIRO_OPERATOR_DARKEN,
    CAIRO_OPERATOR_LIGHTEN,    CAIRO_OPERATOR_COLOR_DODGE,
    CAIRO_OPERATOR_COLOR_BURN, CAIRO_OPERATOR_HARD_LIGHT,
    CAIRO_OPERATOR_SOFT_LIGHT, CAIRO_OPERATOR_DIFFERENCE,
    CAIRO_OPERATOR_EXCLUSION,  CAIRO_OPERATOR_MULTIPLY,
    CAIRO_OPERATOR_HSL_HUE,    CAIRO_OPERATOR_HSL_SATURATION,
    CAIRO_OPERATOR_HSL_COLOR,  CAIRO_OPERATOR_HSL_LUMINOSITY,
};
static_assert(operators.size() == 28);

using Extents = std::array<double, 4>; // left, top, right, bottom

Extents ToDevice(cairo_t* context, double x0, double y0, double x1, double y1) {
    Extents extents{HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (const auto& [cornerX, cornerY] : {std::array{x0, y0}, {x1, y0}, {x0, y1}, {x1, y1}}) {
        double x = cornerX;
        double y = cornerY;
        cairo_user_to_device(context, &x, &y);
        extents = {std::min(extents[0], x), std::min(extents[1], y), std::max(extents[2], x),
                   std::max(extents[3], y)};
    }
    return extents;
}

bool IsEmpty(const Extents& extents) {
    return !(extents[2] > extents[0] && extents[3] > extents[1]);
}

class Painter {
public:
    bool exhausted = false;

    Painter(cairo_t* cairo, const MPaintTree& paintTree, const MOpenFace& openFace, MColour text,
            const MDrawingCredit* time)
        : context(cairo), tree(paintTree), face(openFace), foreground(text), credit(time) {}

    void Paint(std::uint32_t index) {
        if (exhausted) return;
        const MPaint& paint = tree.paints[index];
        switch (paint.kind) {
        case MPaintKind::Layers: PaintChildren(paint); break;
        case MPaintKind::Glyph: PaintGlyph(paint); break;
        case MPaintKind::Box: PaintBox(paint); break;
        case MPaintKind::Transform: PaintTransformed(paint); break;
        case MPaintKind::Composite: PaintComposite(paint); break;
        default: PaintEverywhere(paint); break;
        }
    }

private:
    cairo_t* context;
    const MPaintTree& tree;
    const MOpenFace& face;
    MColour foreground;
    const MDrawingCredit* credit;
    double pixels = 0;
    int groups = 0;

    void PaintChildren(const MPaint& paint) {
        for (const std::uint32_t child : paint.children)
            Paint(child);
    }

    Extents ClipExtents() const {
        double x0 = 0;
        double y0 = 0;
        double x1 = 0;
        double y1 = 0;
        cairo_clip_extents(context, &x0, &y0, &x1, &y1);
        return ToDevice(context, x0, y0, x1, y1);
    }

    // False if no more may be painted.
    bool Spend(const Extents& extents) {
        if (!IsEmpty(extents)) pixels += (extents[2] - extents[0]) * (extents[3] - extents[1]);
        exhausted = exhausted || pixels > mostPixels || (credit && credit->IsOver());
        return !exhausted;
    }

    // False where the coordinates would no longer say anything.
    bool Transform(const std::array<float, 6>& numbers) {
        const auto& [xx, yx, xy, yy, dx, dy] = numbers;
        cairo_matrix_t matrix{xx, yx, xy, yy, dx, dy};
        cairo_matrix_t current;
        cairo_get_matrix(context, &current);
        cairo_matrix_multiply(&matrix, &matrix, &current);
        for (const double number : {matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0, matrix.y0})
            if (!(std::abs(number) < 1e9)) return false;
        if (std::abs(matrix.xx * matrix.yy - matrix.xy * matrix.yx) < 1e-12) return false;
        cairo_set_matrix(context, &matrix);
        return true;
    }

    // What a shape is filled with, if that needs no clip: a colour or a gradient below any number of
    // transforms, which are applied on the way.
    const MPaint* Filling(const MPaint& shape) {
        const MPaint* paint = &shape;
        do {
            if (paint->children.size() != 1) return nullptr;
            if (paint->kind == MPaintKind::Transform && !Transform(paint->numbers)) return nullptr;
            paint = &tree.paints[paint->children.front()];
        } while (paint->kind == MPaintKind::Transform || paint->kind == MPaintKind::Layers);
        const bool fills = paint->kind == MPaintKind::Solid || paint->kind == MPaintKind::Linear ||
                           paint->kind == MPaintKind::Radial || paint->kind == MPaintKind::Sweep;
        return fills ? paint : nullptr;
    }

    // Of the current path inside the clip; empty also for a path too far away to be drawn.
    Extents PathExtents() const {
        double x0 = 0;
        double y0 = 0;
        double x1 = 0;
        double y1 = 0;
        cairo_path_extents(context, &x0, &y0, &x1, &y1);
        const Extents path = ToDevice(context, x0, y0, x1, y1);
        if (std::ranges::any_of(path, [](double x) { return !(std::abs(x) < farthest); })) return {};
        const Extents clip = ClipExtents();
        return {std::max(path[0], clip[0]), std::max(path[1], clip[1]), std::min(path[2], clip[2]),
                std::min(path[3], clip[3])};
    }

    void PaintGlyph(const MPaint& paint) {
        cairo_new_path(context);
        if (!AddGlyphPath(context, face, paint.glyph, false)) return;
        const Extents extents = PathExtents();
        if (IsEmpty(extents) || !Spend(extents)) {
            cairo_new_path(context);
            return;
        }
        cairo_save(context);
        if (const MPaint* const filling = Filling(paint)) {
            if (SetSource(context, *filling, foreground, extents)) cairo_fill(context);
            cairo_restore(context);
        } else {
            cairo_restore(context);
            cairo_save(context);
            cairo_clip(context);
            PaintChildren(paint);
            cairo_restore(context);
        }
        cairo_new_path(context);
    }

    void PaintBox(const MPaint& paint) {
        const auto& numbers = paint.numbers;
        cairo_save(context);
        cairo_rectangle(context, numbers[0], numbers[1], numbers[2] - numbers[0], numbers[3] - numbers[1]);
        cairo_clip(context);
        PaintChildren(paint);
        cairo_restore(context);
    }

    void PaintTransformed(const MPaint& paint) {
        cairo_save(context);
        if (Transform(paint.numbers)) PaintChildren(paint);
        cairo_restore(context);
    }

    void PaintEverywhere(const MPaint& paint) {
        const Extents clip = ClipExtents();
        if (IsEmpty(clip) || !Spend(clip)) return;
        cairo_save(context);
        if (SetSource(context, paint, foreground, clip)) cairo_paint(context);
        cairo_restore(context);
    }

    // Into an image of its own, which is clipped only where it is put on what lies below, so that no edge is
    // thinned twice.
    void PaintAside(std::uint32_t index) {
        cairo_push_group(context);
        cairo_reset_clip(context);
        Paint(index);
        cairo_pop_group_to_source(context);
    }

    void PaintComposite(const MPaint& paint) {
        const Extents clip = ClipExtents();
        if (paint.children.size() != 2 || IsEmpty(clip)) return;
        if (groups >= mostGroups) exhausted = true;
        for (int group = 0; group < 3; ++group)
            if (!Spend(clip)) return;
        ++groups;
        cairo_save(context);
        cairo_push_group(context);
        cairo_reset_clip(context);
        Paint(paint.children[1]);
        PaintAside(paint.children[0]);
        cairo_set_operator(context, operators[paint.mode]);
        cairo_paint(context);
        cairo_pop_group_to_source(context);
        cairo_paint(context);
        cairo_restore(context);
        --groups;
    }
};

} // namespace

bool PaintTree(cairo_t* context, const MPaintTree& tree, const MOpenFace& face, MColour foreground,
               const MDrawingCredit* credit) {
    if (tree.paints.empty()) return false;
    const bool aside = tree.paints.size() > manyPaints;
    cairo_save(context);
    if (aside) cairo_push_group(context);
    Painter painter(context, tree, face, foreground, credit);
    painter.Paint(0);
    if (aside) {
        cairo_pop_group_to_source(context);
        if (!painter.exhausted) cairo_paint(context);
    }
    cairo_restore(context);
    return !painter.exhausted;
}
