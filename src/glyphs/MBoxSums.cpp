#include "glyphs/MBoxSums.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

// A whole pixel at once, so that the loop over a row becomes vector code.
constexpr int alphaShift = std::endian::native == std::endian::little ? 24 : 0;

void FillPixels(std::uint8_t* to, std::size_t count, std::uint32_t pixel) {
    for (std::size_t x = 0; x < count; ++x)
        std::memcpy(to + x * 4, &pixel, 4);
}

void StoreRow(const std::uint16_t* sums, std::uint8_t* to, std::size_t count, std::uint32_t colour) {
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t pixel = colour | std::uint32_t{sums[x]} >> 2 << alphaShift;
        std::memcpy(to + x * 4, &pixel, 4);
    }
}

void AddSpan(std::uint16_t* sums, const MSpan& span) {
    const auto add = [sums](std::size_t first, std::size_t end, int amount) {
        for (std::size_t x = first; x < end; ++x)
            sums[x] = static_cast<std::uint16_t>(sums[x] + amount);
    };
    const auto first = static_cast<std::size_t>(span.x);
    const std::size_t end = first + span.length;
    if (first / 2 == (end - 1) / 2) {
        add(first / 2, first / 2 + 1, span.coverage * span.length);
        return;
    }
    // The ends, which may cover one of the two pixels only, and the whole pairs between them.
    add(first / 2, first / 2 + 1, first % 2 == 0 ? span.coverage * 2 : span.coverage);
    add(first / 2 + 1, (end - 1) / 2, span.coverage * 2);
    add((end - 1) / 2, (end - 1) / 2 + 1, end % 2 == 0 ? span.coverage * 2 : span.coverage);
}

} // namespace

void MBoxSums::Clear(std::size_t newWidth, std::size_t newRows) {
    width = newWidth;
    rows = newRows;
    sums.assign(width * rows, 0);
}

void MBoxSums::Add(std::int32_t row, std::span<const MSpan> spans, void* context) {
    auto& own = *static_cast<MBoxSums*>(context);
    std::uint16_t* const sums = own.sums.data() + static_cast<std::size_t>(row / 2) * own.width;
    for (const MSpan& span : spans)
        AddSpan(sums, span);
}

void MBoxSums::Store(std::size_t top, const MColour& colour, MPicture& picture) const {
    const auto empty = std::bit_cast<std::uint32_t>(MColour(colour.r, colour.g, colour.b, 0));
    for (std::size_t y = 0; y < picture.Height; ++y) {
        std::uint8_t* const row = picture.Pixels + y * picture.Stride;
        const std::size_t inked = y >= top && y < top + rows ? width : 0;
        if (inked > 0) StoreRow(sums.data() + (y - top) * width, row, inked, empty);
        FillPixels(row + inked * 4, picture.Width - inked, empty);
    }
}

void RepeatCanvas(MPicture& picture, std::size_t width, std::size_t height) {
    if (picture.Width <= width && picture.Height <= height) return;
    for (std::size_t y = 0; y < picture.Height; ++y) {
        std::uint8_t* const row = picture.Pixels + y * picture.Stride;
        if (y >= height) {
            std::memcpy(row, picture.Pixels + (y % height) * picture.Stride, picture.Stride);
            continue;
        }
        for (std::size_t x = width; x < picture.Width; x += width)
            std::memcpy(row + x * 4, row, std::min(width, picture.Width - x) * 4);
    }
}
