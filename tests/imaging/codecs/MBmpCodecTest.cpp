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

void Put(Bytes& file, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

Bytes FileOf(const Bmp& bmp) {
    Bytes file = {'B', 'M'};
    const std::uint32_t tables = static_cast<std::uint32_t>(bmp.masks.size()) * 4;
    const std::uint32_t inHeader = bmp.headerSize > 40 ? bmp.headerSize - 40 : 0;
    const std::uint32_t offset = 14 + bmp.headerSize + (tables > inHeader ? tables - inHeader : 0);
    Put(file, offset + static_cast<std::uint32_t>(bmp.data.size()), 4);
    Put(file, 0, 4);
    Put(file, offset, 4);
    Put(file, bmp.headerSize, 4);
    Put(file, bmp.width, bmp.headerSize == 12 ? 2 : 4);
    Put(file, bmp.height, bmp.headerSize == 12 ? 2 : 4);
    Put(file, 1, 2);
    Put(file, bmp.bits, 2);
    if (bmp.headerSize > 12) {
        Put(file, bmp.compression, 4);
        for (const std::uint32_t field : {0U, 0U, 0U, bmp.colours, 0U})
            Put(file, field, 4);
    }
    for (const std::uint32_t mask : bmp.masks)
        Put(file, mask, 4);
    file.resize(offset);
    file.insert(file.end(), bmp.data.begin(), bmp.data.end());
    return file;
}

const MColour red(255, 0, 0), green(0, 255, 0), blue(0, 0, 255), black(0, 0, 0);
const std::vector<std::uint32_t> palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};

} // namespace

TEST(BmpCodec, ReadsEveryDepth) {
    struct Row {
        const char* what;
        Bmp bmp;
        MPixelFormat format;
        MColour topLeft, topRight, bottomLeft;
    };
    const Row rows[] = {
        {"24 bits", {.data = {0, 0, 255, 9, 9, 9, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0}}, 4, blue, green, red},
        {"24 bits, top-down",
         {.height = 0U - 2, .data = {255, 0, 0, 0, 0, 255, 0, 0, 0, 255, 0, 9, 9, 9, 0, 0}},
         4,
         blue,
         red,
         green},
        {"1 bit",
         {.bits = 1, .colours = 2, .masks = {0xFF0000, 0x00FF00}, .data = {0x80, 0, 0, 0, 0x40, 0, 0, 0}},
         7,
         red,
         green,
         green},
        {"4 bits",
         {.bits = 4, .colours = 4, .masks = palette, .data = {0x30, 0, 0, 0, 0x12, 0, 0, 0}},
         7,
         red,
         green,
         blue},
        {"8 bits",
         {.bits = 8, .colours = 4, .masks = palette, .data = {3, 0, 0, 0, 1, 200, 0, 0}},
         7,
         red,
         black,
         blue},
        {"16 bits, 5 each", {.bits = 16, .data = {0xE0, 0x03, 0, 0, 0, 0x7C, 0x1F, 0}}, 7, red, blue, green},
        {"16 bits by masks",
         {.bits = 16,
          .compression = 3,
          .masks = {0xF800, 0x7E0, 0x1F},
          .data = {0xE0, 0x07, 0, 0, 0, 0xF8, 0x1F, 0}},
         7,
         red,
         blue,
         green},
        {"32 bits",
         {.bits = 32, .data = {0, 255, 0, 77, 0, 0, 0, 0, 0, 0, 255, 77, 255, 0, 0, 0}},
         7,
         red,
         blue,
         green},
        {"32 bits by masks, with alpha",
         {.bits = 32,
          .compression = 3,
          .headerSize = 56,
          .masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000},
          .data = {0, 255, 0, 77, 0, 0, 0, 0, 255, 0, 0, 128, 0, 0, 255, 0}},
         7,
         MColour(255, 0, 0, 128),
         MColour(0, 0, 255, 0),
         MColour(0, 255, 0, 77)},
        {"the oldest header",
         {.headerSize = 12, .data = {0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0}},
         4,
         red,
         blue,
         green},
        {"runs of 8 bits",
         {.bits = 8,
          .compression = 1,
          .colours = 4,
          .masks = palette,
          .data = {2, 3, 0, 0, 1, 1, 1, 2, 0, 0, 0, 1}},
         7,
         red,
         green,
         blue},
        {"literal runs and a skip",
         {.width = 4,
          .bits = 8,
          .compression = 1,
          .colours = 4,
          .masks = palette,
          .data = {0, 3, 3, 1, 2, 0, 0, 2, 253, 1, 0, 1}},
         7,
         black,
         black,
         blue},
        {"runs of 4 bits",
         {.bits = 4, .compression = 2, .colours = 4, .masks = palette, .data = {2, 0x30, 0, 0, 2, 0x12, 0, 1}},
         7,
         red,
         green,
         blue},
    };
    for (const Row& row : rows) {
        const OwnedPicture picture = Decoded("BMP", FileOf(row.bmp));
        ASSERT_TRUE(picture.IsValid()) << row.what;
        EXPECT_EQ(picture.Format, row.format) << row.what;
        EXPECT_EQ(picture.GetPixel(0, 0), row.topLeft) << row.what;
        EXPECT_EQ(picture.GetPixel(1, 0), row.topRight) << row.what;
        EXPECT_EQ(picture.GetPixel(0, 1), row.bottomLeft) << row.what;
    }
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
        {"runs without an end",
         {.bits = 8, .compression = 1, .colours = 4, .masks = palette, .data = {1, 1, 0, 0}}},
        {"a literal run cut short",
         {.bits = 8, .compression = 1, .colours = 4, .masks = palette, .data = {0, 9, 1, 1}}},
        {"more than its runs can hold",
         {.width = 5000,
          .height = 5000,
          .bits = 8,
          .compression = 1,
          .colours = 4,
          .masks = palette,
          .data = {0, 1}}},
    };
    for (const auto& [what, bmp] : rows)
        EXPECT_FALSE(Decoded("BMP", FileOf(bmp)).IsValid()) << what;
}

TEST(BmpCodec, RunsThatLeaveTheRowAreCut) {
    const OwnedPicture picture =
        Decoded("BMP", FileOf({.bits = 8,
                               .compression = 1,
                               .colours = 4,
                               .masks = palette,
                               .data = {255, 1, 255, 2, 0, 0, 0, 2, 255, 0, 3, 3, 0, 1}}));
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.GetPixel(1, 1), red);
    EXPECT_EQ(picture.GetPixel(0, 0), black);
}
