#include "imaging/codecs/MBc7.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace {

struct Mode {
    int subsets;
    int partitionBits;
    int rotationBits;
    int selectionBits;
    int colourBits;
    int alphaBits;
    int endpointPBits; // one lowest bit for each end point
    int subsetPBits;   // or for both of a subset
    int indexBits;
    int alphaIndexBits; // of a second set of indices
};

// Table 109
constexpr std::array<Mode, 8> modes = {{
    {3, 4, 0, 0, 4, 0, 1, 0, 3, 0},
    {2, 6, 0, 0, 6, 0, 0, 1, 3, 0},
    {3, 6, 0, 0, 5, 0, 0, 0, 2, 0},
    {2, 6, 0, 0, 7, 0, 1, 0, 2, 0},
    {1, 0, 2, 1, 5, 6, 0, 0, 2, 3},
    {1, 0, 2, 0, 7, 8, 0, 0, 2, 2},
    {1, 0, 0, 0, 7, 7, 1, 0, 4, 0},
    {2, 6, 0, 0, 5, 5, 1, 0, 2, 0},
}};

// Which of two subsets a pixel is in: bit i is pixel i.
constexpr std::array<std::uint16_t, 64> partitions2 = {
    0xCCCC, 0x8888, 0xEEEE, 0xECC8, 0xC880, 0xFEEC, 0xFEC8, 0xEC80, 0xC800, 0xFFEC, 0xFE80, 0xE800, 0xFFE8,
    0xFF00, 0xFFF0, 0xF000, 0xF710, 0x008E, 0x7100, 0x08CE, 0x008C, 0x7310, 0x3100, 0x8CCE, 0x088C, 0x3110,
    0x6666, 0x366C, 0x17E8, 0x0FF0, 0x718E, 0x399C, 0xAAAA, 0xF0F0, 0x5A5A, 0x33CC, 0x3C3C, 0x55AA, 0x9696,
    0xA55A, 0x73CE, 0x13C8, 0x324C, 0x3BDC, 0x6996, 0xC33C, 0x9966, 0x0660, 0x0272, 0x04E4, 0x4E40, 0x2720,
    0xC936, 0x936C, 0x39C6, 0x639C, 0x9336, 0x9CC6, 0x817E, 0xE718, 0xCCF0, 0x0FCC, 0x7744, 0xEE22,
};

// And of three: bits 2 i and 2 i + 1 are pixel i.
constexpr std::array<std::uint32_t, 64> partitions3 = {
    0xAA685050, 0x6A5A5040, 0x5A5A4200, 0x5450A0A8, 0xA5A50000, 0xA0A05050, 0x5555A0A0, 0x5A5A5050,
    0xAA550000, 0xAA555500, 0xAAAA5500, 0x90909090, 0x94949494, 0xA4A4A4A4, 0xA9A59450, 0x2A0A4250,
    0xA5945040, 0x0A425054, 0xA5A5A500, 0x55A0A0A0, 0xA8A85454, 0x6A6A4040, 0xA4A45000, 0x1A1A0500,
    0x0050A4A4, 0xAAA59090, 0x14696914, 0x69691400, 0xA08585A0, 0xAA821414, 0x50A4A450, 0x6A5A0200,
    0xA9A58000, 0x5090A0A8, 0xA8A09050, 0x24242424, 0x00AA5500, 0x24924924, 0x24499224, 0x50A50A50,
    0x500AA550, 0xAAAA4444, 0x66660000, 0xA5A0A5A0, 0x50A050A0, 0x69286928, 0x44AAAA44, 0x66666600,
    0xAA444444, 0x54A854A8, 0x95809580, 0x96969600, 0xA85454A8, 0x80959580, 0xAA141414, 0x96960000,
    0xAAAA1414, 0xA05050A0, 0xA0A5A5A0, 0x96000000, 0x40804080, 0xA9A8A9A8, 0xAAAAAA44, 0x2A4A5254,
};

// The pixel of the later subsets whose index has one bit less, since its highest is 0.
constexpr std::array<std::uint8_t, 64> anchors2 = {
    15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 2,  8, 2,  2, 8,
    8,  15, 2,  8,  2,  2,  8,  8,  2,  2,  15, 15, 6,  8,  2,  8,  15, 15, 2, 8,  2, 2,
    2,  15, 15, 6,  6,  2,  6,  8,  15, 15, 2,  2,  15, 15, 15, 15, 15, 2,  2, 15,
};
constexpr std::array<std::uint8_t, 64> anchors3Second = {
    3,  3,  15, 15, 8, 3,  15, 15, 8,  8,  6, 6,  6, 5,  3, 3,  3,  3,  8,  15, 3,  3,
    6,  10, 5,  8,  8, 6,  8,  5,  15, 15, 8, 15, 3, 5,  6, 10, 8,  15, 15, 3,  15, 5,
    15, 15, 15, 15, 3, 15, 5,  5,  5,  8,  5, 10, 5, 10, 8, 13, 15, 12, 3,  3,
};
constexpr std::array<std::uint8_t, 64> anchors3Third = {
    15, 8, 8, 3,  15, 15, 3,  8,  15, 15, 15, 15, 15, 15, 15, 8,  15, 8,  15, 3,  15, 8,
    15, 8, 3, 15, 6,  10, 15, 15, 10, 8,  15, 3,  15, 10, 10, 8,  9,  10, 6,  15, 8,  15,
    3,  6, 6, 8,  15, 3,  15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 3,  15, 15, 8,
};

constexpr std::array<std::uint8_t, 4> weights2 = {0, 21, 43, 64};
constexpr std::array<std::uint8_t, 8> weights3 = {0, 9, 18, 27, 37, 46, 55, 64};
constexpr std::array<std::uint8_t, 16> weights4 = {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};

