#include "formats/MTextFile.h"
#include "shell/ShellFixture.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <vector>

namespace {

class SavedSettings : public ShellTest {
protected:
    static std::vector<MString> Keys(const MString& path) {
        std::vector<MString> keys;
        MTextFile file(path, false, true, MTextEncoding::Ansi);
        while (file.NextLine())
            keys.push_back(file.GetString(0));
        return keys;
    }
    static MSettings Loaded(std::string_view text) {
        Home().Write(SettingsFile(), text);
        MSettings settings;
        settings.UseUserFolders();
        settings.Load();
        return settings;
    }
};

} // namespace

TEST_F(SavedSettings, WhatIsWrittenIsReadBack) {
    MSettings written;
    written.UseUserFolders();
    written.UseDefaultWindowRect();
    written.BackgroundColour = MColour(1, 2, 3);
    written.FontName = "Some \"quoted\" family";
    written.Weight = 700;
    written.Italic = true;
    written.ColourFont = true;
    written.Colour = MColour(250, 128, 0);
    written.GlyphHeight = -5; // no value is validated
    written.Char = 0xFFFF;
    written.PaddingTop = 1;
    written.PaddingBottom = -2;
    written.SpacingBefore = 3;
    written.SpacingAfter = 4;
    written.Trim = false;
    written.Selected[65] = 0;
    written.Selected[255] = 1;
    written.Paths[3] = "/some folder/with\tblanks.png";
    written.Paths[7] = "/not read";
    written.Keys = {MString("one"), MString("two"), MString("three")};
    written.Save();

    MSettings read;
    read.UseUserFolders();
    const MString temporary = read.Paths[7];
    read.Load();
    EXPECT_TRUE(read.FileRead);
    EXPECT_EQ(read.BackgroundColour, written.BackgroundColour);
    EXPECT_EQ(read.FontName, written.FontName);
    EXPECT_EQ(read.Weight, 700);
    EXPECT_TRUE(read.Italic);
    EXPECT_TRUE(read.ColourFont);
    EXPECT_EQ(read.Colour, written.Colour);
    EXPECT_EQ(read.GlyphHeight, -5);
    EXPECT_EQ(read.Char, 0xFFFFU);
    EXPECT_EQ(read.PaddingTop, 1);
    EXPECT_EQ(read.PaddingBottom, -2);
    EXPECT_EQ(read.SpacingBefore, 3);
    EXPECT_EQ(read.SpacingAfter, 4);
    EXPECT_FALSE(read.Trim);
    EXPECT_EQ(read.Selected, written.Selected);
    EXPECT_EQ(read.LetterCubesNames, written.LetterCubesNames) << "its line breaks too";
    EXPECT_EQ(read.Paths[3], written.Paths[3]);
    EXPECT_EQ(read.Paths[7], temporary) << "the temporary folder is always that of the defaults";
    EXPECT_EQ(read.WindowRect.right, 1781);
    EXPECT_EQ(read.Keys, written.Keys);
}

TEST_F(SavedSettings, KeysStandInAFixedOrder) {
    MSettings settings;
    settings.Save();
    std::vector<MString> expected{"BackgroundColour", "FontName", "Weight",          "Italic",
                                  "ColourFont",       "Colour",   "GlyphHeight",     "Char",
                                  "Padding",          "Trim",     "LetterCubesNames"};
    for (int i = 0; i < 9; ++i)
        expected.push_back("Path" + MString(i));
    for (int code = 33; code <= 255; ++code)
        expected.push_back("S" + MString(code));
    expected.push_back("WindowRect");
    EXPECT_EQ(Keys(settings.SettingsFilePath()), expected);
    EXPECT_EQ(Home().Read(SettingsFile()).substr(0, 2), "\xFF\xFE");

    MSettings licensed;
    licensed.Keys[0] = "Ann";
    licensed.FileRead = true;
    licensed.Save();
    expected.push_back("Keys");
    EXPECT_EQ(Keys(licensed.SettingsFilePath()), expected) << "written only with a first key";
}

TEST_F(SavedSettings, LenientReading) {
    const struct {
        const char* what;
        const char* text;
        bool (*holds)(const MSettings& settings);
    } cases[] = {
        {"missing fields are zeros", "Padding\t7\r\nWeight\r\nColour\t9\r\n",
         [](const MSettings& s) {
             return s.PaddingTop == 7 && s.PaddingBottom == 0 && s.Weight == 0 && s.Colour == MColour(9, 0, 0);
         }},
        {"unknown keys are passed over, in any order and encoding",
         "Nonsense\t1\nS300\tY\nS32\tY\nweight\t5\nChar\t66",
         [](const MSettings& s) { return s.Char == 66 && s.Weight == 400 && s.Selected[32] == 0; }},
        {"huge numbers end at the limits", "GlyphHeight\t99999999999\nSpacingBefore\nPadding\t-99999999999",
         [](const MSettings& s) { return s.GlyphHeight == INT32_MAX && s.PaddingTop == INT32_MIN; }},
        {"a window outside of all screens comes back", "WindowRect\t-32000\t-32000\t-31840\t-31972",
         [](const MSettings& s) { return s.WindowRect.left == 0 && s.WindowRect.right == 320; }},
        {"a window of impossible size fits", "WindowRect\t-2147483648\t5\t2147483647\t1",
         [](const MSettings& s) {
             return s.WindowRect.left == 0 && s.WindowRect.right == 1920 && s.WindowRect.bottom == 245;
         }},
        {"bytes that are no text", std::string_view("\xFF\xFE\x41", 3).data(),
         [](const MSettings& s) { return s.FileRead && s.GlyphHeight == 100; }},
        {"an empty file", "", [](const MSettings& s) { return s.FileRead; }},
    };
    for (const auto& [what, text, holds] : cases)
        EXPECT_TRUE(holds(Loaded(text))) << what;
}

TEST_F(SavedSettings, WhatCouldNotBeReadIsNeverOverwritten) {
    MSettings settings;
    const MString path = settings.SettingsFilePath();
    // A socket is a file that is there and can't be opened, for the administrator either.
    const int handle = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ToSystem(path).copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    settings.Load();
    EXPECT_FALSE(settings.FileRead);
    settings.Save();
    EXPECT_TRUE(std::filesystem::is_socket(ToSystemPath(path)));
    EXPECT_TRUE(Headless::record.messages.empty());
    close(handle);
}

TEST_F(SavedSettings, TellsIfItCannotBeWritten) {
    MSettings settings;
    std::filesystem::create_directories(ToSystemPath(settings.SettingsFilePath()) / "full");
    settings.Save();
    ASSERT_EQ(Headless::record.messages.size(), 1U);
    EXPECT_EQ(Headless::record.messages[0].text, "Could not open:\n\n\"" + settings.SettingsFilePath() + "\"");
    EXPECT_EQ(Headless::record.messages[0].icon, Desktop::Icon::Error);
}
