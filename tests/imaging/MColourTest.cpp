#include "imaging/MColour.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

TEST(Colour, BytesAndWordsOfHalves) {
    for (std::uint32_t bits = 0; bits <= 0xFFFF; ++bits) {
        const Imath::half value(Imath::half::FromBits, static_cast<std::uint16_t>(bits));
        const double exact = static_cast<double>(static_cast<float>(value)) * 255; // as it is in a float, too
        ASSERT_EQ(ToByte(value), std::isnan(exact) ? 0 : std::floor(std::min(std::max(exact, 0.0), 255.0)))
            << bits;
    }
    const std::pair<float, int> words[] = {{0.0F, 0},     {-1.0F, 0},        {0.25F, 16383},
                                           {0.5F, 32767}, {1.0F, 65535},     {65504.0F, 65535},
                                           {NAN, 0},      {INFINITY, 65535}, {-INFINITY, 0}};
    for (const auto& [value, word] : words)
        EXPECT_EQ(ToWord(value), word) << value;
}

TEST(Pixel, ChangesClassChannelByChannel) {
    const MColour bytes(255, 16, 1, 128);
    const MColour16 words{0xFFFF, 0x10FF, 0x0100, 0x8000};
    const MColourHalf halves(1.0F, 0.5F, 300.0F, -2.0F);

    const auto changed = [](const auto& colour, MPixelFormat from, MPixelFormat to) {
        MPixel pixel(colour, from);
        pixel.SetFormat(to);
        return pixel;
    };
    EXPECT_EQ(changed(bytes, FormatRGBA8, FormatRGBA16).colour16, (MColour16{0xFF00, 0x1000, 0x0100, 0x8000}));
    EXPECT_EQ(changed(bytes, FormatRGBA8, FormatRHalf).colourHalf, MColourHalf(255, 16, 1, 128));
    EXPECT_EQ(changed(words, FormatRGB16, FormatRGB8).colour, MColour(255, 16, 1, 128));
    // 65535 / 256 and 4351 / 256 round up in 11 bits.
    EXPECT_EQ(changed(words, FormatRGB16, FormatRGBHalf).colourHalf, MColourHalf(256, 17, 1, 128));
    EXPECT_EQ(changed(halves, FormatRGBAHalf, FormatRGBA8).colour, MColour(255, 127, 255, 0));
    EXPECT_EQ(changed(halves, FormatRGBAHalf, FormatR16).colour16, (MColour16{65535, 32767, 65535, 0}));
    // Within a class, and from no format, only the format changes.
    EXPECT_EQ(changed(bytes, FormatRGBA8, FormatR8).format, FormatR8);
    EXPECT_EQ(changed(bytes, FormatRGBA8, FormatR8).colour, bytes);
    EXPECT_EQ(changed(bytes, FormatNone, FormatRGBA16).format, FormatRGBA16);
    EXPECT_EQ(changed(bytes, FormatNone, FormatRGBA16).colour16, MColour16());
}

TEST(Colour, Lerp) {
    EXPECT_EQ(MColour::Lerp(MColour(10, 200, 77, 0), MColour(20, 100, 77, 255), 0.5F),
              MColour(15, 150, 77, 127));
    EXPECT_EQ(Lerp(7, 7, 0.3F), 7U);
    EXPECT_EQ(Lerp(0, 255, 0.5F), 127U);
    EXPECT_EQ(Lerp(4'000'000'000U, 3'000'000'000U, 0.5F), 3'500'000'000U);
    EXPECT_EQ(Lerp(0, 100, -1.0F), 0U);
    EXPECT_EQ(Lerp(0, 4'294'967'295U, 2.0F), 4'294'967'295U);
}

TEST(Colour, BackgroundTintStandsOutOnBothSides) {
    EXPECT_EQ(BackgroundTint(MColour(240, 12, 128, 9), 1.0F), MColour(240, 12, 128, 255));
    EXPECT_EQ(BackgroundTint(MColour(240, 240, 240), 0.8F), MColour(192, 192, 192));
    EXPECT_EQ(BackgroundTint(MColour(0, 128, 129), 0.5F), MColour(127, 191, 64));
    EXPECT_EQ(BackgroundTint(MColour(240, 10, 0), 1.5F), MColour(255, 0, 0)); // clamped, never wrapped
}

TEST(Colour, StraightColoursAreTheNearest) {
    for (int a = 1; a < 256; ++a) {
        for (int value = 0; value <= a; ++value) {
            const MColour straight =
                Unpremultiplied(MColour(static_cast<std::uint8_t>(value), 0, 0, static_cast<std::uint8_t>(a)));
            ASSERT_EQ(straight.r, std::lround(value * 255.0 / a)) << value << " of " << a;
        }
    }
    EXPECT_EQ(Unpremultiplied(MColour(9, 9, 9, 0)), MColour(0, 0, 0, 0));
    EXPECT_EQ(Unpremultiplied(MColour(200, 9, 9, 100)).r, 255) << "more than premultiplied";
}
