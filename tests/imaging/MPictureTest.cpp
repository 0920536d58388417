#include "imaging/MPicture.h"

#include "foundation/MMemory.h"
#include "imaging/Pictures.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

template<typename Channel>
Bytes Memory(std::initializer_list<Channel> channels) {
    Bytes bytes(channels.size() * sizeof(Channel));
    std::memcpy(bytes.data(), channels.begin(), bytes.size());
    return bytes;
}
constexpr auto ByteMemory = Memory<std::uint8_t>;
constexpr auto WordMemory = Memory<std::uint16_t>;
constexpr auto HalfMemory = Memory<Imath::half>;

} // namespace

TEST(Picture, ReadsEveryFormatAsEveryColour) {
    struct Row {
        MPixelFormat format;
        Bytes memory;
        MColour colour;
        MColour16 colour16;
        MColourHalf colourHalf;
    };
    const Row rows[] = {
        {1, ByteMemory({9}), {9, 9, 9, 255}, {0x900, 0x900, 0x900, 65535}, {9, 9, 9, 255}},
        {2, WordMemory({0x280}), {2, 2, 2, 255}, {0x280, 0x280, 0x280, 65535}, {2.5F, 2.5F, 2.5F, 255}},
        {3, HalfMemory({0.5F}), {127, 127, 127, 255}, {32767, 32767, 32767, 255}, {0.5F, 0.5F, 0.5F, 255}},
        {4, ByteMemory({1, 2, 3}), {3, 2, 1, 255}, {0x300, 0x200, 0x100, 65535}, {3, 2, 1, 255}},
        {5, WordMemory({256, 767, 832}), {1, 2, 3, 255}, {256, 767, 832, 65535}, {1, 2.99609375F, 3.25F, 255}},
        {6, HalfMemory({1, 0.25F, -1}), {255, 63, 0, 255}, {65535, 16383, 0, 65535}, {1, 0.25F, -1, 255}},
        {7, ByteMemory({1, 2, 3, 4}), {3, 2, 1, 4}, {0x300, 0x200, 0x100, 0x400}, {3, 2, 1, 4}},
        {8, WordMemory({256, 512, 768, 1152}), {1, 2, 3, 4}, {256, 512, 768, 1152}, {1, 2, 3, 4.5F}},
        {9, HalfMemory({1, 0, 2, 0.5F}), {255, 0, 255, 127}, {65535, 0, 65535, 32767}, {1, 0, 2, 0.5F}},
    };
    for (const Row& row : rows) {
        OwnedPicture picture = BlankPicture(1, 1, row.format);
        ASSERT_EQ(row.memory.size(), picture.Stride);
        std::ranges::copy(row.memory, picture.Pixels);
        EXPECT_EQ(picture.GetPixel(0, 0), row.colour) << row.format;
        EXPECT_EQ(picture.GetPixel16(0, 0), row.colour16) << row.format;
        EXPECT_EQ(picture.GetPixelHalf(0, 0), row.colourHalf) << row.format;
        const MPixel pixel(picture.Pixels, row.format);
        EXPECT_EQ(pixel.format, row.format);
        const int live = ChannelClass(row.format);
        EXPECT_TRUE(live != 1 || pixel.colour == row.colour) << row.format;
        EXPECT_TRUE(live != 2 || pixel.colour16 == row.colour16) << row.format;
        EXPECT_TRUE(live != 3 || pixel.colourHalf == row.colourHalf) << row.format;
    }
}

TEST(Picture, StoresEveryColourInEveryFormat) {
    const MColour colour(10, 20, 30, 40);
    const MColour16 colour16{0x0A80, 0x1400, 0x1E00, 0x2800};
    const MColourHalf colourHalf(0.5F, 1.0F, 2.0F, 0.25F);
    const float t = 1.0F / 256.0F;
    const std::array<Bytes, 3> rows[] = {
        // from bytes, from words and from halves; formats 1 to 9
        {ByteMemory({10}), ByteMemory({10}), ByteMemory({127})},
        {WordMemory({0x0AFF}), WordMemory({0x0A80}), WordMemory({32767})},
        {HalfMemory({10 * t}), HalfMemory({10.5F}), HalfMemory({0.5F})},
        {ByteMemory({30, 20, 10}), ByteMemory({30, 20, 10}), ByteMemory({255, 255, 127})},
        {WordMemory({0x0AFF, 0x14FF, 0x1EFF}), WordMemory({0x0A80, 0x1400, 0x1E00}),
         WordMemory({32767, 65535, 65535})},
        {HalfMemory({10 * t, 20 * t, 30 * t}), HalfMemory({10.5F, 20, 30}), HalfMemory({0.5F, 1, 2})},
        {ByteMemory({30, 20, 10, 40}), ByteMemory({30, 20, 10, 40}), ByteMemory({255, 255, 127, 63})},
        {WordMemory({0x0AFF, 0x14FF, 0x1EFF, 0x28FF}), WordMemory({0x0A80, 0x1400, 0x1E00, 0x2800}),
         WordMemory({32767, 65535, 65535, 16383})},
        {HalfMemory({10 * t, 20 * t, 30 * t, 40 * t}), HalfMemory({10.5F, 20, 30, 40}),
         HalfMemory({0.5F, 1, 2, 0.25F})},
    };
    for (MPixelFormat format = 1; const auto& [fromBytes, fromWords, fromHalves] : rows) {
        OwnedPicture picture = BlankPicture(1, 1, format);
        const auto memory = [&] { return Bytes(picture.Pixels, picture.Pixels + picture.Stride); };
        picture.SetPixel(0, 0, colour);
        EXPECT_EQ(memory(), fromBytes) << format;
        picture.SetPixel(0, 0, MPixel(colour16, FormatR16));
        EXPECT_EQ(memory(), fromWords) << format;
        picture.SetPixel(0, 0, MPixel(colourHalf, FormatRGBAHalf));
        picture.SetPixel(0, 0, MPixel()); // of no format: it stores nothing
        EXPECT_EQ(memory(), fromHalves) << format;
        ++format;
    }
}

