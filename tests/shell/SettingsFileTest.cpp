#include "formats/MTextFile.h"
#include "shell/ShellFixture.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>
#include <tuple>

namespace {

class SavedSettings : public ShellTest {
protected:
    static MSettings Loaded(std::string_view text) {
        Home().Write(SettingsFile(), text);
        MSettings settings;
        settings.UseUserFolders();
        settings.Load();
        return settings;
    }
};

} // namespace

TEST_F(SavedSettings, EveryLine) {
    std::string text =
        "BackgroundColour\t1\t2\t3\r\nFontName\t\"Some &#34;quoted&#34; family\"\r\nWeight\t700\r\n"
        "Italic\tY\r\nColourFont\tY\r\nColour\t250\t128\t0\r\nGlyphHeight\t-5\r\nChar\t65535\r\n"
        "Padding\t1\t-2\t3\t4\r\nTrim\tN\r\nLetterCubesNames\t\"Ann<br />Bo\"\r\n";
    for (int kind = 0; kind < 9; ++kind)
        text += "Path" + std::to_string(kind) + "\t/folder/" + std::to_string(kind) + "\r\n";
    for (int code = 33; code <= 255; ++code)
        text += "S" + std::to_string(code) + (code % 3 == 0 ? "\tY\r\n" : "\tN\r\n");
    text += "WindowRect\t1\t2\t701\t502\r\n";
    // These are written only once something other than the defaults was chosen; the path of game fonts, too.
    const std::string chosen = "Keys\tone\ttwo\t\"\"\r\nOpticalKerning\t\"Two words\"\t80\r\n"
                               "GameFont\tlove\ttext\t3\tpot\t512\t-1\r\n";
    const std::string withGames = ReplaceAll(text, "S33\t", "Path9\t/games/a.fnt\r\nS33\t") + chosen;

    MSettings s = Loaded(withGames);
    EXPECT_EQ(std::tuple(s.BackgroundColour, Narrow(s.FontName), s.Weight, s.Italic, s.ColourFont, s.Colour),
              std::tuple(MColour(1, 2, 3), "Some \"quoted\" family", 700, true, true, MColour(250, 128, 0)));
    EXPECT_EQ(std::tuple(s.GlyphHeight, s.Char, s.PaddingTop, s.PaddingBottom, s.SpacingBefore, s.SpacingAfter),
              std::tuple(-5, 0xFFFFU, 1, -2, 3, 4)); // no value is validated
    EXPECT_FALSE(s.Trim);
    EXPECT_EQ(Narrow(s.LetterCubesNames), "Ann\r\nBo");
    EXPECT_TRUE(s.Selected[66] == 1 && s.Selected[67] == 0 && s.SelectedCount() == 75);
    EXPECT_EQ(s.WindowRect.bottom, 502);
    EXPECT_EQ(Narrow(s.Keys[1]), "two");
    EXPECT_EQ(Narrow(s.Paths[8]), "/folder/8");
    EXPECT_EQ(std::tuple(Narrow(s.KerningText), s.KerningStrength, Narrow(s.Path(MPathKind::SaveGameFont))),
              std::tuple("Two words", 80, "/games/a.fnt"));
    const MGameFontChoices& games = s.GameFont;
    EXPECT_EQ(std::tuple(Narrow(games.Engine), games.Gap, Narrow(games.PageSize), games.Largest, games.Bleed),
              std::tuple("love", 3, "pot", 512, -1));
    EXPECT_NE(Narrow(s.Paths[7]), "/folder/7") << "the temporary folder is always that of the defaults";

    s.Paths[7] = "/folder/7"; // but it is written
    s.Save();
    EXPECT_EQ(Home().Read(SettingsFile()).substr(0, 2), "\xFF\xFE");
    EXPECT_EQ(Narrow(MTextFile::ReadWholeFile(s.SettingsFilePath())), withGames);
    s.Keys[0] = MString(); // without the first key there are none
    const MSettings defaults;
    s.GameFont = {};
    s.Path(MPathKind::SaveGameFont) = defaults.Paths[9];
    std::tie(s.KerningText, s.KerningStrength) = std::tie(defaults.KerningText, defaults.KerningStrength);
    s.Save();
    EXPECT_EQ(Narrow(MTextFile::ReadWholeFile(s.SettingsFilePath())), text);
}

TEST_F(SavedSettings, LenientReading) {
    MSettings s = Loaded("Padding\t7\r\nWeight\r\nColour\t9\r\n");
    EXPECT_EQ(std::tuple(s.PaddingTop, s.PaddingBottom, s.Weight, s.Colour),
              std::tuple(7, 0, 0, MColour(9, 0, 0)))
        << "missing fields are zeros";
    s = Loaded("Nonsense\t1\nS300\tY\nS32\tY\nweight\t5\nChar\t66");
    EXPECT_EQ(std::tuple(s.Char, s.Weight, s.Selected[32]), std::tuple(66U, 400, 0))
        << "unknown keys are passed over";
    s = Loaded("GlyphHeight\t99999999999\nSpacingBefore\nPadding\t-99999999999");
    EXPECT_EQ(std::tuple(s.GlyphHeight, s.PaddingTop), std::tuple(INT32_MAX, INT32_MIN));
    for (const std::string& text :
         {std::string(), std::string("\xFF\xFE\x41"), "Keys\t" + std::string(1 << 20, '"')}) {
        s = Loaded(text);
        EXPECT_TRUE(s.FileRead && s.GlyphHeight == 100) << "nothing, what is no text, and a line without end";
    }
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

TEST_F(SavedSettings, ASmallScreenDoesNotShrinkTheWindowForALargeOne) {
    const auto isSaved = [](const std::string& rect) {
        return Narrow(MTextFile::ReadWholeFile(MSettings::SettingsFilePath()))
            .ends_with("\nWindowRect\t" + rect);
    };
    Headless::script.virtualScreen = {0, 0, 720, 450};
    MSettings settings = Loaded("WindowRect\t100\t50\t1300\t850\r\n");
    EXPECT_EQ(settings.WindowRect.Width(), 720);
    settings.Save();
    EXPECT_TRUE(isSaved("100\t50\t1300\t850\r\n")) << "it was left alone";
    settings.WindowRect = {10, 10, 500, 400};
    settings.Save();
    EXPECT_TRUE(isSaved("10\t10\t500\t400\r\n")) << "it was moved";
}

// Both started without a file; the one that ends first writes it.
TEST_F(SavedSettings, OfTwoWindowsAtAFirstStartBothChoicesStay) {
    MSettings first;
    MSettings second;
    for (MSettings* const window : {&first, &second})
        window->Load();
    first.FontName = "First";
    first.Selected[66] = 0;
    first.GlyphHeight = 40;
    first.Save();
    second.Weight = 700;
    second.Selected[67] = 0;
    second.GlyphHeight = 50;
    second.Paths[0] = "/second/";
    second.Save();
    const auto stored = [] {
        MSettings all;
        all.Load();
        return std::tuple(Narrow(all.FontName), all.Weight, all.Selected[66], all.Selected[67], all.GlyphHeight,
                          Narrow(all.Paths[0]));
    };
    // A family and its weight are one choice, the later one.
    EXPECT_EQ(stored(), std::tuple("Arial Black", 700, 0, 0, 50, "/second/"));

    // Of two that began with a file, too.
    first.Load();
    second.Load();
    first.Paths[0] = "/first/";
    first.Save();
    second.GlyphHeight = 60;
    second.Save();
    EXPECT_EQ(stored(), std::tuple("Arial Black", 700, 0, 0, 60, "/first/"));
}
