// Kerning measured from the ink: the amount that lets two glyphs touch in the row where they come closest.

#include "document/MColourFont.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

namespace {

// The start value of the search, and what an empty row counts: a sum with it is never smaller than it.
constexpr std::int32_t noGap = 100000;

// For each row of a glyph's picture, up to the glyph's height, the empty pixels before the first ink and after
// the last, at most noGap. After a failed resize the glyph claims more rows than the picture has; these repeat
// then.
struct Gaps {
    const MGlyph* glyph;
    std::vector<std::int32_t> left;
    std::vector<std::int32_t> right;
};

// Of a glyph whose numbers and picture differ. Its columns repeat like the picture's, however many there are:
// what ink the row has lies in the first and in the last columns of the picture's width.
void MeasureRow(const MGlyph& glyph, std::int32_t y, std::int32_t& left, std::int32_t& right) {
    const auto isInk = [&](std::int64_t x) { return glyph.GetPixel(static_cast<std::int32_t>(x), y).a != 0; };
    const std::int64_t columns = std::min<std::int64_t>(glyph.Width, glyph.Picture.Width);
    std::int64_t first = 0;
    while (first < columns && !isInk(first))
        ++first;
    if (first >= columns) return;
    std::int64_t after = 0;
    while (!isInk(glyph.Width - 1 - after))
        ++after;
    left = static_cast<std::int32_t>(std::min<std::int64_t>(first, noGap));
    right = static_cast<std::int32_t>(std::min<std::int64_t>(after, noGap));
}

void MeasureRow(std::span<const MColour> row, std::int32_t& left, std::int32_t& right) {
    const auto isInk = [](const MColour& pixel) { return pixel.a != 0; };
    const auto first = std::ranges::find_if(row, isInk);
    if (first == row.end()) return;
    const auto last = std::find_if(row.rbegin(), row.rend(), isInk);
    left = static_cast<std::int32_t>(std::min<std::ptrdiff_t>(first - row.begin(), noGap));
    right = static_cast<std::int32_t>(std::min<std::ptrdiff_t>(last - row.rbegin(), noGap));
}

Gaps MeasureGlyph(const MGlyph& glyph) {
    const auto rows = static_cast<std::size_t>(glyph.PictureRows());
    Gaps gaps{&glyph, std::vector<std::int32_t>(rows, noGap), std::vector<std::int32_t>(rows, noGap)};
    for (std::size_t row = 0; row < rows; ++row) {
        const auto y = static_cast<std::int32_t>(row);
        if (glyph.RowsMatchPicture()) {
            const auto* const pixels = reinterpret_cast<const MColour*>(glyph.Picture.PixelAddress(0, y));
            MeasureRow({pixels, static_cast<std::size_t>(glyph.Width)}, gaps.left[row], gaps.right[row]);
        } else {
            MeasureRow(glyph, y, gaps.left[row], gaps.right[row]);
        }
    }
    return gaps;
}

// Of two glyphs of this height. Where both have as many rows, the rows that repeat bring nothing new; else they
// do up to the least common multiple.
std::int32_t SmallestGap(const Gaps& left, const Gaps& right, std::int32_t height) {
    const std::size_t leftRows = left.right.size();
    const std::size_t rightRows = right.left.size();
    if (leftRows == 0 || rightRows == 0) return noGap;
    const std::int32_t* const a = left.right.data();
    const std::int32_t* const b = right.left.data();
    std::int32_t smallest = noGap;
    if (leftRows == rightRows) {
        for (std::size_t row = 0; row < leftRows; ++row)
            smallest = std::min(smallest, a[row] + b[row]);
        return smallest;
    }
    const std::size_t rows = std::min(std::lcm(leftRows, rightRows), static_cast<std::size_t>(height));
    for (std::size_t row = 0; row < rows; ++row)
        smallest = std::min(smallest, a[row % leftRows] + b[row % rightRows]);
    return smallest;
}

} // namespace

void MColourFont::GenerateKerning() {
    ClearKerning();
    std::vector<Gaps> glyphs;
    for (const auto& slot : Glyphs) {
        if (slot && slot->Height > 0 && slot->Character >= FirstCharacter)
            glyphs.push_back(MeasureGlyph(*slot));
    }
    // No two glyphs have the same character, so each pair is new and needs no look-up.
    std::vector<MKerningPair> pairs;
    for (const Gaps& left : glyphs) {
        for (const Gaps& right : glyphs) {
            if (left.glyph->Height != right.glyph->Height) continue;
            const std::int32_t smallest = SmallestGap(left, right, left.glyph->Height);
            if (smallest == 0 || smallest >= noGap) continue;
            pairs.push_back({left.glyph->Character, right.glyph->Character, -smallest});
        }
    }
    if (Kerning.Resize(static_cast<std::int32_t>(pairs.size()), false)) std::ranges::copy(pairs, Kerning.data);
}
