#include "imaging/codecs/MDds.h"

#include "imaging/codecs/Coding.h"
#include "imaging/codecs/MBc7.h"

#include <gtest/gtest.h>

#include <array>

namespace {

struct Dds {
    std::uint32_t width = 4, height = 4;
    std::uint32_t mipLevels = 0;
    std::uint32_t flags = 4;         // of the pixel format; 4: it has a four-character code
    std::uint32_t code = 0x30315844; // "DX10"
    std::uint32_t bits = 0;
    std::array<std::uint32_t, 4> masks = {};
    std::uint32_t caps2 = 0, depth = 0;
    std::uint32_t format = 28, dimension = 3, misc = 0, arraySize = 1; // only with DX10
    Bytes data = {};
};

Bytes FileOf(const Dds& dds) {
    std::vector<std::uint32_t> words(32);
    words[0] = 0x20534444;
    words[1] = 124;
    words[3] = dds.height;
    words[4] = dds.width;
    words[6] = dds.depth;
    words[7] = dds.mipLevels;
    words[19] = 32;
    words[20] = dds.flags;
    words[21] = dds.code;
    words[22] = dds.bits;
    std::ranges::copy(dds.masks, words.begin() + 23);
    words[28] = dds.caps2;
    if (dds.flags == 4 && dds.code == 0x30315844)
        words.insert(words.end(), {dds.format, dds.dimension, dds.misc, dds.arraySize, 0});
    Bytes file(words.size() * 4);
    std::memcpy(file.data(), words.data(), file.size());
    file.insert(file.end(), dds.data.begin(), dds.data.end());
    return file;
}

constexpr std::uint32_t Code(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (std::uint32_t i = 0; i < 4; ++i)
        code |= static_cast<std::uint32_t>(text[i]) << (8 * i);
    return code;
}

Bytes Repeated(std::initializer_list<int> pattern, std::size_t times) {
    Bytes bytes;
    for (std::size_t i = 0; i < times; ++i) {
        for (const int value : pattern)
            bytes.push_back(static_cast<std::uint8_t>(value));
    }
    return bytes;
}

// Red in 5, 6 and 5 bits as both end colours of a block.
const Bytes redBlock = {0, 0xF8, 0, 0xF8, 0, 0, 0, 0};

} // namespace

TEST(Dds, ReadsTheListedFormats) {
    const Bytes bytes = Repeated({10, 20, 30, 40}, 16);
    Bytes words = Repeated({0, 0x3C, 0, 0x38, 0, 0x34, 0, 0x3C}, 16); // binary16 1, 0.5, 0.25, 1
    Bytes bc2 = Repeated({0x77, 0x77, 0x77, 0x77, 0x77, 0x77, 0x77, 0x77}, 1);
    bc2.insert(bc2.end(), redBlock.begin(), redBlock.end());
    Bytes bc3 = Repeated({200, 100, 0, 0, 0, 0, 0, 0}, 1);
    bc3.insert(bc3.end(), redBlock.begin(), redBlock.end());
    const MColour red(255, 0, 0);
    struct Row {
        const char* what;
        Dds dds;
        MPixelFormat format;
        MColour colour;
    };
    const Row rows[] = {
        {"R8G8B8A8_UNORM", {.format = 28, .data = bytes}, 7, {10, 20, 30, 40}},
        {"R8G8B8A8_UINT", {.format = 30, .data = bytes}, 7, {10, 20, 30, 40}},
        {"B8G8R8A8_UNORM", {.format = 87, .data = bytes}, 7, {30, 20, 10, 40}},
        {"B8G8R8X8_UNORM", {.format = 88, .data = bytes}, 7, {30, 20, 10, 255}},
        {"R16G16B16A16_UNORM", {.format = 11, .data = words}, 8, {0x3C, 0x38, 0x34, 0x3C}},
        {"R16G16B16A16_UINT", {.format = 12, .data = words}, 8, {0x3C, 0x38, 0x34, 0x3C}},
        {"R16G16B16A16_FLOAT", {.format = 10, .data = words}, 9, {255, 127, 63, 255}},
        {"BC1_UNORM", {.format = 71, .data = redBlock}, 7, red},
        {"BC2_UNORM", {.format = 74, .data = bc2}, 7, {255, 0, 0, 0x77}},
        {"BC3_UNORM", {.format = 77, .data = bc3}, 7, {255, 0, 0, 200}},
        {"DXT1", {.code = Code("DXT1"), .data = redBlock}, 7, red},
        {"DXT3", {.code = Code("DXT3"), .data = bc2}, 7, {255, 0, 0, 0x77}},
        {"DXT5", {.code = Code("DXT5"), .data = bc3}, 7, {255, 0, 0, 200}},
        {"code 36", {.code = 36, .data = words}, 8, {0x3C, 0x38, 0x34, 0x3C}},
        {"code 113", {.code = 113, .data = words}, 9, {255, 127, 63, 255}},
        {"A8R8G8B8",
         {.flags = 0x41, .bits = 32, .masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, .data = bytes},
         7,
         {30, 20, 10, 40}},
        {"X8R8G8B8",
         {.flags = 0x40, .bits = 32, .masks = {0xFF0000, 0xFF00, 0xFF, 0}, .data = bytes},
         7,
         {30, 20, 10, 255}},
        {"A8B8G8R8",
         {.flags = 0x41, .bits = 32, .masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, .data = bytes},
         7,
         {10, 20, 30, 40}},
        {"X8B8G8R8",
         {.flags = 0x40, .bits = 32, .masks = {0xFF, 0xFF00, 0xFF0000, 0}, .data = bytes},
         7,
         {10, 20, 30, 255}},
        {"R8G8B8",
         {.flags = 0x40, .bits = 24, .masks = {0xFF0000, 0xFF00, 0xFF, 0}, .data = Repeated({10, 20, 30}, 16)},
         7,
         {30, 20, 10, 255}},
        {"smaller versions behind",
         {.mipLevels = 3, .format = 28, .data = Repeated({10, 20, 30, 40}, 21)},
         7,
         {10, 20, 30, 40}},
    };
    for (const Row& row : rows) {
        const OwnedPicture picture = Decoded("DDS", FileOf(row.dds));
        ASSERT_TRUE(picture.IsValid()) << row.what;
        EXPECT_EQ(picture.Format, row.format) << row.what;
        EXPECT_EQ(picture.GetPixel(3, 3), row.colour) << row.what;
        EXPECT_EQ(picture.GetPixel(1, 0), row.colour) << row.what;
        EXPECT_TRUE(picture.TopDown);
    }
}

