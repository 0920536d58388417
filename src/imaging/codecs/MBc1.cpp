#include "imaging/codecs/MBc1.h"

#include <array>
#include <cstring>

namespace {

using Rgba = std::array<std::uint8_t, 4>;

// Of blocks whose end points may stand in either order, one order means three colours and a transparent one.
enum class Colours { Four, FourOrThree };

std::uint64_t LittleEndian(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

std::uint8_t ToByte(float fraction) {
    constexpr float half = 0.5F / 255;
    return static_cast<std::uint8_t>((fraction + half) * 255);
}

using Fractions = std::array<float, 3>; // red, green, blue

Fractions EndPoint(std::uint16_t bits) {
    return {static_cast<float>(bits >> 11) * (1.0F / 31), static_cast<float>(bits >> 5 & 63) * (1.0F / 63),
            static_cast<float>(bits & 31) * (1.0F / 31)};
}

Rgba Between(const Fractions& from, const Fractions& to, float share) {
    Rgba colour{0, 0, 0, 255};
    for (std::size_t i = 0; i < from.size(); ++i)
        colour[i] = ToByte(from[i] + (to[i] - from[i]) * share);
    return colour;
}

void DecodeColours(std::span<const std::uint8_t, Bc1BlockBytes> block, Colours colours,
                   std::span<std::uint8_t, 64> rgba) {
    const auto first = static_cast<std::uint16_t>(LittleEndian(block.first<2>()));
    const auto second = static_cast<std::uint16_t>(LittleEndian(block.subspan<2, 2>()));
    const Fractions from = EndPoint(first);
    const Fractions to = EndPoint(second);
    const bool four = colours == Colours::Four || first > second;
    const std::array<Rgba, 4> palette = {Between(from, to, 0), Between(to, from, 0),
                                         Between(from, to, four ? 1.0F / 3 : 0.5F),
                                         four ? Between(from, to, 2.0F / 3) : Rgba{}};
    std::uint64_t indices = LittleEndian(block.subspan<4, 4>());
    for (std::size_t pixel = 0; pixel < 16; ++pixel, indices >>= 2)
        std::memcpy(rgba.data() + pixel * 4, palette[indices & 3].data(), 4);
}

} // namespace

void DecodeBc1Block(std::span<const std::uint8_t, Bc1BlockBytes> block, std::span<std::uint8_t, 64> rgba) {
    DecodeColours(block, Colours::FourOrThree, rgba);
}

void DecodeBc2Block(std::span<const std::uint8_t, Bc2BlockBytes> block, std::span<std::uint8_t, 64> rgba) {
    DecodeColours(block.subspan<8, 8>(), Colours::Four, rgba);
    std::uint64_t alphas = LittleEndian(block.first<8>());
    for (std::size_t pixel = 0; pixel < 16; ++pixel, alphas >>= 4)
        rgba[pixel * 4 + 3] = static_cast<std::uint8_t>((alphas & 15) * 17);
}

void DecodeBc3Block(std::span<const std::uint8_t, Bc2BlockBytes> block, std::span<std::uint8_t, 64> rgba) {
    DecodeColours(block.subspan<8, 8>(), Colours::Four, rgba);
    const int first = block[0];
    const int second = block[1];
    // Seven steps from one to the other, or five, and then both ends of the range.
    const int steps = first > second ? 7 : 5;
    std::array<std::uint8_t, 8> palette = {block[0], block[1], 0, 0, 0, 0, 0, 255};
    for (int i = 1; i < steps; ++i) {
        const int sum = first * (steps - i) + second * i;
        palette[static_cast<std::size_t>(i) + 1] = static_cast<std::uint8_t>((2 * sum + steps) / (2 * steps));
    }
    std::uint64_t indices = LittleEndian(block.subspan<2, 6>());
    for (std::size_t pixel = 0; pixel < 16; ++pixel, indices >>= 3)
        rgba[pixel * 4 + 3] = palette[indices & 7];
}
