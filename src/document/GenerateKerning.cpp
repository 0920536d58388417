// Kerning measured from the ink: the amount that lets two glyphs touch in the row where they come closest.

#include "document/MColourFont.h"

#include <algorithm>
#include <span>
#include <vector>

namespace {

// The start value of the search, and what an empty row counts: a sum with it is never smaller than it.
constexpr std::int32_t noGap = 100000;

// For each row of one glyph, the empty pixels before the first ink and after the last, at most noGap.
struct Gaps {
    const MGlyph* glyph;
    std::vector<std::int32_t> left;
    std::vector<std::int32_t> right;
};

void MeasureRow(const MGlyph& glyph, std::int32_t y, std::int32_t& left, std::int32_t& right) {
    const auto isInk = [&](std::int32_t x) { return glyph.GetPixel(x, y).a != 0; };
    std::int32_t first = 0;
    while (first < glyph.Width && !isInk(first))
        ++first;
    if (first >= glyph.Width) return;
    std::int32_t last = glyph.Width - 1;
    while (!isInk(last))
        --last;
    left = std::min(first, noGap);
    right = std::min(glyph.Width - last - 1, noGap);
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
    // A glyph without a picture has no ink in any row: no need to hold them all, however many its number says.
    const auto rows = static_cast<std::size_t>(glyph.Picture.IsValid() ? std::max(glyph.Height, 0) : 0);
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

std::int32_t SmallestGap(const Gaps& left, const Gaps& right) {
    const std::size_t rows = std::min(left.right.size(), right.left.size());
    const std::int32_t* const a = left.right.data();
    const std::int32_t* const b = right.left.data();
    std::int32_t smallest = noGap;
    for (std::size_t row = 0; row < rows; ++row)
        smallest = std::min(smallest, a[row] + b[row]);
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
            const std::int32_t smallest = SmallestGap(left, right);
            if (smallest == 0 || smallest >= noGap) continue;
            pairs.push_back({left.glyph->Character, right.glyph->Character, -smallest});
        }
    }
    if (Kerning.Resize(static_cast<std::int32_t>(pairs.size()), false)) std::ranges::copy(pairs, Kerning.data);
}
