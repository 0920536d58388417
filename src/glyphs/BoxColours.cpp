#include "glyphs/BoxColours.h"

#include "glyphs/MBoxSums.h"

#include <algorithm>
#include <cstring>

namespace {

std::uint32_t Load(const std::uint8_t* from) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

MColour Mean(const std::uint8_t* upper, const std::uint8_t* lower) {
    MColour sample;
    int r = 0;
    int g = 0;
    int b = 0;
    int a = 0;
    int visible = 0;
    for (const std::uint8_t* from : {upper, upper + 4, lower, lower + 4}) {
        std::memcpy(&sample, from, sizeof sample);
        if (sample.a == 0) continue;
        sample = Straight(sample);
        r += sample.r;
        g += sample.g;
        b += sample.b;
        a += sample.a;
        ++visible;
    }
    if (visible == 0) return {0, 0, 0, 0};
    const auto mean = [](int sum, int count) { return static_cast<std::uint8_t>(sum / count); };
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
            // Most squares are of one colour, the background or the inside of a shape.
            const std::uint32_t first = Load(upper + x * 8);
            const bool same = first == Load(upper + x * 8 + 4) && first == Load(lower + x * 8) &&
                              first == Load(lower + x * 8 + 4);
            if (same && (first == 0 || first >= 0xFF000000U)) {
                std::memcpy(row + x * 4, &first, sizeof first);
            } else {
                const MColour mean = Mean(upper + x * 8, lower + x * 8);
                std::memcpy(row + x * 4, &mean, sizeof mean);
            }
        }
    }
    RepeatCanvas(picture, static_cast<std::size_t>(bitmap.width) / 2,
                 static_cast<std::size_t>(bitmap.height) / 2);
}
