#include "glyphs/sheet/SheetCuts.h"

#include "glyphs/sheet/SheetForest.h"

#include <algorithm>
#include <limits>
#include <span>

namespace {

using Runs = std::span<const MSheetRun>;

Runs RunsInRow(const MSheetPiece& piece, std::int32_t y) {
    const auto first = std::ranges::lower_bound(piece.runs, y, {}, &MSheetRun::y);
    return {first, std::ranges::upper_bound(piece.runs, y, {}, &MSheetRun::y)};
}

// The core that is nearest to a pixel in its row, or else nearest of all.
std::size_t Nearest(const std::vector<MSheetPiece>& cores, const std::vector<Runs>& inRow, std::int32_t x,
                    std::int32_t y) {
    std::size_t nearest = 0;
    std::int64_t nearestDistance = std::numeric_limits<std::int64_t>::max();
    for (std::size_t i = 0; i < cores.size(); ++i) {
        const Desktop::Rect& box = cores[i].box;
        const std::int64_t down = std::max({box.top - y, y - box.bottom + 1, 0});
        std::int64_t across = inRow[i].empty() ? std::max({box.left - x, x - box.right + 1, 0})
                                               : std::numeric_limits<std::int32_t>::max();
        for (const MSheetRun& run : inRow[i])
            across = std::min<std::int64_t>(across, std::max({run.left - x, x - run.right + 1, 0}));
        const std::int64_t distance = across * across + down * down;
        if (distance >= nearestDistance) continue;
        nearestDistance = distance;
        nearest = i;
    }
    return nearest;
}

// All ink of the piece: each pixel goes to the nearest core.
std::vector<MSheetPiece> GiveToNearest(const MSheetPiece& piece, const std::vector<MSheetPiece>& cores) {
    std::vector<MSheetPiece> parts(cores.size());
    std::vector<Runs> inRow(cores.size());
    std::vector<std::size_t> owners(static_cast<std::size_t>(piece.box.Width()));
    const std::size_t nobody = cores.size();
    std::int32_t y = -1;
    for (const MSheetRun& run : piece.runs) {
        if (run.y != y) {
            y = run.y;
            std::ranges::fill(owners, nobody);
            for (std::size_t i = 0; i < cores.size(); ++i) {
                inRow[i] = RunsInRow(cores[i], y);
                for (const MSheetRun& own : inRow[i])
                    std::fill(owners.begin() + (own.left - piece.box.left),
                              owners.begin() + (own.right - piece.box.left), i);
            }
        }
        for (std::int32_t x = run.left; x < run.right; ++x) {
            const std::size_t owner = owners[static_cast<std::size_t>(x - piece.box.left)];
            auto& runs = parts[owner == nobody ? Nearest(cores, inRow, x, y) : owner].runs;
            if (!runs.empty() && runs.back().y == y && runs.back().right == x) {
                ++runs.back().right;
            } else {
                runs.push_back({y, x, x + 1});
            }
        }
    }
    std::ranges::for_each(parts, MeasureSheetPiece);
    return parts;
}

// The runs of a piece's ink of more than `threshold` between two columns, as pieces.
std::vector<MSheetPiece> CoresOf(const MPicture& picture, const MSheetGround& ground, const MSheetPiece& piece,
                                 std::int32_t threshold, std::int32_t left, std::int32_t right) {
    MSheetInk ink(ground, static_cast<std::int32_t>(picture.Width));
    MSheetForest forest;
    std::int32_t y = -1;
    const std::uint8_t* strength = nullptr;
    for (const MSheetRun& run : piece.runs) {
        if (run.y != y) {
            y = run.y;
            strength = ink.Strength(picture.Pixels + static_cast<std::size_t>(y) * picture.Stride, y);
            forest.BeginRow();
        }
        const std::int32_t end = std::min(run.right, right);
        std::int32_t begin = -1;
        for (std::int32_t x = std::max(run.left, left); x <= end; ++x) {
            const bool inked = x < end && strength[x] > threshold;
            if (inked && begin < 0) begin = x;
            if (inked || begin < 0) continue;
            forest.Add({y, begin, x});
            begin = -1;
        }
    }
    return forest.Pieces();
}

// As many as a letter's strokes and tips may be; grains of ink go with what is near.
std::vector<MSheetPiece> LargestFirst(std::vector<MSheetPiece> cores) {
    constexpr std::size_t most = 12;
    std::ranges::sort(cores, std::ranges::greater{}, &MSheetPiece::area);
    if (cores.size() > most) cores.resize(most);
    return cores;
}

// What of it lies between two columns.
MSheetPiece Clipped(const MSheetPiece& piece, std::int32_t left, std::int32_t right) {
    MSheetPiece part;
    for (const MSheetRun& run : piece.runs) {
        const MSheetRun inside{run.y, std::max(run.left, left), std::min(run.right, right)};
        if (inside.left < inside.right) part.runs.push_back(inside);
    }
    MeasureSheetPiece(part);
    return part;
}

// Together, with runs by rows as everywhere.
void Append(MSheetPiece& to, const MSheetPiece& more) {
    to.runs.insert(to.runs.end(), more.runs.begin(), more.runs.end());
    std::ranges::sort(to.runs, {}, [](const MSheetRun& run) { return std::pair(run.y, run.left); });
    std::vector<MSheetRun> joined;
    for (const MSheetRun& run : to.runs) {
        if (!joined.empty() && joined.back().y == run.y && joined.back().right == run.left) {
            joined.back().right = run.right;
        } else {
            joined.push_back(run);
        }
    }
    to.runs = std::move(joined);
    MeasureSheetPiece(to);
}

} // namespace

