#include "document/ChangeGlyphHeight.h"

#include "DocumentFixture.h"
#include "Text.h"

#include <array>
#include <limits>
#include <tuple>

namespace {

using Desktop::Answer;
using ChangeGlyphHeightTest = DocumentTest;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

TEST_F(ChangeGlyphHeightTest, NormalisedHeights) {
    const std::array<std::int32_t, 4> cases[] = {
        {60, 100, 100, 117},                             // 116.67
        {100, 1024, 1024, 7340},                         // 7339.9...; above the dialog's limit
        {64, 16, 16, 3},                                 // 2.8; below it
        {56, 100, 46, 58},                               // 57.5 exactly: away from zero
        {most, 1, 16, 0},        {1, most, 1024, least}, // 1.5e12 fits no number
    };
    for (const auto& [capHeight, oldHeight, newHeight, normalised] : cases)
        EXPECT_EQ(NormalisedGlyphHeight(capHeight, oldHeight, newHeight), normalised) << capHeight;
}

TEST_F(ChangeGlyphHeightTest, EveryWayThrough) {
    const struct {
        std::int32_t capHeight, oldHeight, newHeight;
        Answer answer;
        bool asked, changed;
        std::int32_t height, glyphHeight, newCapHeight;
    } cases[] = {
        {60, 100, 100, Answer::Yes, true, true, 117, 116, 70}, // 100 * 1.17F is just below 117
        {60, 100, 200, Answer::No, true, true, 200, 200, 120},
        {60, 100, 200, Answer::Cancel, true, false, 100, 100, 60},
        {70, 100, 100, Answer::Yes, true, false, 100, 100, 70}, // normal already
        {-5, 100, 50, Answer::Cancel, false, true, 50, 50, -2},
        {0, 100, 100, Answer::Cancel, false, false, 100, 100, 0},
        {0, 19, 27, Answer::Cancel, false, true, 27, 26, 0}, // as is 19 * (27.0F / 19)
        {60, 0, 50, Answer::Yes, false, false, 50, 19, 60},  // no height to start from
        {60, -19900, 50, Answer::Yes, false, false, 50, 19, 60},
    };
    for (const auto& c : cases) {
        Headless::Reset();
        Headless::script.answers = {c.answer};
        MColourFont font(AnyWindow());
        AddGlyph(font, u'A', 30, c.oldHeight < 1 ? 19 : c.oldHeight);
        font.CapHeight = c.capHeight;
        settings.GlyphHeight = c.newHeight;
        EXPECT_EQ(ChangeGlyphHeight(font, c.oldHeight), c.changed);
        EXPECT_EQ(Headless::record.messages.size(), c.asked ? 1U : 0U);
        EXPECT_EQ(std::tuple(settings.GlyphHeight, font.GetGlyph(u'A')->Height, font.CapHeight),
                  std::tuple(c.height, c.glyphHeight, c.newCapHeight))
            << c.oldHeight << " to " << c.newHeight;
        EXPECT_EQ(font.Picture.IsValid(), c.changed); // repacked
        if (c.height != 117) continue;
        const Headless::Message& question = Headless::record.messages.at(0);
        EXPECT_TRUE(question.buttons == Desktop::Buttons::YesNoCancel && question.icon == Desktop::Icon::None);
        EXPECT_EQ(Narrow(question.text),
                  "For most fonts the cap height is about 70% of the font size.\n\n"
                  "To normalize your font with a font size of 100 you should use a glyph "
                  "height of 117.\n\nWould you like to normalize your font?");
    }
}

} // namespace
