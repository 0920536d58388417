#include "platform/text/MGradients.h"

#include "foundation/MNumbers.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <optional>

namespace {

using Stops = std::vector<MResolvedStop>;

constexpr double tiny = 1e-9;

// Colours between stops are mixed as they stand, not premultiplied, as Cairo does it too and browsers do.
MResolvedStop Mix(const MResolvedStop& first, const MResolvedStop& second, double t, double offset) {
    const auto mix = [t](double from, double to) { return from + (to - from) * t; };
    return {offset, mix(first.r, second.r), mix(first.g, second.g), mix(first.b, second.b),
            mix(first.a, second.a)};
}

Stops ResolveAll(const MPaint& paint, MColour foreground) {
    Stops stops;
    stops.reserve(paint.stops.size());
    for (const MColourStop& stop : paint.stops)
        stops.push_back(Resolve(stop.colour, foreground, stop.offset));
    return stops;
}

MResolvedStop At(const Stops& stops, double t) {
    if (t <= stops.front().offset) return stops.front();
    const auto next = std::ranges::upper_bound(stops, t, {}, &MResolvedStop::offset);
    if (next == stops.end()) return stops.back();
    const MResolvedStop& previous = *(next - 1);
    return Mix(previous, *next, (t - previous.offset) / (next->offset - previous.offset), t);
}

void AddStops(cairo_pattern_t* pattern, const Stops& stops) {
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

bool SetPattern(cairo_t* context, cairo_pattern_t* pattern, const Stops& stops, MExtend extend) {
    AddStops(pattern, stops);
    cairo_pattern_set_extend(pattern, CairoExtend(extend));
    cairo_set_source(context, pattern);
    cairo_pattern_destroy(pattern);
    return true;
}

// Cairo knows stops from 0 to 1 only, so the geometry is moved to where the first and the last stop are. Stops
// that all lie in one place leave just a step from the first colour to the last.
double LastOffset(const Stops& stops) {
    return std::max(stops.back().offset, stops.front().offset + tiny);
}

bool HasNoWidth(const Stops& stops) {
    return stops.back().offset - stops.front().offset < tiny;
}

bool SetLinear(cairo_t* context, const MPaint& paint, const Stops& stops) {
    const auto& [x0, y0, x1, y1, x2, y2] = paint.numbers;
    const double dx = double{x1} - x0;
    const double dy = double{y1} - y0;
    // The third point turns the gradient: its lines of one colour run along p0 p2.
    const double nx = double{y2} - y0;
    const double ny = double{x0} - x2;
    const double length = nx * nx + ny * ny;
    const double along = dx * nx + dy * ny;
    if (length < tiny || std::abs(along) < tiny) return false;
    const double gx = nx * along / length;
    const double gy = ny * along / length;
    const double first = stops.front().offset;
    if (HasNoWidth(stops)) {
        if (paint.extend != MExtend::Pad) return false;
        Stops step{stops.front(), stops.back()};
        step[1].offset = step[0].offset;
        cairo_pattern_t* const pattern = cairo_pattern_create_linear(
            x0 + gx * first, y0 + gy * first, x0 + gx * (first + 1), y0 + gy * (first + 1));
        return SetPattern(context, pattern, step, paint.extend);
    }
    const double last = LastOffset(stops);
    cairo_pattern_t* const pattern =
        cairo_pattern_create_linear(x0 + gx * first, y0 + gy * first, x0 + gx * last, y0 + gy * last);
    return SetPattern(context, pattern, stops, paint.extend);
}

struct Circles {
    double x, y, r, dx, dy, dr;

    double Radius(double t) const { return r + dr * t; }
};

// A radius below 0 has no circle. Repeating colours look the same a period further on, so the circles move to
// where both radii are positive; padding ends where the radius is 0, in the colour that it has there.
bool AvoidNegativeRadii(const Circles& circles, Stops& stops, MExtend extend) {
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
            MResolvedStop stop = At(stops, zero);
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

bool SetRadial(cairo_t* context, const MPaint& paint, Stops stops) {
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
    const auto radius = [&](double t) { return std::max(circles.Radius(t), 0.0); };
    cairo_pattern_t* const pattern = cairo_pattern_create_radial(
        circles.x + circles.dx * first, circles.y + circles.dy * first, radius(first),
        circles.x + circles.dx * last, circles.y + circles.dy * last, radius(last));
    return SetPattern(context, pattern, stops, paint.extend);
}

double Extended(double t, double first, double last, MExtend extend) {
    if (extend == MExtend::Pad) return t;
    const double range = last - first;
    double place = (t - first) / range;
    if (extend == MExtend::Repeat) {
        place -= std::floor(place);
    } else {
        place = std::abs(place - 2 * std::floor(place / 2 + 0.5));
    }
    return first + place * range;
}

std::uint32_t Premultiplied(const MResolvedStop& stop) {
    const auto byte = [](double value) {
        return static_cast<std::uint32_t>(ToInteger(std::clamp(value, 0.0, 1.0) * 255 + 0.5));
    };
    return byte(stop.a) << 24 | byte(stop.r * stop.a) << 16 | byte(stop.g * stop.a) << 8 |
           byte(stop.b * stop.a);
}

// Cairo has no sweep, so its pixels are made here, each from the angle of its centre.
bool SetSweep(cairo_t* context, const MPaint& paint, const Stops& stops, const std::array<double, 4>& extents) {
    const double start = paint.numbers[2];
    const double turn = double{paint.numbers[3]} - start;
    if ((std::abs(turn) < tiny || HasNoWidth(stops)) && paint.extend != MExtend::Pad) return false;
    cairo_matrix_t inverse;
    cairo_get_matrix(context, &inverse);
    if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return false;
    const double left = std::floor(extents[0]);
    const double top = std::floor(extents[1]);
    const std::int32_t width = ToInteger(std::ceil(extents[2]) - left);
    const std::int32_t height = ToInteger(std::ceil(extents[3]) - top);
    if (width < 1 || height < 1 || width > 32767 || height > 32767) return false;

    // Angles are looked up finely enough that a step between two entries is finer than a level of colour.
    constexpr std::size_t entries = 4096;
    std::vector<std::uint32_t> colours(entries + 1);
    for (std::size_t i = 0; i <= entries; ++i) {
        const double angle = 360.0 * static_cast<double>(i) / entries;
        const double t =
            std::abs(turn) < tiny ? (angle < start ? -HUGE_VAL : HUGE_VAL) : (angle - start) / turn;
        colours[i] =
            Premultiplied(At(stops, Extended(t, stops.front().offset, stops.back().offset, paint.extend)));
    }

    cairo_surface_t* const image = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    unsigned char* const data = cairo_image_surface_get_data(image);
    if (!data) {
        cairo_surface_destroy(image);
        return false;
    }
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(image));
    for (std::size_t row = 0; row < static_cast<std::size_t>(height); ++row) {
        auto* const pixels = reinterpret_cast<std::uint32_t*>(data + row * stride);
        for (std::size_t column = 0; column < static_cast<std::size_t>(width); ++column) {
            double x = left + static_cast<double>(column) + 0.5;
            double y = top + static_cast<double>(row) + 0.5;
            cairo_matrix_transform_point(&inverse, &x, &y);
            double turns = std::atan2(y - paint.numbers[1], x - paint.numbers[0]) / (2 * std::numbers::pi);
            if (!(turns >= 0)) turns += 1;
            pixels[column] =
                colours[static_cast<std::size_t>(ToInteger(std::clamp(turns, 0.0, 1.0) * entries))];
        }
    }
    cairo_surface_mark_dirty(image);
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    cairo_identity_matrix(context);
    cairo_set_source_surface(context, image, left, top);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
    cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_PAD);
    cairo_set_matrix(context, &matrix);
    cairo_surface_destroy(image);
    return true;
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
    Stops stops = ResolveAll(paint, foreground);
    if (stops.empty()) return false;
    switch (paint.kind) {
    case MPaintKind::Linear: return SetLinear(context, paint, stops);
    case MPaintKind::Radial: return SetRadial(context, paint, std::move(stops));
    case MPaintKind::Sweep: return SetSweep(context, paint, stops, extents);
    default: return false;
    }
}
