#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

namespace {

OwnedPicture DecodedFile(const std::string& name) {
    return Decoded("TGA", DataFile("tga/" + name));
}

} // namespace

TEST(TgaCodec, TrueColoursAreBottomUpWhateverTheDescriptorSays) {
    const OwnedPicture picture = DecodedFile("24-bits.tga");
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.Format, FormatRGB8);
    EXPECT_TRUE(picture.TopDown);
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(2, 1, 0));
    EXPECT_EQ(picture.GetPixel(1, 0), MColour(11, 10, 9));
    const OwnedPicture alpha = DecodedFile("32-bits.tga");
    EXPECT_EQ(alpha.Format, FormatRGBA8);
    EXPECT_EQ(alpha.GetPixel(0, 1), MColour(2, 1, 0, 3));
}

TEST(TgaCodec, AnIdFieldShiftsThePixels) {
    EXPECT_EQ(DecodedFile("id-of-3-bytes.tga").GetPixel(0, 1), MColour(2, 1, 0)) << "the first pixel is the ID";
}

TEST(TgaCodec, PalettesAreTakenRedFirst) {
    const OwnedPicture picture = DecodedFile("palette-of-24-bits.tga");
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.Format, FormatRGB8);
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(40, 50, 60));
    EXPECT_EQ(picture.GetPixel(1, 1), MColour(10, 20, 30));
    EXPECT_EQ(picture.GetPixel(0, 0), MColour(0, 0, 0)) << "past the palette's end nothing is stored";
    EXPECT_EQ(DecodedFile("palette-of-32-bits.tga").GetPixel(1, 0), MColour(10, 20, 30));
}
