#include "glyphs/sheet/SheetLines.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double steepest = 0.09; // about 5 degrees
constexpr double bigPart = 0.45;  // of the letter height: what carries a line
constexpr double farthest = 14;   // letter heights from one letter to the next of its line
constexpr std::size_t enough = 7; // letters that tell a slope of their own

double Middle(const Desktop::Rect& box) {
    return (box.left + box.right) / 2.0;
}

double Overlap(double a0, double a1, double b0, double b1) {
    return std::min(a1, b1) - std::max(a0, b0);
}

// For each big piece the next one to its right at its height; those chains are the lines.
std::vector<std::vector<std::uint32_t>> Chains(const std::vector<MSheetPiece>& pieces,
                                               std::vector<std::uint32_t> big, double height) {
    std::ranges::sort(big, {}, [&](std::uint32_t i) { return Middle(pieces[i].box); });
    std::vector<std::uint32_t> chain(big.size());
    std::iota(chain.begin(), chain.end(), 0U);
    const auto root = [&](std::uint32_t i) {
        while (chain[i] != i)
            i = chain[i] = chain[chain[i]];
        return i;
    };
    for (std::uint32_t i = 0; i < big.size(); ++i) {
        const Desktop::Rect& a = pieces[big[i]].box;
        for (std::uint32_t j = i + 1; j < big.size(); ++j) {
            const Desktop::Rect& b = pieces[big[j]].box;
            if (b.left - a.right > farthest * height) break;
            const double shared = Overlap(a.top, a.bottom, b.top, b.bottom);
            if (shared < 0.5 * std::min(a.Height(), b.Height())) continue;
            const auto first = root(i);
            const auto second = root(j);
            chain[std::max(first, second)] = std::min(first, second);
            // What stands above another, as the halves of "=" do, is not the next one.
            if (Overlap(a.left, a.right, b.left, b.right) <= 0) break;
        }
    }
    std::vector<std::vector<std::uint32_t>> chains(big.size());
    for (std::uint32_t i = 0; i < big.size(); ++i)
        chains[root(i)].push_back(big[i]);
    std::erase_if(chains, [](const auto& one) { return one.empty(); });
    return chains;
}

std::vector<MSheetPoint> Feet(const std::vector<MSheetPiece>& pieces, const std::vector<std::uint32_t>& of) {
    std::vector<MSheetPoint> points;
    for (const std::uint32_t i : of)
        points.push_back({Middle(pieces[i].box), static_cast<double>(pieces[i].box.bottom)});
    return points;
}

double MiddleOf(const std::vector<MSheetPiece>& pieces, const MSheetLineOfPieces& line) {
    double sum = 0;
    for (const std::uint32_t i : line.pieces)
        sum += Middle(pieces[i].box);
    return sum / static_cast<double>(line.pieces.size());
}

// A line that was broken by a gap is one.
void JoinBroken(const std::vector<MSheetPiece>& pieces, std::vector<MSheetLineOfPieces>& lines, double height) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        for (std::size_t j = i + 1; j < lines.size();) {
            const double x = (MiddleOf(pieces, lines[i]) + MiddleOf(pieces, lines[j])) / 2;
            if (std::abs(lines[i].line.Base(x) - lines[j].line.Base(x)) > 0.4 * height) {
                ++j;
                continue;
            }
            if (lines[j].pieces.size() > lines[i].pieces.size()) std::swap(lines[i].line, lines[j].line);
            lines[i].pieces.insert(lines[i].pieces.end(), lines[j].pieces.begin(), lines[j].pieces.end());
            lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(j));
            j = i + 1;
        }
    }
}

} // namespace

double SheetLetterHeight(const std::vector<MSheetPiece>& pieces) {
    std::vector<std::int32_t> heights;
    double all = 0;
    for (const MSheetPiece& piece : pieces) {
        heights.push_back(piece.box.Height());
        all += static_cast<double>(piece.box.Height()) * piece.box.Height();
    }
    std::ranges::sort(heights);
    double sum = 0;
    for (const std::int32_t height : heights) {
        sum += static_cast<double>(height) * height;
        if (sum * 2 >= all) return height;
    }
    return 0;
}

