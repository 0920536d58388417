#include "shell/Commands.h"

#include "foundation/MString.h"
#include "imaging/MFileTypes.h"
#include "imaging/Pictures.h"
#include "shell/OpenFontFile.h"
#include "shell/ShellFixture.h"

#include <gmock/gmock.h>

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

    // With a file that is chosen where the command asks for one.
    static void RunOn(CommandId command, const MString& path) {
        Headless::script.files = {path};
        RunCommand(command);
    }
    static const Headless::Message& LastMessage() { return Headless::record.messages.back(); }
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
        const Headless::Message& message = LastMessage();
        EXPECT_EQ(message.text, text);
        EXPECT_EQ(message.caption, ProductName);
        EXPECT_EQ(message.buttons, buttons);
        EXPECT_EQ(message.icon, icon);
    }
    static std::size_t Paintings() { return Headless::record.paintings.size(); }
};

} // namespace

TEST_F(Commands, ThoseThatNeedAFontDoNothingWithoutOne) {
    for (const CommandId command :
         {CommandId::SaveAs, CommandId::ExportHtml, CommandId::ExportSingleFiles, CommandId::ExportCubes,
          CommandId::ExportGameFont, CommandId::ExportWebFont, CommandId::GlyphsEditor,
          CommandId::KerningEditor, CommandId::OpticalKerning, CommandId::ChangeGlyphHeight,
          CommandId::RemoveNonAscii, CommandId::TrimVertically}) {
        RunCommand(command);
        const auto& record = Headless::record;
        EXPECT_EQ(record.dialogs.size() + record.messages.size() + record.fileDialogs.size(), 0U)
            << static_cast<int>(command);
        EXPECT_EQ(CurrentFont, nullptr) << static_cast<int>(command);
    }
}

TEST_F(Commands, NewAndAddCharacters) {
    RunCommand(CommandId::New);
    EXPECT_EQ(CurrentFont, nullptr) << "cancelled";
    RunCommand(CommandId::AddCharacters);
    ASSERT_NE(CurrentFont, nullptr) << "cancelled, but an empty font is left behind";
    EXPECT_EQ(CurrentFont->GlyphCount(), 0);
    EXPECT_EQ(Paintings(), 0U);
    EndsWithOk(DialogId::AddGlyphs);
    RunCommand(CommandId::New);
    EXPECT_EQ(CurrentFont->GlyphCount(), 2);
    EXPECT_EQ(Headless::record.titles.back(), MString("Lettrino - 2 Glyphs (128 x 128)"));
    EXPECT_EQ(Paintings(), 1U);

    settings.Selected = {};
    settings.Selected['c'] = 1;
    Headless::script.dialogs.clear();
    RunCommand(CommandId::New);
    EXPECT_EQ(CurrentFont->GlyphCount(), 2) << "cancelled, the old font stays";
    EndsWithOk(DialogId::AddGlyphs);
    RunCommand(CommandId::AddCharacters);
    EXPECT_EQ(CurrentFont->GlyphCount(), 3) << "added to it";
    RunCommand(CommandId::New);
    EXPECT_EQ(CurrentFont->GlyphCount(), 1);
}

TEST_F(Commands, SavedAndOpened) {
    NewFont();
    RunCommand(CommandId::SaveAs);
    EXPECT_TRUE(Headless::record.messages.empty()) << "cancelled";
    RunOn(CommandId::SaveAs, Home().File("font.txt"));
    ExpectMessage("Colour font successfully saved as:\n\n\"" + Home().File("font.sm") + "\"", Buttons::Ok,
                  Icon::Information);
    EXPECT_EQ(settings.Paths[1], Home().File("font.sm"));

    DestroyCurrentFont();
    RunOn(CommandId::Open, Home().File("font.sm"));
    EXPECT_EQ(CurrentFont->GlyphCount(), 2);
    RunCommand(CommandId::Open);
    EXPECT_EQ(CurrentFont->GlyphCount(), 2) << "cancelled";

    const std::int32_t capHeight = CurrentFont->CapHeight;
    const std::size_t paintings = Paintings();
    for (const char* name : {"none.sm", "font.png"}) {
        OpenFontFile(Home().File(name));
        EXPECT_EQ(CurrentFont->GlyphCount(), 0) << "gone, whatever follows";
        EXPECT_EQ(CurrentFont->CapHeight, capHeight) << "but for the metrics";
    }
    EXPECT_EQ(Paintings(), paintings) << "the window goes on showing the old picture";

    Headless::record.messages.clear();
    RunOn(CommandId::SaveAs, Home().File("empty.sm"));
    EXPECT_TRUE(Headless::record.messages.empty()) << "without a picture nothing is saved, nor said";
}

