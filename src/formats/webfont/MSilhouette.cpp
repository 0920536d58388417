#include "formats/webfont/MSilhouette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace {

// Of a square between four pixels' centres.
enum Side : std::uint8_t { Top, Right, Bottom, Left };

struct Way {
    Side from;
    Side to;
};

// By which corners are inside: 8 the upper left, 4 the upper right, 2 the lower right, 1 the lower left. The
// two squares with opposite corners have two ways each, told apart below.
constexpr std::array<Way, 16> ways{{{Top, Top},
                                    {Left, Bottom},
                                    {Bottom, Right},
                                    {Left, Right},
                                    {Right, Top},
                                    {},
                                    {Bottom, Top},
                                    {Left, Top},
                                    {Top, Left},
                                    {Top, Bottom},
                                    {},
                                    {Top, Right},
                                    {Right, Left},
                                    {Right, Bottom},
                                    {Bottom, Left},
                                    {Top, Top}}};

// A contour's point on one side of a square, and the side where the contour goes on.
struct Crossing {
    std::uint64_t place;
    std::uint64_t next;
    MContourPoint point;
};

class Tracer {
public:
    std::vector<Crossing> crossings;

    Tracer(std::int32_t pictureWidth, double level)
        : width(static_cast<std::size_t>(pictureWidth)), threshold(level) {}

    // The squares between two rows, each with a clear pixel before and after it.
    void AddRow(std::size_t y, std::span<const std::uint8_t> upper, std::span<const std::uint8_t> lower) {
        row = y;
        const auto insideOf = [this](std::uint8_t alpha) {
            return static_cast<double>(alpha) >= threshold ? 1U : 0U;
        };
        unsigned before = 0; // the corners of the last square's right side: 2 the upper, 1 the lower
        for (std::size_t x = 0; x <= width; ++x) {
            const unsigned after = insideOf(upper[x + 1]) << 1 | insideOf(lower[x + 1]);
            const unsigned inside = (before >> 1) << 3 | (after >> 1) << 2 | (after & 1) << 1 | (before & 1);
            before = after;
            if (inside == 0 || inside == 15) continue;
            const std::array<double, 4> corners{
                static_cast<double>(upper[x]), static_cast<double>(upper[x + 1]),
                static_cast<double>(lower[x + 1]), static_cast<double>(lower[x])};
            column = x;
            if (inside != 5 && inside != 10) {
                Add(ways[inside], corners);
                continue;
            }
            const bool joined = (corners[0] + corners[1] + corners[2] + corners[3]) / 4 >= threshold;
            // The corners that are alone: the outer two of a joined square, else the inner two.
            const bool lowerLeftAlone = joined == (inside == 10);
            const unsigned first = lowerLeftAlone ? 1U : 2U;
            const unsigned second = lowerLeftAlone ? 4U : 8U;
            Add(ways[joined ? 15 - first : first], corners);
            Add(ways[joined ? 15 - second : second], corners);
        }
    }

private:
    std::size_t width;
    double threshold;
    std::size_t column = 0;
    std::size_t row = 0;

    // The same for both squares that share a side.
    std::uint64_t PlaceOf(Side side) const {
        const std::uint64_t x = column + (side == Right ? 1 : 0);
        const std::uint64_t y = row + (side == Bottom ? 1 : 0);
        const bool upright = side == Left || side == Right;
        return (y * (width + 2) + x) * 2 + (upright ? 1 : 0);
    }

    MContourPoint PointOf(Side side, const std::array<double, 4>& corners) const {
        const auto part = [&](std::size_t a, std::size_t b) {
            return (threshold - corners[a]) / (corners[b] - corners[a]);
        };
        // The square's upper left corner is the centre of the pixel before `column` and `row`.
        const double x = static_cast<double>(column) - 0.5;
        const double y = static_cast<double>(row) - 0.5;
        switch (side) {
        case Top: return {x + part(0, 1), y};
        case Right: return {x + 1, y + part(1, 2)};
        case Bottom: return {x + part(3, 2), y + 1};
        case Left: return {x, y + part(0, 3)};
        }
        return {x, y};
    }

    void Add(Way way, const std::array<double, 4>& corners) {
        crossings.push_back({PlaceOf(way.from), PlaceOf(way.to), PointOf(way.from, corners)});
    }
};

std::vector<MContour> Join(std::vector<Crossing> crossings) {
    std::ranges::sort(crossings, {}, &Crossing::place);
    std::vector<bool> taken(crossings.size());
    std::vector<MContour> contours;
    for (std::size_t start = 0; start < crossings.size(); ++start) {
        if (taken[start]) continue;
        MContour contour;
        for (std::size_t at = start; !taken[at];) {
            taken[at] = true;
            contour.push_back(crossings[at].point);
            at = static_cast<std::size_t>(
                std::ranges::lower_bound(crossings, crossings[at].next, {}, &Crossing::place) -
                crossings.begin());
        }
        contours.push_back(std::move(contour));
    }
    return contours;
}

