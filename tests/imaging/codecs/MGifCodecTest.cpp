#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

TEST(GifCodec, EachFrameAloneWithItsTimesAndPlace) {
    const Bytes file = DataFile("gif/three-frames.gif");
    // Count, delay and disposal; left, top, width and height.
    const auto frame = [](const MPicture& picture) {
        return std::array{picture.FrameCount, picture.FrameDelay, picture.FrameDisposal, picture.FrameLeft,
                          picture.FrameTop,   picture.FrameWidth, picture.FrameHeight};
    };
    const OwnedPicture first = Decoded("GIF", file, 0);
    ASSERT_EQ(first.Format, FormatRGBA8);
    EXPECT_EQ(frame(first), (std::array{3, 70, 1, 0, 0, 4, 4}));
    EXPECT_EQ(first.GetPixel(1, 3), MColour(30, 31, 32));

    const OwnedPicture second = Decoded("GIF", file, 1);
    EXPECT_EQ(std::pair(second.Width, second.Height), std::pair(5U, 6U));
    EXPECT_EQ(frame(second), (std::array{3, 100, 2, 2, 3, 5, 6})) << "a delay of 0";
    EXPECT_EQ(second.GetPixel(0, 2).a, 0) << "the transparent index";
    EXPECT_EQ(second.GetPixel(0, 1), MColour(10, 11, 12));

    const OwnedPicture third = Decoded("GIF", file, 2);
    EXPECT_EQ(frame(third)[1], 100) << "no delay at all";
    for (std::int32_t y = 0; y < 9; ++y)
        EXPECT_EQ(third.GetPixel(0, y).r, y * 15) << "its own colours, rows in order";

    EXPECT_FALSE(Decoded("GIF", file, 3).IsValid());
    EXPECT_FALSE(Decoded("GIF", file, -1).IsValid());

    EXPECT_EQ(frame(Decoded("GIF", DataFile("gif/one-frame.gif"))), (std::array{1, 0, 0, 0, 0, 0, 0}));
}

TEST(GifCodec, FewColoursAreKeptExactly) {
    OwnedPicture picture = BlankPicture(301, 31, FormatRGBA8);
    Random random(22);
    std::vector<MColour> colours;
    for (const auto byte = [&] { return static_cast<std::uint8_t>(random()); }; colours.size() < 255;)
        colours.emplace_back(byte(), byte(), byte());
    colours.emplace_back(0, 0, 0, 0);
    for (std::int32_t i = 0; i < 301 * 31; ++i)
        picture.SetPixel(i % 301, i / 301, colours[static_cast<std::size_t>(i) % 256]);
    EXPECT_TRUE(SamePicture(Decoded("GIF", Encoded("GIF", picture)), picture));
}

TEST(GifCodec, ManyColoursAreReduced) {
    for (const bool hidden : {false, true}) {
        OwnedPicture picture = SmoothPicture(100, 100, FormatRGBA8);
        if (hidden) picture.SetPixel(50, 50, MColour(1, 2, 3, 100));
        const OwnedPicture loaded = Decoded("GIF", Encoded("GIF", picture));
        std::set<std::uint32_t> used;
        for (const auto& [x, y] : PlacesOf(picture)) {
            const MColour before = picture.GetPixel(x, y);
            const MColour after = loaded.GetPixel(x, y);
            EXPECT_EQ(after.a, before.a < 128 ? 0 : 255);
            EXPECT_LE(after.a == 0 ? 0 : Difference(before, after), 16);
            used.insert(after.r | std::uint32_t{after.g} << 8 | std::uint32_t{after.b} << 16);
        }
        EXPECT_LE(used.size(), 256U);
    }
}

TEST(GifCodec, GreyFormatsHaveAGreyPalette) {
    const OwnedPicture picture = RandomPicture(50, 40, FormatR16, 23);
    const OwnedPicture loaded = Decoded("GIF", Encoded("GIF", picture));
    for (const auto& [x, y] : PlacesOf(picture))
        ASSERT_EQ(loaded.GetPixel(x, y), picture.GetPixel(x, y));
}

TEST(GifCodec, AWholeFrameIsReadWhateverFollows) {
    const Bytes whole = DataFile("gif/three-frames.gif");
    const auto firstHalf = std::span(whole).first(whole.size() / 2);
    EXPECT_TRUE(SamePicture(Decoded("GIF", firstHalf, 0), Decoded("GIF", whole, 0)));
    EXPECT_FALSE(Decoded("GIF", std::span(whole).first(whole.size() - 8), 2).IsValid()) << "it is not whole";
}
