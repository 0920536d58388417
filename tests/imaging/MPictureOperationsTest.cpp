// Scaling, flipping, lines and bleeding.
#include "foundation/MMemory.h"
#include "imaging/MPicture.h"
#include "imaging/Pictures.h"
#include "imaging/PlainForms.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace {

using Pixels = std::set<std::pair<int, int>>;

OwnedPicture Scaled(const MPicture& source, std::uint32_t width, std::uint32_t height, MPixelFormat format) {
    return {MPicture(source, width, height, format, true, false)};
}

} // namespace

TEST(Resample, MatchesThePlainFormForEveryPairOfFormats) {
    const std::array<std::uint32_t, 4> sizes[] = {{12, 8, 6, 4},  {13, 9, 5, 7}, {5, 5, 10, 10}, {5, 4, 11, 6},
                                                  {70, 40, 2, 3}, {17, 5, 1, 4}, {17, 5, 6, 1},  {9, 8, 1, 1},
                                                  {1, 1, 3, 3},   {90, 3, 3, 5}};
    for (MPixelFormat from = 1; from <= 9; ++from) {
        for (MPixelFormat to = 1; to <= 9; ++to) {
            for (const auto& [width, height, newWidth, newHeight] : sizes) {
                const OwnedPicture source = RandomPicture(width, height, from, 6, 0.4);
                OwnedPicture expected = BlankPicture(newWidth, newHeight, to);
                plain::Resample(source, expected);
                ASSERT_TRUE(SamePicture(Scaled(source, newWidth, newHeight, to), expected))
                    << from << " into " << to << ", " << width << " x " << height << " into " << newWidth
                    << " x " << newHeight;
            }
        }
    }
}

TEST(Resample, MatchesThePlainFormForManySizesOfFormat7) {
    Random random(7);
    for (int round = 0; round < 60; ++round) {
        const auto size = [&](std::uint32_t most) { return 1 + random() % most; };
        const double visible = round % 4 == 0 ? 0.05 : round % 4 == 1 ? 1.0 : 0.5;
        const OwnedPicture source = RandomPicture(size(150), size(150), FormatRGBA8, random(), visible);
        OwnedPicture expected = BlankPicture(size(90), size(90), round % 5 == 0 ? FormatRGB8 : FormatRGBA8);
        plain::Resample(source, expected);
        if (source.Width == expected.Width && source.Height == expected.Height) continue;
        ASSERT_TRUE(SamePicture(Scaled(source, expected.Width, expected.Height, expected.Format), expected))
            << round;
    }
}

TEST(Resample, WorstSumsOfTheLargestSquareAreExact) {
    OwnedPicture source = FilledPicture(64, 64, MColour(255, 255, 255, 255));
    for (int hidden = 0; hidden < 1024; hidden += 31) {
        source.SetPixel(hidden % 32, hidden / 32, MColour(255, 255, 255, 0));
        OwnedPicture expected = BlankPicture(2, 2, FormatRGBA8);
        plain::Resample(source, expected);
        ASSERT_TRUE(SamePicture(Scaled(source, 2, 2, FormatRGBA8), expected)) << hidden;
    }
}

TEST(Resample, KeepsTheAspect) {
    const OwnedPicture source = BlankPicture(200, 100, FormatRGBA8);
    const auto fitted = [](const MPicture& picture, std::uint32_t width, std::uint32_t height) {
        const OwnedPicture result(MPicture(picture, width, height, FormatRGBA8, true, true));
        return std::pair(result.Width, result.Height);
    };
    EXPECT_EQ(fitted(source, 100, 100), std::pair(100U, 50U));
    EXPECT_EQ(fitted(source, 1000, 100), std::pair(200U, 100U));
    const OwnedPicture odd = BlankPicture(3, 2, FormatRGBA8);
    EXPECT_EQ(fitted(odd, 300, 1), std::pair(2U, 1U)) << "1.5 rounds away from zero";
    EXPECT_FALSE(MPicture(source, 0, 0, FormatRGBA8, true, true).IsValid());
    EXPECT_FALSE(MPicture(MPicture(), 4, 4, FormatRGBA8, true, false).IsValid());
}

TEST(Resample, CropsAndPadsAtTheTopLeft) {
    const OwnedPicture source = RandomPicture(5, 4, FormatRGBA16, 8, 1.0);
    const OwnedPicture padded(MPicture(source, 7, 3, FormatRGBA8, false, false));
    ASSERT_EQ(padded.Width, 7U);
    for (const auto& [x, y] : PlacesOf(padded))
        EXPECT_EQ(padded.GetPixel(x, y), x < 5 ? source.GetPixel(x, y) : MColour(0, 0, 0, 0)) << x << ", " << y;
}

