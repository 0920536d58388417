#include "platform/text/MGradientImages.h"

#include "foundation/MNumbers.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <span>

namespace {

constexpr double tiny = 1e-9;

std::uint32_t Premultiplied(const MResolvedStop& stop) {
    const auto byte = [](double value) {
        return static_cast<std::uint32_t>(ToInteger(std::clamp(value, 0.0, 1.0) * 255 + 0.5));
    };
    return byte(stop.a) << 24 | byte(stop.r * stop.a) << 16 | byte(stop.g * stop.a) << 8 |
           byte(stop.b * stop.a);
}

// Colours between stops are mixed as they stand, not premultiplied, as Cairo does it too and browsers do.
MResolvedStop Mix(const MResolvedStop& first, const MResolvedStop& second, double t, double offset) {
    const auto mix = [t](double from, double to) { return from + (to - from) * t; };
    return {offset, mix(first.r, second.r), mix(first.g, second.g), mix(first.b, second.b),
            mix(first.a, second.a)};
}

// Evenly spaced colours from the first stop to the last. The first one is that of everything before it, so it
// is the first stop's own also where the next stop lies in the same place.
std::vector<std::uint32_t> Ramp(const MStops& stops, std::size_t count) {
    std::vector<std::uint32_t> colours(count);
    const double first = stops.front().offset;
    const double step = (stops.back().offset - first) / static_cast<double>(count - 1);
    for (std::size_t i = 0; i < count; ++i)
        colours[i] = Premultiplied(ColourAt(stops, first + step * static_cast<double>(i)));
    return colours;
}

// A place on the line, 0 at its first stop and 1 at its last, brought back into that range.
double Extended(double place, MExtend extend) {
    switch (extend) {
    case MExtend::Repeat: return place - std::floor(place);
    case MExtend::Reflect: return std::abs(place - 2 * std::floor(place / 2 + 0.5));
    default: return std::clamp(place, 0.0, 1.0);
    }
}

// Makes an image the source. `fill` gets each row's pixels and the device coordinates of the first one's
// centre.
template<typename Fill>
bool SetImage(cairo_t* context, const std::array<double, 4>& extents, Fill fill) {
    const double left = std::floor(extents[0]);
    const double top = std::floor(extents[1]);
    const std::int32_t width = ToInteger(std::ceil(extents[2]) - left);
    const std::int32_t height = ToInteger(std::ceil(extents[3]) - top);
    if (width < 1 || height < 1 || width > 32767 || height > 32767) return false;
    cairo_surface_t* const image = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    unsigned char* const data = cairo_image_surface_get_data(image);
    if (!data) {
        cairo_surface_destroy(image);
        return false;
    }
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(image));
    for (std::int32_t row = 0; row < height; ++row) {
        auto* const pixels = reinterpret_cast<std::uint32_t*>(data + static_cast<std::size_t>(row) * stride);
        fill(std::span(pixels, static_cast<std::size_t>(width)), left + 0.5, top + row + 0.5);
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

// With 32 bits for the whole part and 32 below.
std::int64_t ToFixed(double value) {
    const double whole = std::floor(value);
    return (std::int64_t{ToInteger(whole)} << 32) + (std::int64_t{ToInteger((value - whole) * 0x1p31)} << 1);
}

// A row of colours, the first at `place` of the line, the next ones `step` further on each.
void FillLinear(std::span<std::uint32_t> pixels, std::span<const std::uint32_t> colours, double place,
                double step, MExtend extend) {
    const auto last = static_cast<std::int64_t>(colours.size() - 1);
    const double entries = static_cast<double>(last);
    constexpr double farthest = 0x1p30;
    const double end = (place + step * static_cast<double>(pixels.size())) * entries;
    if (extend == MExtend::Pad && std::abs(place * entries) < farthest && std::abs(end) < farthest) {
        std::int64_t position = ToFixed(place * entries + 0.5);
        const std::int64_t next = ToFixed(step * entries);
        for (std::uint32_t& pixel : pixels) {
            pixel = colours[static_cast<std::size_t>(std::clamp<std::int64_t>(position >> 32, 0, last))];
            position += next;
        }
        return;
    }
    for (std::uint32_t& pixel : pixels) {
        pixel = colours[static_cast<std::size_t>(ToInteger(Extended(place, extend) * entries + 0.5))];
        place += step;
    }
}

} // namespace

MResolvedStop ColourAt(const MStops& stops, double t) {
    if (t <= stops.front().offset) return stops.front();
    const auto next = std::ranges::upper_bound(stops, t, {}, &MResolvedStop::offset);
    if (next == stops.end()) return stops.back();
    const MResolvedStop& previous = *(next - 1);
    return Mix(previous, *next, (t - previous.offset) / (next->offset - previous.offset), t);
}

bool SetLinearImage(cairo_t* context, const MLinearPlace& place, const MStops& stops, MExtend extend,
                    const std::array<double, 4>& extents) {
    cairo_matrix_t inverse;
    cairo_get_matrix(context, &inverse);
    const double scale = std::max(std::hypot(inverse.xx, inverse.yx), std::hypot(inverse.xy, inverse.yy));
    if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return false;
    const double length = place.dx * place.dx + place.dy * place.dy;
    if (!(length > tiny)) return false;

    // A line whose stops all lie in one place has just a step from the first colour to the last.
    const double first = stops.front().offset;
    double range = stops.back().offset - first;
    const bool isStep = range < tiny;
    if (isStep && extend != MExtend::Pad) return false;
    if (isStep) range = 1e-6;
    // Two entries for each pixel along the line.
    const double pixelsAlong = std::sqrt(length) * range * scale;
    const auto count = static_cast<std::size_t>(ToInteger(std::clamp(pixelsAlong * 2, 16.0, 4096.0)));
    const auto colours =
        isStep ? std::vector{Premultiplied(stops.front()), Premultiplied(stops.back())} : Ramp(stops, count);

    const double alongX = place.dx / (length * range);
    const double alongY = place.dy / (length * range);
    const double step = inverse.xx * alongX + inverse.yx * alongY;
    return SetImage(context, extents, [&](std::span<std::uint32_t> pixels, double x, double y) {
        cairo_matrix_transform_point(&inverse, &x, &y);
        const double start = (x - place.x) * alongX + (y - place.y) * alongY - first / range;
        FillLinear(pixels, colours, start, step, extend);
    });
}

bool SetSweepImage(cairo_t* context, double x, double y, double start, double end, const MStops& stops,
                   MExtend extend, const std::array<double, 4>& extents) {
    const double turn = end - start;
    const double first = stops.front().offset;
    const double range = stops.back().offset - first;
    const bool isStep = std::abs(turn) < tiny || range < tiny;
    if (isStep && extend != MExtend::Pad) return false;
    cairo_matrix_t inverse;
    cairo_get_matrix(context, &inverse);
    if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return false;

    // Finer steps than a pixel has at the rim of the largest glyph.
    constexpr std::size_t entries = 4096;
    std::vector<std::uint32_t> colours(entries + 1);
    for (std::size_t i = 0; i <= entries; ++i) {
        const double angle = 360.0 * static_cast<double>(i) / entries;
        const double t =
            std::abs(turn) < tiny ? (angle < start ? -HUGE_VAL : HUGE_VAL) : (angle - start) / turn;
        const double place = isStep ? t : first + Extended((t - first) / range, extend) * range;
        colours[i] = Premultiplied(ColourAt(stops, place));
    }
    return SetImage(context, extents, [&](std::span<std::uint32_t> pixels, double deviceX, double deviceY) {
        for (std::uint32_t& pixel : pixels) {
            double userX = deviceX;
            double userY = deviceY;
            cairo_matrix_transform_point(&inverse, &userX, &userY);
            double turns = std::atan2(userY - y, userX - x) / (2 * std::numbers::pi);
            if (!(turns >= 0)) turns += 1;
            pixel = colours[static_cast<std::size_t>(ToInteger(std::clamp(turns, 0.0, 1.0) * entries))];
            deviceX += 1;
        }
    });
}
