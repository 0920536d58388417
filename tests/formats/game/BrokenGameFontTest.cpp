// Damaged files: each ends with one clear line, and the font and the settings are as they were.

#include "formats/game/GameFontFile.h"

#include <sys/stat.h>

namespace {

using namespace std::string_literals;

class BrokenGameFont : public GameFontTest {
protected:
    std::string text; // whole files, to be broken
    std::string binary;
    std::string xml;
    std::string json;

    void SetUp() override {
        AddFont();
        for (const auto& [form, whole] : {std::pair(MBmForm::Text, &text),
                                          {MBmForm::Binary, &binary},
                                          {MBmForm::Xml, &xml},
                                          {MBmForm::Json, &json}}) {
            MGameFontOptions options;
            options.Form = form;
            ASSERT_EQ(Export("f.fnt", options), "");
            *whole = folder.Read("f.fnt");
        }
    }
};

TEST_F(BrokenGameFont, EndsWithOneClearLine) {
    std::filesystem::create_directory(folder.path / "folder.png");
    std::filesystem::create_directory(folder.path / "sub");
    ASSERT_EQ(mkfifo((folder.path / "pipe.png").c_str(), 0600), 0);
    folder.Write("text.png", "no picture");
    std::filesystem::copy_file(folder.path / "f_0.png", folder.path / "sub/f_0.png");
    const std::string page = "file=\"f_0.png\"";
    const auto with = [&](const char* find, const char* put) { return ReplaceAll(text, find, put); };
    const std::string deep(200000, '[');
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"empty", "", "it is empty"},
        {"another kind of file", "\x89PNG\r\n\x1A\n", "no font of a form"},
        {"zeros", std::string(5000, '\0'), "no font of a form"},
        {"text, cut off", text.substr(0, text.find("char id=98")), "it is cut off"},
        {"text, cut off in the pairs", text.substr(0, text.rfind("kerning first")),
         "kerning pairs and holds 2"},
        {"text, first line alone", text.substr(0, text.find('\n')), "no common record"},
        {"a count that lies", with("chars count=6", "chars count=2147483647"), "of 2147483647 characters"},
        {"a count beyond numbers", with("chars count=6", "chars count=99999999999"),
         "chars has count=99999999999"},
        {"no characters", text.substr(0, text.find("chars count")), "it holds no character"},
        {"no page", with("page id=0", "nothing id=0"), "it names no page"},
        {"a page twice", with("chars count", "page id=0 file=x\nchars count"), "page 0 twice"},
        {"a page without a name", with(page.c_str(), ""), "page 0 names no file"},
        {"a page beyond numbers", with("page id=0 ", "page id=70000 "), "page has id=70000"},
        {"not a number", with("xadvance=12", "xadvance=NaN"), "char id=65 has xadvance=NaN"},
        {"2^31", with("xadvance=12", "xadvance=2147483648"), "xadvance=2147483648"},
        {"infinite", with("xadvance=12", "xadvance=1e999"), "xadvance=1e999"},
        {"below 0", with("width=9", "width=-9"), "width=-9"},
        {"an endless line", with("lineHeight=20", "lineHeight=65535"), "65535 rows high"},
        {"a line of no height", "common lineHeight=0\npage id=0 file=f_0.png\nchar id=65\n", "0 rows high"},
        {"outside of the page",
         with("x=0 y=0 width=0 height=0", "x=900 y=0 width=9 height=9") +
             "char id=67 x=900 y=0 width=9 height=9",
         "U+0043 lies outside of page 0"},
        {"on a page that isn't named", with("page=0 chnl=15", "page=3 chnl=15"), "on page 3"},
        {"a page above the folder", with("f_0.png", "../f_0.png"), "leads out of its folder"},
        {"a page above, later on", with("f_0.png", "sub/..\\\\../x.png"), "leads out of its folder"},
        {"a page from the root", with("f_0.png", "/etc/passwd"), "leads out of its folder"},
        {"a page of a drive", with("f_0.png", "C:x.png"), "leads out of its folder"},
        {"a page that is a folder", with("f_0.png", "folder.png"), "page 0 is no file"},
        {"a page that is a pipe", with("f_0.png", "pipe.png"), "page 0 is no file"},
        {"a page that is missing", with("f_0.png", "none.png"), "page 0 is not there"},
        {"a page that is no picture", with("f_0.png", "text.png"), "no picture that can be read"},
        {"binary, version 2", "BMF\2" + binary.substr(4), "another version"},
        {"binary, cut off", binary.substr(0, binary.size() - 7), "block 5 is cut off"},
        {"binary, a length that lies", "BMF\3\4\xFF\xFF\xFF\x7F", "block 4 is cut off"},
        {"binary, an odd length", "BMF\3\5\1\0\0\0x"s, "block 5 can't be 1 bytes long"},
        {"binary, an unknown block", "BMF\3\x09\0\0\0\0"s, "unknown type 9"},
        {"binary, no blocks", "BMF\3", "no common block"},
        {"XML, cut off", xml.substr(0, xml.size() / 2), "no whole XML: line"},
        {"XML of another kind", "<svg></svg>", "its root is no <font>"},
        {"XML, a number that is none", ReplaceAll(xml, "width=\"9\"", "width=\"9px\""), "width=9px"},
        {"JSON, cut off", json.substr(0, json.size() / 2), "no whole JSON"},
        {"JSON, endlessly deep", "{\"chars\":" + deep, "no whole JSON"},
        {"JSON, lists that are none", "{\"common\":{},\"chars\":5}", "chars are no list"},
        {"JSON, records that are none", "{\"common\":3}", "common is no object"},
        {"only codes that have no place", "common lineHeight=9\npage id=0 file=f_0.png\nchar id=7",
         "none of its characters"},
    };
    const MString before = FromSystem(std::to_string(font.GlyphCount()));
    for (const auto& [what, bytes, reason] : cases) {
        SCOPED_TRACE(what);
        folder.Write("broken.fnt", bytes);
        const MGameFontImport import = ImportGameFont(font, folder.File("broken.fnt"));
        EXPECT_THAT(import.Reason, testing::HasSubstr(reason));
        EXPECT_THAT(import.Reason, testing::Not(testing::HasSubstr("\n")));
        EXPECT_LT(import.Reason.size(), 120U);
        EXPECT_EQ(font.GlyphCount(), 5);
        EXPECT_EQ(std::tuple(settings.GlyphHeight, font.Baseline, font.KerningCount()), std::tuple(20, 5, 3));
    }
    EXPECT_EQ(ImportGameFont(font, folder.File("nothing.fnt")).Reason, "no such file");
    EXPECT_EQ(ImportGameFont(font, folder.File("sub")).Reason, "it is a folder");
    EXPECT_EQ(ImportGameFont(font, folder.File("pipe.png")).Reason, "it is no file that can be read");
    std::filesystem::resize_file(folder.path / "broken.fnt", 1ULL << 40); // a hole: no room is taken
    EXPECT_THAT(ImportGameFont(font, folder.File("broken.fnt")).Reason,
                testing::HasSubstr("larger than any font"));
    folder.Write("broken.fnt", text);
    for (const auto& [limit, reason] :
         {std::pair(1000, "page 0 is no picture"), {4000, "more memory than there is"}}) {
        SetMemoryLimit(static_cast<std::size_t>(limit));
        EXPECT_THAT(ImportGameFont(font, folder.File("broken.fnt")).Reason, testing::HasSubstr(reason));
    }
    SetMemoryLimit(0);
    EXPECT_EQ(font.GlyphCount(), 5);
    // A folder below the font's own is fine.
    folder.Write("broken.fnt", with("f_0.png", "sub/f_0.png"));
    EXPECT_EQ(ImportGameFont(font, folder.File("broken.fnt")).Reason, "");
}

} // namespace
