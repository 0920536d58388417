#include "editors/MPictureLens.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double largestWhole = 8;
constexpr double largestPixel = 32;

std::int32_t Floor(double value) {
    return static_cast<std::int32_t>(std::floor(value));
}

// Centred if there is room to spare.
double Confined(double start, double room, double length) {
    return length <= room ? (length - room) / 2 : std::clamp(start, 0.0, length - room);
}

// The least change of `start` after which `room` has `first` to `last` in it, with some more around them.
double Revealing(double start, double room, double first, double last) {
    const double margin = std::min(room / 8, std::max(0.0, (room - (last - first)) / 2));
    return std::max(std::min(start, first - margin), last + margin - room);
}

} // namespace

void MPictureLens::ShowAll(const Desktop::Rect& area, std::int32_t width, std::int32_t height) {
    Area = area;
    Width = width;
    Height = height;
    steps = 0;
    whole = 0;
    if (width > 0 && height > 0 && !area.IsEmpty()) {
        whole =
            std::min(static_cast<double>(area.Width()) / width, static_cast<double>(area.Height()) / height);
        if (whole >= 1) whole = std::min(std::floor(whole), largestWhole);
    }
    scale = whole;
    left = top = 0;
    Confine();
}

void MPictureLens::Zoom(std::int32_t by, MPoint about) {
    if (whole <= 0) return;
    const double x = left + (about.x - Area.left) / scale;
    const double y = top + (about.y - Area.top) / scale;
    const auto most = std::max(0, static_cast<std::int32_t>(std::ceil(std::log2(largestPixel / whole))));
    steps = std::clamp(steps + by, 0, most);
    scale = std::ldexp(whole, steps);
    left = x - (about.x - Area.left) / scale;
    top = y - (about.y - Area.top) / scale;
    Confine();
}

void MPictureLens::Scroll(std::int32_t x, std::int32_t y) {
    if (scale <= 0) return;
    left += x / scale;
    top += y / scale;
    Confine();
}

void MPictureLens::Reveal(const Desktop::Rect& part) {
    if (scale <= 0) return;
    left = Revealing(left, Area.Width() / scale, part.left, part.right);
    top = Revealing(top, Area.Height() / scale, part.top, part.bottom);
    Confine();
}

MPoint MPictureLens::ToPicture(MPoint point) const {
    if (scale <= 0) return {-1, -1};
    return {Floor(left + (point.x - Area.left) / scale), Floor(top + (point.y - Area.top) / scale)};
}

Desktop::Rect MPictureLens::ToDialog(const Desktop::Rect& part) const {
    const auto x = [&](std::int32_t place) { return Area.left + Floor((place - left) * scale + 0.5); };
    const auto y = [&](std::int32_t place) { return Area.top + Floor((place - top) * scale + 0.5); };
    return {x(part.left), y(part.top), x(part.right), y(part.bottom)};
}

Desktop::Rect MPictureLens::Visible() const {
    if (scale <= 0) return {};
    const auto end = [](double value) { return static_cast<std::int32_t>(std::ceil(value)); };
    return {std::max(Floor(left), 0), std::max(Floor(top), 0),
            std::min(end(left + Area.Width() / scale), Width),
            std::min(end(top + Area.Height() / scale), Height)};
}

void MPictureLens::Confine() {
    if (scale <= 0) return;
    left = Confined(left, Area.Width() / scale, Width);
    top = Confined(top, Area.Height() / scale, Height);
}
