#include "imaging/Pictures.h"

#include <gtest/gtest.h>

#include <vector>

TEST(PictureBitmap, PremultipliesByAlphaOver256) {
    OwnedPicture picture = BlankPicture(3, 1, FormatRGBA8);
    picture.SetPixel(0, 0, MColour(200, 100, 50, 255));
    picture.SetPixel(1, 0, MColour(200, 100, 50, 128));
    picture.SetPixel(2, 0, MColour(255, 255, 255, 254));
    const OwnedPicture bitmap(picture.CreateWicBitmap());
    ASSERT_TRUE(bitmap.IsValid());
    EXPECT_EQ(bitmap.Format, FormatRGBA8);
    EXPECT_EQ(bitmap.GetPixel(0, 0), MColour(200, 100, 50, 255));
    EXPECT_EQ(bitmap.GetPixel(1, 0), MColour(100, 50, 25, 128));
    EXPECT_EQ(bitmap.GetPixel(2, 0), MColour(253, 253, 253, 254));
    EXPECT_EQ(picture.GetPixel(1, 0), MColour(200, 100, 50, 128)) << "the picture stays";
    EXPECT_FALSE(MPicture().CreateWicBitmap().IsValid());
}

// The same by single pixels: a copy premultiplied through GetPixel and SetPixel, then CopyPixels.
TEST(PictureBitmap, EveryFormat) {
    for (MPixelFormat format = 1; format <= 9; ++format) {
        OwnedPicture copy = RandomPicture(20, 10, format, 26);
        const OwnedPicture bitmap(copy.CreateWicBitmap());
        OwnedPicture expected = BlankPicture(20, 10, FormatRGBA8);
        for (std::int32_t i = 0; i < 200; ++i) {
            const MColour colour = copy.GetPixel(i % 20, i / 20);
            const auto times = [&](int channel) { return static_cast<std::uint8_t>(channel * colour.a >> 8); };
            if (colour.a < 255)
                copy.SetPixel(i % 20, i / 20,
                              MColour(times(colour.r), times(colour.g), times(colour.b), colour.a));
        }
        expected.CopyPixels(copy);
        EXPECT_TRUE(SamePicture(bitmap, expected)) << format;
    }
}

TEST(PictureBitmap, BitmapsBecomeStraight) {
    const std::vector<std::uint8_t> bytes = {25, 50, 100, 128, 1, 2, 3, 255, 99, 0,
                                             0,  0,  0,   0,   9, 9, 9, 9,   99, 99};
    MBitmapView view{bytes.data(), 2, 2, 10};
    const OwnedPicture picture{MPicture(view)};
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.GetPixel(0, 0), MColour(199, 100, 50, 128));
    EXPECT_EQ(picture.GetPixel(1, 0), MColour(3, 2, 1, 255));
    EXPECT_EQ(picture.GetPixel(0, 1), MColour(0, 0, 0, 0));
    EXPECT_EQ(picture.GetPixel(1, 1), MColour(255, 255, 255, 9)) << "more than its alpha allows";
    view.Pixels = nullptr;
    EXPECT_EQ(MPicture(view).Width, 0U);
}