// From a line through two points; from the one point where they are the same.
class LineDistance {
public:
    LineDistance(const MContourPoint& from, const MContourPoint& to)
        : a(from), dx(to.X - from.X), dy(to.Y - from.Y), length(std::hypot(dx, dy)) {}

    double operator()(const MContourPoint& point) const {
        if (length == 0) return std::hypot(point.X - a.X, point.Y - a.Y);
        return std::abs(dx * (point.Y - a.Y) - dy * (point.X - a.X)) / length;
    }

private:
    MContourPoint a;
    double dx;
    double dy;
    double length;
};

// Marks the points between two kept ones that stay.
void KeepBetween(const MContour& contour, std::size_t first, std::size_t last, double tolerance,
                 std::vector<bool>& kept) {
    std::vector<std::pair<std::size_t, std::size_t>> parts{{first, last}};
    while (!parts.empty()) {
        const auto [from, to] = parts.back();
        parts.pop_back();
        const LineDistance distanceOf(contour[from], contour[to % contour.size()]);
        double most = tolerance;
        std::size_t farthest = 0;
        for (std::size_t i = from + 1; i < to; ++i) {
            const double distance = distanceOf(contour[i]);
            if (distance <= most) continue;
            most = distance;
            farthest = i;
        }
        if (farthest == 0) continue;
        kept[farthest] = true;
        parts.emplace_back(from, farthest);
        parts.emplace_back(farthest, to);
    }
}

// The outermost points stay, and one of each thousand, which bounds the time of what has no straight parts.
MContour Simplified(const MContour& contour, double tolerance) {
    constexpr std::size_t stretch = 1000;
    std::vector<bool> kept(contour.size());
    const auto [left, right] = std::ranges::minmax_element(contour, {}, &MContourPoint::X);
    const auto [top, bottom] = std::ranges::minmax_element(contour, {}, &MContourPoint::Y);
    for (const auto& outermost : {left, right, top, bottom})
        kept[static_cast<std::size_t>(outermost - contour.begin())] = true;
    for (std::size_t i = 0; i < contour.size(); i += stretch)
        kept[i] = true;
    const std::vector<bool> anchors = kept;
    std::size_t from = 0; // is an anchor
    for (std::size_t i = 1; i <= contour.size(); ++i) {
        if (i < contour.size() && !anchors[i]) continue;
        KeepBetween(contour, from, i, tolerance, kept);
        from = i;
    }
    MContour result;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        if (kept[i]) result.push_back(contour[i]);
    }
    return result;
}

double AreaOf(const MContour& contour) {
    double twice = 0;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const MContourPoint& a = contour[i];
        const MContourPoint& b = contour[(i + 1) % contour.size()];
        twice += a.X * b.Y - b.X * a.Y;
    }
    return std::abs(twice) / 2;
}

} // namespace

std::vector<MContour>
TraceSilhouette(std::int32_t width, std::int32_t height,
                const std::function<void(std::int32_t, std::span<std::uint8_t>)>& alphaRow,
                std::size_t mostPoints) {
    const auto columns = static_cast<std::size_t>(width);
    std::vector<std::uint8_t> upper(columns + 2);
    std::vector<std::uint8_t> lower(columns + 2);
    std::uint8_t highest = 0;
    for (std::int32_t y = 0; y < height; ++y) {
        alphaRow(y, std::span(lower).subspan(1, columns));
        highest = std::max(highest, *std::ranges::max_element(lower));
    }
    if (highest == 0) return {};
    Tracer tracer(width, highest >= 128 ? 127.5 : highest / 2.0);
    std::ranges::fill(lower, std::uint8_t{0});
    for (std::int32_t y = 0; y <= height; ++y) {
        std::swap(upper, lower);
        if (y < height)
            alphaRow(y, std::span(lower).subspan(1, columns));
        else
            std::ranges::fill(lower, std::uint8_t{0});
        tracer.AddRow(static_cast<std::size_t>(y), upper, lower);
    }
    const std::vector<MContour> traced = Join(std::move(tracer.crossings));
    constexpr double finest = 0.3; // of a pixel: what stays invisible at the pictures' own size
    double smallestArea = 0;
    for (double tolerance = finest;; tolerance *= 2) {
        std::vector<MContour> contours;
        std::size_t points = 0;
        for (const MContour& contour : traced) {
            if (AreaOf(contour) < smallestArea) continue;
            contours.push_back(Simplified(contour, tolerance));
            points += contours.back().size();
        }
        if (points <= mostPoints) return contours;
        smallestArea = std::max(1.0, smallestArea * 8);
    }
}
