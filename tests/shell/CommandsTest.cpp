#include "shell/Commands.h"

#include "imaging/MFileTypes.h"
#include "shell/OpenFontFile.h"
#include "shell/ShellFixture.h"

#include <gmock/gmock.h>

#include <set>

namespace {

using Desktop::Answer;
using Desktop::Buttons;
using Desktop::DialogId;
using Desktop::Icon;

class Commands : public RunningTest {
protected:
    Commands() {
        settings.UseUserFolders();
        settings.FontName = "DejaVu Sans";
        settings.GlyphHeight = 32;
        settings.Selected = {};
        settings.Selected['A'] = settings.Selected['b'] = 1;
    }

    static bool AskedNothing() {
        const auto& record = Headless::record;
        return record.dialogs.empty() && record.messages.empty() && record.fileDialogs.empty() &&
               record.urls.empty();
    }
    static void Chosen(const MString& path) { Headless::script.files = {path}; }
    static void EndsWithOk(DialogId id) {
        Headless::script.dialogs[id] = [] { return true; };
    }
    static MColourFont& NewFont() {
        EndsWithOk(DialogId::AddGlyphs);
        RunCommand(CommandId::New);
        Headless::record = {};
        return *CurrentFont;
    }
    static void ExpectMessage(const MString& text, Buttons buttons, Icon icon) {
        ASSERT_FALSE(Headless::record.messages.empty());
        const Headless::Message& message = Headless::record.messages.back();
        EXPECT_EQ(message.text, text);
        EXPECT_EQ(message.caption, ProductName);
        EXPECT_EQ(message.buttons, buttons);
        EXPECT_EQ(message.icon, icon);
    }
};

} // namespace

TEST_F(Commands, TheMenuNamesEachCommandOnce) {
    std::set<CommandId> commands;
    std::set<std::string> keys;
    std::size_t items = 0;
    std::size_t withKey = 0;
    for (const Menu& menu : menus) {
        for (const MenuItem& item : menu.items) {
            if (!*item.text) continue;
            ++items;
            commands.insert(item.command);
            if (*item.key) keys.insert(item.key);
            withKey += *item.key ? 1 : 0;
        }
    }
    EXPECT_EQ(items, 22U);
    EXPECT_EQ(commands.size(), items);
    EXPECT_EQ(keys.size(), withKey);
}

TEST_F(Commands, ThoseThatNeedAFontDoNothingWithoutOne) {
    for (const CommandId command :
         {CommandId::SaveAs, CommandId::ExportHtml, CommandId::ExportSingleFiles, CommandId::ExportCubes,
          CommandId::GlyphsEditor, CommandId::KerningEditor, CommandId::ChangeGlyphHeight,
          CommandId::RemoveNonAscii, CommandId::TrimVertically}) {
        RunCommand(command);
        EXPECT_TRUE(AskedNothing()) << static_cast<int>(command);
        EXPECT_EQ(CurrentFont, nullptr) << static_cast<int>(command);
    }
}

TEST_F(Commands, New) {
    RunCommand(CommandId::New);
    EXPECT_EQ(CurrentFont, nullptr) << "cancelled";
    EndsWithOk(DialogId::AddGlyphs);
    RunCommand(CommandId::New);
    EXPECT_EQ(CurrentFont->GlyphCount(), 2);
    EXPECT_EQ(Headless::record.titles.back(), MString("Lettrino - 2 Glyphs (128 x 128)"));
    EXPECT_FALSE(Headless::record.paintings.empty());

    settings.Selected = {};
    settings.Selected['c'] = 1;
    Headless::script.dialogs.clear();
    RunCommand(CommandId::New);
    EXPECT_NE(CurrentFont->GetGlyph(u'A'), nullptr) << "cancelled, the old font stays";
    EndsWithOk(DialogId::AddGlyphs);
    RunCommand(CommandId::AddCharacters);
    EXPECT_EQ(CurrentFont->GlyphCount(), 3) << "added to it";
    RunCommand(CommandId::New);
    EXPECT_EQ(CurrentFont->GlyphCount(), 1);
}

TEST_F(Commands, AddCharactersLeavesAnEmptyFontBehindIfCancelled) {
    RunCommand(CommandId::AddCharacters);
    ASSERT_NE(CurrentFont, nullptr);
    EXPECT_EQ(CurrentFont->GlyphCount(), 0);
    EXPECT_TRUE(Headless::record.paintings.empty());
}