MSheetLine FitSheetLine(const std::vector<MSheetPoint>& points, double near, std::optional<double> slope) {
    MSheetLine best;
    double most = -1;
    const auto rate = [&](const MSheetLine& line) {
        double count = 0;
        for (const MSheetPoint& point : points) {
            const double off = std::abs(point.y - line.Base(point.x)) / near;
            if (off <= 1) count += 1 - 0.5 * off;
        }
        if (count > most + 1e-9) {
            most = count;
            best = line;
        }
    };
    const std::size_t step = std::max<std::size_t>(1, points.size() / 60);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (slope) {
            rate({points[i].y - *slope * points[i].x, *slope, 0});
            continue;
        }
        rate({points[i].y, 0, 0});
        for (std::size_t j = i + step; j < points.size(); j += step) {
            const double across = points[j].x - points[i].x;
            if (std::abs(across) < 4 * near) continue;
            const double rise = (points[j].y - points[i].y) / across;
            if (std::abs(rise) <= steepest) rate({points[i].y - rise * points[i].x, rise, 0});
        }
    }
    // Least squares over what is near it.
    double n = 0, sx = 0, sy = 0, sxx = 0, sxy = 0;
    double low = 1e18, high = -1e18;
    for (const MSheetPoint& point : points) {
        if (std::abs(point.y - best.Base(point.x)) > near) continue;
        n += 1;
        sx += point.x;
        sy += point.y;
        sxx += point.x * point.x;
        sxy += point.x * point.y;
        low = std::min(low, point.x);
        high = std::max(high, point.x);
    }
    if (n < 1) return best;
    const double spread = n * sxx - sx * sx;
    if (!slope && n >= 3 && spread > 1) best.slope = (n * sxy - sx * sy) / spread;
    // Less than a pixel from end to end is a level line.
    if (!slope && std::abs(best.slope) * (high - low) < 1) best.slope = 0;
    best.baseline = (sy - best.slope * sx) / n;
    return best;
}

std::vector<MSheetLineOfPieces> FindSheetLines(const std::vector<MSheetPiece>& pieces, double letterHeight) {
    std::vector<std::uint32_t> big;
    std::vector<std::uint32_t> small;
    for (std::uint32_t i = 0; i < pieces.size(); ++i)
        (pieces[i].box.Height() >= bigPart * letterHeight ? big : small).push_back(i);
    const double near = std::max(1.5, 0.03 * letterHeight);
    std::vector<MSheetLineOfPieces> lines;
    double slopes = 0;
    double weights = 0;
    for (auto& chain : Chains(pieces, big, letterHeight)) {
        MSheetLineOfPieces line;
        if (chain.size() >= enough) {
            line.line = FitSheetLine(Feet(pieces, chain), near, std::nullopt);
            slopes += line.line.slope * static_cast<double>(chain.size());
            weights += static_cast<double>(chain.size());
        }
        line.pieces = std::move(chain);
        lines.push_back(std::move(line));
    }
    const double slope = weights > 0 ? slopes / weights : 0;
    for (MSheetLineOfPieces& line : lines)
        if (line.pieces.size() < enough) line.line = FitSheetLine(Feet(pieces, line.pieces), near, slope);
    JoinBroken(pieces, lines, letterHeight);
    std::vector<std::uint32_t> without;
    for (const std::uint32_t i : small) {
        const Desktop::Rect& box = pieces[i].box;
        MSheetLineOfPieces* nearest = nullptr;
        double nearestDistance = 0.95 * letterHeight;
        for (MSheetLineOfPieces& line : lines) {
            const double middle = line.line.Base(Middle(box)) - 0.5 * letterHeight;
            const double distance = std::abs((box.top + box.bottom) / 2.0 - middle);
            if (distance >= nearestDistance) continue;
            nearestDistance = distance;
            nearest = &line;
        }
        if (nearest) {
            nearest->pieces.push_back(i);
        } else {
            without.push_back(i);
        }
    }
    // Small ones that stand alone make lines of their own.
    for (const std::uint32_t i : without) {
        const Desktop::Rect& box = pieces[i].box;
        const auto level = [&](const MSheetLineOfPieces& line) {
            return std::abs(line.line.Base(Middle(box)) - box.bottom) < 0.9 * letterHeight;
        };
        const auto found = std::ranges::find_if(lines, level);
        if (found != lines.end()) {
            found->pieces.push_back(i);
        } else {
            lines.push_back({{box.bottom - slope * Middle(box), slope, 0}, {i}});
        }
    }
    for (MSheetLineOfPieces& line : lines)
        std::ranges::sort(line.pieces, {}, [&](std::uint32_t i) { return pieces[i].box.left; });
    std::ranges::sort(lines, {},
                      [&](const MSheetLineOfPieces& line) { return line.line.Base(MiddleOf(pieces, line)); });
    return lines;
}