TEST(Picture, InvalidOnesReadAsDefaultsAndIgnoreWrites) {
    MPicture picture;
    EXPECT_TRUE(picture.TopDown);
    EXPECT_EQ(picture.PixelAddress(0, 0), nullptr);
    EXPECT_EQ(picture.GetPixel(0, 0), MColour(0, 0, 0, 255));
    EXPECT_EQ(picture.GetPixel16(0, 0), MColour16());
    EXPECT_EQ(picture.GetPixelHalf(0, 0), MColourHalf());
    picture.SetPixel(0, 0, MColour(1, 1, 1));
    picture.Fill(MColour(1, 1, 1));
    picture.DrawLine(0, 0, 5, 5, MColour());
    picture.BleedColours();
    EXPECT_FALSE(picture.IsValid() || picture.FlipVertically() || picture.HasTransparency());
    std::uint32_t top = 1, right = 1, bottom = 1, left = 1;
    picture.GetMargins(top, right, bottom, left);
    EXPECT_EQ(top + right + bottom + left, 0U);

    std::vector<std::uint8_t> bytes(3);
    EXPECT_FALSE(ViewOf(bytes, 1, 1).IsValid()) << "rows shorter than the pixels in them";
}

TEST(Picture, RefusesSizesThatDoNotFit) {
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
        {0xFFFFFFFF, 0xFFFFFFFF}, {0x40000000, 1}, {0x3FFFFFFF, 0xFFFFFFFF}, {0, 5}, {5, 0}};
    for (const auto& [width, height] : sizes)
        EXPECT_EQ(MPicture(width, height, FormatRGBA8).Pixels, nullptr) << width << " x " << height;
    SetMemoryLimit(1000);
    EXPECT_FALSE(MPicture(16, 16, FormatRGBA8).IsValid());
    SetMemoryLimit(0);
}

TEST(Picture, FillBringsThePixelIntoItsFormat) {
    for (MPixelFormat format = 1; format <= 9; ++format) {
        for (const std::uint32_t width : {1U, 2U, 7U, 64U}) {
            OwnedPicture filled = BlankPicture(width, 3, format);
            OwnedPicture single = BlankPicture(width, 3, format);
            MPixel pixel(MColour(1, 2, 3, 4), FormatRGBA8);
            filled.Fill(pixel);
            EXPECT_EQ(pixel.format, format);
            for (const auto& [x, y] : PlacesOf(single))
                single.SetPixel(x, y, pixel);
            EXPECT_TRUE(SamePicture(filled, single)) << format << ", " << width;
        }
    }
}

TEST(Picture, FillLeavesTheGapsOfAView) {
    std::vector<std::uint8_t> buffer(3 * 16, 0xEE);
    MPicture view = ViewOf(buffer, 2, 3);
    view.Fill(MColour(1, 1, 1, 1));
    for (std::size_t i = 0; i < buffer.size(); ++i)
        EXPECT_EQ(buffer[i], i % 16 < 8 ? 1 : 0xEE) << i;
}

TEST(Picture, MarginsAreThoseOfTheInk) {
    // Pixels with ink; top, right, bottom and left.
    const std::pair<std::vector<Place>, std::array<std::uint32_t, 4>> cases[] = {
        {{}, {0, 0, 0, 0}},
        {{{0, 0}}, {0, 149, 19, 0}},
        {{{149, 19}}, {19, 0, 0, 149}},
        {{{63, 7}}, {7, 86, 12, 63}},
        {{{70, 3}, {5, 9}}, {3, 79, 10, 5}},
        {{{5, 3}, {70, 9}, {64, 11}}, {3, 79, 8, 5}},
        {{{63, 7}, {64, 7}, {128, 2}}, {2, 21, 12, 63}},
    };
    for (const MPixelFormat format : {FormatRGB8, FormatRGBA8, FormatRGBA16, FormatRGBAHalf}) {
        for (const auto& [ink, expected] : cases) {
            OwnedPicture picture = BlankPicture(150, 20, format);
            // In 16 bits an alpha below 256 reads as 0 and is no ink.
            if (format != FormatRGBAHalf) picture.SetPixel(1, 1, MPixel(MColour16{1, 1, 1, 255}, FormatRGBA16));
            for (const auto& [x, y] : ink)
                picture.SetPixel(x, y, MPixel(MColour16{1, 1, 1, 256}, FormatRGBA16));
            std::array<std::uint32_t, 4> margins{9, 9, 9, 9};
            picture.GetMargins(margins[0], margins[1], margins[2], margins[3]);
            const bool none = format == FormatRGB8;
            EXPECT_EQ(margins, none ? (std::array<std::uint32_t, 4>{}) : expected) << format << ink.size();
        }
    }
}

TEST(Picture, TransparencyIsAnyAlphaBelow255) {
    for (MPixelFormat format = 1; format <= 9; ++format) {
        OwnedPicture picture = BlankPicture(100, 2, format);
        picture.Fill(MColour(0, 0, 0, 255));
        if (MPixel opaque(MColourHalf(0, 0, 0, 1.0F), FormatRGBAHalf); format == opaque.format)
            picture.Fill(opaque);
        EXPECT_FALSE(picture.HasTransparency()) << format;
        picture.SetPixel(99, 1, MColour(0, 0, 0, 254));
        EXPECT_EQ(picture.HasTransparency(), HasAlpha(format)) << format;
    }
}
