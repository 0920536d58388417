// Written and opened again, in all forms; and files as other tools write them.

#include "formats/game/GameFontFile.h"

namespace {

using testing::HasSubstr;

class GameFontRoundTrip : public GameFontTest {
protected:
    MColourFont back{nullptr};

    MGameFontImport Import(const char* name) { return ImportGameFont(back, folder.File(name)); }

    MGameFontImport ImportText(std::string_view bytes) {
        folder.Write("other.fnt", bytes);
        return Import("other.fnt");
    }

    void ExpectSame() const {
        ExpectSameGlyphs(font, back);
        EXPECT_EQ(std::tuple(back.Baseline, back.CapHeight, back.SpaceWidth, settings.GlyphHeight),
                  std::tuple(font.Baseline, font.CapHeight, font.SpaceWidth, 20));
        EXPECT_THAT(PairsOf(back), testing::UnorderedElementsAreArray(PairsOf(font)));
    }

    // A page of 8 x 8 pixels that tell their place; grey where it is asked for.
    void SavePage(const char* name, MPixelFormat format = FormatRGBA8) const {
        MPicture picture(8, 8, FormatRGBA8);
        for (std::int32_t y = 0; y < 8; ++y) {
            for (std::int32_t x = 0; x < 8; ++x)
                picture.SetPixel(x, y,
                                 {static_cast<std::uint8_t>(10 * x), static_cast<std::uint8_t>(20 * y), 7,
                                  static_cast<std::uint8_t>(255 - x)});
        }
        EXPECT_TRUE(picture.Save(folder.File(name), format));
        picture.Free();
    }
};

TEST_F(GameFontRoundTrip, EveryFormAndPageSize) {
    AddFont();
    for (const MBmFormat& format : BmFormats()) {
        for (const MPageSize size : {MPageSize::Free, MPageSize::Four, MPageSize::PowerOfTwo}) {
            for (const std::int32_t largest : {4096, 64}) {
                SCOPED_TRACE(std::string(format.Name) + " " + std::to_string(largest));
                MGameFontOptions options;
                options.Form = format.Form;
                options.Page = {size, 1, largest};
                const std::string name = "f." + std::string(format.Extension);
                ASSERT_EQ(Export(name.c_str(), options), "");
                settings.GlyphHeight = 1;
                const MGameFontImport import = Import(name.c_str());
                ASSERT_EQ(import.Reason, "");
                EXPECT_THAT(import.Notes, testing::IsEmpty());
                ExpectSame();
            }
        }
    }
}

// For PixiJS the base tells nothing; the baseline is what lies under "A" then.
TEST_F(GameFontRoundTrip, ABaseThatTellsNothing) {
    AddFont();
    font.Baseline = 20 - 4 - 12;
    MGameFontOptions options;
    options.Engine = EngineNamed("pixi");
    ASSERT_EQ(Export("f.fnt", options), "");
    EXPECT_THAT(folder.Read("f.fnt"), HasSubstr("lineHeight=20 base=20 "));
    ASSERT_EQ(Import("f.fnt").Reason, "");
    ExpectSame();
}

constexpr const char* otherText =
    "info face=\"Some Face\" size=-12 bold=0 charset=\"\" unicode=  padding=1,2,3,4 spacing=1,1\r\n"
    "common\tlineHeight=10   base=8 scaleW=8 scaleH=8 pages=2 packed=0\r\n"
    "page file=\"two words.png\" id=1\r\npage id=0 file=\"p.png\"\r\nsomething else=1\r\n"
    "char xadvance=4 id=66 x=1 y=2 width=3 height=4 xoffset=-2 yoffset=1 page=1 letter=\"B\"\r\n"
    "char id=65 x=0 y=0 width=2 height=8 xoffset=1 yoffset=0 xadvance=5 page=0 chnl=15\r\n"
    "char id=32 xadvance=3\r\nchar id=-1 width=1 height=1\r\n";

void ExpectOther(const MColourFont& font) {
    ASSERT_EQ(font.GlyphCount(), 2);
    EXPECT_EQ(NumbersOf(*font.GetGlyph(u'A')), std::tuple(2, 10, 1, 2));
    const MGlyph& b = *font.GetGlyph(u'B');
    EXPECT_EQ(NumbersOf(b), std::tuple(3, 10, -2, 3));
    EXPECT_EQ(b.GetPixel(0, 1), MColour(10, 40, 7, 254)) << "1, 2 of the page";
    EXPECT_EQ(b.GetPixel(2, 4), MColour(30, 100, 7, 252));
    EXPECT_TRUE(b.GetPixel(0, 0).a == 0 && b.GetPixel(0, 5).a == 0);
    EXPECT_EQ(std::tuple(font.Baseline, font.CapHeight, font.SpaceWidth), std::tuple(2, 8, 3));
}

TEST_F(GameFontRoundTrip, FilesOfOtherTools) {
    SavePage("p.png");
    SavePage("two words.png");
    const std::string_view xml =
        "<?xml version='1.0' encoding='ISO-8859-1'?>\n<!-- made by hand --><font version=\"3\">\n"
        "<info face='Caf\xE9' size=\"12\"/><common base='8' lineHeight='10' pages='2'/><pages>"
        "<page id='0' file='p.png'/><page id='1' file='two words.png'/></pages>\n<chars count='4'>"
        "<char page='1' chnl='15' xadvance='4' yoffset='1' xoffset='-2' height='4' width='3' y='2' x='1' "
        "id='66'/>"
        "<char id='65' x='0' y='0' width='2' height='8' xoffset='1' yoffset='0' xadvance='5' page='0'/>"
        "<char id='32' xadvance='3'/><char id='-1' width='1' height='1'/></chars></font>";
    const std::string_view json = "\xEF\xBB\xBF {\"pages\":[\"p.png\",\"two words.png\"], "
                                  "\"distanceField\":null,\"info\":{\"padding\":[1,2,3,4]},"
                                  "\"common\":{\"lineHeight\":10,\"base\":8},\"chars\":["
                                  "{\"id\":66,\"x\":1,\"y\":2,\"width\":3,\"height\":4,\"xoffset\":-2,"
                                  "\"yoffset\":1,\"xadvance\":4,\"page\":1},"
                                  "{\"id\":65,\"width\":2,\"height\":8,\"xoffset\":1,\"yoffset\":0,"
                                  "\"xadvance\":5},{\"id\":32,\"xadvance\":3},"
                                  "{\"id\":-1}]}";
    using namespace std::string_literals;
    // By the format's description; the shorter name is filled up with zeros.
    const std::string binary =
        "BMF\3"s + "\1\x10\0\0\0"s + "\x20\0\xC0\0\x64\0\1\1\2\3\4\1\1\0"s + "F\0"s + "\2\x0F\0\0\0"s +
        "\x0A\0\x08\0\x08\0\x08\0\2\0\0\0\0\0\0"s + "\3\x1C\0\0\0"s + "p.png\0\0\0\0\0\0\0\0\0"s +
        "two words.png\0"s + "\4\x3C\0\0\0"s + "\x42\0\0\0\1\0\2\0\3\0\4\0\xFE\xFF\1\0\4\0\1\x0F"s +
        "\x41\0\0\0\0\0\0\0\2\0\x08\0\1\0\0\0\5\0\0\x0F"s + "\x20\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\3\0\0\x0F"s;
    for (const std::string_view bytes : {std::string_view(otherText), xml, json}) {
        EXPECT_THAT(ImportText(bytes).Notes,
                    testing::ElementsAre("1 character is left out (-1): codes below 32 have no glyph here"));
        ExpectOther(back);
    }
    ASSERT_EQ(ImportText(binary).Reason, "");
    ExpectOther(back);
}

TEST_F(GameFontRoundTrip, WhatDoesNotFitIsTold) {
    SavePage("p.png");
    std::string text = "common lineHeight=10 base=8\npage id=0 file=p.png\n";
    const std::string numbers = " x=0 y=0 width=2 height=2 xadvance=2.6\n";
    for (int code = 33; code < 300; ++code)
        text += "char id=" + std::to_string(code) + numbers;
    text += "char id=128512" + numbers + "char id=40" + numbers + "kerning first=65 second=32 amount=-1\n" +
            "kerning first=65 second=299 amount=-1\nkerning first=65 second=66 amount=-2\n";
    const MGameFontImport import = ImportText(text);
    EXPECT_THAT(
        import.Notes,
        testing::UnorderedElementsAre(
            "269 numbers with a fraction are rounded",
            "1 character is left out (U+1F600): codes end at U+FFFF here",
            "1 character is left out (U+0028): the font has it twice",
            "44 characters are left out (U+0100 is the first): a font has 223 at most here",
            "2 kerning pairs are left out (U+0041 U+0020 is the first): one of the two isn't in the font",
            "the font has no space: it is made half as wide as the line is high"));
    EXPECT_EQ(back.GlyphCount(), 223);
    EXPECT_EQ(back.KerningCount(), 1);
    EXPECT_EQ(NumbersOf(*back.GetGlyph(u'A')), std::tuple(2, 10, 0, 1));
}

// A character above and one below the line; a mask in grey; glyphs in the channels of a page.
TEST_F(GameFontRoundTrip, LinesAndMasks) {
    SavePage("p.png");
    SavePage("grey.png", FormatR8);
    const std::string rest =
        "page id=0 file=p.png\nchar id=65 x=1 y=1 width=2 height=4 yoffset=-3 xadvance=2\n"
        "char id=66 x=0 y=0 width=1 height=4 yoffset=9 xadvance=2\nchar id=32 xadvance=1\n";
    EXPECT_THAT(ImportText("common lineHeight=10 base=8\n" + rest).Notes,
                testing::ElementsAre("the line is 16 rows high instead of 10: characters stand out of it"));
    EXPECT_EQ(settings.GlyphHeight, 16);
    EXPECT_EQ(back.Baseline, 16 - 3 - 8);
    EXPECT_EQ(back.GetGlyph(u'A')->GetPixel(0, 0), MColour(10, 20, 7, 254));
    EXPECT_EQ(back.GetGlyph(u'B')->GetPixel(0, 12), MColour(0, 0, 7, 255));

    ASSERT_EQ(ImportText(ReplaceAll("common lineHeight=16 base=8\n" + rest, "p.png", "grey.png")).Reason, "");
    EXPECT_EQ(back.GetGlyph(u'A')->GetPixel(0, 0).r, 255);
    const std::string packed = "common lineHeight=10 base=8 packed=1 alphaChnl=0\npage id=0 file=p.png\n";
    for (const auto& [channel, strength] : {std::pair("1", 7), {"2", 20}, {"4", 30}, {"8", 252}, {"15", 252}}) {
        ASSERT_EQ(ImportText(packed + "char id=65 x=3 y=1 width=1 height=1 chnl=" + channel).Reason, "");
        EXPECT_EQ(back.GetGlyph(u'A')->GetPixel(0, 0).a, strength) << channel;
    }
}

} // namespace
