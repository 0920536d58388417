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

void ConvertGrey(const MTiffSamples& kind, const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
    constexpr std::uint32_t most = 65535;
    for (std::size_t x = 0; x < width; ++x) {
        std::uint32_t grey = Load<std::uint16_t>(from, x * 2);
        const std::uint16_t alpha = Load<std::uint16_t>(from, x * 2 + 1);
        if (kind.whiteIsZero) grey = most - grey;
        if (kind.alpha == MTiffAlpha::Premultiplied) grey = alpha > 0 ? std::min(most, grey * most / alpha) : 0;
        const auto value = static_cast<std::uint16_t>(grey);
        const std::array<std::uint16_t, 4> pixel = {value, value, value, alpha};
        std::memcpy(to + x * sizeof pixel, pixel.data(), sizeof pixel);
    }
}

} // namespace

MPixelFormat ConvertedFormat(const MTiffSamples& kind) {
    const int colours = kind.rgb ? 3 : 1;
    if (kind.count != colours && kind.count != colours + 1) return FormatNone;
    if (kind.floats)
        return (kind.bits == 16 || kind.bits == 32) && !kind.whiteIsZero ? FormatRGBA8 : FormatNone;
    return kind.bits == 16 && !kind.rgb && kind.alpha != MTiffAlpha::None ? FormatRGBA16 : FormatNone;
}

void ConvertRow(const MTiffSamples& kind, const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
    if (!kind.floats) {
        ConvertGrey(kind, from, width, to);
    } else if (kind.bits == 32) {
        ConvertFloats<float>(kind, from, width, to);
    } else {
        ConvertFloats<Imath::half>(kind, from, width, to);
    }
}