TEST_F(Commands, SavedAndOpened) {
    NewFont();
    RunCommand(CommandId::SaveAs);
    EXPECT_TRUE(Headless::record.messages.empty()) << "cancelled";
    EXPECT_EQ(Headless::record.fileDialogs.back().title, MString("Save Font"));
    Chosen(Home().File("font.txt"));
    RunCommand(CommandId::SaveAs);
    ExpectMessage("Colour font successfully saved as:\n\n\"" + Home().File("font.sm") + "\"", Buttons::Ok,
                  Icon::Information);
    EXPECT_EQ(settings.Paths[1], Home().File("font.sm"));

    DestroyCurrentFont();
    Chosen(Home().File("font.sm"));
    RunCommand(CommandId::Open);
    EXPECT_EQ(Headless::record.fileDialogs.back().title, MString("Open Font"));
    EXPECT_EQ(CurrentFont->GlyphCount(), 2);
    RunCommand(CommandId::Open);
    EXPECT_EQ(CurrentFont->GlyphCount(), 2) << "cancelled";

    const std::int32_t capHeight = CurrentFont->CapHeight;
    const std::size_t paintings = Headless::record.paintings.size();
    for (const char* name : {"none.sm", "font.png"}) {
        OpenFontFile(Home().File(name));
        EXPECT_EQ(CurrentFont->GlyphCount(), 0) << "gone, whatever follows";
        EXPECT_EQ(CurrentFont->CapHeight, capHeight) << "but for the metrics";
    }
    EXPECT_EQ(Headless::record.paintings.size(), paintings) << "the window goes on showing the old picture";

    Headless::record.messages.clear();
    Chosen(Home().File("empty.sm"));
    RunCommand(CommandId::SaveAs);
    EXPECT_TRUE(Headless::record.messages.empty()) << "without a picture nothing is saved, nor said";
}

TEST_F(Commands, ExportAsHtml) {
    NewFont();
    Chosen(Home().File("with blank/font.html"));
    RunCommand(CommandId::ExportHtml);
    ExpectMessage("Do not use spaces in your font name", Buttons::Ok, Icon::Error);

    const MString path = Home().File("font.html");
    const auto exported = [&](Answer answer) {
        std::filesystem::remove(ToSystemPath(path));
        Chosen(path);
        Headless::script.answers = {answer};
        Headless::record.messages.clear();
        RunCommand(CommandId::ExportHtml);
        EXPECT_EQ(Headless::record.messages[0].text, MString("Would you like to have a minimal HTML page?"));
        EXPECT_EQ(Headless::record.messages[0].buttons, Buttons::YesNoCancel);
        EXPECT_EQ(Headless::record.messages[0].icon, Icon::Question);
        return Home().Read("font.html").size();
    };
    EXPECT_EQ(exported(Answer::Cancel), 0U);
    EXPECT_EQ(Headless::record.messages.size(), 1U);
    const std::size_t minimal = exported(Answer::Yes);
    EXPECT_GT(minimal, 0U);
    EXPECT_GT(exported(Answer::No), minimal);
    ExpectMessage("Colour font successfully exported as:\n\n\"" + path + "\"", Buttons::Ok, Icon::Information);

    DestroyCurrentFont();
    Chosen(Home().File("font.js"));
    RunCommand(CommandId::ImportHtml);
    EXPECT_EQ(CurrentFont->GlyphCount(), 2);
}

TEST_F(Commands, ExportAsSingleFiles) {
    NewFont();
    Chosen(Home().File("any.png"));
    RunCommand(CommandId::ExportSingleFiles);
    ExpectMessage("Colour font successfully exported as single files!", Buttons::Ok, Icon::Information);
    EXPECT_FALSE(Home().Read("C98.png").empty());
}

TEST_F(Commands, ExportAsCubes) {
    for (std::size_t code = 'A'; code <= 'Z'; ++code)
        settings.Selected[code] = 1;
    NewFont();
    RunCommand(CommandId::ExportCubes);
    EXPECT_TRUE(Headless::record.fileDialogs.empty()) << "cancelled in the dialog of names";
    EndsWithOk(DialogId::LetterCubesNames);
    settings.LetterCubesNames = "ANN";
    Chosen(Home().File("cube.png"));
    RunCommand(CommandId::ExportCubes);
    ExpectMessage("Successfully created letter cubes cut-outs!", Buttons::Ok, Icon::Information);
    EXPECT_FALSE(Home().Read("cube1.png").empty());
}

TEST_F(Commands, ImportPhotofontCancelledLosesTheFont) {
    NewFont();
    RunCommand(CommandId::ImportPhotofont);
    EXPECT_EQ(Headless::record.fileDialogs.back().title, MString("Import Photofont"));
    EXPECT_EQ(CurrentFont->GlyphCount(), 0);
    EXPECT_TRUE(Headless::record.paintings.empty())
        << "the window shows the old picture until it is painted next";
    CurrentFont->Draw();
    EXPECT_EQ(Headless::record.titles.back(), MString("Lettrino - 0 Glyphs"));
}

