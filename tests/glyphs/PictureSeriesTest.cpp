#include "glyphs/PictureSeries.h"

#include "TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(PictureSeries, CharactersFromFileNames) {
    const std::pair<const char*, const char*> cases[] = {
        {"/p/A.png", "A"},         {"font_B.png", "B"}, {"glyph65.png", "A"},
        {"pic7.png", "7"},         {"7.png", "7"},      {"65.png", "A"},
        {"x32.png", ""},           {"x65536.png", ""},  {"x99999999999.png", ""},
        {"a.b65.png", "a"},        {".png", ""},        {"dir/", ""},
        {"x8364", "\xE2\x82\xAC"},
    };
    for (const auto& [path, expected] : cases) {
        MString character;
        EXPECT_EQ(CharacterFromFileName(path, character), expected[0] != 0) << path;
        EXPECT_EQ(Narrow(character), expected) << path;
    }
}

TEST(PictureSeries, GoesOnWhileFilesExist) {
    const TemporaryFolder folder;
    for (const char* file :
         {"A.png", "B.PNG", "c.png", "x99.Gif", "x100.gif", "x065.png", "x66.png", "y.png", "k_Z.tar.png"}) {
        folder.Write(file, "x");
    }
    std::filesystem::create_directory(folder.path / "D.png");
    const struct {
        const char* start;
        char16_t character;
        const char* next; // empty for the end
    } cases[] = {
        {"A.png", u'A', "B.PNG"},    {"B.png", u'B', "C.PNG"},    {"c.png", u'c', ""},
        {"x99.gif", 99, "x100.GIF"}, {"x065.png", 65, "x66.PNG"}, // leading zeros are not kept
        {"x66.png", 65, ""},         {"y.png", u'A', ""},         {"C.png", u'C', ""}, // a folder
        {"k_Y.tar.png", u'Y', ""},                                                     // asks for k_Z.PNG
    };
    for (const auto& c : cases) {
        MString path = folder.File(c.start);
        char16_t character = c.character;
        EXPECT_EQ(NextSuccessivePicture(path, character), c.next[0] != 0) << c.start;
        if (c.next[0] == 0) continue;
        EXPECT_EQ(Narrow(path.GetFileName()), c.next);
        EXPECT_EQ(character, c.character + 1);
    }
    MString last = folder.File("x65535.png");
    char16_t character = 65535;
    EXPECT_FALSE(NextSuccessivePicture(last, character));
}

} // namespace