TEST_F(Commands, ExportAsHtml) {
    NewFont();
    RunOn(CommandId::ExportHtml, Home().File("with blank/font.html"));
    ExpectMessage("Do not use spaces in your font name", Buttons::Ok, Icon::Error);

    const MString path = Home().File("font.html");
    std::vector<std::size_t> sizes;
    for (const Answer answer : {Answer::Cancel, Answer::Yes, Answer::No}) {
        Headless::script.answers = {answer};
        RunOn(CommandId::ExportHtml, path);
        if (answer == Answer::Cancel)
            ExpectMessage("Would you like to have a minimal HTML page?", Buttons::YesNoCancel, Icon::Question);
        sizes.push_back(Home().Read("font.html").size());
    }
    EXPECT_TRUE(sizes[0] == 0 && sizes[1] > 0 && sizes[2] > sizes[1]) << "cancelled, minimal, to be tried";
    ExpectMessage("Colour font successfully exported as:\n\n\"" + path + "\"", Buttons::Ok, Icon::Information);

    DestroyCurrentFont();
    RunOn(CommandId::ImportHtml, Home().File("font.js"));
    EXPECT_EQ(CurrentFont->GlyphCount(), 2);
}

TEST_F(Commands, ExportAsPictures) {
    for (std::size_t code = 'A'; code <= 'Z'; ++code)
        settings.Selected[code] = 1;
    NewFont();
    RunOn(CommandId::ExportSingleFiles, Home().File("any.png"));
    ExpectMessage("Colour font successfully exported as single files!", Buttons::Ok, Icon::Information);
    EXPECT_FALSE(Home().Read("C98.png").empty());

    RunCommand(CommandId::ExportCubes);
    EXPECT_EQ(Headless::record.fileDialogs.size(), 1U) << "cancelled in the dialog of names";
    EndsWithOk(DialogId::LetterCubesNames);
    settings.LetterCubesNames = "ANN";
    RunOn(CommandId::ExportCubes, Home().File("cube.png"));
    ExpectMessage("Successfully created letter cubes cut-outs!", Buttons::Ok, Icon::Information);
    EXPECT_FALSE(Home().Read("cube1.png").empty());
}

TEST_F(Commands, NamesThatCouldRunOrAreDeadOnAPageAreWarnedOf) {
    NewFont();
    for (const auto& [name, reason, insists] : {std::tuple("x=alert(1).html", "run as script", false),
                                                {"x=alert(1).html", "run as script", true},
                                                {"class.html", "script language", false},
                                                {"class.html", "script language", true}}) {
        Headless::record.messages.clear();
        Headless::script.answers = {insists ? Answer::Yes : Answer::No};
        RunOn(CommandId::ExportHtml, Home().File(name));
        EXPECT_EQ(Headless::record.messages[0].icon, Icon::Warning);
        EXPECT_THAT(ToSystem(Headless::record.messages[0].text), testing::HasSubstr(reason));
        EXPECT_EQ(Headless::record.messages.size(), insists ? 3U : 1U);
        EXPECT_EQ(FileExists(Home().File(name)), insists);
    }
}

