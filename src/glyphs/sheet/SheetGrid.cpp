#include "glyphs/sheet/SheetGrid.h"

#include "glyphs/sheet/SheetPieces.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

constexpr std::int32_t smallestCell = 4;

struct Place {
    std::int32_t row;
    std::int32_t column;
    auto operator<=>(const Place&) const = default;
};

} // namespace

bool UseSheetGrid(MSheet& sheet, const MSheetGrid& grid) {
    std::map<Place, MSheetPiece> cells;
    for (const MSheetPiece& piece : sheet.pieces) {
        for (const MSheetRun& run : piece.runs) {
            for (std::int32_t left = run.left; left < run.right;) {
                const std::int32_t column = left / grid.width;
                const std::int32_t right = std::min(run.right, (column + 1) * grid.width);
                cells[{run.y / grid.height, column}].runs.push_back({run.y, left, right});
                left = right;
            }
            if (cells.size() > MostSheetPieces) return false;
        }
    }
    sheet.grid = grid;
    sheet.pieces.clear();
    sheet.boxes.clear();
    sheet.lines.clear();
    std::map<std::int32_t, std::uint32_t> lines;
    for (auto& [place, piece] : cells) {
        std::ranges::sort(piece.runs, {}, [](const MSheetRun& run) { return std::pair(run.y, run.left); });
        MeasureSheetPiece(piece);
        const auto [line, isNew] = lines.try_emplace(place.row, static_cast<std::uint32_t>(lines.size()));
        // Until letters tell it, the base line is a cell's lower edge.
        if (isNew) sheet.lines.push_back({static_cast<double>(place.row + 1) * grid.height, 0, 0});
        MSheetBox box;
        box.box = piece.box;
        box.line = line->second;
        box.pieces = {static_cast<std::uint32_t>(sheet.pieces.size())};
        sheet.boxes.push_back(std::move(box));
        sheet.pieces.push_back(std::move(piece));
    }
    sheet.capHeight = 0;
    return true;
}

std::optional<MSheetGrid> FindSheetGrid(const MSheet& sheet, double letterHeight) {
    const auto largest = static_cast<std::int32_t>(3 * letterHeight);
    const auto count = static_cast<std::size_t>(sheet.text.length);
    std::optional<MSheetGrid> best;
    for (std::int32_t height = smallestCell; height <= std::min(sheet.height, largest); ++height) {
        if (sheet.height % height != 0) continue;
        const bool crossed = std::ranges::any_of(sheet.pieces, [&](const MSheetPiece& piece) {
            return piece.box.top / height != (piece.box.bottom - 1) / height;
        });
        if (crossed) continue;
        for (std::int32_t width = smallestCell; width <= std::min(sheet.width, largest); ++width) {
            if (sheet.width % width != 0) continue;
            std::set<Place> inked;
            bool fits = true;
            for (const MSheetPiece& piece : sheet.pieces) {
                fits = fits && piece.box.left / width == (piece.box.right - 1) / width;
                if (!fits) break;
                inked.insert({piece.box.top / height, piece.box.left / width});
            }
            if (!fits || inked.size() != count) continue;
            if (!best || width * height > best->width * best->height) best = {width, height};
        }
    }
    return best;
}
