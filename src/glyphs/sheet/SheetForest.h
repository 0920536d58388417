// Runs of ink, put together to pieces while they come.
#pragma once

#include "glyphs/sheet/SheetPieces.h"

#include <algorithm>
#include <cstdint>
#include <vector>

// Runs with what they hang together with, as a forest whose roots are the first of their runs.
class MSheetForest {
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
