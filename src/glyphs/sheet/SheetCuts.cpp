#include "glyphs/sheet/SheetCuts.h"

#include "glyphs/sheet/SheetForest.h"

#include <algorithm>
#include <limits>

namespace {

// All ink of the piece: each pixel goes to the core that is nearest in its row, or else nearest of all.
std::vector<MSheetPiece> GiveToNearest(const MSheetPiece& piece, const std::vector<MSheetPiece>& cores) {
    std::vector<MSheetPiece> parts(cores.size());
    for (const MSheetRun& run : piece.runs) {
        for (std::int32_t x = run.left; x < run.right; ++x) {
            std::size_t nearest = 0;
            std::int64_t nearestDistance = std::numeric_limits<std::int64_t>::max();
            for (std::size_t i = 0; i < cores.size(); ++i) {
                const auto from = std::ranges::lower_bound(cores[i].runs, run.y, {}, &MSheetRun::y);
                const auto& box = cores[i].box;
                const std::int64_t down = std::max({box.top - run.y, run.y - box.bottom + 1, 0});
                std::int64_t across = std::max({box.left - x, x - box.right + 1, 0});
                for (auto core = from; core != cores[i].runs.end() && core->y == run.y; ++core) {
                    const std::int64_t to = std::max({core->left - x, x - core->right + 1, 0});
                    across = core == from ? to : std::min(across, to);
                }
                const std::int64_t distance = across * across + down * down;
                if (distance < nearestDistance) {
                    nearestDistance = distance;
                    nearest = i;
                }
            }
            auto& runs = parts[nearest].runs;
            if (!runs.empty() && runs.back().y == run.y && runs.back().right == x) {
                ++runs.back().right;
            } else {
                runs.push_back({run.y, x, x + 1});
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

std::int64_t LargestArea(const std::vector<MSheetPiece>& pieces) {
    std::int64_t largest = 0;
    for (const MSheetPiece& piece : pieces)
        largest = std::max(largest, piece.area);
    return largest;
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
    const std::int64_t largest = LargestArea(cores);
    std::erase_if(cores, [&](const MSheetPiece& core) { return core.area * 12 < largest; });
    if (cores.size() < 2) return {piece};
    return GiveToNearest(piece, cores);
}

MSheetSides CutSheetPiece(const MPicture& picture, const MSheetGround& ground, const MSheetPiece& piece,
                          std::int32_t column) {
    constexpr std::int64_t tip = 6; // a tip has at most this part of a stroke's ink
    constexpr std::int32_t dark = 128;
    if (column <= piece.box.left || column >= piece.box.right)
        return column <= piece.box.left ? MSheetSides{{}, piece} : MSheetSides{piece, {}};
    const std::int32_t threshold = std::max(ground.threshold, dark);
    std::vector<MSheetPiece> cores = CoresOf(picture, ground, piece, threshold, piece.box.left, column);
    const std::size_t lefts = cores.size();
    std::vector<MSheetPiece> others = CoresOf(picture, ground, piece, threshold, column, piece.box.right);
    const std::int64_t largestLeft = LargestArea(cores);
    const std::int64_t largestRight = LargestArea(others);
    cores.insert(cores.end(), others.begin(), others.end());
    if (lefts == 0 || others.empty())
        return {Clipped(piece, piece.box.left, column), Clipped(piece, column, piece.box.right)};
    MSheetSides sides;
    const std::vector<MSheetPiece> parts = GiveToNearest(piece, cores);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const bool isLeft = i < lefts;
        const bool touches = isLeft ? cores[i].box.right == column : cores[i].box.left == column;
        const bool isTip = touches && cores[i].area * tip < (isLeft ? largestLeft : largestRight);
        Append(isLeft != isTip ? sides.left : sides.right, parts[i]);
    }
    return sides;
}
