// The files of data/ as these forms are read; its README tells what is in them.
#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

MColour Named(char letter) {
    const auto full = [&](char name) { return static_cast<std::uint8_t>(letter == name ? 255 : 0); };
    return {full('r'), full('g'), full('b')};
}

} // namespace

TEST(BmpCodec, ReadsEveryDepth) {
    int files = 0;
    for (const std::string& name : DataFiles("bmp")) {
        // As in "1-bit.7rgg.bmp": of format 7, and red at the top left, green beside it and below.
        const std::size_t told = name.find('.') + 1;
        const OwnedPicture picture = Decoded("BMP", DataFile("bmp/" + name));
        ASSERT_TRUE(picture.IsValid()) << name;
        EXPECT_EQ(picture.Format, name[told] - '0') << name;
        EXPECT_EQ(picture.GetPixel(0, 0), Named(name[told + 1])) << name;
        EXPECT_EQ(picture.GetPixel(1, 0), Named(name[told + 2])) << name;
        EXPECT_EQ(picture.GetPixel(0, 1), Named(name[told + 3])) << name;
        ++files;
    }
    EXPECT_EQ(files, 14);
    const OwnedPicture masks = Decoded("BMP", DataFile("alpha-by-masks.bmp"));
    EXPECT_EQ(masks.GetPixel(0, 0), MColour(255, 0, 0, 128));
    EXPECT_EQ(masks.GetPixel(1, 0), MColour(0, 0, 255, 0));
    EXPECT_EQ(masks.GetPixel(0, 1), MColour(0, 255, 0, 77));
}

TEST(JpegCodec, FormatsByKind) {
    const std::tuple<std::string, MPixelFormat, MColour> cases[] = {
        {"grey", FormatR8, {77, 77, 77}},
        {"colour", FormatRGB8, {200, 100, 50}},
        {"progressive", FormatRGB8, {200, 100, 50}},
        {"inks-of-adobe", FormatRGBA8, {100, 50, 25}}, // stored inverted
        {"plain-inks", FormatRGBA8, {100, 50, 25}},
    };
    for (const auto& [file, format, colour] : cases) {
        const OwnedPicture picture = Decoded("JPEG", DataFile("jpeg/" + file + ".jpg"));
        ASSERT_EQ(picture.Format, format) << file;
        EXPECT_LE(Difference(picture.GetPixel(7, 9), colour), 2) << file;
    }
}

TEST(PngCodec, KeepsTheDepthOfTheFile) {
    // A file of data/png, its format, and the two leftmost pixels of the top row.
    const std::tuple<const char*, MPixelFormat, MColour, MColour> rows[] = {
        {"grey8", 1, {0, 0, 0}, {37, 37, 37}},
        {"grey16", 2, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {"rgb8", 4, {0, 37, 74}, {111, 148, 185}},
        {"rgb16", 5, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {"rgba8", 7, {0, 37, 74, 111}, {148, 185, 222, 3}},
        {"rgba16", 8, {0x40, 0x40, 0x40, 0x40}, {0x40, 0x40, 0x40, 0x41}},
        {"rgba8-interlaced", 7, {0, 37, 74, 111}, {148, 185, 222, 3}},
        {"grey-alpha8", 7, {0, 0, 0, 37}, {74, 74, 74, 111}},
        {"grey16-keyed", 8, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {"grey-alpha16", 8, {0x40, 0x40, 0x40, 0x40}, {0x40, 0x40, 0x40, 0x40}},
        {"grey1", 7, {0, 0, 0}, {255, 255, 255}},
        {"grey2", 7, {0, 0, 0}, {85, 85, 85}},
        {"grey4", 7, {0, 0, 0}, {85, 85, 85}},
        {"grey8-keyed", 7, {0, 0, 0, 0}, {37, 37, 37}},
        {"grey4-keyed", 7, {0, 0, 0, 0}, {85, 85, 85}},
        {"rgb8-keyed", 7, {0, 37, 74, 0}, {111, 148, 185}},
        {"rgb16-keyed", 8, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {"palette1", 7, {0, 0, 0}, {1, 2, 3}},
        {"palette4", 7, {0, 0, 0}, {5, 10, 15}},
        {"palette8", 7, {0, 0, 0}, {37, 74, 111}},
        {"palette8-keyed", 7, {0, 0, 0, 7}, {37, 74, 111}},
    };
    const auto decoded = [](const std::string& name) {
        return Decoded("PNG", DataFile("png/" + name + ".png"));
    };
    for (const auto& [file, format, first, second] : rows) {
        const OwnedPicture picture = decoded(file);
        ASSERT_EQ(picture.Format, format) << file;
        EXPECT_EQ(picture.GetPixel(0, 0), first) << file;
        EXPECT_EQ(picture.GetPixel(1, 0), second) << file;
    }
    EXPECT_EQ(decoded("rgba16").GetPixel16(0, 0), (MColour16{0x4000, 0x4025, 0x404A, 0x406F}));
    EXPECT_EQ(decoded("grey-alpha16").GetPixel16(1, 0), (MColour16{0x404A, 0x404A, 0x404A, 0x406F}));
}

TEST(PngCodec, TrailingBytesDoNotMatterButAMissingEndDoes) {
    Bytes file = DataFile("png/rgb8.png");
    file.push_back(0);
    EXPECT_TRUE(Decoded("PNG", file).IsValid());
    file.erase(file.end() - 2, file.end());
    EXPECT_FALSE(Decoded("PNG", file).IsValid());
}

// True colours are bottom-up, whatever the descriptor says; palettes are taken red first.
TEST(TgaCodec, ReadsEachKind) {
    const std::tuple<const char*, MPixelFormat, Place, MColour> cases[] = {
        {"24-bits", FormatRGB8, {0, 1}, {2, 1, 0}},
        {"24-bits", FormatRGB8, {1, 0}, {11, 10, 9}},
        {"32-bits", FormatRGBA8, {0, 1}, {2, 1, 0, 3}},
        {"id-of-3-bytes", FormatRGB8, {0, 1}, {2, 1, 0}}, // the first pixel is the ID
        {"palette-of-24-bits", FormatRGB8, {0, 1}, {40, 50, 60}},
        {"palette-of-24-bits", FormatRGB8, {1, 1}, {10, 20, 30}},
        {"palette-of-24-bits", FormatRGB8, {0, 0}, {0, 0, 0}}, // past its end nothing is stored
        {"palette-of-32-bits", FormatRGB8, {1, 0}, {10, 20, 30}},
    };
    for (const auto& [name, format, place, colour] : cases) {
        const OwnedPicture picture = Decoded("TGA", DataFile("tga/" + std::string(name) + ".tga"));
        EXPECT_EQ(picture.Format, format) << name;
        EXPECT_EQ(picture.GetPixel(place.x, place.y), colour) << name;
    }
}
