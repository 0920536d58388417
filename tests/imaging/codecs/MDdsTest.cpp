#include "imaging/codecs/MDds.h"

#include "imaging/codecs/Coding.h"
#include "imaging/codecs/MBc1.h"
#include "imaging/codecs/MBc7.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>

TEST(Dds, ReadsTheListedFormats) {
    int files = 0;
    for (const std::string& name : DataFiles("dds")) {
        // As in "code-36.83c38343c.dds": of format 8, and red, green, blue and alpha of every pixel.
        const std::size_t told = name.find('.') + 1;
        const auto rgba = static_cast<std::uint32_t>(std::stoul(name.substr(told + 1, 8), nullptr, 16));
        const auto channel = [&](int shift) { return static_cast<std::uint8_t>(rgba >> shift); };
        const MColour colour(channel(24), channel(16), channel(8), channel(0));
        const OwnedPicture picture = Decoded("DDS", DataFile("dds/" + name));
        EXPECT_EQ(picture.Format, name[told] - '0') << name;
        EXPECT_EQ(picture.GetPixel(3, 3), colour) << name;
        EXPECT_EQ(picture.GetPixel(1, 0), colour) << name;
        ++files;
    }
    EXPECT_EQ(files, 21);
}

// As the codec would refuse it later for its long rows, but its block is smaller than its pixels.
TEST(Dds, AnImageWhoseSizeCanNotBeCountedIsRefused) {
    const Bytes file = DataFile("refused/2-to-the-61st-pixels-and-8.dds");
    MByteSource source{std::span(file)};
    MDdsImage image;
    EXPECT_FALSE(LoadDds(source, image));
}

TEST(Dds, HalvesWithoutAlphaAreOpaque) {
    for (const MPixelFormat format : {FormatRHalf, FormatRGBHalf}) {
        const OwnedPicture halves = Decoded("DDS", Encoded("DDS", SmoothPicture(2, 2, format)));
        EXPECT_EQ(halves.GetPixelHalf(0, 0).a, Imath::half(1.0F)) << format;
    }
}

// Random blocks by exact fractions of whole numbers, each rounded to the nearest byte. Halfway between two end
// points there may be two.
TEST(Bc1, MatchesExactFractions) {
    const auto isNearest = [](int byte, int above, int below) {
        return 2 * std::abs(byte * below - above) <= below;
    };
    Random random(1);
    for (int i = 0; i < 100'000; ++i) {
        std::array<std::uint8_t, Bc2BlockBytes> block{};
        for (auto& byte : block)
            byte = static_cast<std::uint8_t>(random() >> 24);
        std::array<std::uint8_t, 64> bc1{}, bc2{}, bc3{};
        const auto colours = std::span(block).subspan<8, 8>();
        DecodeBc1Block(colours, bc1);
        DecodeBc2Block(block, bc2);
        DecodeBc3Block(block, bc3);
        const int first = block[8] | block[9] << 8;
        const int second = block[10] | block[11] << 8;
        for (int pixel = 0; pixel < 16; ++pixel) {
            const int index = block[static_cast<std::size_t>(12 + pixel / 4)] >> (pixel % 4 * 2) & 3;
            const auto at = static_cast<std::size_t>(pixel * 4);
            constexpr int shifts[] = {11, 5, 0}, most[] = {31, 63, 31};
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const int a = first >> shifts[channel] & most[channel];
                const int b = second >> shifts[channel] & most[channel];
                const int thirds[] = {3 * a, 3 * b, 2 * a + b, a + 2 * b};
                const int halves[] = {2 * a, 2 * b, a + b, 0};
                const bool four = first > second;
                const int sum = (four ? thirds : halves)[index];
                ASSERT_TRUE(isNearest(bc1[at + channel], 255 * sum, (four ? 3 : 2) * most[channel]));
                ASSERT_TRUE(isNearest(bc2[at + channel], 255 * thirds[index], 3 * most[channel]));
                ASSERT_EQ(bc3[at + channel], bc2[at + channel]);
            }
            ASSERT_EQ(bc1[at + 3], first <= second && index == 3 ? 0 : 255);
            ASSERT_EQ(bc2[at + 3], (block[static_cast<std::size_t>(pixel / 2)] >> (pixel % 2 * 4) & 15) * 17);
            std::uint64_t indices = 0;
            std::memcpy(&indices, block.data() + 2, 6);
            const int step = static_cast<int>(indices >> (pixel * 3) & 7);
            const int steps = block[0] > block[1] ? 7 : 5;
            const int sum = step == 0       ? block[0] * steps
                            : step == 1     ? block[1] * steps
                            : step <= steps ? block[0] * (steps - step + 1) + block[1] * (step - 1)
                                            : (step == 7 ? 255 * steps : 0);
            ASSERT_TRUE(isNearest(bc3[at + 3], sum, steps)) << step;
        }
    }
}

// Random blocks of every mode, 4096 of each. The sums are those of what another decoder (Pillow 9.4) makes of
// them.
TEST(Bc7, MatchesAnotherDecoder) {
    constexpr std::array<std::uint64_t, 8> expected = {
        0xf02cbc690db5244e, 0xfe3c0ef7e7040dad, 0x576eeb0345d3eba8, 0x9332cf146f226551,
        0xe132bb1e125d3b93, 0x79e546b1752852ab, 0x14fc00fd7e03d60a, 0x0d38bfe44b3e88f5};
    for (std::uint32_t mode = 0; mode < 8; ++mode) {
        Random random(mode);
        std::uint64_t sum = 0xcbf29ce484222325; // FNV-1a
        for (int i = 0; i < 4096; ++i) {
            std::array<std::uint8_t, Bc7BlockBytes> block{};
            for (auto& byte : block)
                byte = static_cast<std::uint8_t>(random() >> 24);
            block[0] = static_cast<std::uint8_t>((block[0] | 1) << mode); // a mode is told by its lowest bit
            std::array<std::uint8_t, 64> pixels{};
            DecodeBc7Block(block, pixels);
            for (const std::uint8_t byte : pixels)
                sum = (sum ^ byte) * 0x100000001b3;
        }
        EXPECT_EQ(sum, expected[mode]) << "mode " << mode;
    }
    std::array<std::uint8_t, 64> pixels{};
    pixels.fill(9);
    DecodeBc7Block(std::array<std::uint8_t, Bc7BlockBytes>{}, pixels);
    EXPECT_EQ(pixels, (std::array<std::uint8_t, 64>{})) << "the reserved mode";
}

TEST(Bc7, BlocksAtTheEdgesAreCut) {
    const OwnedPicture picture = Decoded("DDS", DataFile("BC7-white-5-by-7.dds"));
    EXPECT_EQ(picture.Height, 7U);
    for (const auto& [x, y] : PlacesOf(picture))
        EXPECT_EQ(picture.GetPixel(x, y), MColour(255, 255, 255, 255));
}
