#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(files, 13);
}

TEST(BmpCodec, AMaskOfItsOwnKeepsAlpha) {
    const OwnedPicture picture = Decoded("BMP", DataFile("alpha-by-masks.bmp"));
    ASSERT_EQ(picture.Format, FormatRGBA8);
    EXPECT_EQ(picture.GetPixel(0, 0), MColour(255, 0, 0, 128));
    EXPECT_EQ(picture.GetPixel(1, 0), MColour(0, 0, 255, 0));
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(0, 255, 0, 77));
}