TEST_F(Commands, EditorsRepackOnlyForADeletedGlyph) {
    MColourFont& font = NewFont();
    EndsWithOk(DialogId::GlyphEditor);
    RunCommand(CommandId::GlyphsEditor);
    RunCommand(CommandId::KerningEditor);
    EXPECT_EQ(Headless::record.dialogs, (std::vector{DialogId::GlyphEditor, DialogId::KerningEditor}));
    EXPECT_TRUE(Headless::record.paintings.empty());
    const auto deleteOne = [&](bool ok) {
        Headless::script.dialogs[DialogId::GlyphEditor] = [&font, ok] {
            font.RemoveGlyph(font.GetGlyphByIndex(0)->Character);
            return ok;
        };
        RunCommand(CommandId::GlyphsEditor);
        return Headless::record.paintings.size();
    };
    EXPECT_EQ(deleteOne(false), 0U);
    EXPECT_EQ(deleteOne(true), 1U);
}

TEST_F(Commands, ChangeGlyphHeight) {
    MColourFont& font = NewFont();
    Headless::script.dialogs[DialogId::GlyphHeight] = [] {
        Settings->GlyphHeight = 64;
        return true;
    };
    Headless::script.answers = {Answer::No};
    RunCommand(CommandId::ChangeGlyphHeight);
    EXPECT_EQ(font.GetGlyph(u'A')->Height, 64);
    EXPECT_EQ(Headless::record.paintings.size(), 1U);

    settings.GlyphHeight = -19900; // as trimming an empty font leaves it
    Headless::record.dialogs.clear();
    RunCommand(CommandId::ChangeGlyphHeight);
    EXPECT_TRUE(Headless::record.dialogs.empty());
}

TEST_F(Commands, WholeFontEdits) {
    settings.Selected[0xE9] = 1;
    MColourFont& font = NewFont();
    RunCommand(CommandId::RemoveNonAscii);
    EXPECT_EQ(font.GlyphCount(), 2);
    RunCommand(CommandId::TrimVertically);
    EXPECT_LT(settings.GlyphHeight, 32);
    EXPECT_EQ(font.GetGlyph(u'A')->Height, settings.GlyphHeight);
    EXPECT_EQ(Headless::record.paintings.size(), 2U);
}

TEST_F(Commands, SetBackgroundColour) {
    RunCommand(CommandId::SetBackgroundColour);
    EXPECT_EQ(settings.BackgroundColour, MColour(255, 255, 255)) << "cancelled";
    Headless::script.colours = {MColour(1, 2, 3)};
    RunCommand(CommandId::SetBackgroundColour);
    EXPECT_EQ(settings.BackgroundColour, MColour(1, 2, 3));
    EXPECT_TRUE(Headless::record.paintings.empty()) << "nothing to repaint";
    NewFont();
    Headless::script.colours = {MColour(4, 5, 6)};
    RunCommand(CommandId::SetBackgroundColour);
    EXPECT_EQ(Headless::record.colourDialogs.back(), MColour(1, 2, 3));
    EXPECT_EQ(Headless::record.paintings.size(), 1U);
}

TEST_F(Commands, HelpAndLicense) {
    FileTypes.BuildFileTypes();
    for (const CommandId command : {CommandId::UserGuide, CommandId::OrderingInformation, CommandId::Community})
        RunCommand(command);
    using testing::ElementsAre;
    EXPECT_THAT(Headless::record.urls,
                ElementsAre(MakerSite + "/lettrinomanual", MakerSite + "/lettrinomanual#buy",
                            MakerSite + "/community/"));
    RunCommand(CommandId::EnterLicenseKeys);
    RunCommand(CommandId::About);
    RunCommand(CommandId::Exit);
    EXPECT_EQ(Headless::record.dialogs, (std::vector{DialogId::LicenseKeys, DialogId::About}));
    EXPECT_EQ(Headless::record.closedWindows, 1);
}

TEST_F(Commands, OnlyPagesAreOpenedInTheBrowser) {
    FileTypes.BuildFileTypes();
    for (const char* url : {"", "http://x/a.zip", "http://x/a.png", "http://x/setup.exe"})
        OpenUrl(url);
    EXPECT_TRUE(Headless::record.urls.empty());
    for (const char* url : {"http://x/a", "http://x/a.html", "http://x/a.php?b=c.zip"})
        OpenUrl(url);
    EXPECT_EQ(Headless::record.urls.size(), 3U);
}
