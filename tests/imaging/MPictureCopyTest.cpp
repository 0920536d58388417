#include "imaging/MPicture.h"
#include "imaging/Pictures.h"

#include <gtest/gtest.h>

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
            const OwnedPicture before = DeepCopy(target);
            EXPECT_TRUE(target.CopyPixels(source));
            OwnedPicture expected = DeepCopy(before);
            if (Expected(to, from) == Outcome::Bits) {
                std::memcpy(expected.Pixels, source.Pixels, std::size_t{source.Stride} * source.Height);
            }
            if (Expected(to, from) == Outcome::Converted) {
                for (const auto& [x, y] : PlacesOf(source)) {
                    const bool words = ChannelClass(to) == 2;
                    expected.SetPixel(x, y,
                                      words ? MPixel(source.GetPixel16(x, y), to)
                                            : MPixel(source.GetPixel(x, y), FormatRGBA8));
                }
            }
            EXPECT_TRUE(SamePicture(target, expected)) << from << " into " << to;
        }
    }
}

TEST(CopyPixels, RowOrderIsHeededByHalfOfThePairs) {
    struct Row {
        MPixelFormat to, from;
        bool turned;
    };
    for (const Row& row : {Row{7, 7, true}, Row{2, 2, true}, Row{4, 7, true}, Row{7, 4, true}, Row{5, 8, false},
                           Row{8, 5, false}, Row{7, 8, false}, Row{4, 1, false}, Row{8, 9, false}}) {
        OwnedPicture target = BlankPicture(3, 4, row.to);
        OwnedPicture source = RandomPicture(3, 4, row.from, 3, 1.0);
        OwnedPicture straight = BlankPicture(3, 4, row.to);
        // Bits are copied in one order only; in another this pair has no conversion.
        if (row.from != FormatRGBAHalf) {
            ASSERT_TRUE(straight.CopyPixels(source));
        }
        source.TopDown = false;
        ASSERT_TRUE(target.CopyPixels(source));
        if (row.turned) straight.FlipVertically();
        EXPECT_TRUE(SamePicture(target, straight)) << row.from << " into " << row.to;
    }
}

TEST(CopyPixels, IntoAViewWithLongerRows) {
    const OwnedPicture source = RandomPicture(3, 4, FormatRGBA8, 5);
    std::vector<std::uint8_t> buffer(4 * 20, 0xEE);
    MPicture view = ViewOf(buffer, 3, 4);
    EXPECT_TRUE(view.CopyPixels(source));
    EXPECT_TRUE(SamePicture(view, source));
    EXPECT_EQ(buffer[12], 0xEE);
}

TEST(CopyPixels, NeedsTwoValidPicturesOfOneSize) {
    OwnedPicture picture = BlankPicture(3, 4, FormatRGBA8);
    const OwnedPicture other = BlankPicture(4, 3, FormatRGBA8);
    EXPECT_FALSE(picture.CopyPixels(other));
    EXPECT_FALSE(picture.CopyPixels(MPicture()));
    EXPECT_FALSE(MPicture().CopyPixels(picture));
}