std::span<const std::uint8_t> Weights(int bits) {
    if (bits == 2) return weights2;
    if (bits == 3) return weights3;
    return weights4;
}

class Bits {
public:
    explicit Bits(std::span<const std::uint8_t, Bc7BlockBytes> block) {
        std::memcpy(&low, block.data(), sizeof low);
        std::memcpy(&high, block.data() + sizeof low, sizeof high);
    }
    // Up to 8, the lowest first.
    std::uint32_t Take(int count) {
        if (count == 0) return 0;
        const auto taken = static_cast<std::uint32_t>(low & ((std::uint64_t{1} << count) - 1));
        low = low >> count | high << (64 - count);
        high >>= count;
        return taken;
    }

private:
    std::uint64_t low = 0;
    std::uint64_t high = 0;
};

using Pixel = std::array<std::uint32_t, 4>;
using EndPoints = std::array<Pixel, 6>; // two for each subset

// Stretched to 8 bits by repeating the highest.
std::uint32_t Stretch(std::uint32_t value, int bits) {
    value <<= 8 - bits;
    return value | value >> bits;
}

void ReadEndPoints(Bits& bits, const Mode& mode, EndPoints& ends) {
    const auto count = static_cast<std::size_t>(mode.subsets) * 2;
    const std::size_t channels = mode.alphaBits != 0 ? 4 : 3;
    for (std::size_t c = 0; c < channels; ++c) {
        for (std::size_t i = 0; i < count; ++i)
            ends[i][c] = bits.Take(c < 3 ? mode.colourBits : mode.alphaBits);
    }
    const int pBits = mode.endpointPBits + mode.subsetPBits;
    std::uint32_t p = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (mode.endpointPBits != 0 || (mode.subsetPBits != 0 && i % 2 == 0)) p = bits.Take(1);
        for (std::size_t c = 0; c < channels; ++c) {
            const std::uint32_t value = pBits != 0 ? ends[i][c] << 1 | p : ends[i][c];
            ends[i][c] = Stretch(value, (c < 3 ? mode.colourBits : mode.alphaBits) + pBits);
        }
        if (channels == 3) ends[i][3] = 255;
    }
}

using Indices = std::array<std::uint8_t, 16>;

void ReadIndices(Bits& bits, int width, std::uint32_t anchors, Indices& indices) {
    for (std::size_t i = 0; i < indices.size(); ++i) {
        indices[i] = static_cast<std::uint8_t>(bits.Take(width - static_cast<int>(anchors >> i & 1)));
    }
}

struct Partition {
    std::uint32_t subsets = 0; // of each pixel, two bits
    std::uint32_t anchors = 1; // one bit for each pixel
};

Partition PartitionOf(int subsets, std::size_t number) {
    Partition partition;
    if (subsets == 2) {
        for (std::uint32_t i = 0; i < 16; ++i)
            partition.subsets |= (std::uint32_t{partitions2[number]} >> i & 1U) << (2 * i);
        partition.anchors |= 1U << anchors2[number];
    } else if (subsets == 3) {
        partition.subsets = partitions3[number];
        partition.anchors |= 1U << anchors3Second[number] | 1U << anchors3Third[number];
    }
    return partition;
}

std::uint8_t Between(std::uint32_t first, std::uint32_t second, std::uint32_t weight) {
    return static_cast<std::uint8_t>(((64 - weight) * first + weight * second + 32) >> 6);
}

} // namespace

void DecodeBc7Block(std::span<const std::uint8_t, Bc7BlockBytes> block, std::span<std::uint8_t, 64> rgba) {
    const int modeNumber = std::countr_zero(static_cast<std::uint32_t>(block[0]) | 0x100);
    if (modeNumber == 8) {
        std::ranges::fill(rgba, std::uint8_t{0});
        return;
    }
    const Mode& mode = modes[static_cast<std::size_t>(modeNumber)];
    Bits bits(block);
    bits.Take(modeNumber + 1);
    const std::size_t partition = bits.Take(mode.partitionBits);
    const std::uint32_t rotation = bits.Take(mode.rotationBits);
    const bool swapped = bits.Take(mode.selectionBits) != 0;
    EndPoints ends{};
    ReadEndPoints(bits, mode, ends);

    const auto [subsets, anchors] = PartitionOf(mode.subsets, partition);
    Indices indices{};
    Indices alphaIndices{};
    ReadIndices(bits, mode.indexBits, anchors, indices);
    if (mode.alphaIndexBits != 0) ReadIndices(bits, mode.alphaIndexBits, anchors, alphaIndices);

    const bool second = mode.alphaIndexBits != 0;
    std::span<const std::uint8_t> colourWeights = Weights(mode.indexBits);
    std::span<const std::uint8_t> alphaWeights = second ? Weights(mode.alphaIndexBits) : colourWeights;
    const Indices* colourIndex = &indices;
    const Indices* alphaIndex = second ? &alphaIndices : &indices;
    if (swapped) {
        std::swap(colourWeights, alphaWeights);
        std::swap(colourIndex, alphaIndex);
    }
    for (std::size_t i = 0; i < 16; ++i) {
        const std::size_t subset = subsets >> (2 * i) & 3;
        const Pixel& from = ends[2 * subset];
        const Pixel& to = ends[2 * subset + 1];
        const std::uint32_t colourWeight = colourWeights[(*colourIndex)[i]];
        std::uint8_t* const pixel = rgba.data() + i * 4;
        for (std::size_t c = 0; c < 3; ++c)
            pixel[c] = Between(from[c], to[c], colourWeight);
        pixel[3] = Between(from[3], to[3], alphaWeights[(*alphaIndex)[i]]);
        if (rotation != 0) std::swap(pixel[3], pixel[rotation - 1]);
    }
}