TEST_F(Commands, AskBeforeTheFilesThatWillBeWrittenAreReplaced) {
    NewFont();
    const auto run = [](CommandId command, const MString& path, Answer answer) {
        Headless::record.messages.clear();
        Headless::script.answers = {answer};
        if (command == CommandId::ExportHtml) Headless::script.answers.push_front(Answer::Yes);
        RunOn(command, path);
    };
    const auto asked = [](std::string_view count) {
        return std::ranges::any_of(Headless::record.messages, [&](const Headless::Message& message) {
            return message.buttons == Buttons::YesNo && Narrow(message.text).starts_with(count);
        });
    };
    for (const char* name : {"demo.sm", "demo.png", "page.js", "C65.png", "lettrino-1.0.js"})
        Home().Write(name, "old");
    run(CommandId::SaveAs, Home().File("demo.txt"), Answer::No);
    EXPECT_TRUE(asked("2 files are there already"));
    EXPECT_EQ(Home().Read("demo.sm") + Home().Read("demo.png"), "oldold");
    EXPECT_EQ(Headless::record.messages.size(), 1U) << "no success is told";
    run(CommandId::ExportHtml, Home().File("page.html"), Answer::No);
    EXPECT_TRUE(asked("2 files")) << "the run-time script too, since it isn't the program's own";
    EXPECT_EQ(Home().Read("page.js"), "old");
    run(CommandId::ExportSingleFiles, Home().File("any.png"), Answer::No);
    EXPECT_TRUE(asked("This file is there already"));
    EXPECT_EQ(Home().Read("C65.png"), "old");

    run(CommandId::SaveAs, Home().File("demo.sm"), Answer::No);
    EXPECT_FALSE(asked("")) << "the file dialog has asked about this font";
    EXPECT_NE(Home().Read("demo.png"), "old");
    run(CommandId::ExportSingleFiles, Home().File("C65.png"), Answer::No);
    EXPECT_FALSE(asked("")) << "the file dialog has asked about the only one";
    run(CommandId::ExportHtml, Home().File("page.html"), Answer::Yes);
    EXPECT_TRUE(asked("2 files"));
    run(CommandId::ExportHtml, Home().File("page.html"), Answer::Yes);
    EXPECT_TRUE(asked("2 files")) << "the script and the picture; the run-time script is the same now";
}

TEST_F(Commands, WhatCouldNotBeWrittenIsToldBeforeTheSuccess) {
    NewFont();
    const auto texts = [] {
        std::vector<std::string> all;
        for (const Headless::Message& message : Headless::record.messages)
            all.push_back((message.icon == Icon::Error ? "error: " : "") + Narrow(message.text));
        Headless::record.messages.clear();
        return all;
    };
    const MString font = Home().File("no/f.sm");
    RunOn(CommandId::SaveAs, font);
    EXPECT_THAT(texts(),
                testing::ElementsAre(testing::AllOf(testing::StartsWith("error: 2 files"),
                                                    testing::HasSubstr("no/f.png\"\nNo such file")),
                                     "Colour font successfully saved as:\n\n\"" + Narrow(font) + "\""));
    std::filesystem::create_directory(Home().path / "C65.png");
    RunOn(CommandId::ExportSingleFiles, Home().File("any.png"));
    EXPECT_THAT(texts(), testing::ElementsAre(testing::StartsWith("This file is there"),
                                              testing::AllOf(testing::StartsWith("error: This file could not"),
                                                             testing::HasSubstr("C65.png\"\nit is a folder")),
                                              "Colour font successfully exported as single files!"));
    EXPECT_FALSE(Home().Read("C98.png").empty()) << "the other one";
    RunOn(CommandId::ExportHtml, Home().File("no/page.html"));
    EXPECT_THAT(texts(), testing::ElementsAre("Would you like to have a minimal HTML page?",
                                              testing::StartsWith("error: 4 files could not be written")));
}

