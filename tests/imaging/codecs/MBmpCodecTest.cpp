#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

namespace {

struct Bmp {
    std::uint32_t width = 2, height = 2;
    std::uint32_t bits = 24;
    std::uint32_t compression = 0;
    std::uint32_t headerSize = 40;
    std::uint32_t colours = 0;             // in the palette; 0 means all
    std::vector<std::uint32_t> masks = {}; // and the palette behind them
    Bytes data = {};
};

Bytes FileOf(const Bmp& bmp) {
    const std::uint32_t tables = static_cast<std::uint32_t>(bmp.masks.size()) * 4;
    const std::uint32_t inHeader = bmp.headerSize > 40 ? bmp.headerSize - 40 : 0;
    const std::uint32_t offset = 14 + bmp.headerSize + (tables > inHeader ? tables - inHeader : 0);
    const int size = bmp.headerSize == 12 ? 2 : 4;
    const int rest = bmp.headerSize == 12 ? 0 : 4;
    Bytes file = {'B', 'M'};
    Append(file, {{offset + static_cast<std::uint32_t>(bmp.data.size()), 4}, {0, 4}, {offset, 4}});
    Append(file, {{bmp.headerSize, 4}, {bmp.width, size}, {bmp.height, size}, {1, 2}, {bmp.bits, 2}});
    Append(file, {{bmp.compression, rest}, {0, rest}, {0, rest}, {0, rest}, {bmp.colours, rest}, {0, rest}});
    for (const std::uint32_t mask : bmp.masks)
        Append(file, {{mask, 4}});
    file.resize(offset);
    Append(file, bmp.data);
    return file;
}

const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};

// One with the palette, in 4 or 8 bits.
Bmp Indexed(std::uint32_t bits, std::uint32_t compression, const Bytes& data, std::uint32_t side = 2) {
    return {side, side, bits, compression, 40, 4, palette, data};
}

MColour Named(char letter) {
    const auto full = [&](char name) { return static_cast<std::uint8_t>(letter == name ? 255 : 0); };
    return {full('r'), full('g'), full('b')};
}

} // namespace

TEST(BmpCodec, ReadsEveryDepth) {
    const struct {
        const char* what;
        Bmp bmp;
        const char* colours; // top left, top right, bottom left: red, green, blue or "." for black
        MPixelFormat format = 7;
    } rows[] = {
        {"24 bits", {.data = {0, 0, 255, 9, 9, 9, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0}}, "bgr", 4},
        {"24 bits, top-down",
         {.height = 0U - 2, .data = {255, 0, 0, 0, 0, 255, 0, 0, 0, 255, 0, 9, 9, 9, 0, 0}},
         "brg",
         4},
        {"1 bit",
         {.bits = 1, .colours = 2, .masks = {0xFF0000, 0x00FF00}, .data = {0x80, 0, 0, 0, 0x40, 0, 0, 0}},
         "rgg"},
        {"4 bits", Indexed(4, 0, {0x30, 0, 0, 0, 0x12, 0, 0, 0}), "rgb"},
        {"8 bits", Indexed(8, 0, {3, 0, 0, 0, 1, 200, 0, 0}), "r.b"},
        {"16 bits, 5 each", {.bits = 16, .data = {0xE0, 0x03, 0, 0, 0, 0x7C, 0x1F, 0}}, "rbg"},
        {"16 bits by masks",
         {.bits = 16,
          .compression = 3,
          .masks = {0xF800, 0x7E0, 0x1F},
          .data = {0xE0, 0x07, 0, 0, 0, 0xF8, 0x1F, 0}},
         "rbg"},
        {"32 bits", {.bits = 32, .data = {0, 255, 0, 77, 0, 0, 0, 0, 0, 0, 255, 77, 255, 0, 0, 0}}, "rbg"},
        {"the oldest header",
         {.headerSize = 12, .data = {0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0}},
         "rbg",
         4},
        {"runs of 8 bits", Indexed(8, 1, {2, 3, 0, 0, 1, 1, 1, 2, 0, 0, 0, 1}), "rgb"},
        {"skips and a literal run",
         Indexed(8, 1, {0, 2, 0, 2, 0, 3, 3, 1, 2, 0, 0, 0, 0, 2, 1, 0, 1, 1, 0, 1}, 4), ".rb"},
        {"runs of 4 bits", Indexed(4, 2, {2, 0x30, 0, 0, 2, 0x12, 0, 1}), "rgb"},
        {"runs that leave the row", Indexed(8, 1, {255, 1, 255, 2, 0, 0, 0, 2, 255, 0, 3, 3, 0, 1}), "..r"},
    };
    for (const auto& row : rows) {
        const OwnedPicture picture = Decoded("BMP", FileOf(row.bmp));
        ASSERT_TRUE(picture.IsValid()) << row.what;
        EXPECT_EQ(picture.Format, row.format) << row.what;
        EXPECT_EQ(picture.GetPixel(0, 0), Named(row.colours[0])) << row.what;
        EXPECT_EQ(picture.GetPixel(1, 0), Named(row.colours[1])) << row.what;
        EXPECT_EQ(picture.GetPixel(0, 1), Named(row.colours[2])) << row.what;
    }
}

TEST(BmpCodec, AMaskOfItsOwnKeepsAlpha) {
    const OwnedPicture picture =
        Decoded("BMP", FileOf({.bits = 32,
                               .compression = 3,
                               .headerSize = 56,
                               .masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000},
                               .data = {0, 255, 0, 77, 0, 0, 0, 0, 255, 0, 0, 128, 0, 0, 255, 0}}));
    ASSERT_EQ(picture.Format, FormatRGBA8);
    EXPECT_EQ(picture.GetPixel(0, 0), MColour(255, 0, 0, 128));
    EXPECT_EQ(picture.GetPixel(1, 0), MColour(0, 0, 255, 0));
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(0, 255, 0, 77));
}

TEST(BmpCodec, Refuses) {
    const Bytes data(16, 0);
    const std::pair<const char*, Bmp> rows[] = {
        {"no width", {.width = 0, .data = data}},
        {"a negative width", {.width = 0x80000002, .data = data}},
        {"the lowest height", {.height = 0x80000000, .data = data}},
        {"a depth of 5", {.bits = 5, .data = data}},
        {"a JPEG inside", {.compression = 4, .data = data}},
        {"runs of 24 bits", {.compression = 1, .data = data}},
        {"runs from the top", {.height = 0U - 2, .bits = 8, .compression = 1, .masks = palette, .data = data}},
        {"rows cut short", {.data = Bytes(15, 0)}},
        {"runs without an end", Indexed(8, 1, {1, 1, 0, 0})},
        {"a literal run cut short", Indexed(8, 1, {0, 9, 1, 1})},
        {"more than its runs can hold", Indexed(8, 1, {0, 1}, 5000)},
    };
    for (const auto& [what, bmp] : rows)
        EXPECT_FALSE(Decoded("BMP", FileOf(bmp)).IsValid()) << what;
}
