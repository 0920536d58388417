#include "glyphs/SheetCutter.h"

#include "Text.h"
#include "glyphs/SheetMaker.h"
#include "imaging/Pictures.h"
#include "platform/headless/Headless.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using testing::HasSubstr;
using Effect = SheetLook::Effect;
using Ground = SheetLook::Ground;

MColour Over(const MColour& ink, const MColour& paper) {
    const auto mix = [&](int a, int b) {
        return static_cast<std::uint8_t>((a * ink.a + b * (255 - ink.a) + 127) / 255);
    };
    return {mix(ink.r, paper.r), mix(ink.g, paper.g), mix(ink.b, paper.b)};
}

double MeanDifference(const MColour& a, const MColour& b) {
    return (std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b)) / 3.0;
}

void Block(const MPicture& picture, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
           const MColour& colour = {0, 0, 0}) {
    for (std::int32_t j = y; j < y + height; ++j)
        for (std::int32_t i = x; i < x + width; ++i)
            std::memcpy(picture.PixelAddress(i, j), &colour, 4);
}

// bench/sheet_faces.cpp looks at far more of them.
TEST(SheetCutter, FindsNamesAndMeasuresLetters) {
    const SheetLook looks[] = {
        {.ground = Ground::Transparent},
        {.family = "Liberation Serif", .italic = true, .ground = Ground::Paper, .degrees = -2},
        {.family = "Liberation Sans", .weight = 700, .effect = Effect::Outlined, .ground = Ground::Paper},
        {.family = "DejaVu Serif", .weight = 700, .effect = Effect::Shadow, .degrees = 1.2},
        {.family = "DejaVu Serif", .ground = Ground::Paper, .degrees = 1, .wander = 6},
    };
    for (const SheetLook& look : looks) {
        SCOPED_TRACE(look.family);
        const MadeSheet made(look);
        const MSheet sheet = FindSheetLetters(made.picture, made.text, {});
        ASSERT_EQ(sheet.problem, "");
        ASSERT_EQ(sheet.boxes.size(), made.letters.size());
        for (std::size_t i = 0; i < made.letters.size(); ++i) {
            const MadeLetter& letter = made.letters[i];
            const Desktop::Rect& box = sheet.boxes[i].box;
            EXPECT_EQ(sheet.boxes[i].character, letter.character);
            EXPECT_NEAR((box.left + box.right) / 2.0, letter.x, 3.5) << char(letter.character);
            EXPECT_NEAR(box.Width(), letter.width, 5.5) << char(letter.character);
            EXPECT_NEAR(sheet.lines[sheet.boxes[i].line].Base(letter.x), letter.base, 1 + 1.5 * look.wander)
                << char(letter.character);
        }
    }
}

TEST(SheetCutter, GlyphsAreAsRenderedDirectly) {
    const MadeSheet made({.ground = Ground::Transparent});
    const MSheet sheet = FindSheetLetters(made.picture, made.text, {});
    MColourFont cut(nullptr);
    ASSERT_EQ(AddSheetGlyphs(cut, true, sheet, made.picture, {}), "");
    EXPECT_EQ(cut.CapHeight, made.font.CapHeight);
    const auto alpha = [](const MGlyph& glyph, std::int32_t x, std::int32_t aboveBase,
                          const MColourFont& font) {
        return int{glyph.GetPixel(x, glyph.Height - font.Baseline - aboveBase - 1).a};
    };
    double sum = 0;
    double count = 0;
    for (const MadeLetter& letter : made.letters) {
        const MGlyph& glyph = *cut.GetGlyph(letter.character);
        const MGlyph& direct = *made.font.GetGlyph(letter.character);
        std::uint32_t top = 0, right = 0, bottom = 0, left = 0;
        direct.Picture.GetMargins(top, right, bottom, left);
        ASSERT_EQ(glyph.Width, direct.Width - static_cast<std::int32_t>(left + right))
            << char(letter.character);
        for (std::int32_t y = -cut.Baseline; y < glyph.Height - cut.Baseline; ++y) {
            for (std::int32_t x = 0; x < glyph.Width; ++x) {
                const auto there = x + static_cast<std::int32_t>(left);
                sum += std::abs(alpha(glyph, x, y, cut) - alpha(direct, there, y, made.font));
                ++count;
            }
        }
    }
    EXPECT_LT(sum / count, 0.5);
}

