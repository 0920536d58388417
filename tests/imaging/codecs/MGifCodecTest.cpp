#include "imaging/codecs/Coding.h"

#include <gif_lib.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <set>

namespace {

struct Frame {
    int left = 0, top = 0, width = 4, height = 4;
    std::optional<GraphicsControlBlock> control = {};
    bool interlaced = false;
    bool ownColours = false;
};

int Append(GifFileType* gif, const GifByteType* bytes, int count) {
    auto& file = *static_cast<Bytes*>(gif->UserData);
    file.insert(file.end(), bytes, bytes + count);
    return count;
}

ColorMapObject* Colours(int step) {
    std::array<GifColorType, 16> colours{};
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const auto value = static_cast<GifByteType>(i * static_cast<std::size_t>(step));
        colours[i] = {value, static_cast<GifByteType>(value + 1), static_cast<GifByteType>(value + 2)};
    }
    return GifMakeMapObject(16, colours.data());
}

// As giflib alone makes it: the index of a pixel is its row, whatever order the rows are stored in.
Bytes BareGif(const std::vector<Frame>& frames) {
    Bytes file;
    int error = 0;
    GifFileType* const gif = EGifOpen(&file, Append, &error);
    EGifSetGifVersion(gif, true);
    ColorMapObject* const global = Colours(10);
    ColorMapObject* const local = Colours(15);
    EGifPutScreenDesc(gif, 8, 9, 4, 0, global);
    for (const Frame& frame : frames) {
        if (frame.control) {
            std::array<GifByteType, 4> bytes{};
            EGifGCBToExtension(&*frame.control, bytes.data());
            EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, bytes.data());
        }
        EGifPutImageDesc(gif, frame.left, frame.top, frame.width, frame.height, frame.interlaced,
                         frame.ownColours ? local : nullptr);
        std::vector<int> order;
        for (const auto& [first, step] : {std::pair(0, 8), std::pair(4, 8), std::pair(2, 4), std::pair(1, 2)}) {
            for (int y = first; frame.interlaced && y < frame.height; y += step)
                order.push_back(y);
        }
        for (int y = 0; !frame.interlaced && y < frame.height; ++y)
            order.push_back(y);
        for (const int y : order) {
            std::vector<GifPixelType> row(static_cast<std::size_t>(frame.width), static_cast<GifPixelType>(y));
            EGifPutLine(gif, row.data(), frame.width);
        }
    }
    EGifCloseFile(gif, &error);
    GifFreeMapObject(global);
    GifFreeMapObject(local);
    return file;
}

} // namespace

TEST(GifCodec, EachFrameAloneWithItsTimesAndPlace) {
    const Bytes file = BareGif(
        {{.control = GraphicsControlBlock{1, false, 7, NO_TRANSPARENT_COLOR}},
         {.left = 2, .top = 3, .width = 5, .height = 6, .control = GraphicsControlBlock{2, false, 0, 2}},
         {.left = 1, .height = 9, .interlaced = true, .ownColours = true}});
    const OwnedPicture first = Decoded("GIF", file, 0);
    ASSERT_TRUE(first.IsValid());
    EXPECT_EQ(first.Format, FormatRGBA8);
    EXPECT_EQ(first.FrameCount, 3);
    EXPECT_EQ(first.FrameDelay, 70);
    EXPECT_EQ(first.FrameDisposal, 1);
    EXPECT_EQ(first.FrameWidth, 4);
    EXPECT_EQ(first.GetPixel(1, 3), MColour(30, 31, 32));

    const OwnedPicture second = Decoded("GIF", file, 1);
    ASSERT_TRUE(second.IsValid());
    EXPECT_EQ(second.Width, 5U);
    EXPECT_EQ(second.Height, 6U);
    EXPECT_EQ(second.FrameDelay, 100) << "a delay of 0";
    EXPECT_EQ(second.FrameDisposal, 2);
    EXPECT_EQ(std::pair(second.FrameLeft, second.FrameTop), std::pair(2, 3));
    EXPECT_EQ(std::pair(second.FrameWidth, second.FrameHeight), std::pair(5, 6));
    EXPECT_EQ(second.GetPixel(0, 2).a, 0) << "the transparent index";
    EXPECT_EQ(second.GetPixel(0, 1), MColour(10, 11, 12));

    const OwnedPicture third = Decoded("GIF", file, 2);
    ASSERT_TRUE(third.IsValid());
    EXPECT_EQ(third.FrameDelay, 100) << "no delay at all";
    EXPECT_EQ(third.FrameDisposal, 0);
    for (std::int32_t y = 0; y < 9; ++y)
        EXPECT_EQ(third.GetPixel(0, y).r, y * 15) << "its own colours, rows in order";

    EXPECT_FALSE(Decoded("GIF", file, 3).IsValid());
    EXPECT_FALSE(Decoded("GIF", file, -1).IsValid());
}

