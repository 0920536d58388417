// Fonts for games on the command line.

#include "Cli.h"

using testing::HasSubstr;
using GameFontCli = Cli;

const std::string make = "--family 'DejaVu Sans' --height 32 --select A-Z --generate --kern ";

TEST_F(GameFontCli, WrittenCheckedAndOpened) {
    const auto made =
        Info(make + "--set-kerning A,q,-3 --save font.sm --fnt-for pixi --fnt font --fnt-form xml "
                    "--fnt '8 bit.xml'");
    EXPECT_TRUE(Has("font.fnt") && Has("font_0.png") && Has("_8_bit_0.png"));
    EXPECT_THAT(error, HasSubstr("lettrino-cli: --fnt: note: pair-missing: a pair names a character that the "
                                 "font lacks (U+0041 U+0071 -3); repaired: the pair is left out\n"));
    EXPECT_THAT(error, HasSubstr("note: name-page: readers split such a page name, or take it for a number "
                                 "(_8_bit); repaired: the page gets another name\n"));
    for (const char* file : {"font.fnt", "'8 bit.xml'"}) {
        const auto opened = Info(std::string("--open ") + file);
        EXPECT_EQ(opened["kerning"].size() + 1, made["kerning"].size()) << "but for the missing character";
        EXPECT_EQ(opened["baseline"], made["baseline"]);
        EXPECT_EQ(opened["glyphs"].size(), 26U);
    }
    EXPECT_EQ(Info("--open font.sm")["glyphs"], made["glyphs"]) << "the saved font keeps its own picture";

    Do("--open font.sm --check raylib,phaser");
    const auto report = nlohmann::json::parse(out);
    ASSERT_EQ(report["engines"].size(), 2U);
    EXPECT_EQ(report["engines"][1]["form"], "xml");
    const auto& first = report["engines"][0]["findings"][0];
    EXPECT_EQ(first["rule"], "pair-missing");
    EXPECT_EQ(first["left"], 'A');
    EXPECT_EQ(first["right"], 'q');
    EXPECT_EQ(first["repaired"], true);
    EXPECT_EQ(report["engines"][0]["findings"][1]["rule"], "kerning-ignored");
    EXPECT_EQ(report["engines"][0]["findings"][1]["repaired"], false);
    Do("--open font.sm --check-form lines --check raylib");
    EXPECT_THAT(out, HasSubstr("raylib: kerning-ignored: the engine takes no notice of kerning ("));
}

TEST_F(GameFontCli, FailuresAndWrongUsage) {
    Do(make + "--fnt-for libgdx --fnt f.fnt");
    folder.Write("cut.fnt", folder.Read("f.fnt").substr(0, 900));
    ExpectFailures({
        {"--open cut.fnt", 1, "lettrino-cli: --open: cut.fnt: it tells of 27 characters and holds"},
        {make + "--fnt-for phaser --fnt-form text --fnt g.fnt", 1,
         "--fnt: g.fnt: Phaser doesn't read the text form; it reads xml"},
        {make + "--fnt-for phaser --fnt-max 64 --fnt g.xml", 1, "pages, and Phaser reads 1"},
        {make + "--fnt-max 20 --fnt g.fnt", 1, "doesn't fit a page of 20 by 20 pixels"},
        {make + "--fnt no/g.fnt", 1, "--fnt: no/g.fnt: there is no folder"},
        {"--fnt g.fnt", 1, "there is no font yet"},
        {"--fnt-for nobody", 2, "--fnt-for"},
        {"--fnt-size any", 2, "--fnt-size"},
        {"--check any,nobody", 2, "--check"},
    });
    EXPECT_FALSE(Has("g.fnt") || Has("g_0.png"));
    folder.Write("many.fnt", "common lineHeight=9\npage id=0 file=f_0.png\nchar id=65 width=3 height=3\n"
                             "char id=70000\nchar id=32 xadvance=3\n");
    Do("--open many.fnt");
    EXPECT_EQ(error,
              "lettrino-cli: --open: note: 1 character is left out (U+11170): codes end at U+FFFF here\n");
}
