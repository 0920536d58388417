#include "platform/text/MGradients.h"

#include "platform/text/MGradientImages.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double tiny = 1e-9;

MStops ResolveAll(const MPaint& paint, MColour foreground) {
    MStops stops;
    stops.reserve(paint.stops.size());
    for (const MColourStop& stop : paint.stops)
        stops.push_back(Resolve(stop.colour, foreground, stop.offset));
    return stops;
}

void AddStops(cairo_pattern_t* pattern, const MStops& stops) {
    const double first = stops.front().offset;
    const double range = std::max(stops.back().offset - first, tiny);
    for (const MResolvedStop& stop : stops)
        cairo_pattern_add_color_stop_rgba(pattern, (stop.offset - first) / range, stop.r, stop.g, stop.b,
                                          stop.a);
}

cairo_extend_t CairoExtend(MExtend extend) {
    switch (extend) {
    case MExtend::Repeat: return CAIRO_EXTEND_REPEAT;
    case MExtend::Reflect: return CAIRO_EXTEND_REFLECT;
    default: return CAIRO_EXTEND_PAD;
    }
}

bool SetPattern(cairo_t* context, cairo_pattern_t* pattern, const MStops& stops, MExtend extend) {
    AddStops(pattern, stops);
    cairo_pattern_set_extend(pattern, CairoExtend(extend));
    cairo_set_source(context, pattern);
    cairo_pattern_destroy(pattern);
    return true;
}

// Cairo knows stops from 0 to 1 only, so the geometry is moved to where the first and the last stop are. Stops
// that all lie in one place leave just a step from the first colour to the last.
double LastOffset(const MStops& stops) {
    return std::max(stops.back().offset, stops.front().offset + tiny);
}

bool HasNoWidth(const MStops& stops) {
    return stops.back().offset - stops.front().offset < tiny;
}

bool SetLinear(cairo_t* context, const MPaint& paint, const MStops& stops,
               const std::array<double, 4>& extents) {
    const auto& [x0, y0, x1, y1, x2, y2] = paint.numbers;
    const double dx = double{x1} - x0;
    const double dy = double{y1} - y0;
    // The third point turns the gradient: its lines of one colour run along p0 p2.
    const double nx = double{y2} - y0;
    const double ny = double{x0} - x2;
    const double length = nx * nx + ny * ny;
    const double along = dx * nx + dy * ny;
    if (length < tiny || std::abs(along) < tiny) return false;
    const MLinearPlace place{x0, y0, nx * along / length, ny * along / length};
    return SetLinearImage(context, place, stops, paint.extend, extents);
}

struct Circles {
    double x, y, r, dx, dy, dr;

    double Radius(double t) const { return r + dr * t; }
};

// A radius below 0 has no circle. Repeating colours look the same a period further on, so the circles move to
// where both radii are positive; padding ends where the radius is 0, in the colour that it has there.
bool AvoidNegativeRadii(const Circles& circles, MStops& stops, MExtend extend) {
    const double first = stops.front().offset;
    const double last = stops.back().offset;
    const double lowest = std::min(circles.Radius(first), circles.Radius(last));
    if (lowest >= 0) return true;
    if (extend == MExtend::Pad) {
        if (std::max(circles.Radius(first), circles.Radius(last)) <= 0) {
            // Only the colour beyond the end with the greater radius shows.
            return false;
        }
        const double zero = -circles.r / circles.dr;
        const MResolvedStop edge = [&] {
            MResolvedStop stop = ColourAt(stops, zero);
            stop.offset = zero;
            return stop;
        }();
        if (circles.dr > 0) {
            std::erase_if(stops, [&](const MResolvedStop& stop) { return stop.offset < zero; });
            stops.insert(stops.begin(), edge);
        } else {
            std::erase_if(stops, [&](const MResolvedStop& stop) { return stop.offset > zero; });
            stops.push_back(edge);
        }
        return true;
    }
    const double period = (last - first) * (extend == MExtend::Reflect ? 2 : 1);
    const double growth = std::abs(circles.dr) * period;
    if (growth < tiny) return false;
    const double shift = std::ceil(-lowest / growth) * (circles.dr > 0 ? period : -period);
    for (MResolvedStop& stop : stops)
        stop.offset += shift;
    return true;
}

