#include "glyphs/sheet/SheetPieces.h"

#include "platform/MLongWork.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>

namespace {

constexpr std::size_t mostRuns = std::size_t{1} << 24;

// Runs with what they hang together with, as a forest whose roots are the first of their runs.
class Forest {
public:
    std::vector<MSheetRun> runs;

    void BeginRow() {
        above = rowFirst;
        aboveEnd = runs.size();
        rowFirst = runs.size();
    }
    // Runs of a row come from the left; `above` moves along with them.
    void Add(const MSheetRun& run) {
        const auto index = static_cast<std::uint32_t>(runs.size());
        runs.push_back(run);
        parents.push_back(index);
        while (above < aboveEnd && (runs[above].y != run.y - 1 || runs[above].right < run.left))
            ++above;
        for (std::size_t i = above; i < aboveEnd && runs[i].left <= run.right; ++i)
            Join(index, static_cast<std::uint32_t>(i));
    }
    std::vector<MSheetPiece> Pieces() {
        std::vector<MSheetPiece> pieces;
        std::vector<std::uint32_t> places(runs.size());
        for (std::uint32_t i = 0; i < runs.size(); ++i) {
            const std::uint32_t root = Root(i);
            if (root == i) {
                places[i] = static_cast<std::uint32_t>(pieces.size());
                pieces.emplace_back();
            }
            pieces[places[root]].runs.push_back(runs[i]);
        }
        std::ranges::for_each(pieces, MeasureSheetPiece);
        return pieces;
    }

private:
    std::vector<std::uint32_t> parents;
    std::size_t above = 0;
    std::size_t aboveEnd = 0;
    std::size_t rowFirst = 0;

    std::uint32_t Root(std::uint32_t i) {
        while (parents[i] != i)
            i = parents[i] = parents[parents[i]];
        return i;
    }
    void Join(std::uint32_t a, std::uint32_t b) {
        a = Root(a);
        b = Root(b);
        parents[std::max(a, b)] = std::min(a, b);
    }
};

// The runs of what is above the threshold in one row, from column `left` on.
void AddRuns(Forest& forest, const std::uint8_t* strength, std::int32_t y, std::int32_t left,
             std::int32_t right, std::int32_t threshold) {
    constexpr std::int32_t block = 32;
    forest.BeginRow();
    std::int32_t begin = -1;
    for (std::int32_t x = left; x < right;) {
        if (begin < 0 && x + block <= right) {
            std::uint8_t most = 0;
            for (std::int32_t i = 0; i < block; ++i)
                most = std::max(most, strength[x + i]);
            if (most <= threshold) {
                x += block;
                continue;
            }
        }
        const std::int32_t end = std::min(x + block, right);
        for (; x < end; ++x) {
            const bool ink = strength[x] > threshold;
            if (ink && begin < 0) begin = x;
            if (ink || begin < 0) continue;
            forest.Add({y, begin, x});
            begin = -1;
        }
    }
    if (begin >= 0) forest.Add({y, begin, right});
}

} // namespace

Desktop::Rect Around(const Desktop::Rect& a, const Desktop::Rect& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

void MeasureSheetPiece(MSheetPiece& piece) {
    piece.box = {};
    piece.area = 0;
    for (const MSheetRun& run : piece.runs) {
        piece.box = Around(piece.box, {run.left, run.y, run.right, run.y + 1});
        piece.area += run.right - run.left;
    }
}

std::optional<std::vector<MSheetPiece>> FindSheetPieces(const MPicture& picture, const MSheetGround& ground,
                                                        Desktop::WindowHandle owner) {
    const auto width = static_cast<std::int32_t>(picture.Width);
    const auto height = static_cast<std::int32_t>(picture.Height);
    MLongWork work(owner, "Looking for letters...", std::uint64_t{picture.Width} * picture.Height);
    MSheetInk ink(ground, width);
    Forest forest;
    for (std::int32_t y = 0; y < height; ++y) {
        if (y % 64 == 0) work.At(static_cast<std::size_t>(y), static_cast<std::size_t>(height));
        const std::uint8_t* const row = picture.Pixels + static_cast<std::size_t>(y) * picture.Stride;
        AddRuns(forest, ink.Strength(row, y), y, 0, width, ground.threshold);
        if (forest.runs.size() > mostRuns) return std::nullopt;
    }
    return forest.Pieces();
}

std::vector<MSheetPiece> SplitSheetPiece(const MPicture& picture, const MSheetGround& ground,
                                         const MSheetPiece& piece, std::int32_t threshold) {
    MSheetInk ink(ground, static_cast<std::int32_t>(picture.Width));
    Forest forest;
    std::int32_t y = -1;
    const std::uint8_t* strength = nullptr;
    for (const MSheetRun& run : piece.runs) {
        if (run.y != y) {
            y = run.y;
            strength = ink.Strength(picture.Pixels + static_cast<std::size_t>(y) * picture.Stride, y);
            forest.BeginRow();
        }
        std::int32_t begin = -1;
        for (std::int32_t x = run.left; x <= run.right; ++x) {
            const bool inked = x < run.right && strength[x] > threshold;
            if (inked && begin < 0) begin = x;
            if (inked || begin < 0) continue;
            forest.Add({y, begin, x});
            begin = -1;
        }
    }
    std::vector<MSheetPiece> cores = forest.Pieces();
    std::int64_t largest = 0;
    for (const MSheetPiece& core : cores)
        largest = std::max(largest, core.area);
    std::erase_if(cores, [&](const MSheetPiece& core) { return core.area * 12 < largest; });
    if (cores.size() < 2) return {piece};
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
