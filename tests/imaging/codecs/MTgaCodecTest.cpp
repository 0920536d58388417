#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

namespace {

struct Tga {
    std::uint8_t idLength = 0, mapType = 0, imageType = 2;
    std::uint16_t mapLength = 0;
    std::uint8_t mapBits = 0;
    std::uint16_t width = 2, height = 2;
    std::uint8_t depth = 24;
    Bytes data = {};
};

Bytes FileOf(const Tga& tga) {
    Bytes file;
    Append(file, {{tga.idLength, 1}, {tga.mapType, 1}, {tga.imageType, 1}, {0x0707, 2}, {tga.mapLength, 2}});
    Append(file,
           {{tga.mapBits, 1}, {0x09090909, 4}, {tga.width, 2}, {tga.height, 2}, {tga.depth, 1}, {0x20, 1}});
    Append(file, tga.data);
    return file;
}

Bytes Counted(std::size_t count) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(i);
    return bytes;
}

} // namespace

TEST(TgaCodec, TrueColoursAreBottomUpWhateverTheDescriptorSays) {
    const OwnedPicture picture = Decoded("TGA", FileOf({.data = Counted(12)}));
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.Format, FormatRGB8);
    EXPECT_TRUE(picture.TopDown);
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(2, 1, 0));
    EXPECT_EQ(picture.GetPixel(1, 0), MColour(11, 10, 9));
    const OwnedPicture alpha = Decoded("TGA", FileOf({.depth = 32, .data = Counted(16)}));
    EXPECT_EQ(alpha.Format, FormatRGBA8);
    EXPECT_EQ(alpha.GetPixel(0, 1), MColour(2, 1, 0, 3));
}

TEST(TgaCodec, AnIdFieldShiftsThePixels) {
    const OwnedPicture picture = Decoded("TGA", FileOf({.idLength = 3, .data = Counted(15)}));
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(2, 1, 0)) << "the first pixel is the ID";
}

TEST(TgaCodec, PalettesAreTakenRedFirst) {
    Tga tga{.mapType = 1, .imageType = 1, .mapLength = 2, .mapBits = 24, .depth = 8};
    tga.data = {10, 20, 30, 40, 50, 60, 1, 0, 5, 1};
    const OwnedPicture picture = Decoded("TGA", FileOf(tga));
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.Format, FormatRGB8);
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(40, 50, 60));
    EXPECT_EQ(picture.GetPixel(1, 1), MColour(10, 20, 30));
    EXPECT_EQ(picture.GetPixel(0, 0), MColour(0, 0, 0)) << "past the palette's end nothing is stored";
    tga.mapBits = 32;
    tga.data = {10, 20, 30, 40, 50, 60, 70, 80, 1, 1, 1, 0};
    EXPECT_EQ(Decoded("TGA", FileOf(tga)).GetPixel(1, 0), MColour(10, 20, 30));
}

TEST(TgaCodec, Refuses) {
    const Bytes data = Counted(64);
    const std::pair<const char*, Tga> rows[] = {
        {"a depth of 16", {.depth = 16, .data = data}},
        {"runs", {.imageType = 10, .data = data}},
        {"grey", {.imageType = 3, .depth = 8, .data = data}},
        {"true colours of 8 bits", {.depth = 8, .data = data}},
        {"true colours with a palette", {.mapType = 1, .data = data}},
        {"no width", {.width = 0, .data = data}},
        {"a negative height", {.height = 0x8000, .data = data}},
        {"an empty palette", {.mapType = 1, .imageType = 1, .mapBits = 24, .depth = 8, .data = data}},
        {"a palette of 16 bits",
         {.mapType = 1, .imageType = 1, .mapLength = 2, .mapBits = 16, .depth = 8, .data = data}},
        {"indices without a palette",
         {.imageType = 1, .mapLength = 2, .mapBits = 24, .depth = 8, .data = data}},
        {"pixels cut short", {.data = Counted(11)}},
        {"a palette cut short",
         {.mapType = 1, .imageType = 1, .mapLength = 90, .mapBits = 24, .depth = 8, .data = data}},
    };
    for (const auto& [what, tga] : rows)
        EXPECT_FALSE(Decoded("TGA", FileOf(tga)).IsValid()) << what;
}
