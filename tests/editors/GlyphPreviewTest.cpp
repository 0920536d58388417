#include "editors/GlyphPreview.h"

#include "EditorTest.h"

#include <tuple>

// 610 by 500 pixels, its middle at (313, 258).
constexpr Desktop::Rect area{8, 8, 618, 508};

using GlyphPreviewTest = EditorTest;

TEST_F(GlyphPreviewTest, ScaleLeaves50PixelsOnEachSide) {
    EXPECT_EQ(PreviewScale(area, font), 0.0F); // no glyphs
    Add(u'A', 40, 50);
    EXPECT_EQ(PreviewScale(area, font), 8.0F); // 400 / 50
    Add(u'W', 102, 10);
    EXPECT_EQ(PreviewScale(area, font), 5.0F); // 510 / 102
    EXPECT_EQ(PreviewScale({0, 0, 100, 500}, font), 0.0F);
    EXPECT_LT(PreviewScale({0, 0, 49, 500}, font), 0.0F);
    font.Clear();
    AddGlyph(font, u'0', 0, 50);
    EXPECT_EQ(PreviewScale(area, font), 0.0F);
    AddGlyph(font, u'H', Most, Most);
    EXPECT_GT(PreviewScale(area, font), 0.0F);
}

TEST_F(GlyphPreviewTest, GuidesStandAroundTheGlyph) {
    const struct {
        float scale;
        std::int32_t width, height, before, after, baseline, capHeight;
        std::int32_t x, y, left, right, baselineGuide, capHeightGuide;
    } cases[] = {
        {8, 20, 50, 3, -2, 7, 30, 233, 58, 209, 377, 402, 162},
        {8, 20, 50, -3, 2, -7, -1, 233, 58, 257, 409, 514, 522},
        {0.5F, 33, 31, 3, 1, 3, 5, 304, 250, 302, 321, 263, 260}, // each step is truncated by itself
        // What doesn't fit is the smallest number; floats this large go in steps of 128.
        {1, 20, 50, Least, Least, Least, Least, 303, 233, Least, Least + 384, Least, 0},
        {1, 20, 50, Most, Most, Most, Most, 303, 233, Least + 256, Least, Least + 256, Least},
        {0.00001F, Most, Most, Most, Most, 0, 0, -10424, -10479, -31898, 32524, 10995, 10995},
    };
    for (const auto& c : cases) {
        const auto glyph = std::make_unique<MGlyph>(u'A', 0, 0, c.before, c.after, false);
        glyph->Width = c.width;
        glyph->Height = c.height;
        font.Baseline = c.baseline;
        font.CapHeight = c.capHeight;
        const MGlyphPreview p = LayOutGlyph(area, c.scale, *glyph, font);
        EXPECT_EQ(std::tuple(p.X, p.Y, p.LeftGuide, p.RightGuide, p.BaselineGuide, p.CapHeightGuide),
                  std::tuple(c.x, c.y, c.left, c.right, c.baselineGuide, c.capHeightGuide));
    }
}

TEST_F(GlyphPreviewTest, TheButtonAndTheHalfChooseTheGuide) {
    const std::tuple<bool, MPoint, MGuide, std::int32_t> cases[] = {
        {false, {314, 100}, MGuide::SpacingAfter, -9}, // (314 - 393) / 8 = -9.9
        {false, {409, 100}, MGuide::SpacingAfter, 2},
        {false, {313, 100}, MGuide::SpacingBefore, -10}, // in the middle: the left half
        {false, {209, 400}, MGuide::SpacingBefore, 3},
        {true, {500, 258}, MGuide::CapHeight, 18}, // 25 - 7 rows above the baseline
        {true, {500, 162}, MGuide::CapHeight, 30},
        {true, {20, 259}, MGuide::Baseline, 24},
        {true, {20, 402}, MGuide::Baseline, 7},
        {true, {20, 507}, MGuide::Baseline, -6}, // below the glyph
    };
    font.Baseline = 7;
    const MGlyph& glyph = Add(u'B', 20, 50);
    for (const auto& [right, mouse, guide, value] : cases) {
        const MDraggedGuide dragged = DragGuide(area, 8, glyph, font, mouse, right);
        EXPECT_EQ(dragged.Guide, guide) << mouse.x << ", " << mouse.y;
        EXPECT_EQ(dragged.Value, value) << mouse.x << ", " << mouse.y;
    }
    for (const std::int32_t baseline : {Least, Most}) {
        font.Baseline = baseline;
        EXPECT_EQ(DragGuide(area, 8, glyph, font, {300, 100}, true).Value, Least);
    }
}
