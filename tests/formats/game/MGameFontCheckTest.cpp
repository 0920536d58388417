#include "formats/game/GameFontFile.h"

#include <fstream>

namespace {

class GameFontCheck : public GameFontTest {
protected:
    std::string Lines(const char* engine, std::optional<MBmForm> form = {}, std::int32_t gap = 1,
                      const std::string& name = "f", std::int32_t largest = 4096) const {
        MGameFontOptions options;
        options.Engine = EngineNamed(engine);
        options.Form = form;
        options.Page.Gap = gap;
        options.Page.Largest = largest;
        const MFontDescription description = DescribeFont(font, settings.GlyphHeight);
        const MGameFontPlan plan = PlanGameFont(description, options, name);
        std::string lines;
        for (const std::string& line : FindingLines(plan.Findings))
            lines += line + "\n";
        return lines + plan.Reason;
    }
};

TEST_F(GameFontCheck, EachRuleIsTold) {
    AddInked(u'A', 9, 1, 2).Picture.SetPixel(0, 3, MColour(0, 0, 0, 0));
    EXPECT_EQ(Lines("love"),
              "ink-edge: the ink touches its cell's edge, where filtering shows what lies beside "
              "(U+0041); repaired: clear pixels, or its own edge repeated, keep other glyphs away\n");
    AddFont();
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"a byte of kerning", Lines("libgdx"),
         "kerning-byte: the engine keeps kerning as a signed byte (U+0062 U+20AC 300, "},
        {"which others don't mind", Lines("jimp"), ""},
        {"no kerning", Lines("raylib"),
         "kerning-ignored: the engine takes no notice of kerning (3 pairs); to do: "},
        {"the base", Lines("pixi"),
         "base: the engine draws text too low by what lies below the baseline (5 rows); repaired: "},
        {"an advance below 0", Lines("godot"),
         "advance-negative: the engine takes an advance below 0 for the width (U+0416); to do: "},
        {"an old engine", Lines("godot", MBmForm::Binary), "form-godot-3: "},
        {"no gap", Lines("love", {}, 0), "page-edge: glyphs lie at the page's edge"},
        {"and no room", Lines("love", {}, 0),
         "ink-edge: filtering shows the neighbour of what touches its cell's edge (U+0041, U+0062, U+0416, and "
         "2 more); to do: "},
        {"names", Lines("any", {}, 1, "3 d\xC3\xA4=\"x\""),
         "name-page: readers split such a page name, or take it for a number (_3_d___x_); repaired: "},
        {"of faces", Lines("any", {}, 1, "Infinity"), "(_Infinity); repaired: the face gets another name"},
        {"a form", Lines("phaser", MBmForm::Text), "Phaser doesn't read the text form; it reads xml"},
        {"pages", Lines("phaser", {}, 6, "f", 44), "pages: the engine reads one page alone (2 pages)"},
        {"which some read", Lines("any", {}, 6, "f", 44),
         "pages-several: some engines read one page alone (2 pages)"},
        {"a page too small", Lines("any", {}, 1, "f", 30),
         "the glyph of code 1046 doesn't fit a page of 30 by 30 pixels"},
    };
    for (const auto& [what, lines, holds] : cases)
        EXPECT_THAT(lines, testing::HasSubstr(holds)) << what;
    EXPECT_THAT(Lines("jimp"), testing::Not(testing::HasSubstr("kerning")));

    font.SpaceWidth = 0;
    font.SetKerning('A', 'Q', -7);
    AddInked(u'\xD800', 3, 0, 0);
    font.GetGlyph(u'b')->TrimRows(0, 3);
    EXPECT_THAT(
        Lines("any"),
        testing::AllOf(
            testing::HasSubstr("space-missing: "),
            testing::HasSubstr("code-unusable: no text holds this code by itself (U+D800)"),
            testing::HasSubstr(
                "pair-missing: a pair names a character that the font lacks (U+0041 U+0051 -7); repaired"),
            testing::HasSubstr("cell-unequal: the glyph's cell isn't as high as the line (U+0062); repaired")));
    settings.GlyphHeight = 8;
    EXPECT_THAT(Lines("any"), testing::HasSubstr("ink-outside: the ink reaches below the line"));
    settings.GlyphHeight = 0;
    EXPECT_THAT(Lines("any"), testing::HasSubstr("glyph height is below 1"));
    settings.GlyphHeight = 8;
    font.GetGlyph(u'A')->SpacingBefore = 40000;
    EXPECT_THAT(Lines("any"), testing::HasSubstr("the xoffset of character 65 is more than the format holds"));
    font.Clear();
    EXPECT_THAT(Lines("any"), testing::HasSubstr("the font has no glyphs"));
}

// What is repaired stands in the file.
TEST_F(GameFontCheck, Repairs) {
    AddFont();
    font.SetKerning('A', 'Q', -7);
    MGameFontOptions options;
    options.Engine = EngineNamed("libgdx");
    ASSERT_EQ(Export("8 bit.fnt", options), "");
    const std::string text = folder.Read("8 bit.fnt");
    EXPECT_THAT(text,
                testing::StartsWith(
                    "info face=\"_8_bit\" size=20 bold=0 italic=0 charset=\"\" unicode=1 stretchH=100 smooth=1 "
                    "aa=1 padding=0,0,0,0 spacing=1,1 outline=0\ncommon lineHeight=20 base=15 "));
    EXPECT_THAT(text, testing::HasSubstr("\npage id=0 file=\"_8_bit_0.png\"\nchars count=6\nchar id=32 x=0 y=0 "
                                         "width=0 height=0 xoffset=0 yoffset=0 xadvance=11 page=0 chnl=15\n"));
    EXPECT_THAT(text,
                testing::EndsWith(
                    "\nkernings count=3\nkerning first=65 second=98 amount=-4\n"
                    "kerning first=98 second=8364 amount=127\nkerning first=1046 second=65 amount=-128\n"));
    EXPECT_TRUE(FileExists(folder.File("_8_bit_0.png")));
    // Where a page or the file can't be written nothing is left behind.
    std::filesystem::create_directories(folder.path / "no.fnt");
    EXPECT_THAT(Export("no.fnt", options), testing::HasSubstr("no.fnt can't be written"));
    EXPECT_FALSE(FileExists(folder.File("no_0.png")));
}

TEST(GameEngines, TheGuideHasTheTable) {
    std::ifstream file(LETTRINO_GUIDE);
    const std::string guide{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(guide, testing::HasSubstr(EngineTable()));
    for (const MGameEngine& engine : gameEngines)
        EXPECT_TRUE(engine.Forms.Has(engine.First)) << engine.Name;
}

} // namespace
