#include "glyphs/MDirect2DSurface.h"

#include "foundation/MFolders.h"
#include "foundation/MNumbers.h"

#include <cairo.h>

#include <algorithm>

namespace {

constexpr double channelScale = 0.003921569;

bool SameKey(const MTextFormatKey& a, const MTextFormatKey& b) {
    return a.family.Equals(b.family) && a.size == b.size && a.weight == b.weight && a.italic == b.italic &&
           a.textAlignment == b.textAlignment && a.paragraphAlignment == b.paragraphAlignment &&
           a.wrap == b.wrap;
}

MTextAlignment ToAlignment(std::int32_t value) {
    if (value == 0) return MTextAlignment::Centre;
    return value == 1 ? MTextAlignment::Far : MTextAlignment::Near;
}

// One axis of a picture of `size` pixels, centred from `from` to `to`: no longer than that, and no larger than
// it is.
struct Span {
    std::int32_t first;
    std::int32_t last;
};

Span Centre(std::int32_t from, std::int32_t to, std::uint32_t size, float scale) {
    const auto centre = static_cast<float>((std::int64_t{from} + to) / 2);
    const float half = static_cast<float>(size) * 0.5F * scale;
    return {std::max(from, ToInteger(centre - half)), std::min(to, ToInteger(centre + half))};
}

} // namespace

MDirect2DSurface::MDirect2DSurface(MSurfaceBitmap& bitmap) {
    if (!bitmap.IsValid()) return;
    area = {0, 0, bitmap.width, bitmap.height};
    target = cairo_create(bitmap.image);
    valid = cairo_status(target) == CAIRO_STATUS_SUCCESS;
}

MDirect2DSurface::MDirect2DSurface(Desktop::WindowHandle owner, const Desktop::Rect& rectangle)
    : area(rectangle), window(owner) {
    if (area.IsEmpty()) return;
    valid = true;
    if (!window) return;
    windowBitmap = std::make_unique<MSurfaceBitmap>(area.Width(), area.Height());
    valid = windowBitmap->IsValid();
    if (valid) target = cairo_create(windowBitmap->image);
}

MDirect2DSurface::~MDirect2DSurface() {
    textFormat.reset();
    strokeStyle.reset();
    if (brush) cairo_pattern_destroy(brush);
    if (target) cairo_destroy(target);
}

std::int32_t MDirect2DSurface::MapX(double x) const {
    return ToInteger((x - area.left) * double{coordinateScale});
}

std::int32_t MDirect2DSurface::MapY(double y) const {
    return ToInteger((y - area.top) * double{coordinateScale});
}

Desktop::Rect MDirect2DSurface::Map(const Desktop::Rect& rectangle) const {
    return {MapX(rectangle.left), MapY(rectangle.top), MapX(rectangle.right), MapY(rectangle.bottom)};
}

bool MDirect2DSurface::Begin() {
    if (!valid) return false;
    if (target) cairo_identity_matrix(target);
    return true;
}