TEST(GifCodec, ASingleFrameHasNoTimes) {
    const OwnedPicture picture = Decoded(
        "GIF", BareGif({{.left = 2, .control = GraphicsControlBlock{2, false, 50, NO_TRANSPARENT_COLOR}}}));
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.FrameCount, 1);
    EXPECT_EQ(picture.FrameDelay, 0);
    EXPECT_EQ(picture.FrameDisposal, 0);
    EXPECT_EQ(picture.FrameLeft, 0);
    EXPECT_EQ(picture.FrameWidth, 0);
}

TEST(GifCodec, FewColoursAreKeptExactly) {
    OwnedPicture picture = BlankPicture(301, 31, FormatRGBA8);
    Random random(22);
    std::vector<MColour> colours;
    for (int i = 0; i < 255; ++i) {
        colours.emplace_back(static_cast<std::uint8_t>(random()), static_cast<std::uint8_t>(random()),
                             static_cast<std::uint8_t>(random()));
    }
    colours.emplace_back(0, 0, 0, 0);
    for (std::int32_t i = 0; i < 301 * 31; ++i)
        picture.SetPixel(i % 301, i / 301, colours[static_cast<std::size_t>(i) % 256]);
    const OwnedPicture loaded = Decoded("GIF", Encoded("GIF", picture));
    ASSERT_TRUE(loaded.IsValid());
    EXPECT_TRUE(SamePicture(loaded, picture));
}

TEST(GifCodec, ManyColoursAreReduced) {
    for (const bool hidden : {false, true}) {
        OwnedPicture picture = SmoothPicture(100, 100, FormatRGBA8);
        if (hidden) picture.SetPixel(50, 50, MColour(1, 2, 3, 100));
        const OwnedPicture loaded = Decoded("GIF", Encoded("GIF", picture));
        ASSERT_TRUE(loaded.IsValid());
        std::set<std::uint32_t> used;
        int largest = 0;
        for (std::int32_t i = 0; i < 10000; ++i) {
            const MColour before = picture.GetPixel(i % 100, i / 100);
            const MColour after = loaded.GetPixel(i % 100, i / 100);
            EXPECT_EQ(after.a, before.a < 128 ? 0 : 255);
            if (after.a != 0)
                largest = std::max({largest, std::abs(before.r - after.r), std::abs(before.g - after.g)});
            used.insert(after.r | after.g << 8U | after.b << 16U);
        }
        EXPECT_LE(used.size(), 256U);
        EXPECT_LE(largest, 16);
    }
}

TEST(GifCodec, GreyFormatsHaveAGreyPalette) {
    const OwnedPicture picture = RandomPicture(50, 40, FormatR16, 23);
    const OwnedPicture loaded = Decoded("GIF", Encoded("GIF", picture));
    ASSERT_TRUE(loaded.IsValid());
    for (std::int32_t i = 0; i < 2000; ++i)
        EXPECT_EQ(loaded.GetPixel(i % 50, i / 50), picture.GetPixel(i % 50, i / 50));
    EXPECT_TRUE(Encoded("GIF", BlankPicture(65536, 1, FormatR8)).empty());
}
