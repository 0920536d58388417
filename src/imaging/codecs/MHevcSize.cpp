#include "imaging/codecs/MHevcSize.h"

#include <algorithm>
#include <array>

namespace {

// The bits of a NAL unit, without the bytes that keep start codes from turning up (ITU-T H.265, 7.3.1.1). Past
// the end they are 0.
class BitReader {
public:
    explicit BitReader(std::span<const std::uint8_t> unit) : rest(unit) {}

    std::uint32_t Bit() {
        if (left == 0) NextByte();
        --left;
        return static_cast<std::uint32_t>(byte) >> left & 1;
    }
    void Skip(int count) {
        for (int i = 0; i < count; ++i)
            Bit();
    }
    // An unsigned Exp-Golomb code (9.2), of the 32 bits that such codes have here at most.
    std::uint64_t Code() {
        int zeros = 0;
        while (zeros < 31 && Bit() == 0)
            ++zeros;
        std::uint64_t value = 1;
        for (int i = 0; i < zeros; ++i)
            value = value << 1 | Bit();
        return value - 1;
    }

private:
    std::span<const std::uint8_t> rest;
    std::uint8_t byte = 0;
    int left = 0;
    int zeroBytes = 0;

    void NextByte() {
        if (zeroBytes >= 2 && !rest.empty() && rest[0] == 3) {
            rest = rest.subspan(1);
            zeroBytes = 0;
        }
        byte = rest.empty() ? std::uint8_t{0} : rest[0];
        if (!rest.empty()) rest = rest.subspan(1);
        zeroBytes = byte == 0 ? zeroBytes + 1 : 0;
        left = 8;
    }
};

constexpr int profileBits = 88;
constexpr int levelBits = 8;

// profile_tier_level (7.3.3)
void SkipProfile(BitReader& bits, std::uint32_t subLayers) {
    bits.Skip(profileBits + levelBits);
    std::array<std::array<std::uint32_t, 2>, 8> present{};
    for (std::uint32_t i = 0; i < subLayers; ++i)
        present[i] = {bits.Bit(), bits.Bit()};
    if (subLayers > 0) bits.Skip(2 * static_cast<int>(8 - subLayers));
    for (std::uint32_t i = 0; i < subLayers; ++i) {
        bits.Skip(present[i][0] != 0 ? profileBits : 0);
        bits.Skip(present[i][1] != 0 ? levelBits : 0);
    }
}

// The start of seq_parameter_set_rbsp (7.3.2.2.1)
MHevcSize PictureSize(std::span<const std::uint8_t> parameterSet) {
    BitReader bits(parameterSet);
    bits.Skip(4);
    const std::uint32_t subLayers = bits.Bit() << 2 | bits.Bit() << 1 | bits.Bit();
    bits.Skip(1);
    SkipProfile(bits, subLayers);
    bits.Code(); // its number
    constexpr std::uint64_t fullChroma = 3;
    if (bits.Code() == fullChroma) bits.Skip(1);
    const std::uint64_t width = bits.Code();
    return {width, bits.Code()};
}

} // namespace

MHevcSize LargestHevcPicture(std::span<const std::uint8_t> file) {
    // The header of such a unit (7.3.1.2). Other data may look like one, but hardly ever promise an enormous
    // size.
    constexpr std::array<std::uint8_t, 2> mark = {0x42, 0x01};
    MHevcSize largest;
    for (auto at = file.begin();; at += mark.size()) {
        at = std::search(at, file.end(), mark.begin(), mark.end());
        if (at == file.end()) return largest;
        const MHevcSize size = PictureSize(std::span(at, file.end()).subspan(mark.size()));
        if (size.Pixels() > largest.Pixels()) largest = size;
    }
}