TEST(SheetCutter, PaperGoesAndCanComeBack) {
    for (const Ground ground : {Ground::White, Ground::Paper}) {
        const MadeSheet made({.family = "Liberation Serif", .ground = ground});
        const MSheet sheet = FindSheetLetters(made.picture, made.text, {});
        MColourFont font(nullptr);
        ASSERT_EQ(AddSheetGlyphs(font, true, sheet, made.picture, {}), "");
        double sum = 0;
        double count = 0;
        double visible = 0;
        double fringe = 0;
        for (const MSheetBox& box : sheet.boxes) {
            const MGlyph& glyph = *font.GetGlyph(box.character);
            std::uint32_t top = 0, right = 0, bottom = 0, left = 0;
            glyph.Picture.GetMargins(top, right, bottom, left);
            const std::int32_t base = static_cast<std::int32_t>(std::lround(sheet.lines[box.line].Base(0)));
            const std::int32_t y0 = base - (glyph.Height - font.Baseline);
            // The soft edge may have widened the glyph by a pixel at its left.
            double best = 1e9;
            for (std::int32_t dx = -1; dx <= 0; ++dx) {
                double all = 0;
                for (std::int32_t y = 0; y < glyph.Height; ++y) {
                    for (std::int32_t x = 0; x < glyph.Width; ++x) {
                        const std::int32_t sx = box.box.left + dx + x;
                        all += MeanDifference(Over(glyph.GetPixel(x, y), made.paper.GetPixel(sx, y0 + y)),
                                              made.picture.GetPixel(sx, y0 + y));
                    }
                }
                best = std::min(best, all);
            }
            sum += best;
            for (std::int32_t y = static_cast<std::int32_t>(top);
                 y < glyph.Height - static_cast<std::int32_t>(bottom); ++y) {
                for (std::int32_t x = 0; x < glyph.Width; ++x) {
                    ++count;
                    // A fringe would be lighter than the ink.
                    const MColour pixel = glyph.GetPixel(x, y);
                    visible += pixel.a;
                    fringe += pixel.a * MeanDifference(pixel, MColour(15, 20, 64));
                }
            }
        }
        EXPECT_LT(sum / count, 3) << int(ground);
        EXPECT_LT(fringe / visible, 6) << int(ground);
    }
}

TEST(SheetCutter, WhatIsNoSheetIsTold) {
    const OwnedPicture empty = FilledPicture(300, 200, {255, 255, 255});
    const OwnedPicture clear = FilledPicture(300, 200, {0, 0, 0, 0});
    const OwnedPicture block = FilledPicture(300, 200, {250, 250, 240});
    Block(block, 50, 40, 200, 120);
    const OwnedPicture specks = FilledPicture(1200, 1200, {255, 255, 255});
    for (std::int32_t i = 0; i < 10000; ++i)
        Block(specks, i % 100 * 12, i / 100 * 12, 2, 2);
    const OwnedPicture noise = RandomPicture(256, 256, FormatRGB8, 1);
    const std::pair<const MPicture*, const char*> cases[] = {
        {&empty, "is empty"},
        {&clear, "is empty"},
        {&block, "1 letter was found on the sheet, but the text has 3 characters"},
        {&specks, "10000 pieces of ink"},
        {&noise, "has no even ground: only"},
    };
    for (const auto& [picture, problem] : cases) {
        const MSheet sheet = FindSheetLetters(*picture, "ABC", {});
        EXPECT_NE(sheet.problem, "");
        EXPECT_THAT(sheet.problem, HasSubstr(problem));
    }
    EXPECT_THAT(FindSheetLetters(block, "ABA", {}).problem, HasSubstr("'A' (U+0041) twice"));
    EXPECT_NE(FindSheetLetters(MPicture(), "A", {}).problem, "");
}

TEST(SheetCutter, TellsWhereNumbersDiffer) {
    const MadeSheet made({.lines = {u"ABCDEFGHIJ", u"abcdegh", u".-'+"}});
    MSheet sheet = FindSheetLetters(made.picture, "ABCDEFGHIJ\nabcdefgh\n.-'+", {});
    EXPECT_THAT(sheet.problem, HasSubstr("21 letters were found on the sheet, but the text has 22 characters"));
    EXPECT_THAT(sheet.problem, HasSubstr("line 2 has 7 letters for 8 characters"));
    ASSERT_GE(sheet.doubtAt, 0);
    EXPECT_EQ(sheet.boxes[static_cast<std::size_t>(sheet.doubtAt)].line, 1U);
    MColourFont font(nullptr);
    EXPECT_EQ(AddSheetGlyphs(font, true, sheet, made.picture, {}), sheet.problem);
    EXPECT_EQ(font.GlyphCount(), 0);
    NameSheetBoxes(sheet, "ABCDEFGHIJ\nabcdegh\n.-'+");
    EXPECT_EQ(sheet.problem, "");
}