TEST(Resample, UnchangedSizeIsACopyWithItsLimits) {
    const OwnedPicture halves = RandomPicture(4, 4, FormatRGBAHalf, 9);
    const OwnedPicture words = Scaled(halves, 4, 4, FormatRGBA16);
    EXPECT_EQ(std::memcmp(words.Pixels, halves.Pixels, 4 * 4 * 8), 0);
}

TEST(Resample, WithoutMemoryIsInvalid) {
    const OwnedPicture source = BlankPicture(400, 4, FormatRGBA8);
    SetMemoryLimit(1000);
    for (const std::uint32_t width : {8U, 80U})
        EXPECT_FALSE(Scaled(source, width, 8, FormatRGBA8).IsValid()) << width;
    SetMemoryLimit(0);
}

TEST(FlipVertically, SwapsRowsAndTurnsTheFlag) {
    for (const std::int32_t height : {1, 4, 5}) {
        OwnedPicture picture = RandomPicture(3, static_cast<std::uint32_t>(height), FormatRGB8, 10);
        const OwnedPicture before = DeepCopy(picture);
        EXPECT_TRUE(picture.FlipVertically());
        for (std::int32_t y = 0; y < height; ++y)
            EXPECT_EQ(picture.GetPixel(1, y), before.GetPixel(1, height - 1 - y));
        SetMemoryLimit(1);
        EXPECT_FALSE(picture.FlipVertically()) << "there is no room for one row";
        SetMemoryLimit(0);
        EXPECT_FALSE(picture.TopDown);
    }
}

TEST(DrawLine, PlotsTheseExactPixels) {
    const std::pair<std::array<int, 4>, Pixels> lines[] = {
        {{0, 0, 3, 1}, {{0, 0}, {1, 0}, {2, 1}, {3, 1}}},
        {{3, 1, 0, 0}, {{0, 0}, {1, 0}, {2, 1}, {3, 1}}},
        {{0, 0, 1, 3}, {{0, 0}, {0, 1}, {1, 2}, {1, 3}}},
        {{3, 0, 2, 3}, {{3, 0}, {3, 1}, {2, 2}, {2, 3}}},
        {{5, 0, 0, 2}, {{5, 0}, {4, 0}, {3, 1}, {2, 1}, {1, 2}, {0, 2}}},
        {{2, 2, 4, 4}, {{2, 2}, {3, 3}, {4, 4}}},
        {{4, 1, 2, 1}, {{2, 1}, {3, 1}, {4, 1}}},
        {{1, 6, 1, 4}, {{1, 4}, {1, 5}, {1, 6}}},
        {{3, 3, 3, 3}, {{3, 3}}},
        {{-1, 0, 0, 0}, {{7, 0}, {0, 0}}}, // coordinates wrap
        {{9, -2, 9, -1}, {{1, 6}, {1, 7}}},
    };
    for (const auto& [ends, expected] : lines) {
        OwnedPicture picture = BlankPicture(8, 8, FormatRGBA8);
        picture.DrawLine(ends[0], ends[1], ends[2], ends[3], MColour(1, 1, 1));
        Pixels drawn;
        for (const auto& [x, y] : PlacesOf(picture))
            if (picture.GetPixel(x, y).a != 0) drawn.emplace(x, y);
        EXPECT_EQ(drawn, expected) << testing::PrintToString(ends);
    }
}

TEST(BleedColours, MatchesThePlainForm) {
    const auto expectPlain = [](OwnedPicture picture) {
        OwnedPicture expected = DeepCopy(picture);
        plain::BleedColours(expected);
        picture.BleedColours();
        ASSERT_TRUE(SamePicture(picture, expected)) << picture.Width << " x " << picture.Height;
    };
    Random random(11);
    for (int round = 0; round < 240; ++round) {
        const auto format = static_cast<MPixelFormat>(7 + round % 3);
        const bool large = round % 40 == 0;
        const std::uint32_t width = 1 + random() % (large ? 300 : 140);
        const std::uint32_t height = 1 + random() % (large ? 300 : 60);
        constexpr double shares[] = {0.0, 0.0005, 0.01, 0.3, 0.9, 1.0};
        OwnedPicture picture = RandomPicture(width, height, format, random(), shares[random() % 6]);
        if (round % 6 == 0 && format == FormatRGBA16) // below one byte's step: transparent
            picture.SetPixel(0, 0, MPixel(MColour16{1, 2, 3, 200}, format));
        expectPlain(std::move(picture));
    }
    for (const auto& [width, height] : {std::pair(4500U, 24U), std::pair(24U, 4500U)}) // many rings
        expectPlain(RandomPicture(width, height, FormatRGBA8, width, 0.0001));
}

TEST(BleedColours, WithoutMemoryLeavesThePictureAlone) {
    OwnedPicture picture = RandomPicture(64, 64, FormatRGBA8, 12);
    const OwnedPicture before = DeepCopy(picture);
    SetMemoryLimit(100);
    picture.BleedColours();
    SetMemoryLimit(0);
    EXPECT_TRUE(SamePicture(picture, before));
}
