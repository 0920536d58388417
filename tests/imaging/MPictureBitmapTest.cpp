#include "imaging/Pictures.h"

#include <gtest/gtest.h>

#include <vector>

// By single pixels: a copy premultiplied through GetPixel and SetPixel, then CopyPixels.
TEST(PictureBitmap, EveryFormat) {
    for (MPixelFormat format = 1; format <= 9; ++format) {
        OwnedPicture copy = RandomPicture(20, 10, format, 26);
        const OwnedPicture bitmap(copy.CreateWicBitmap());
        OwnedPicture expected = BlankPicture(20, 10, FormatRGBA8);
        for (const auto& [x, y] : PlacesOf(copy)) {
            const MColour colour = copy.GetPixel(x, y);
            const auto times = [&](int channel) { return static_cast<std::uint8_t>(channel * colour.a >> 8); };
            if (colour.a < 255)
                copy.SetPixel(x, y, MColour(times(colour.r), times(colour.g), times(colour.b), colour.a));
        }
        expected.CopyPixels(copy);
        EXPECT_TRUE(SamePicture(bitmap, expected)) << format;
    }
    EXPECT_FALSE(MPicture().CreateWicBitmap().IsValid());
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
