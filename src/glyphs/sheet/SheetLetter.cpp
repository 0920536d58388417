#include "glyphs/sheet/SheetLetter.h"

#include "glyphs/sheet/SheetGround.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using Colour = std::array<float, 3>;

constexpr std::int32_t softEdge = 3; // pixels from the ground up to where ink may be half transparent
constexpr std::int32_t fullInk = 2;  // pixels from there to where it is whole

enum Owner : std::uint8_t { Nobody, Own, Edge, Other };

// Whose each pixel of an area is.
class Owners {
public:
    Owners(const MSheet& sheet, const Desktop::Rect& around)
        : area(around), width(around.Width()),
          owners(static_cast<std::size_t>(around.Width()) * static_cast<std::size_t>(around.Height())),
          all(sheet) {}

    Desktop::Rect area;
    std::int32_t width;
    std::vector<std::uint8_t> owners;

    std::uint8_t At(std::int32_t x, std::int32_t y) const {
        if (x < area.left || y < area.top || x >= area.right || y >= area.bottom) return Nobody;
        return owners[static_cast<std::size_t>(y - area.top) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x - area.left)];
    }
    void Fill(const MSheetPiece& piece, const Desktop::Rect& within, Owner owner) {
        const Desktop::Rect part{std::max(within.left, area.left), std::max(within.top, area.top),
                                 std::min(within.right, area.right), std::min(within.bottom, area.bottom)};
        for (const MSheetRun& run : piece.runs) {
            const std::int32_t left = std::max(run.left, part.left);
            const std::int32_t right = std::min(run.right, part.right);
            if (run.y < part.top || run.y >= part.bottom || left >= right) continue;
            std::fill_n(owners.begin() + (run.y - area.top) * std::ptrdiff_t{width} + (left - area.left),
                        right - left, owner);
        }
    }
    void Claim(std::size_t place) {
        const MSheetBox& own = all.boxes[place];
        const auto fill = [&](const MSheetBox& box, Owner owner) {
            for (const std::uint32_t piece : box.pieces)
                Fill(all.pieces[piece], box.byHand ? box.box : area, owner);
        };
        if (own.byHand) {
            for (const MSheetPiece& piece : all.pieces)
                Fill(piece, own.box, Own);
            if (own.pieces.empty()) {
                for (const MSheetPiece& speck : all.specks)
                    Fill(speck, own.box, Own);
            }
        }
        for (std::size_t i = 0; i < all.boxes.size(); ++i)
            if (i != place && !all.boxes[i].leftOut) fill(all.boxes[i], Other);
        fill(own, Own);
    }
    // Own ink that may be half paper, and one pixel around it where nobody else is.
    void Soften(bool widen) {
        if (widen) {
            const std::vector<std::uint8_t> near = Widened(Mask(Own), 1);
            for (std::size_t i = 0; i < owners.size(); ++i)
                if (owners[i] == Nobody && near[i]) owners[i] = Edge;
        }
        if (all.ground.alpha) return;
        soft = Widened(Mask(Nobody), softEdge);
        const std::vector<std::uint8_t> edge = Widened(Mask(Edge), softEdge - 1);
        for (std::size_t i = 0; i < soft.size(); ++i)
            soft[i] |= edge[i];
    }
    bool IsSoft(std::int32_t x, std::int32_t y) const { return soft[Place(x, y)] != 0; }

private:
    const MSheet& all;
    std::vector<std::uint8_t> soft;

    std::size_t Place(std::int32_t x, std::int32_t y) const {
        return static_cast<std::size_t>(y - area.top) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x - area.left);
    }
    std::vector<std::uint8_t> Mask(std::uint8_t owner) const {
        std::vector<std::uint8_t> mask(owners.size());
        for (std::size_t i = 0; i < mask.size(); ++i)
            mask[i] = owners[i] == owner ? 1 : 0;
        return mask;
    }
    // Along the rows, then along the columns. What runs over a row's end meets the empty rim of the area.
    std::vector<std::uint8_t> Widened(std::vector<std::uint8_t> mask, std::int32_t by) const {
        for (const std::size_t step : {std::size_t{1}, static_cast<std::size_t>(width)}) {
            for (std::int32_t time = 0; time < by; ++time) {
                const std::vector<std::uint8_t> from = mask;
                for (std::size_t i = 0; i + step < mask.size(); ++i)
                    mask[i] |= from[i + step];
                for (std::size_t i = step; i < mask.size(); ++i)
                    mask[i] |= from[i - step];
            }
        }
        return mask;
    }
};

MColour PixelOf(const MPicture& picture, std::int32_t x, std::int32_t y) {
    MColour colour;
    std::memcpy(&colour,
                picture.Pixels + static_cast<std::size_t>(y) * picture.Stride + static_cast<std::size_t>(x) * 4,
                4);
    return colour;
}

Colour ColourOf(const MColour& pixel) {
    return {static_cast<float>(pixel.b), static_cast<float>(pixel.g), static_cast<float>(pixel.r)};
}

float Strength(const Colour& colour, const Colour& paper) {
    return std::max(
        {std::abs(colour[0] - paper[0]), std::abs(colour[1] - paper[1]), std::abs(colour[2] - paper[2])});
}

