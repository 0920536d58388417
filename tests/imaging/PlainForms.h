// The picture operations in their plain form: pixel by pixel through PixelAddress, MPixel and SetPixel, step by
// step as they are defined. The fast forms are held against these, and measured beside them.
#pragma once

#include "foundation/MVector.h"
#include "imaging/MPicture.h"

#include <array>
#include <cmath>
#include <utility>

namespace plain {

inline MPixel PixelAt(const MPicture& picture, std::int64_t x, std::int64_t y) {
    return {picture.PixelAddress(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)), picture.Format};
}

template<typename Value>
void Put(MPicture& picture, std::int64_t x, std::int64_t y, const Value& value) {
    picture.SetPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), value);
}

inline std::array<float, 4> Channels(const MPixel& pixel) {
    switch (ChannelClass(pixel.format)) {
    case 1: return {float(pixel.colour.r), float(pixel.colour.g), float(pixel.colour.b), float(pixel.colour.a)};
    case 2:
        return {float(pixel.colour16.r), float(pixel.colour16.g), float(pixel.colour16.b),
                float(pixel.colour16.a)};
    default: return {pixel.colourHalf.r, pixel.colourHalf.g, pixel.colourHalf.b, pixel.colourHalf.a};
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
    const float ratio =
        std::max(float(source.Width) / float(target.Width), float(source.Height) / float(target.Height));
    const std::int64_t n = std::clamp(ToInteger(std::ceil(ratio)), 2, 32);
    const bool alphaCounts = HasAlpha(target.Format);
    for (std::int64_t y = 0; y < target.Height; ++y) {
        for (std::int64_t x = 0; x < target.Width; ++x) {
            const std::int64_t x0 = x * source.Width / target.Width;
            const std::int64_t y0 = y * source.Height / target.Height;
            std::array<float, 4> sums{};
            int colourCount = 0;
            int alphaCount = 0;
            for (std::int64_t j = 0; j < n; ++j) {
                for (std::int64_t i = 0; i < n; ++i) {
                    const std::int64_t sampleX = target.Width == 1 ? 0 : x0 + i;
                    const std::int64_t sampleY = target.Height == 1 ? 0 : y0 + j;
                    if (sampleX >= source.Width || sampleY >= source.Height) continue;
                    const auto sample = Channels(PixelAt(source, sampleX, sampleY));
                    if (alphaCounts) {
                        ++alphaCount;
                        sums[3] += sample[3];
                        if (!(sample[3] > 0)) continue;
                    }
                    for (std::size_t c = 0; c < 3; ++c)
                        sums[c] += sample[c];
                    ++colourCount;
                }
            }
            if (colourCount < 1) {
                Put(target, x, y, MColour(0, 0, 0, 0));
                continue;
            }
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] /= float(colourCount);
            constexpr std::array opaque = {0.0F, 255.0F, 65535.0F, 1.0F};
            sums[3] = alphaCount > 0 ? sums[3] / float(alphaCount)
                                     : opaque[static_cast<std::size_t>(ChannelClass(source.Format))];
            Put(target, x, y, PixelOf(sums, source.Format));
        }
    }
}

// Two masks of bytes, read and written in turns, and the rectangle of the last ring grown by one.
inline void BleedColours(MPicture& picture) {
    if (!picture.IsValid() || !picture.HasTransparency()) return;
    struct Rectangle {
        std::int64_t left = INT64_MAX, top = INT64_MAX, right = -1, bottom = -1;
        void Add(std::int64_t x, std::int64_t y) {
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    };
    const std::int64_t width = picture.Width;
    const std::int64_t height = picture.Height;
    MVector<std::uint8_t> masks[2];
    for (auto& mask : masks) {
        if (!mask.Resize(static_cast<std::int32_t>(width * height), false)) return;
    }
    Rectangle record;
    for (std::int64_t y = 0; y < height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            const bool visible =
                picture.GetPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)).a != 0;
            masks[0].data[y * width + x] = masks[1].data[y * width + x] = visible;
            if (visible) record.Add(x, y);
        }
    }
    if (record.right < 0) return;
    constexpr std::array<std::pair<int, int>, 8> neighbours = {
        {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, 1}, {-1, 1}, {1, -1}}};
    const std::int64_t maxPasses = std::max<std::int64_t>(std::max(width, height) >> 6, 32);
    for (std::int64_t pass = 0;; ++pass) {
        const std::uint8_t* const read = masks[pass % 2].data;
        std::uint8_t* const write = masks[(pass + 1) % 2].data;
        const Rectangle region = {
            std::max<std::int64_t>(record.left - 1, 0), std::max<std::int64_t>(record.top - 1, 0),
            std::min(record.right + 1, width - 1), std::min(record.bottom + 1, height - 1)};
        record = {};
        for (std::int64_t y = region.top; y <= region.bottom; ++y) {
            for (std::int64_t x = region.left; x <= region.right; ++x) {
                if (read[y * width + x] == 1) {
                    write[y * width + x] = 1;
                    continue;
                }
                for (const auto& [dx, dy] : neighbours) {
                    const std::int64_t nx = x + dx;
                    const std::int64_t ny = y + dy;
                    if (nx < 0 || ny < 0 || nx >= width || ny >= height || read[ny * width + nx] != 1) continue;
                    MColour colour =
                        picture.GetPixel(static_cast<std::int32_t>(nx), static_cast<std::int32_t>(ny));
                    colour.a = 0;
                    Put(picture, x, y, colour);
                    write[y * width + x] = 1;
                    record.Add(x, y);
                    break;
                }
            }
        }
        if (pass + 1 > maxPasses || record.right < 0) return;
    }
}

inline void GetMargins(const MPicture& picture, std::array<std::uint32_t, 4>& margins) {
    const auto width = static_cast<std::int32_t>(picture.Width);
    const auto height = static_cast<std::int32_t>(picture.Height);
    const auto search = [](std::int32_t lines, std::int32_t cells, auto inked) {
        for (std::int32_t line = 0; line < lines; ++line) {
            for (std::int32_t cell = 0; cell < cells; ++cell) {
                if (inked(line, cell)) return static_cast<std::uint32_t>(line);
            }
        }
        return 0U;
    };
    const auto ink = [&](std::int32_t x, std::int32_t y) { return picture.GetPixel(x, y).a != 0; };
    margins[0] = search(height, width, [&](auto line, auto cell) { return ink(cell, line); });
    margins[1] = search(width, height, [&](auto line, auto cell) { return ink(width - 1 - line, cell); });
    margins[2] = search(height, width, [&](auto line, auto cell) { return ink(cell, height - 1 - line); });
    margins[3] = search(width, height, [&](auto line, auto cell) { return ink(line, cell); });
}

} // namespace plain