TEST(Dds, Refuses) {
    const Bytes data = Repeated({0}, 1024);
    const std::pair<const char*, Dds> rows[] = {
        {"sRGB bytes", {.format = 29, .data = data}},
        {"sRGB BC1", {.format = 72, .data = data}},
        {"sRGB BC7", {.format = 99, .data = data}},
        {"BC4, which is one channel", {.format = 80, .data = data}},
        {"BC5, which is two", {.format = 83, .data = data}},
        {"ATI2", {.code = Code("ATI2"), .data = data}},
        {"32-bit floats", {.format = 2, .data = data}},
        {"a format past the last", {.format = 115, .data = data}},
        {"5, 6 and 5 bits", {.flags = 0x40, .bits = 16, .masks = {0xF800, 0x7E0, 0x1F, 0}, .data = data}},
        {"a cube", {.misc = 4, .data = data}},
        {"an old cube", {.code = Code("DXT1"), .caps2 = 0x200, .data = data}},
        {"two pictures", {.arraySize = 2, .data = data}},
        {"no pictures", {.arraySize = 0, .data = data}},
        {"a volume", {.depth = 2, .dimension = 4, .data = data}},
        {"an old volume", {.code = Code("DXT1"), .caps2 = 0x200000, .depth = 2, .data = data}},
        {"no width", {.width = 0, .data = data}},
        {"too many smaller versions", {.mipLevels = 4, .data = data}},
        {"the last version missing", {.mipLevels = 3, .data = Repeated({0}, 83)}},
        {"pixels cut short", {.data = Repeated({0}, 63)}},
        {"an impossible size", {.width = 0x7FFFFFFF, .height = 0x7FFFFFFF, .data = data}},
    };
    for (const auto& [what, dds] : rows)
        EXPECT_FALSE(Decoded("DDS", FileOf(dds)).IsValid()) << what;
}

TEST(Dds, WritesBc1AndWideChannels) {
    const Bytes bc1 = Encoded("DDS", SmoothPicture(5, 6, FormatRGBA8));
    ASSERT_EQ(bc1.size(), 128U + 2 * 2 * 8);
    EXPECT_EQ(std::memcmp(bc1.data() + 84, "DXT1", 4), 0);
    const Bytes wide = Encoded("DDS", SmoothPicture(5, 6, FormatR16));
    EXPECT_EQ(wide.size(), 128U + 5 * 6 * 8);
    const OwnedPicture halves = Decoded("DDS", Encoded("DDS", SmoothPicture(2, 2, FormatRHalf)));
    EXPECT_EQ(halves.GetPixelHalf(0, 0).a, Imath::half(1.0F));
}

TEST(Dds, NonsenseInAnUnwantedAlphaIsLeftOut) {
    const OwnedPicture loaded = Decoded("DDS", Encoded("DDS", RandomPicture(4, 4, FormatRGB8, 24)));
    EXPECT_FALSE(loaded.HasTransparency());
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
    // Mode 5 with all end points at their highest: white, opaque.
    Bytes data;
    for (int i = 0; i < 4; ++i) {
        Bytes block(16, 0);
        block[0] = 0x20;
        for (std::size_t bit = 8; bit < 66; ++bit)
            block[bit / 8] |= static_cast<std::uint8_t>(1U << bit % 8);
        data.insert(data.end(), block.begin(), block.end());
    }
    const OwnedPicture picture = Decoded("DDS", FileOf({.width = 5, .height = 7, .format = 98, .data = data}));
    ASSERT_TRUE(picture.IsValid());
    for (std::int32_t i = 0; i < 35; ++i)
        EXPECT_EQ(picture.GetPixel(i % 5, i / 5), MColour(255, 255, 255, 255));
}
