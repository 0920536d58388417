#include "glyphs/PictureSeries.h"

#include "DocumentFixture.h"
#include "TemporaryFolder.h"
#include "Text.h"
#include "imaging/Pictures.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

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
         {"A.png", "B.PNG", "c.png", "x99.Gif", "x100.gif", "x065.png", "x66.png", "y.png", "k_Z.tar.png"})
        folder.Write(file, "x");
    std::filesystem::create_directory(folder.path / "D.png");
    const std::tuple<const char*, char16_t, std::string> cases[] = {
        // empty for the end
        {"A.png", u'A', "B.PNG"},    {"B.png", u'B', "C.PNG"},    {"c.png", u'c', ""},
        {"x99.gif", 99, "x100.GIF"}, {"x065.png", 65, "x66.PNG"}, // leading zeros are not kept
        {"x66.png", 65, ""},         {"y.png", u'A', ""},         {"C.png", u'C', ""}, // a folder
        {"k_Y.tar.png", u'Y', ""},                                                     // asks for k_Z.PNG
    };
    for (const auto& [start, of, next] : cases) {
        MString path = folder.File(start);
        char16_t character = of;
        EXPECT_EQ(NextSuccessivePicture(path, character), !next.empty()) << start;
        if (next.empty()) continue;
        EXPECT_EQ(Narrow(FileNameOf(path)), next);
        EXPECT_EQ(character, of + 1);
    }
    MString last = folder.File("x65535.png");
    char16_t character = 65535;
    EXPECT_FALSE(NextSuccessivePicture(last, character));
}

class ChosenPictures : public DocumentTest {
protected:
    TemporaryFolder folder;
    MColourFont font{AnyWindow()};

    ChosenPictures() {
        for (const auto& [name, height] :
             {std::pair{"b.png", 30U}, {"c.png", 60U}, {"d.png", 15U}, {"f.png", 5U}}) {
            OwnedPicture picture = FilledPicture(20, height, MColour(1, 2, 3));
            for (std::int32_t place = 0; place < 4 * static_cast<std::int32_t>(height); ++place)
                picture.SetPixel(place % 4, place / 4, MColour(0, 0, 0, 0));
            picture.Save(folder.File(name));
        }
        Choose("b.png", u'b');
    }
    void Choose(const char* file, char16_t character) {
        settings.Path(MPathKind::GlyphPicture) = folder.File(file);
        settings.Char = character;
        settings.SpacingBefore = 4;
        settings.SpacingAfter = 5;
    }
};

TEST_F(ChosenPictures, TheFirstOfANewFontGivesTheHeight) {
    AddGlyph(font, u'z', 5, 30);
    Headless::script.answers = {Desktop::Answer::No, Desktop::Answer::No};
    AddChosenPictures(font, true);
    EXPECT_EQ(settings.GlyphHeight, 30);
    EXPECT_EQ(SlotsOf(font), "bz") << "sorted";
    const MGlyph& first = *font.GetGlyph(u'b');
    EXPECT_EQ(std::tuple(first.Width, first.SpacingBefore, first.SpacingAfter), std::tuple(17, 4, 5))
        << "trimmed";
    EXPECT_TRUE(font.Picture.IsValid()) << "repacked";
    const Headless::Message& question = Headless::record.messages.at(0);
    EXPECT_EQ(Narrow(question.text), "Would you like to add all successive pictures as well?");
    EXPECT_EQ(Narrow(question.caption), "Lettrino");
    EXPECT_EQ(question.buttons, Desktop::Buttons::YesNo);
    EXPECT_EQ(question.icon, Desktop::Icon::Question);

    Choose("c.png", u'c');
    AddChosenPictures(font, false);
    EXPECT_EQ(settings.GlyphHeight, 30) << "of the first only";
    EXPECT_EQ(font.GetGlyph(u'c')->Width, 10);
}

TEST_F(ChosenPictures, YesAddsTheRestOfTheSeries) {
    settings.Trim = false;
    AddChosenPictures(font, true);
    EXPECT_EQ(SlotsOf(font), "bcd");
    const MGlyph& last = *font.GetGlyph(u'd');
    EXPECT_EQ(std::tuple(last.Width, last.Height, last.SpacingBefore, last.SpacingAfter),
              std::tuple(40, 30, 4, 5));
    EXPECT_EQ(settings.Path(MPathKind::GlyphPicture), folder.File("b.png")) << "stays the chosen one";
    EXPECT_EQ(settings.Char, std::uint32_t{'b'});

    folder.Write("c.png", "no picture");
    font.Clear();
    AddChosenPictures(font, false);
    EXPECT_EQ(SlotsOf(font), "bd") << "what becomes no glyph doesn't end the walk";
}

TEST_F(ChosenPictures, AFileThatIsNoPictureIsPassedOver) {
    folder.Write("a.png", "no picture");
    Choose("a.png", u'a');
    AddChosenPictures(font, true);
    EXPECT_EQ(settings.GlyphHeight, 100);
    EXPECT_EQ(SlotsOf(font), "bcd") << "its series is not";
    EXPECT_EQ(Headless::record.messages.size(), 1U);
}
