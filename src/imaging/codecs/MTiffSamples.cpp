#include "imaging/codecs/MTiffSamples.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

template<typename Sample>
Sample Load(const std::uint8_t* from, std::size_t index) {
    Sample sample;
    std::memcpy(&sample, from + index * sizeof sample, sizeof sample);
    return sample;
}

template<typename Sample>
void ConvertFloats(const MTiffSamples& kind, const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
    for (std::size_t x = 0; x < width; ++x, from += kind.count * sizeof(Sample)) {
        const auto channel = [&](std::size_t index) { return static_cast<float>(Load<Sample>(from, index)); };
        const float alpha = kind.alpha == MTiffAlpha::None ? 1 : channel(kind.count - 1U);
        const auto straight = [&](std::size_t index) {
            const float value = channel(kind.rgb ? index : 0);
            return ToByte(kind.alpha != MTiffAlpha::Premultiplied ? value : alpha > 0 ? value / alpha : 0);
        };
        const MColour colour(straight(0), straight(1), straight(2), ToByte(alpha));
        std::memcpy(to + x * sizeof colour, &colour, sizeof colour);
    }
}

constexpr std::uint32_t mostWord = 65535;

void ConvertWords(const MTiffSamples& kind, const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
    for (std::size_t x = 0; x < width; ++x, from += kind.count * sizeof(std::uint16_t)) {
        const std::uint16_t alpha = Load<std::uint16_t>(from, kind.count - 1U);
        const auto channel = [&](std::size_t index) {
            std::uint32_t value = Load<std::uint16_t>(from, kind.rgb ? index : 0);
            if (kind.whiteIsZero) value = mostWord - value;
            if (kind.alpha == MTiffAlpha::Premultiplied)
                value = alpha > 0 ? std::min(mostWord, value * mostWord / alpha) : 0;
            return static_cast<std::uint16_t>(value);
        };
        const std::array<std::uint16_t, 4> pixel = {channel(0), channel(1), channel(2), alpha};
        std::memcpy(to + x * sizeof pixel, pixel.data(), sizeof pixel);
    }
}

// Taken as light, two inks multiply.
void ConvertInks(const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
    for (std::size_t x = 0; x < width; ++x, from += 4 * sizeof(std::uint16_t)) {
        const auto light = [&](std::size_t ink) -> std::uint32_t {
            return mostWord - Load<std::uint16_t>(from, ink);
        };
        const auto mixed = [&](std::size_t ink) {
            return static_cast<std::uint16_t>((light(ink) * light(3) + mostWord / 2) / mostWord);
        };
        const std::array<std::uint16_t, 3> pixel = {mixed(0), mixed(1), mixed(2)};
        std::memcpy(to + x * sizeof pixel, pixel.data(), sizeof pixel);
    }
}

} // namespace

MPixelFormat ConvertedFormat(const MTiffSamples& kind) {
    if (kind.inks) return kind.bits == 16 && kind.count == 4 && !kind.floats ? FormatRGB16 : FormatNone;
    const int colours = kind.rgb ? 3 : 1;
    if (kind.count != colours && kind.count != colours + 1) return FormatNone;
    if (kind.floats)
        return (kind.bits == 16 || kind.bits == 32) && !kind.whiteIsZero ? FormatRGBA8 : FormatNone;
    const bool hasAlpha = kind.count == colours + 1 && kind.alpha != MTiffAlpha::None;
    return kind.bits == 16 && hasAlpha ? FormatRGBA16 : FormatNone;
}

void ConvertRow(const MTiffSamples& kind, const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
    if (kind.inks) {
        ConvertInks(from, width, to);
    } else if (!kind.floats) {
        ConvertWords(kind, from, width, to);
    } else if (kind.bits == 32) {
        ConvertFloats<float>(kind, from, width, to);
    } else {
        ConvertFloats<Imath::half>(kind, from, width, to);
    }
}