std::vector<MSheetPiece> SplitSheetPiece(const MPicture& picture, const MSheetGround& ground,
                                         const MSheetPiece& piece, std::int32_t threshold) {
    std::vector<MSheetPiece> cores =
        CoresOf(picture, ground, piece, threshold, piece.box.left, piece.box.right);
    std::int64_t largest = 0;
    for (const MSheetPiece& core : cores)
        largest = std::max(largest, core.area);
    std::erase_if(cores, [&](const MSheetPiece& core) { return core.area * 12 < largest; });
    if (cores.size() < 2) return {piece};
    return GiveToNearest(piece, cores);
}

MSheetSides CutSheetPiece(const MPicture& picture, const MSheetGround& ground, const MSheetPiece& piece,
                          std::int32_t column) {
    constexpr std::int64_t tip = 6; // a tip has at most this part of a stroke's ink
    constexpr std::int32_t dark = 128;
    if (column <= piece.box.left) return {{}, piece};
    if (column >= piece.box.right) return {piece, {}};
    const std::int32_t threshold = std::max(ground.threshold, dark);
    auto cores = LargestFirst(CoresOf(picture, ground, piece, threshold, piece.box.left, column));
    const auto others = LargestFirst(CoresOf(picture, ground, piece, threshold, column, piece.box.right));
    if (cores.empty() || others.empty())
        return {Clipped(piece, piece.box.left, column), Clipped(piece, column, piece.box.right)};
    const std::int64_t largestLeft = cores[0].area;
    const std::int64_t largestRight = others[0].area;
    const std::size_t lefts = cores.size();
    cores.insert(cores.end(), others.begin(), others.end());
    const std::vector<MSheetPiece> parts = GiveToNearest(piece, cores);
    MSheetSides sides;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const bool isLeft = i < lefts;
        const bool touches = isLeft ? cores[i].box.right == column : cores[i].box.left == column;
        const bool isTip = touches && cores[i].area * tip < (isLeft ? largestLeft : largestRight);
        Append(isLeft != isTip ? sides.left : sides.right, parts[i]);
    }
    return sides;
}
