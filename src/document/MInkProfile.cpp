#include "document/MInkProfile.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

// The light that a pixel lets through.
constexpr auto transmissions = [] {
    std::array<float, 256> table{};
    for (std::size_t alpha = 0; alpha < table.size(); ++alpha)
        table[alpha] = static_cast<float>(255 - alpha) / 255.0F;
    return table;
}();

// The white in front of the ink of a row, whose pixels come from the outside in.
template<typename Iterator>
float White(Iterator pixel, Iterator end, float far) {
    constexpr float dark = 1.0F / 512; // what is left behind that is no more than half of a level
    float white = 0;
    float light = 1;
    for (; pixel != end; ++pixel) {
        light *= transmissions[pixel->a];
        if (light < dark) return white;
        white += light;
    }
    return white + light * far;
}

void SmoothRows(std::vector<float>& rows) {
    for (std::size_t row = 1; row < rows.size(); ++row)
        rows[row] = std::min(rows[row], rows[row - 1] + 1);
    for (std::size_t row = rows.size(); row-- > 1;)
        rows[row - 1] = std::min(rows[row - 1], rows[row] + 1);
}

} // namespace

MInkProfile::MInkProfile(const MGlyph& glyph, float far) {
    const auto rows = static_cast<std::size_t>(std::max(glyph.PictureRows(), 0));
    before.assign(rows, far);
    behind.assign(rows, far);
    if (!glyph.RowsMatchPicture()) return;
    constexpr std::uint8_t inkFrom = 128;
    for (std::size_t row = 0; row < rows; ++row) {
        const auto y = static_cast<std::int32_t>(row);
        const auto* const first = reinterpret_cast<const MColour*>(glyph.Picture.PixelAddress(0, y));
        const std::span pixels(first, static_cast<std::size_t>(glyph.Width));
        before[row] = White(pixels.begin(), pixels.end(), far) + static_cast<float>(glyph.SpacingBefore);
        behind[row] = White(pixels.rbegin(), pixels.rend(), far) + static_cast<float>(glyph.SpacingAfter);
        if (std::ranges::none_of(pixels, [](const MColour& pixel) { return pixel.a >= inkFrom; })) continue;
        if (top == bottom) top = y;
        bottom = y + 1;
    }
}

void MInkProfile::Smooth() {
    SmoothRows(before);
    SmoothRows(behind);
}
