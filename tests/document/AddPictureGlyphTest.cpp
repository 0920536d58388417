#include "DocumentFixture.h"
#include "imaging/Pictures.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

class AddPictureGlyphTest : public DocumentTest {
protected:
    MColourFont font{nullptr};

    // The rule, point by point in floats.
    MColour PlainPixel(const MPicture& picture, const MGlyph& glyph, std::int32_t x, std::int32_t y) const {
        const auto pictureWidth = static_cast<std::int32_t>(picture.Width);
        const auto pictureHeight = static_cast<std::int32_t>(picture.Height);
        const std::int32_t total = settings.PaddingTop + settings.PaddingBottom + pictureHeight;
        const std::int32_t h = settings.GlyphHeight;
        const std::int32_t n = std::clamp(total / h + 1, 2, 6);
        const std::int32_t baseX = x * pictureWidth / glyph.Width;
        const std::int32_t baseY = y * total / h - settings.PaddingTop;
        float r = 0, g = 0, b = 0, a = 0, all = 0, coloured = 0;
        for (std::int32_t px = std::max(baseX, 0); px < std::min(baseX + n, pictureWidth); ++px) {
            for (std::int32_t py = std::max(baseY, 0); py < std::min(baseY + n, pictureHeight); ++py) {
                const MColour point = picture.GetPixel(px, py);
                all += 1;
                a += point.a;
                if (point.a == 0) continue;
                coloured += 1;
                r += point.r;
                g += point.g;
                b += point.b;
            }
        }
        if (coloured == 0) return {0, 0, 0, 0};
        const auto mean = [](float sum, float count) { return static_cast<std::uint8_t>(sum / count); };
        return {mean(r, coloured), mean(g, coloured), mean(b, coloured), mean(a, all)};
    }
};

TEST_F(AddPictureGlyphTest, ResamplesByPointSets) {
    Random random(3);
    for (const MPixelFormat format : {FormatRGBA8, FormatRGB8, FormatR16, FormatRGBAHalf}) {
        for (unsigned round = 0; round < 25; ++round) {
            const auto pick = [&](unsigned most) { return static_cast<std::int32_t>(random() % most); };
            const OwnedPicture picture = RandomPicture(1 + random() % 90, 1 + random() % 200, format, round);
            settings.GlyphHeight = 1 + pick(60);
            settings.PaddingTop = pick(20);
            settings.PaddingBottom = pick(20);
            ASSERT_TRUE(font.AddPictureGlyph(u'x', picture, 3, -4, false));
            const MGlyph& glyph = *font.GetGlyph(u'x');
            const std::int32_t total =
                settings.PaddingTop + settings.PaddingBottom + static_cast<std::int32_t>(picture.Height);
            ASSERT_EQ(glyph.Width, settings.GlyphHeight * static_cast<std::int32_t>(picture.Width) / total);
            ASSERT_EQ(std::tuple(glyph.Height, glyph.SpacingBefore, glyph.SpacingAfter, glyph.FromPicture),
                      std::tuple(settings.GlyphHeight, 3, -4, true));
            for (const auto& [x, y] : PlacesOf(glyph.Picture))
                ASSERT_EQ(glyph.GetPixel(x, y), PlainPixel(picture, glyph, x, y));
        }
    }
}

TEST_F(AddPictureGlyphTest, APictureOfTheGlyphsSizeIsCopied) {
    const OwnedPicture picture = RandomPicture(50, 100, FormatRGBA8, 1);
    ASSERT_TRUE(font.AddPictureGlyph(u'x', picture, 0, 0, false));
    EXPECT_TRUE(SamePicture(font.GetGlyph(u'x')->Picture, picture));
}

TEST_F(AddPictureGlyphTest, LetterAIsMeasuredOnTheSource) {
    OwnedPicture picture = BlankPicture(10, 40, FormatRGBA8);
    for (std::int32_t y = 5; y < 30; ++y)
        picture.SetPixel(3, y, MColour(1, 1, 1));
    font.CapHeight = font.Baseline = 999;
    ASSERT_TRUE(font.AddPictureGlyph(u'B', picture, 0, 0, true));
    EXPECT_EQ(font.CapHeight, 999);
    ASSERT_TRUE(font.AddPictureGlyph(u'A', picture, 0, 0, true));
    EXPECT_EQ(std::pair(font.CapHeight, font.Baseline), std::pair(25, 10));
    EXPECT_LT(font.GetGlyph(u'A')->Width, 25); // trimmed
}

TEST_F(AddPictureGlyphTest, WhatIsRefused) {
    OwnedPicture picture = FilledPicture(10, 10, MColour(1, 1, 1));
    settings.PaddingTop = -1;
    EXPECT_FALSE(font.AddPictureGlyph(u'x', picture, 0, 0, false));
    settings.PaddingTop = 0;
    EXPECT_FALSE(font.AddPictureGlyph(u'x', MPicture(), 0, 0, false));
    EXPECT_FALSE(font.AddPictureGlyph(u'x', MString("/no/such.png"), 0, 0, false));
    for (const std::int32_t height : {0, -5, 2'000'000'000}) { // no picture, but the numbers
        settings.GlyphHeight = height;
        EXPECT_TRUE(font.AddPictureGlyph(u'x', picture, 0, 0, true));
        EXPECT_FALSE(font.GetGlyph(u'x')->Picture.IsValid());
    }
    settings.GlyphHeight = 10;
    for (char16_t c = 1; c < 223; ++c)
        AddGlyph(font, static_cast<char16_t>(1000 + c), 1, 1);
    EXPECT_FALSE(font.AddPictureGlyph(u'y', picture, 0, 0, false));
}

} // namespace