// Ink over paper, taken apart again: with the ink's full colour from nearby, how much of it there is; then the
// colour that gives exactly what is seen when it lies over the paper with that alpha.
MColour WithoutPaper(const Colour& seen, const Colour& paper, const Colour& ink, float noise) {
    float along = 0;
    float length = 0;
    float least = 0; // the alpha below which no colour would do
    for (std::size_t c = 0; c < 3; ++c) {
        const float to = ink[c] - paper[c];
        const float off = seen[c] - paper[c];
        along += off * to;
        length += to * to;
        // A channel that leads away from the ink shows noise, which no ink has to account for.
        if (off * to <= 0 && std::abs(off) <= 4 * noise) continue;
        const float room = off > 0 ? 255 - paper[c] : paper[c];
        least = std::max(least, room > 0 ? std::abs(off) / room : 0);
    }
    if (length < 1 || along <= 0) return {0, 0, 0, 0};
    const float alpha = std::clamp(std::max(along / length + 2 * noise / std::sqrt(length), least), 0.0F, 1.0F);
    const auto byte = [](float value) {
        return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 255.0F)));
    };
    const std::uint8_t rounded = alpha >= 0.97F ? 255 : byte(alpha * 255);
    if (rounded == 0) return {0, 0, 0, 0};
    const float exact = static_cast<float>(rounded) / 255;
    Colour own;
    for (std::size_t c = 0; c < 3; ++c)
        own[c] = paper[c] + (seen[c] - paper[c]) / exact;
    return {byte(own[2]), byte(own[1]), byte(own[0]), rounded};
}

class PaperRemoval {
public:
    PaperRemoval(const MSheet& sheet, const MPicture& from, const Owners& pixelOwners)
        : ground(sheet.ground), picture(from), owners(pixelOwners) {}

    MColour At(std::int32_t x, std::int32_t y) const {
        const MColour pixel = PixelOf(picture, x, y);
        const std::uint8_t owner = owners.At(x, y);
        if (ground.alpha) return pixel;
        if (owner != Edge && !owners.IsSoft(x, y)) return {pixel.r, pixel.g, pixel.b, 255};
        const Colour paper = PaperAt(ground, x, y);
        const Colour seen = ColourOf(pixel);
        // What the noise of paper alone would show is no soft edge.
        if (owner == Edge && Strength(seen, paper) < 2 * ground.noise + 2) return {0, 0, 0, 0};
        return WithoutPaper(seen, paper, FullInk(x, y, paper), ground.noise);
    }

private:
    const MSheetGround& ground;
    const MPicture& picture;
    const Owners& owners;

    Colour FullInk(std::int32_t x, std::int32_t y, const Colour& paper) const {
        Colour full = ColourOf(PixelOf(picture, x, y));
        float most = -1;
        for (std::int32_t j = y - fullInk; j <= y + fullInk; ++j) {
            for (std::int32_t i = x - fullInk; i <= x + fullInk; ++i) {
                if (owners.At(i, j) != Own) continue;
                const Colour colour = ColourOf(PixelOf(picture, i, j));
                const float strength = Strength(colour, paper);
                if (strength <= most) continue;
                most = strength;
                full = colour;
            }
        }
        return full;
    }
};

} // namespace

MSheetLetter TakeSheetLetter(const MSheet& sheet, const MPicture& picture, std::size_t place) {
    const MSheetBox& box = sheet.boxes[place];
    const Desktop::Rect area{std::max(box.box.left - 1, 0), std::max(box.box.top - 1, 0),
                             std::min(box.box.right + 1, sheet.width),
                             std::min(box.box.bottom + 1, sheet.height)};
    Owners owners(sheet, area);
    owners.Claim(place);
    owners.Soften(!sheet.grid && !box.byHand);
    const PaperRemoval removal(sheet, picture, owners);
    MPicture all(static_cast<std::uint32_t>(area.Width()), static_cast<std::uint32_t>(area.Height()),
                 FormatRGBA8);
    if (!all.IsValid()) return {};
    std::memset(all.Pixels, 0, std::size_t{all.Stride} * all.Height);
    for (std::int32_t y = area.top; y < area.bottom; ++y) {
        for (std::int32_t x = area.left; x < area.right; ++x) {
            const std::uint8_t owner = owners.At(x, y);
            if (owner != Own && owner != Edge) continue;
            const MColour colour = removal.At(x, y);
            std::memcpy(all.Pixels + std::size_t{all.Stride} * static_cast<std::size_t>(y - area.top) +
                            static_cast<std::size_t>(x - area.left) * 4,
                        &colour, 4);
        }
    }
    std::uint32_t top = 0, right = 0, bottom = 0, left = 0;
    all.GetMargins(top, right, bottom, left);
    MSheetLetter letter;
    letter.left = area.left + static_cast<std::int32_t>(left);
    letter.top = area.top + static_cast<std::int32_t>(top);
    letter.picture = MPicture(all.Width - left - right, all.Height - top - bottom, FormatRGBA8);
    if (letter.picture.IsValid()) {
        for (std::uint32_t y = 0; y < letter.picture.Height; ++y)
            std::memcpy(letter.picture.Pixels + std::size_t{y} * letter.picture.Stride,
                        all.PixelAddress(static_cast<std::int32_t>(left), static_cast<std::int32_t>(y + top)),
                        letter.picture.Stride);
    }
    all.Free();
    return letter;
}
