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
    Bytes file;
    Append(file, {{0x20534444, 4}, {124, 4}, {0, 4}, {dds.height, 4}, {dds.width, 4}, {0, 4}, {dds.depth, 4}});
    Append(file, {{dds.mipLevels, 4}});
    file.resize(76);
    Append(file, {{32, 4}, {dds.flags, 4}, {dds.code, 4}, {dds.bits, 4}});
    for (const std::uint32_t mask : dds.masks)
        Append(file, {{mask, 4}});
    Append(file, {{0, 4}, {dds.caps2, 4}});
    file.resize(128);
    if (dds.flags == 4 && dds.code == 0x30315844)
        Append(file, {{dds.format, 4}, {dds.dimension, 4}, {dds.misc, 4}, {dds.arraySize, 4}, {0, 4}});
    Append(file, dds.data);
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

Dds Numbered(std::uint32_t format, const Bytes& data) {
    return {.format = format, .data = data};
}
Dds Coded(std::uint32_t code, const Bytes& data) {
    return {.code = code, .data = data};
}
Dds Masked(std::uint32_t bits, std::array<std::uint32_t, 4> masks, const Bytes& data) {
    return {.flags = masks[3] != 0 ? 0x41U : 0x40U, .bits = bits, .masks = masks, .data = data};
}

} // namespace

TEST(Dds, ReadsTheListedFormats) {
    const Bytes bytes = Repeated({10, 20, 30, 40}, 16);
    const Bytes words = Repeated({0, 0x3C, 0, 0x38, 0, 0x34, 0, 0x3C}, 16); // binary16 1, 0.5, 0.25, 1
    const Bytes bc1 = {0, 0xF8, 0, 0xF8, 0, 0, 0, 0}; // red in 5, 6 and 5 bits as both end colours
    Bytes bc2 = Repeated({0x77}, 8);
    Append(bc2, bc1);
    Bytes bc3 = Repeated({200, 100, 0, 0, 0, 0, 0, 0}, 1);
    Append(bc3, bc1);
    const MColour red(255, 0, 0), redBc2(255, 0, 0, 0x77), redBc3(255, 0, 0, 200);
    const MColour integers(0x3C, 0x38, 0x34, 0x3C), floats(255, 127, 63, 255);
    const struct {
        const char* what;
        Dds dds;
        MPixelFormat format;
        MColour colour;
    } rows[] = {
        {"R8G8B8A8_UNORM", Numbered(28, bytes), 7, {10, 20, 30, 40}},
        {"R8G8B8A8_UINT", Numbered(30, bytes), 7, {10, 20, 30, 40}},
        {"B8G8R8A8_UNORM", Numbered(87, bytes), 7, {30, 20, 10, 40}},
        {"B8G8R8X8_UNORM", Numbered(88, bytes), 7, {30, 20, 10, 255}},
        {"R16G16B16A16_UNORM", Numbered(11, words), 8, integers},
        {"R16G16B16A16_UINT", Numbered(12, words), 8, integers},
        {"R16G16B16A16_FLOAT", Numbered(10, words), 9, floats},
        {"BC1_UNORM", Numbered(71, bc1), 7, red},
        {"BC2_UNORM", Numbered(74, bc2), 7, redBc2},
        {"BC3_UNORM", Numbered(77, bc3), 7, redBc3},
        {"DXT1", Coded(Code("DXT1"), bc1), 7, red},
        {"DXT3", Coded(Code("DXT3"), bc2), 7, redBc2},
        {"DXT5", Coded(Code("DXT5"), bc3), 7, redBc3},
        {"code 36", Coded(36, words), 8, integers},
        {"code 113", Coded(113, words), 9, floats},
        {"A8R8G8B8", Masked(32, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, bytes), 7, {30, 20, 10, 40}},
        {"X8R8G8B8", Masked(32, {0xFF0000, 0xFF00, 0xFF, 0}, bytes), 7, {30, 20, 10, 255}},
        {"A8B8G8R8", Masked(32, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, bytes), 7, {10, 20, 30, 40}},
        {"X8B8G8R8", Masked(32, {0xFF, 0xFF00, 0xFF0000, 0}, bytes), 7, {10, 20, 30, 255}},
        {"R8G8B8", Masked(24, {0xFF0000, 0xFF00, 0xFF, 0}, Repeated({10, 20, 30}, 16)), 7, {30, 20, 10, 255}},
        {"smaller versions", {.mipLevels = 3, .data = Repeated({10, 20, 30, 40}, 21)}, 7, {10, 20, 30, 40}},
    };
    for (const auto& row : rows) {
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
        {"sRGB bytes", Numbered(29, data)},
        {"sRGB BC1", Numbered(72, data)},
        {"sRGB BC7", Numbered(99, data)},
        {"BC4, which is one channel", Numbered(80, data)},
        {"BC5, which is two", Numbered(83, data)},
        {"ATI2", Coded(Code("ATI2"), data)},
        {"32-bit floats", Numbered(2, data)},
        {"a format past the last", Numbered(115, data)},
        {"5, 6 and 5 bits", Masked(16, {0xF800, 0x7E0, 0x1F, 0}, data)},
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

    // 8 bytes a pixel, of which there are 2 to the 61st and 8 more.
    const Bytes wrapping = FileOf({.width = 1073807362, .height = 2147352580, .format = 11, .data = data});
    MByteSource source{std::span(wrapping)};
    MDdsImage image;
    EXPECT_FALSE(LoadDds(source, image));
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
    for (int i = 0; i < 4; ++i)
        Append(data, {{0xFFFFFF20, 4}, {0xFFFFFFFF, 4}, {3, 4}, {0, 4}});
    const OwnedPicture picture = Decoded("DDS", FileOf({.width = 5, .height = 7, .format = 98, .data = data}));
    ASSERT_TRUE(picture.IsValid());
    for (const auto& [x, y] : PlacesOf(picture))
        EXPECT_EQ(picture.GetPixel(x, y), MColour(255, 255, 255, 255));
}
