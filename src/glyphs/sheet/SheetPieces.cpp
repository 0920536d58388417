#include "glyphs/sheet/SheetPieces.h"

#include "glyphs/sheet/SheetForest.h"
#include "platform/MLongWork.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>

namespace {

constexpr std::size_t mostRuns = std::size_t{1} << 24;

// The runs of what is above the threshold in one row, from column `left` on.
void AddRuns(MSheetForest& forest, const std::uint8_t* strength, std::int32_t y, std::int32_t left,
             std::int32_t right, std::int32_t threshold) {
    constexpr std::int32_t block = 32;
    forest.BeginRow();
    std::int32_t begin = -1;
    std::uint8_t strongest = 0;
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
            if (ink) strongest = std::max(strongest, strength[x]);
            if (ink || begin < 0) continue;
            forest.Add({y, begin, x, strongest});
            begin = -1;
            strongest = 0;
        }
    }
    if (begin >= 0) forest.Add({y, begin, right, strongest});
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
    piece.strongest = 0;
    for (const MSheetRun& run : piece.runs) {
        piece.box = Around(piece.box, {run.left, run.y, run.right, run.y + 1});
        piece.area += run.right - run.left;
        piece.strongest = std::max(piece.strongest, run.strongest);
    }
}

std::optional<std::vector<MSheetPiece>> FindSheetPieces(const MPicture& picture, const MSheetGround& ground,
                                                        Desktop::WindowHandle owner) {
    const auto width = static_cast<std::int32_t>(picture.Width);
    const auto height = static_cast<std::int32_t>(picture.Height);
    MLongWork work(owner, "Looking for letters...", std::uint64_t{picture.Width} * picture.Height);
    MSheetInk ink(ground, width);
    MSheetForest forest;
    for (std::int32_t y = 0; y < height; ++y) {
        if (y % 64 == 0) work.At(static_cast<std::size_t>(y), static_cast<std::size_t>(height));
        const std::uint8_t* const row = picture.Pixels + static_cast<std::size_t>(y) * picture.Stride;
        AddRuns(forest, ink.Strength(row, y), y, 0, width, ground.threshold);
        if (forest.runs.size() > mostRuns) return std::nullopt;
    }
    return forest.Pieces();
}
