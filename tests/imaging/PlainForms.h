// The picture operations in their plain form: pixel by pixel through PixelAddress, MPixel and SetPixel, step by
// step as they are defined. The fast forms are held against these, and measured beside them.
#pragma once

#include "foundation/MVector.h"
#include "imaging/MPicture.h"

#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace plain {

inline std::array<float, 4> Channels(const MPixel& pixel) {
    const auto floats = [](const auto& c) {
        return std::array{float(c.r), float(c.g), float(c.b), float(c.a)};
    };
    switch (ChannelClass(pixel.format)) {
    case 1: return floats(pixel.colour);
    case 2: return floats(pixel.colour16);
    default: return floats(pixel.colourHalf);
    }
}

inline MPixel PixelOf(const std::array<float, 4>& channels, MPixelFormat format) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(ToInteger(channels[i])); };
    const auto word = [&](std::size_t i) { return static_cast<std::uint16_t>(ToInteger(channels[i])); };
    switch (ChannelClass(format)) {
    case 1: return {MColour(byte(0), byte(1), byte(2), byte(3)), format};
    case 2: return {MColour16{word(0), word(1), word(2), word(3)}, format};
    default: return {MColourHalf(channels[0], channels[1], channels[2], channels[3]), format};
    }
}

// The smooth resampler, into the uninitialised `target`.
inline void Resample(const MPicture& source, MPicture& target) {
    const auto width = static_cast<std::int32_t>(source.Width);
    const auto height = static_cast<std::int32_t>(source.Height);
    const auto newWidth = static_cast<std::int32_t>(target.Width);
    const auto newHeight = static_cast<std::int32_t>(target.Height);
    const float ratio = std::max(float(width) / float(newWidth), float(height) / float(newHeight));
    const std::int32_t n = std::clamp(ToInteger(std::ceil(ratio)), 2, 32);
    for (std::int32_t y = 0; y < newHeight; ++y) {
        for (std::int32_t x = 0; x < newWidth; ++x) {
            std::array<float, 4> sums{};
            float colourCount = 0, alphaCount = 0;
            for (std::int32_t j = 0; j < n; ++j) {
                for (std::int32_t i = 0; i < n; ++i) {
                    const std::int32_t sampleX = newWidth == 1 ? 0 : x * width / newWidth + i;
                    const std::int32_t sampleY = newHeight == 1 ? 0 : y * height / newHeight + j;
                    if (sampleX >= width || sampleY >= height) continue;
                    const auto sample = Channels({source.PixelAddress(sampleX, sampleY), source.Format});
                    if (HasAlpha(target.Format)) {
                        ++alphaCount;
                        sums[3] += sample[3];
                        if (!(sample[3] > 0)) continue;
                    }
                    for (std::size_t c = 0; c < 3; ++c)
                        sums[c] += sample[c];
                    ++colourCount;
                }
            }
            if (colourCount == 0) {
                target.SetPixel(x, y, MColour(0, 0, 0, 0));
                continue;
            }
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] /= colourCount;
            constexpr std::array opaque = {0.0F, 255.0F, 65535.0F, 1.0F};
            sums[3] = alphaCount > 0 ? sums[3] / alphaCount
                                     : opaque[static_cast<std::size_t>(ChannelClass(source.Format))];
            target.SetPixel(x, y, PixelOf(sums, source.Format));
        }
    }
}

// Ring by ring: what has a colour before the ring gives it to its neighbours that have none.
inline void BleedColours(MPicture& picture) {
    const auto width = static_cast<std::int32_t>(picture.Width);
    const auto height = static_cast<std::int32_t>(picture.Height);
    const auto at = [=](std::int32_t x, std::int32_t y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    };
    std::vector<bool> coloured(at(0, height));
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            coloured[at(x, y)] = picture.GetPixel(x, y).a != 0;
    constexpr std::array<std::pair<int, int>, 8> neighbours = {
        {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, 1}, {-1, 1}, {1, -1}}};
    const int rings = std::max(std::max(width, height) >> 6, 32) + 1;
    for (int ring = 0; ring < rings; ++ring) {
        const std::vector<bool> before = coloured;
        for (std::int32_t y = 0; y < height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) {
                if (before[at(x, y)]) continue;
                for (const auto& [dx, dy] : neighbours) {
                    const std::int32_t nx = x + dx, ny = y + dy;
                    if (nx < 0 || ny < 0 || nx >= width || ny >= height || !before[at(nx, ny)]) continue;
                    MColour colour = picture.GetPixel(nx, ny);
                    colour.a = 0;
                    picture.SetPixel(x, y, colour);
                    coloured[at(x, y)] = true;
                    break;
                }
            }
        }
        if (coloured == before) return;
    }
}

} // namespace plain