TEST_F(Commands, GameFonts) {
    NewFont();
    RunOn(CommandId::ExportGameFont, Home().File("8bit.fnt"));
    EXPECT_TRUE(Headless::record.fileDialogs.empty()) << "cancelled in the dialog";
    Headless::script.dialogs[DialogId::ExportGameFont] = [] {
        Settings->GameFont.Engine = "phaser";
        Settings->GameFont.Form = "xml";
        return true;
    };
    RunCommand(CommandId::ExportGameFont);
    EXPECT_THAT(ToSystem(LastMessage().text),
                testing::AllOf(testing::StartsWith("Colour font successfully exported as:\n\n\"" +
                                                   ToSystem(Home().File("8bit.xml")) + "\"\n\n"),
                               testing::HasSubstr("name-page"), testing::HasSubstr("_8bit")));
    EXPECT_EQ(LastMessage().icon, Icon::Information);
    EXPECT_EQ(Headless::record.fileDialogs.back().folder, settings.Path(MPathKind::SaveFont));
    EXPECT_FALSE(Home().Read("_8bit_0.png").empty());

    MColourFont& font = NewFont();
    Home().Write("broken.fnt", "info face=x");
    RunOn(CommandId::ImportGameFont, Home().File("broken.fnt"));
    EXPECT_THAT(ToSystem(LastMessage().text), testing::HasSubstr("broken.fnt: it has no common record"));
    EXPECT_EQ(LastMessage().icon, Icon::Error);
    EXPECT_TRUE(CurrentFont == &font && font.GlyphCount() == 2) << "the old font stays";
    DestroyCurrentFont();
    RunOn(CommandId::ImportGameFont, Home().File("broken.fnt"));
    EXPECT_EQ(CurrentFont, nullptr);

    Headless::record = {};
    RunOn(CommandId::ImportGameFont, Home().File("8bit.xml"));
    EXPECT_EQ(CurrentFont->GlyphCount(), 2);
    EXPECT_EQ(Paintings(), 1U);
    EXPECT_TRUE(Headless::record.messages.empty()) << "nothing was left out";
}

TEST_F(Commands, WebFontsHaveTheFormOfTheirExtension) {
    NewFont();
    const std::string trueType{0, 1, 0, 0};
    for (const auto& [typed, written, start] : {std::tuple("a.ttf", "a.ttf", trueType),
                                                {"b.woff2", "b.woff2", "wOF2"},
                                                {"c.txt", "c.woff2", "wOF2"}}) {
        RunOn(CommandId::ExportWebFont, Home().File(typed));
        EXPECT_EQ(Home().Read(written).substr(0, 4), start) << typed;
        ExpectMessage("Colour font successfully exported as:\n\n\"" + Home().File(written) + "\"", Buttons::Ok,
                      Icon::Information);
        EXPECT_EQ(settings.Path(MPathKind::SaveWebFont), Home().File(written));
    }
    Home().Write("c.woff2", "old");
    Headless::script.answers = {Answer::No};
    RunOn(CommandId::ExportWebFont, Home().File("c.txt"));
    EXPECT_THAT(ToSystem(LastMessage().text), testing::StartsWith("This file is there"));
    EXPECT_EQ(Home().Read("c.woff2"), "old");
    CurrentFont->GetGlyph(u'A')->SpacingAfter = -1000;
    RunOn(CommandId::ExportWebFont, Home().File("d.ttf"));
    EXPECT_THAT(ToSystem(LastMessage().text), testing::HasSubstr("d.ttf: the glyph of code 65"));
    EXPECT_FALSE(FileExists(Home().File("d.ttf")));
}

TEST_F(Commands, ImportPhotofontLosesTheFontAlsoWhenCancelled) {
    NewFont();
    RunCommand(CommandId::ImportPhotofont);
    EXPECT_EQ(CurrentFont->GlyphCount(), 0);
    EXPECT_EQ(Paintings(), 0U) << "the window shows the old picture until it is painted next";
    RunOn(CommandId::ImportPhotofont, Home().Write("f.phf", "<PhF>\n"));
    EXPECT_EQ(Paintings(), 1U);
}

TEST_F(Commands, AddPicture) {
    RunCommand(CommandId::AddPicture);
    EXPECT_EQ(CurrentFont->GlyphCount(), 0) << "cancelled";
    DestroyCurrentFont();
    EXPECT_TRUE(FilledPicture(20, 40, MColour(1, 2, 3)).Save(Home().File("A.png")));
    settings.Path(MPathKind::GlyphPicture) = Home().File("A.png");
    settings.Char = 'A';
    Headless::script.answers = {Answer::No};
    EndsWithOk(DialogId::AddPicture);
    RunCommand(CommandId::AddPicture);
    ASSERT_EQ(CurrentFont->GlyphCount(), 1);
    EXPECT_EQ(settings.GlyphHeight, 40) << "that of a new font's first picture";
    EXPECT_EQ(CurrentFont->GetGlyph(u'A')->GetPixel(9, 39), MColour(1, 2, 3));
    EXPECT_EQ(Paintings(), 1U);
}

