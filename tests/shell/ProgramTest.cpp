#include "shell/Program.h"

#include "foundation/MFolders.h"
#include "glyphs/MFontList.h"
#include "imaging/MFileTypes.h"
#include "imaging/Pictures.h"
#include "licensing/MLicense.h"
#include "shell/Commands.h"
#include "shell/ShellFixture.h"

namespace {

using Desktop::DialogId;

class Program : public ShellTest {
protected:
    static bool SettingsWritten() { return std::filesystem::exists(Home().path / SettingsFile()); }
};

} // namespace

TEST_F(Program, StartsAndEndsInOrder) {
    Headless::script.messageLoop = [] {
        EXPECT_EQ(Headless::record.mainWindows.size(), 1U);
        EXPECT_EQ(Headless::record.mainWindows[0].right, 1781);
        EXPECT_NE(MainWindow, nullptr);
        EXPECT_NE(Settings, nullptr);
        EXPECT_NE(License, nullptr);
        EXPECT_TRUE(FileTypes.IsWebPage("HTML")) << "the table is built";
        EXPECT_EQ(Headless::record.dialogs, std::vector{DialogId::About})
            << "at every start of an unlicensed copy";
        EXPECT_FALSE(SettingsWritten()) << "settings are written at the end only";
        for (const auto& [kind, folder] : {std::pair(MPathKind::OpenFont, "/Media/Fonts"),
                                           {MPathKind::SaveFont, "/Lettrino/Fonts"},
                                           {MPathKind::FindPicture, "/Lettrino/Fonts"},
                                           {MPathKind::GlyphPicture, "/Lettrino/Pictures"},
                                           {MPathKind::SavePicture, "/Lettrino/Pictures"},
                                           {MPathKind::SaveHtml, "/Lettrino/HTML"},
                                           {MPathKind::Temporary, "/Lettrino/Temp"},
                                           {MPathKind::ImportHtml, "/Lettrino/Fonts"}}) {
            EXPECT_TRUE(Narrow(Settings->Path(kind)).ends_with(folder)) << Narrow(Settings->Path(kind));
            EXPECT_TRUE(FolderExists(Settings->Path(kind))) << folder;
        }
        EXPECT_EQ(CurrentFont, nullptr);
        CurrentOrNewFont();
        RecordWindowRect({40, 50, 900, 700});
        Settings->Path(MPathKind::SaveHtml) = "/pages";
        return 7;
    };
    EXPECT_EQ(RunProgram({}), 7);
    EXPECT_EQ(CurrentFont, nullptr);
    EXPECT_EQ(Settings, nullptr);
    EXPECT_TRUE(SettingsWritten());
    EXPECT_TRUE(Headless::record.messages.empty()) << "a changed font is lost without a question";

    // The next start finds what the last one left.
    Headless::script.messageLoop = [] {
        EXPECT_EQ(Headless::record.mainWindows.back().left, 40);
        EXPECT_EQ(Narrow(Settings->Path(MPathKind::SaveHtml)), "/pages");
        Settings->Keys[0] = "Ann";
        return 0;
    };
    RunProgram({});
    Headless::script.messageLoop = [] {
        EXPECT_EQ(License->Name, MString("Ann"));
        return 0;
    };
    const std::size_t before = Headless::record.dialogs.size();
    RunProgram({});
    EXPECT_EQ(Headless::record.dialogs.size(), before) << "a licensed copy opens without the About box";
}

// A window that would cover another opens beside it, which is no choice of the user.
TEST_F(Program, AFurtherWindowOpensBesideTheOthers) {
    Home().Write(SettingsFile(), "WindowRect\t10\t20\t510\t420\r\n");
    Headless::script.earlierWindows = 2;
    Headless::script.messageLoop = [] {
        EXPECT_EQ(Headless::record.mainWindows.back(), (Desktop::Rect{74, 84, 574, 484}));
        RecordWindowRect({74, 84, 574, 484}); // as the desktop tells
        return 0;
    };
    RunProgram({});
    Headless::script.earlierWindows = 0;
    Headless::script.messageLoop = [] {
        EXPECT_EQ(Headless::record.mainWindows.back().left, 10);
        return 0;
    };
    RunProgram({});
}

// Where Open begins at a first start there is something to open.
TEST_F(Program, OpensTheFontsThatComeWithIt) {
    Headless::script.messageLoop = [] {
        for (const char* const name : {"Plain", "Balloons"}) {
            OpenDroppedFile(Settings->Path(MPathKind::OpenFont) + "/" + name + ".sm");
            EXPECT_TRUE(CurrentFont && CurrentFont->GetGlyph(u'A') && CurrentFont->Picture.IsValid()) << name;
        }
        return 0;
    };
    RunProgram({});
}

TEST_F(Program, WithoutAWindowNothingIsWritten) {
    Headless::script.opensMainWindow = false;
    EXPECT_EQ(RunProgram({}), 0);
    EXPECT_FALSE(SettingsWritten());
    EXPECT_TRUE(Headless::record.dialogs.empty());
}

TEST_F(Program, OpensTheTextureFontItIsGiven) {
    EXPECT_TRUE(FilledPicture(8, 8, MColour(0, 0, 255)).Save(Home().File("some.png")));
    Home().Write("some.sm", "Showmarquee TextureFont\nCHA\tA\t0\t0\t5\t100\n");
    Headless::script.dialogs[DialogId::About] = [] {
        EXPECT_EQ(CurrentFont, nullptr) << "the About box comes first";
        return true;
    };
    // The import of scripts is a command of its own.
    const std::pair<const char*, int> files[] = {{"some.sm", 1},   {"SOME.SM", 1},  {"none.sm", 0},
                                                 {"some.png", -1}, {"some.js", -1}, {nullptr, -1}};
    for (const auto& [name, glyphs] : files) {
        const MString file = name ? Home().File(name) : MString();
        for (const bool dropped : {false, true}) {
            Headless::script.messageLoop = [&, glyphs = glyphs] {
                if (dropped) OpenDroppedFile(file);
                EXPECT_EQ(CurrentFont ? CurrentFont->GlyphCount() : -1, glyphs) << ToSystem(file);
                return 0;
            };
            RunProgram(dropped ? MString() : file);
        }
    }
}
