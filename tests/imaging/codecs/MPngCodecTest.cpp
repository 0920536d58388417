#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

TEST(PngCodec, KeepsTheDepthOfTheFile) {
    struct Row {
        const char* file; // of data/png
        MPixelFormat format;
        MColour first, second; // the two leftmost pixels of the top row
    };
    const Row rows[] = {
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
    for (const Row& row : rows) {
        const OwnedPicture picture = decoded(row.file);
        ASSERT_TRUE(picture.IsValid()) << row.file;
        EXPECT_EQ(picture.Format, row.format) << row.file;
        EXPECT_EQ(picture.GetPixel(0, 0), row.first) << row.file;
        EXPECT_EQ(picture.GetPixel(1, 0), row.second) << row.file;
        EXPECT_EQ(picture.FrameCount, 1);
    }
    EXPECT_EQ(decoded("rgba16").GetPixel16(0, 0), (MColour16{0x4000, 0x4025, 0x404A, 0x406F}));
    EXPECT_EQ(decoded("grey-alpha16").GetPixel16(1, 0), (MColour16{0x404A, 0x404A, 0x404A, 0x406F}));
}

TEST(PngCodec, TrailingBytesDoNotMatterButAMissingEndDoes) {
    Bytes file = DataFile("png/rgb8.png");
    file.push_back(0);
    EXPECT_TRUE(Decoded("PNG", file).IsValid());
    file.resize(file.size() - 2);
    EXPECT_FALSE(Decoded("PNG", file).IsValid());
}
