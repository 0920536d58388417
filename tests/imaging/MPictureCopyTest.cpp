#include "imaging/MPicture.h"
#include "imaging/Pictures.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace {

enum class Outcome { Converted, Bits, Untouched };

// What becomes of each pair of formats, as the operation is defined.
Outcome Expected(MPixelFormat to, MPixelFormat from) {
    if (BytesPerPixel(to) == BytesPerPixel(from)) return Outcome::Bits;
    const auto both = [&](MPixelFormat a, MPixelFormat b) {
        return (to == a && from == b) || (to == b && from == a);
    };
    if (both(4, 7) || both(5, 8)) return Outcome::Converted;
    if (to == 7) return from == 3 || from == 6 ? Outcome::Untouched : Outcome::Converted;
    if (to == 4) return from == 8 || from == 9 ? Outcome::Untouched : Outcome::Converted;
    return Outcome::Untouched;
}

} // namespace

TEST(CopyPixels, EveryPairOfFormats) {
    for (MPixelFormat to = 1; to <= 9; ++to) {
        for (MPixelFormat from = 1; from <= 9; ++from) {
            OwnedPicture target = RandomPicture(5, 4, to, 1);
            const OwnedPicture source = RandomPicture(5, 4, from, 2);
            OwnedPicture expected = DeepCopy(target);
            EXPECT_TRUE(target.CopyPixels(source));
            if (Expected(to, from) == Outcome::Bits)
                std::memcpy(expected.Pixels, source.Pixels, std::size_t{source.Stride} * source.Height);
            if (Expected(to, from) == Outcome::Converted) {
                for (const auto& [x, y] : PlacesOf(source)) {
                    const MPixel bytes(source.GetPixel(x, y), FormatRGBA8), words(source.GetPixel16(x, y), to);
                    expected.SetPixel(x, y, ChannelClass(to) == 2 ? words : bytes);
                }
            }
            EXPECT_TRUE(SamePicture(target, expected)) << from << " into " << to;
        }
    }
}

TEST(CopyPixels, RowOrderIsHeededByHalfOfThePairs) {
    const std::tuple<MPixelFormat, MPixelFormat, bool> cases[] = {{7, 7, true},  {2, 2, true},  {4, 7, true},
                                                                  {7, 4, true},  {5, 8, false}, {8, 5, false},
                                                                  {7, 8, false}, {4, 1, false}, {8, 9, false}};
    for (const auto& [to, from, turned] : cases) {
        OwnedPicture target = BlankPicture(3, 4, to);
        OwnedPicture source = RandomPicture(3, 4, from, 3, 1.0);
        OwnedPicture straight = BlankPicture(3, 4, to);
        // Bits are copied in one order only; in another this pair has no conversion.
        if (from != FormatRGBAHalf) straight.CopyPixels(source);
        source.TopDown = false;
        ASSERT_TRUE(target.CopyPixels(source));
        if (turned) straight.FlipVertically();
        EXPECT_TRUE(SamePicture(target, straight)) << from << " into " << to;
    }
}

TEST(CopyPixels, IntoAViewWithLongerRows) {
    const OwnedPicture source = RandomPicture(3, 4, FormatRGBA8, 5);
    std::vector<std::uint8_t> buffer(4 * 20, 0xEE);
    MPicture view = ViewOf(buffer, 3, 4);
    EXPECT_TRUE(view.CopyPixels(source));
    EXPECT_TRUE(SamePicture(view, source));
    EXPECT_EQ(buffer[12], 0xEE);
    EXPECT_FALSE(view.CopyPixels(BlankPicture(4, 3, FormatRGBA8))) << "another size";
    EXPECT_FALSE(view.CopyPixels(MPicture()));
}

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