// Pixels for one unit, on average. A gradient is described in pixels, so that the matrix from the image to it
// stays near 1 however much the font is scaled.
double PixelScale(cairo_t* context) {
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    return std::sqrt(std::abs(matrix.xx * matrix.yy - matrix.xy * matrix.yx));
}

// Whether the matrix from pixels to a pattern has numbers that Cairo's image backend can hold, which are 16
// bits with a sign before the point. Others it answers with the error that it is out of memory, for good.
bool IsInReach(cairo_t* context, const cairo_matrix_t& toPattern) {
    constexpr double farthest = 32000;
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    if (cairo_matrix_invert(&matrix) != CAIRO_STATUS_SUCCESS) return false;
    cairo_matrix_multiply(&matrix, &matrix, &toPattern);
    return std::ranges::all_of(std::array{matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0, matrix.y0},
                               [](double number) { return std::abs(number) < farthest; });
}

bool SetRadial(cairo_t* context, const MPaint& paint, MStops stops) {
    const auto& [x0, y0, r0, x1, y1, r1] = paint.numbers;
    const Circles circles{x0, y0, r0, double{x1} - x0, double{y1} - y0, double{r1} - r0};
    if (std::abs(circles.dx) < tiny && std::abs(circles.dy) < tiny && std::abs(circles.dr) < tiny) return false;
    if (HasNoWidth(stops)) {
        if (paint.extend != MExtend::Pad) return false;
        // A hard step needs some room between its circles.
        stops = {stops.front(), stops.back()};
        stops.back().offset += 1e-4;
    }
    if (!AvoidNegativeRadii(circles, stops, paint.extend)) return false;
    const double first = stops.front().offset;
    const double last = LastOffset(stops);
    const double scale = PixelScale(context);
    cairo_matrix_t toPattern;
    cairo_matrix_init_scale(&toPattern, scale, scale);
    if (!IsInReach(context, toPattern)) return false;
    const auto radius = [&](double t) { return std::max(circles.Radius(t), 0.0) * scale; };
    cairo_pattern_t* const pattern = cairo_pattern_create_radial(
        (circles.x + circles.dx * first) * scale, (circles.y + circles.dy * first) * scale, radius(first),
        (circles.x + circles.dx * last) * scale, (circles.y + circles.dy * last) * scale, radius(last));
    cairo_pattern_set_matrix(pattern, &toPattern);
    return SetPattern(context, pattern, stops, paint.extend);
}

} // namespace

MResolvedStop Resolve(const MPaintColour& colour, MColour foreground, double offset) {
    if (!colour.foreground) return {offset, colour.r, colour.g, colour.b, colour.a};
    return {offset, foreground.r / 255.0, foreground.g / 255.0, foreground.b / 255.0,
            foreground.a / 255.0 * double{colour.a}};
}

bool SetSource(cairo_t* context, const MPaint& paint, MColour foreground,
               const std::array<double, 4>& extents) {
    if (paint.kind == MPaintKind::Solid) {
        const MResolvedStop colour = Resolve(paint.colour, foreground);
        cairo_set_source_rgba(context, colour.r, colour.g, colour.b, colour.a);
        return true;
    }
    MStops stops = ResolveAll(paint, foreground);
    if (stops.empty()) return false;
    switch (paint.kind) {
    case MPaintKind::Linear: return SetLinear(context, paint, stops, extents);
    case MPaintKind::Radial: return SetRadial(context, paint, std::move(stops));
    case MPaintKind::Sweep:
        return SetSweepImage(context, paint.numbers[0], paint.numbers[1], paint.numbers[2], paint.numbers[3],
                             stops, paint.extend, extents);
    default: return false;
    }
}
