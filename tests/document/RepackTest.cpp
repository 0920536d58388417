#include "DocumentFixture.h"
#include "imaging/Pictures.h"

#include <array>
#include <utility>
#include <vector>

namespace {

using Sizes = std::vector<std::pair<std::int32_t, std::int32_t>>;
class RepackTest : public DocumentTest {
protected:
    MColourFont font{nullptr};

    void Fill(const Sizes& sizes) {
        for (char16_t character = 33; const auto& [width, height] : sizes) {
            FillWithNoise(AddGlyph(font, character, width, height).Picture, character);
            ++character;
        }
    }

    // Each glyph at its place, over those before it.
    void ExpectAllPixels() {
        ASSERT_TRUE(font.Repack());
        OwnedPicture plain = BlankPicture(font.Picture.Width, font.Picture.Height, FormatRGBA8);
        for (const auto& glyph : font.Glyphs)
            for (std::int32_t c = 0; glyph && c < glyph->Width; ++c)
                for (std::int32_t r = 0; r < glyph->Height; ++r)
                    plain.SetPixel(glyph->X + c, glyph->Y + r, glyph->GetPixel(c, r));
        ASSERT_TRUE(SamePicture(font.Picture, plain));
    }
};

TEST_F(RepackTest, KnownSizes) {
    using Numbers = std::array<std::int32_t, 4>; // width, height, and the place of the last glyph
    const std::pair<Sizes, Numbers> cases[] = {
        {{{100, 100}}, {128, 256, 16, 132}},
        {{{95, 10}}, {128, 128, 16, 16}},
        {{{96, 10}}, {128, 128, 16, 42}}, // its right edge 16 from the border breaks even an empty row
        {Sizes(26, {80, 100}), {1024, 512, 496, 248}},
        {{{0, 5}}, {128, 128, 77, 77}},             // takes no room and keeps its place
        {{{90, 10}, {90, 30}}, {128, 128, 16, 62}}, // down by the height of the one that did not fit
        {{{10, 95}}, {128, 128, 16, 16}},
        {{{10, 96}}, {128, 256, 16, 16}},
    };
    for (const auto& [sizes, numbers] : cases) {
        font.Clear();
        Fill(sizes);
        MGlyph& last = *font.GetGlyphByIndex(static_cast<std::uint32_t>(sizes.size() - 1));
        last.X = last.Y = 77;
        ASSERT_TRUE(font.Repack());
        EXPECT_EQ((Numbers{font.PictureWidth, font.PictureHeight, last.X, last.Y}), numbers);
    }
}

TEST_F(RepackTest, EveryPixelOfAnyListOfSizes) {
    std::mt19937 random(5);
    for (int round = 0; round < 150; ++round) {
        font.Clear();
        Sizes sizes;
        const auto pick = [&](unsigned most) { return static_cast<std::int32_t>(random() % most); };
        const bool sameHeight = random() % 2 == 0;
        const std::int32_t height = 1 + pick(60);
        // Wide glyphs wrap around, some more than once; some have no area; heights that differ overlap.
        for (std::int32_t n = pick(30); n > 0; --n)
            sizes.emplace_back(pick(8) == 0 ? pick(900) : pick(60), sameHeight ? height : pick(60));
        Fill(sizes);
        ExpectAllPixels();
    }
}

TEST_F(RepackTest, AGlyphThatDiffersFromItsPictureGivesWhatGetPixelGives) {
    Fill({{20, 20}, {30, 30}, {10, 10}});
    font.GetGlyph(33)->Width = 50; // as after a failed resize
    font.GetGlyph(34)->Height = 7;
    font.GetGlyph(35)->Picture.Free();
    ExpectAllPixels();
}

TEST_F(RepackTest, SizesBeyond32BitsAreAFailedAllocation) {
    Fill({{10, 10}});
    ASSERT_TRUE(font.Repack());
    MGlyph& glyph = *font.GetGlyph(33);
    glyph.Height = 2'000'000'000;
    EXPECT_FALSE(font.Repack());
    EXPECT_FALSE(font.Picture.IsValid());
    EXPECT_EQ(glyph.Y, 16); // the place of the last repack
    glyph.Height = 10;
    glyph.Width = 2'000'000'000; // wraps around, two thousand million columns
    EXPECT_TRUE(font.Repack());
    EXPECT_EQ(font.PictureWidth, 128);
}

} // namespace
