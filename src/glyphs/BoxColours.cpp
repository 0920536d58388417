#include "glyphs/BoxColours.h"

#include "glyphs/MBoxSums.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

// The alphas of two pixels; a pixel as one number has its own on top.
static_assert(std::endian::native == std::endian::little);
constexpr std::uint64_t opaque = 0xFF000000FF000000;

// Two pixels side by side, the left one below.
std::uint64_t LoadPair(const std::uint8_t* from) {
    std::uint64_t pair = 0;
    std::memcpy(&pair, from, sizeof pair);
    return pair;
}

// Two channels of two pixels at a time, each with room for the sum of four.
std::uint32_t MeanOfOpaque(std::uint64_t upper, std::uint64_t lower) {
    constexpr std::uint64_t everyOther = 0x00FF00FF00FF00FF;
    const auto sum = [](std::uint64_t pairs) { return static_cast<std::uint32_t>(pairs + (pairs >> 32)); };
    const std::uint32_t low = sum((upper & everyOther) + (lower & everyOther));
    const std::uint32_t high = sum((upper >> 8 & everyOther) + (lower >> 8 & everyOther));
    constexpr std::uint32_t bytes = 0x00FF00FF;
    return (low >> 2 & bytes) | (high >> 2 & bytes) << 8;
}

MColour Mean(std::uint64_t upper, std::uint64_t lower) {
    int r = 0;
    int g = 0;
    int b = 0;
    int a = 0;
    int visible = 0;
    for (const std::uint64_t pixel : {upper, upper >> 32, lower, lower >> 32}) {
        const MColour sample = Unpremultiplied(std::bit_cast<MColour>(static_cast<std::uint32_t>(pixel)));
        if (sample.a == 0) continue;
        r += sample.r;
        g += sample.g;
        b += sample.b;
        a += sample.a;
        ++visible;
    }
    if (visible == 0) return {0, 0, 0, 0};
    // Dividing by a number that is known when this is compiled is several times faster.
    const auto mean = [](int sum, int count) {
        switch (count) {
        case 1: return static_cast<std::uint8_t>(sum);
        case 2: return static_cast<std::uint8_t>(sum / 2);
        case 3: return static_cast<std::uint8_t>(sum / 3);
        default: return static_cast<std::uint8_t>(sum / 4);
        }
    };
    return {mean(r, visible), mean(g, visible), mean(b, visible), mean(a, 4)};
}

} // namespace

void BoxDownColours(const MSurfaceBitmap& bitmap, MPicture& picture) {
    const std::size_t width = std::min<std::size_t>(picture.Width, static_cast<std::size_t>(bitmap.width) / 2);
    const std::size_t height =
        std::min<std::size_t>(picture.Height, static_cast<std::size_t>(bitmap.height) / 2);
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* const upper = bitmap.Row(static_cast<std::int32_t>(y) * 2);
        const std::uint8_t* const lower = upper + bitmap.stride;
        std::uint8_t* const row = picture.Pixels + y * picture.Stride;
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint64_t above = LoadPair(upper + x * 8);
            const std::uint64_t below = LoadPair(lower + x * 8);
            std::uint32_t pixel = 0;
            // Most squares are the background or lie inside a shape.
            if ((above & below & opaque) == opaque) {
                pixel = MeanOfOpaque(above, below);
            } else if ((above | below) != 0) {
                pixel = std::bit_cast<std::uint32_t>(Mean(above, below));
            }
            std::memcpy(row + x * 4, &pixel, sizeof pixel);
        }
    }
    RepeatCanvas(picture, static_cast<std::size_t>(bitmap.width) / 2,
                 static_cast<std::size_t>(bitmap.height) / 2);
}