void MDirect2DSurface::Clear(const MColour& colour) {
    if (!valid || !target) return;
    // A window's own alpha means nothing.
    const double alpha = window ? 1.0 : colour.a * channelScale;
    cairo_save(target);
    cairo_set_operator(target, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(target, colour.r * channelScale, colour.g * channelScale, colour.b * channelScale,
                          alpha);
    cairo_paint(target);
    cairo_restore(target);
}

void MDirect2DSurface::End() {
    if (!valid || !target) return;
    cairo_surface_flush(cairo_get_target(target));
    if (!windowBitmap) return;
    Desktop::Present(window, area,
                     {windowBitmap->width, windowBitmap->height, windowBitmap->stride, windowBitmap->pixels});
}

void MDirect2DSurface::PushClip(const Desktop::Rect& rectangle) {
    if (!valid || !target) return;
    cairo_save(target);
    cairo_rectangle(target, rectangle.left, rectangle.top, rectangle.Width(), rectangle.Height());
    cairo_clip(target);
}

void MDirect2DSurface::PopClip() {
    if (valid && target) cairo_restore(target);
}

bool MDirect2DSurface::TakeBrush(const MColour& colour) {
    if (!valid || !target) return false;
    if (!brush || !(brushColour == colour)) {
        if (brush) cairo_pattern_destroy(brush);
        brushColour = colour;
        brush =
            cairo_pattern_create_rgba(colour.r / 255.0, colour.g / 255.0, colour.b / 255.0, colour.a / 255.0);
    }
    cairo_set_source(target, brush);
    return true;
}

bool MDirect2DSurface::TakeTextFormat(MTextFormatKey key) {
    if (!textFormat || !SameKey(key, textFormatKey)) {
        textFormatKey = std::move(key);
        textFormat = std::make_unique<MTextFormat>(MTextStyle{
            textFormatKey.family,
            textFormatKey.size,
            textFormatKey.weight,
            textFormatKey.italic,
            ToAlignment(textFormatKey.textAlignment),
            ToAlignment(textFormatKey.paragraphAlignment),
            textFormatKey.wrap,
        });
    }
    return textFormat->valid;
}

void MDirect2DSurface::DrawText(Desktop::Rect rectangle, const MString& text, const MString& family, float size,
                                std::int32_t weight, bool italic, const MColour& colour,
                                std::int32_t textAlignment, std::int32_t paragraphAlignment, bool colourLayers,
                                bool clip, bool mapCoordinates, bool wrap) {
    if (mapCoordinates) {
        rectangle = Map(rectangle);
        size *= coordinateScale;
    }
    if (!(size > 0)) size = 12.0F;
    if (weight <= 0) weight = 400;
    if (!TakeBrush(colour)) return;
    if (!TakeTextFormat({family.IsEmpty() ? MString("MS Shell Dlg") : family, ToInteger(size), weight, italic,
                         textAlignment, paragraphAlignment, wrap}))
        return;
    const MTextBox box{static_cast<double>(rectangle.left), static_cast<double>(rectangle.top),
                       static_cast<double>(rectangle.right) - rectangle.left,
                       static_cast<double>(rectangle.bottom) - rectangle.top};
    textFormat->Draw(target, text, box, colour, colourLayers, clip);
}

void MDirect2DSurface::DrawLine(MPointF from, MPointF to, float width, const MColour& colour,
                                bool mapCoordinates) {
    if (mapCoordinates) {
        from = {static_cast<float>(MapX(from.x)), static_cast<float>(MapY(from.y))};
        to = {static_cast<float>(MapX(to.x)), static_cast<float>(MapY(to.y))};
        width *= coordinateScale;
    }
    if (!TakeBrush(colour)) return;
    if (!strokeStyle) strokeStyle = std::make_unique<MStrokeStyle>();
    cairo_save(target);
    cairo_set_line_cap(target, strokeStyle->roundCaps ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_line_width(target, std::max(width, 0.0F));
    cairo_move_to(target, from.x, from.y);
    cairo_line_to(target, to.x, to.y);
    cairo_stroke(target);
    cairo_restore(target);
}

void MDirect2DSurface::DrawRectangle(Desktop::Rect rectangle, const MColour& colour, bool filled,
                                     float strokeWidth, bool mapCoordinates) {
    if (rectangle.IsEmpty()) return;
    if (mapCoordinates) {
        rectangle = Map(rectangle);
        strokeWidth *= coordinateScale;
    }
    if (!TakeBrush(colour)) return;
    cairo_rectangle(target, rectangle.left, rectangle.top,
                    static_cast<double>(rectangle.right) - rectangle.left,
                    static_cast<double>(rectangle.bottom) - rectangle.top);
    if (filled) {
        cairo_fill(target);
    } else {
        cairo_set_line_width(target, std::max(strokeWidth, 0.0F));
        cairo_stroke(target);
    }
}

MPixelSize MDirect2DSurface::FittedSize(const MPicture& picture, const Desktop::Rect& rectangle) {
    const auto width = static_cast<float>(picture.Width);
    const auto height = static_cast<float>(picture.Height);
    const float scale = std::min(static_cast<float>(rectangle.Width()) / width,
                                 static_cast<float>(rectangle.Height()) / height);
    if (scale >= 1.0F) return {picture.Width, picture.Height};
    return {static_cast<std::uint32_t>(std::max(ToInteger(width * scale), 0)),
            static_cast<std::uint32_t>(std::max(ToInteger(height * scale), 0))};
}

void MDirect2DSurface::DrawPictureFitted(const MPicture& picture, Desktop::Rect rectangle,
                                         bool mapCoordinates) {
    if (!valid || !target || rectangle.IsEmpty() || !picture.IsValid()) return;
    if (mapCoordinates) rectangle = Map(rectangle);
    const MPixelSize size = FittedSize(picture, rectangle);
    if (size.width == picture.Width && size.height == picture.Height) {
        DrawBitmap(picture, rectangle);
        return;
    }
    MPicture smaller(picture, size.width, size.height, picture.Format, true, false);
    if (smaller.IsValid()) DrawBitmap(smaller, rectangle);
    smaller.Free();
}

void MDirect2DSurface::DrawBitmap(const MPicture& picture, const Desktop::Rect& rectangle) {
    const MSurfaceBitmap bitmap(picture);
    if (!bitmap.IsValid()) return;
    const float scale =
        std::min({static_cast<float>(rectangle.Width()) / static_cast<float>(picture.Width),
                  static_cast<float>(rectangle.Height()) / static_cast<float>(picture.Height), 1.0F});
    Span columns{rectangle.left, rectangle.right};
    Span rows{rectangle.top, rectangle.bottom};
    // Halves are cut off in centring, which would cost a picture of odd size its last row or column here.
    if (rectangle.Width() != bitmap.width || rectangle.Height() != bitmap.height) {
        columns = Centre(rectangle.left, rectangle.right, picture.Width, scale);
        rows = Centre(rectangle.top, rectangle.bottom, picture.Height, scale);
    }
    if (columns.last <= columns.first || rows.last <= rows.first) return;

    cairo_save(target);
    cairo_rectangle(target, columns.first, rows.first, columns.last - columns.first, rows.last - rows.first);
    cairo_clip(target);
    cairo_translate(target, columns.first, rows.first);
    cairo_scale(target, static_cast<double>(columns.last - columns.first) / bitmap.width,
                static_cast<double>(rows.last - rows.first) / bitmap.height);
    cairo_set_source_surface(target, bitmap.image, 0, 0);
    cairo_pattern_set_extend(cairo_get_source(target), CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(cairo_get_source(target), CAIRO_FILTER_BILINEAR);
    cairo_paint(target);
    cairo_restore(target);
}

void MDirect2DSurface::DrawPictureAt(const MPicture& picture, std::int32_t x, std::int32_t y,
                                     bool mapCoordinates) {
    if (!valid || !target || !picture.IsValid()) return;
    if (mapCoordinates) {
        x = MapX(x);
        y = MapY(y);
    }
    const auto end = [](std::int32_t from, std::uint32_t size) {
        return static_cast<std::int32_t>(std::min<std::int64_t>(std::int64_t{from} + size, INT32_MAX));
    };
    DrawPictureFitted(picture, {x, y, end(x, picture.Width), end(y, picture.Height)}, false);
}

bool MDirect2DSurface::DrawPictureFile(const MString& path, Desktop::Rect rectangle, bool mapCoordinates) {
    if (!FileExists(path)) return false;
    if (!valid || !target || rectangle.IsEmpty()) return true;
    if (mapCoordinates) rectangle = Map(rectangle);
    MPicture picture(path);
    const bool read = picture.IsValid();
    DrawPictureFitted(picture, rectangle, false);
    picture.Free();
    return read;
}