TEST(SheetCutter, ChangesByHand) {
    const MadeSheet made({.lines = {u"AH", u"xo"}});
    Block(made.picture, 4, 8, 1, 2);                   // a speck
    Block(made.picture, 4, 30, 9, 9, {225, 225, 225}); // a faint one, as JPEG makes them
    MSheet sheet = FindSheetLetters(made.picture, "", {});
    ASSERT_EQ(sheet.boxes.size(), 4U);
    const Desktop::Rect h = sheet.boxes[1].box;
    SplitSheetBox(sheet, 1, h.left - 5, made.picture); // nothing on one side
    ASSERT_EQ(sheet.boxes.size(), 4U);
    SplitSheetBox(sheet, 1, (h.left + h.right) / 2, made.picture);
    ASSERT_EQ(sheet.boxes.size(), 5U);
    EXPECT_EQ(sheet.boxes[1].box.right, sheet.boxes[2].box.left);
    JoinSheetBoxes(sheet, 2, 1);
    ASSERT_EQ(sheet.boxes.size(), 4U);
    EXPECT_EQ(sheet.boxes[1].box, h);
    sheet.boxes[0].leftOut = true;
    Desktop::Rect upper = sheet.boxes[3].box; // half of the "o"
    upper.bottom = (upper.top + upper.bottom) / 2;
    Desktop::Rect lower = sheet.boxes[3].box;
    lower.top = upper.bottom;
    MoveSheetBox(sheet, 3, upper);
    EXPECT_EQ(AddSheetBox(sheet, lower), 4U);
    EXPECT_EQ(AddSheetBox(sheet, {0, 0, 10, 12}), 0U) << "before all others of its line";
    SplitSheetBox(sheet, 5, (lower.left + lower.right) / 2, made.picture);
    NameSheetBoxes(sheet, ".Hxouv");
    MColourFont font(nullptr);
    ASSERT_EQ(AddSheetGlyphs(font, true, sheet, made.picture, {}), "");
    EXPECT_EQ(font.GlyphCount(), 6);
    std::uint32_t top = 0, right = 0, bottom = 0, left = 0;
    const auto inkHeight = [&](char16_t character) {
        const MPicture& ink = font.GetGlyph(character)->Picture;
        ink.GetMargins(top, right, bottom, left);
        return static_cast<std::int32_t>(ink.Height - top - bottom);
    };
    EXPECT_EQ(inkHeight(u'o'), upper.Height());
    EXPECT_EQ(inkHeight(u'u'), lower.Height()) << "what the box above left over";
    EXPECT_EQ(font.GetGlyph(u'u')->Width + font.GetGlyph(u'v')->Width, lower.Width());
    EXPECT_EQ(inkHeight(u'.'), 2);
    // Into a font that stands: its height, its cap height, its base line.
    MadeSheet large({.height = 150, .lines = {u"ABC"}});
    Settings->GlyphHeight = font.GetGlyph(u'H')->Height;
    const std::int32_t cap = font.CapHeight;
    ASSERT_EQ(AddSheetGlyphs(font, false, FindSheetLetters(large.picture, "ABC", {}), large.picture, {}), "");
    EXPECT_EQ(font.GetGlyph(u'B')->Height, font.GetGlyph(u'H')->Height);
    EXPECT_NEAR(inkHeight(u'B'), cap, 1);
    EXPECT_EQ(static_cast<std::int32_t>(bottom), font.Baseline);
}

TEST(SheetCutter, PartsSideBySideAreJoinedForACharacterThatHasThem) {
    const OwnedPicture picture = FilledPicture(150, 60, {255, 255, 255});
    for (const auto& [x, width] : {std::pair(10, 20), {50, 14}, {70, 6}, {90, 20}})
        Block(picture, x, 10, width, 40);
    const MSheet sheet = FindSheetLetters(picture, u"\u0422\u042B\u0428", {});
    ASSERT_EQ(sheet.problem, "");
    EXPECT_EQ(sheet.boxes[1].box.Width(), 26);
}

// 8 x 10 cells whose letters are pieces that no shape tells apart.
TEST(SheetCutter, Grids) {
    const OwnedPicture picture = FilledPicture(64, 20, {255, 255, 255});
    for (std::int32_t i = 0; i < 16; ++i) {
        if (i == 3) continue; // the space
        Block(picture, i % 8 * 8 + 1, i / 8 * 10 + 2, 2, 6);
        Block(picture, i % 8 * 8 + 5, i / 8 * 10 + 2 + i % 3, 2, 2);
    }
    MSettings settings;
    Settings = &settings;
    MSheetWishes given;
    given.grid = {1, 1};
    const OwnedPicture block = FilledPicture(200, 100, {255, 255, 255});
    Block(block, 10, 10, 80, 80);
    EXPECT_THAT(FindSheetLetters(block, "", given).problem, HasSubstr("far more cells"));
    given.grid = {8, 10};
    const MString text = "ABC DEFGHIJKLMNO";
    for (const MSheetWishes& wishes : {given, MSheetWishes()}) {
        const MSheet sheet = FindSheetLetters(picture, text, wishes);
        ASSERT_EQ(sheet.problem, "");
        ASSERT_EQ(sheet.boxes.size(), 15U);
        EXPECT_EQ(sheet.boxes[3].character, u'D');
        EXPECT_EQ(sheet.boxes[3].box.left, 33);
        ASSERT_TRUE(sheet.grid);
        EXPECT_EQ(sheet.grid->width, 8);
        EXPECT_EQ(sheet.grid->height, 10);
        for (const bool trim : {true, false}) {
            MColourFont font(nullptr);
            MSheetSpacing spacing;
            spacing.trim = trim;
            ASSERT_EQ(AddSheetGlyphs(font, true, sheet, picture, spacing), "");
            const MGlyph& glyph = *font.GetGlyph(u'D');
            EXPECT_EQ(glyph.Width, 6);
            EXPECT_EQ(glyph.SpacingBefore + glyph.Width + glyph.SpacingAfter == 8, !trim);
        }
    }
    Settings = nullptr;
}

} // namespace