TEST_F(Commands, EditorsRepackOnlyForADeletedGlyph) {
    MColourFont& font = NewFont();
    EndsWithOk(DialogId::GlyphEditor);
    RunCommand(CommandId::GlyphsEditor);
    RunCommand(CommandId::KerningEditor);
    EXPECT_EQ(Headless::record.dialogs, (std::vector{DialogId::GlyphEditor, DialogId::KerningEditor}));
    EXPECT_EQ(Paintings(), 0U);
    for (const bool ok : {false, true}) {
        Headless::script.dialogs[DialogId::GlyphEditor] = [&] {
            font.RemoveGlyph(font.GetGlyphByIndex(0)->Character);
            return ok;
        };
        RunCommand(CommandId::GlyphsEditor);
        EXPECT_EQ(Paintings(), ok ? 1U : 0U);
    }
}

TEST_F(Commands, WholeFontEdits) {
    settings.Selected[0xE9] = 1;
    MColourFont& font = NewFont();
    RunCommand(CommandId::RemoveNonAscii);
    EXPECT_EQ(font.GlyphCount(), 2);
    RunCommand(CommandId::TrimVertically);
    EXPECT_LT(settings.GlyphHeight, 32);
    EXPECT_EQ(font.GetGlyph(u'A')->Height, settings.GlyphHeight);
    EXPECT_EQ(Paintings(), 2U);
    Headless::script.dialogs[DialogId::GlyphHeight] = [] { return Settings->GlyphHeight = 64, true; };
    Headless::script.answers = {Answer::No};
    RunCommand(CommandId::ChangeGlyphHeight);
    EXPECT_NEAR(font.GetGlyph(u'A')->Height, 64, 1);
    EXPECT_EQ(Paintings(), 3U);

    settings.GlyphHeight = -19900; // as trimming an empty font leaves it
    RunCommand(CommandId::ChangeGlyphHeight);
    EXPECT_EQ(Headless::record.dialogs.size(), 1U) << "not asked again";
}

TEST_F(Commands, SetBackgroundColour) {
    RunCommand(CommandId::SetBackgroundColour);
    EXPECT_EQ(settings.BackgroundColour, MColour(255, 255, 255)) << "cancelled";
    Headless::script.colours = {MColour(1, 2, 3), MColour(4, 5, 6)};
    RunCommand(CommandId::SetBackgroundColour);
    EXPECT_EQ(settings.BackgroundColour, MColour(1, 2, 3));
    EXPECT_EQ(Paintings(), 0U) << "nothing to repaint";
    NewFont();
    RunCommand(CommandId::SetBackgroundColour);
    EXPECT_EQ(Headless::record.colourDialogs.back(), MColour(1, 2, 3));
    EXPECT_EQ(Paintings(), 1U);
}

TEST_F(Commands, HelpAndLicense) {
    FileTypes.BuildFileTypes();
    for (const CommandId command : {CommandId::UserGuide, CommandId::OrderingInformation, CommandId::Community,
                                    CommandId::EnterLicenseKeys, CommandId::About, CommandId::Exit})
        RunCommand(command);
    for (const char* url : {"", "http://x/a.zip", "http://x/a.png", "http://x/setup.exe", "http://x/a",
                            "http://x/a.html", "http://x/a.php?b=c.zip"})
        OpenUrl(url);
    EXPECT_THAT(Headless::record.urls,
                testing::ElementsAre(MakerSite + "/lettrinomanual", MakerSite + "/lettrinomanual#buy",
                                     MakerSite + "/community/", "http://x/a", "http://x/a.html",
                                     "http://x/a.php?b=c.zip"))
        << "only pages";
    EXPECT_EQ(Headless::record.dialogs, (std::vector{DialogId::LicenseKeys, DialogId::About}));
    EXPECT_EQ(Headless::record.closedWindows, 1);
}
