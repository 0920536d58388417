#include "DocumentFixture.h"
#include "TemporaryFolder.h"
#include "Text.h"
#include "document/ChooseFile.h"
#include "imaging/MFileTypes.h"

#include <tuple>
#include <utility>

using SettingsTest = DocumentTest;

TEST_F(SettingsTest, TheSpaceIsNoSelectedCharacter) {
    EXPECT_EQ(settings.SelectedCount(), 26);
    settings.Selected[32] = settings.Selected[255] = 1;
    EXPECT_EQ(settings.SelectedCount(), 27);
    EXPECT_TRUE(std::ranges::all_of(settings.Paths, &MString::IsEmpty)) << "the defaults touch no folder";
}

TEST_F(SettingsTest, TheWindowFitsTheScreen) {
    const auto edges = [](const Desktop::Rect& r) { return std::tuple(r.left, r.top, r.right, r.bottom); };
    for (const auto& [screen, window] :
         {std::pair(Desktop::Rect{0, 0, 1920, 1080}, Desktop::Rect{32, 32, 1781, 1016}),
          {{0, 0, 1024, 768}, {32, 32, 992, 704}}}) {
        Headless::script.primaryScreen = Headless::script.virtualScreen = screen;
        settings.UseDefaultWindowRect();
        EXPECT_EQ(edges(settings.WindowRect), edges(window));
    }
    Headless::script.virtualScreen = {-1000, 0, 1000, 800};
    const std::pair<Desktop::Rect, Desktop::Rect> cases[] = {
        {{-32000, -32000, -31840, -31972}, {-1000, 0, -680, 240}}, // as a minimised window has it
        {{900, 700, 1300, 1000}, {600, 500, 1000, 800}},
        {{1000, 800, 1400, 1100}, {-1000, 0, -600, 300}},
        {{0, 0, 5000, 5000}, {-1000, 0, 1000, 800}},
        {{-2147483647, 0, 2147483647, 10}, {-1000, 0, 1000, 240}},
    };
    for (const auto& [given, clamped] : cases) {
        settings.WindowRect = given;
        settings.ClampWindowRect();
        EXPECT_EQ(edges(settings.WindowRect), edges(clamped)) << given.left;
    }
}

TEST_F(SettingsTest, ChosenFilesAreRemembered) {
    MString& remembered = settings.Path(MPathKind::SavePicture);
    remembered = "/pictures";
    EXPECT_TRUE(ChooseFile(AnyWindow(), MPathKind::SavePicture).IsEmpty()); // cancelled
    EXPECT_EQ(Narrow(Headless::record.fileDialogs.back().folder), "/pictures");
    EXPECT_EQ(Narrow(remembered), "/pictures");
    Headless::script.files = {"/out.d/a.jpg", "/fonts/x.sm"};
    EXPECT_EQ(Narrow(ChooseFile(AnyWindow(), MPathKind::SavePicture)), "/out.d/a.png");
    EXPECT_EQ(Narrow(ChooseFile(AnyWindow(), MPathKind::OpenFont)), "/fonts/x.sm");
    EXPECT_EQ(Narrow(remembered), "/out.d/a.png");
    ChooseFile(AnyWindow(), MPathKind::SavePicture);
    EXPECT_EQ(Narrow(Headless::record.fileDialogs.back().folder), "/out.d");
    const std::size_t asked = Headless::record.fileDialogs.size();
    EXPECT_TRUE(ChooseFile(nullptr, MPathKind::OpenFont).IsEmpty());
    EXPECT_TRUE(ChooseFile(AnyWindow(), MPathKind::Temporary).IsEmpty());
    EXPECT_EQ(Headless::record.fileDialogs.size(), asked);
}

TEST_F(SettingsTest, FileDialogsOfferWhatTheTableOfFileTypesHolds) {
    const auto filter = [](MPathKind kind) {
        ChooseFile(AnyWindow(), kind);
        const Desktop::FileDialog& dialog = Headless::record.fileDialogs.back();
        EXPECT_EQ(dialog.filters.size(), 1U);
        return Narrow(dialog.title) + (dialog.save ? ", to write|" : "|") + Narrow(dialog.filters[0].name) +
               "|" + Narrow(dialog.filters[0].pattern);
    };
    const std::string pictures =
        "*.BMP;*.DDS;*.GIF;*.HEIC;*.HEIF;*.JFIF;*.JPE;*.JPEG;*.JPG;*.PNG;*.TGA;*.TIF;*.TIFF";
    const std::pair<MPathKind, std::string> cases[] = {
        {MPathKind::OpenFont, "Open Font|Showmarquee colour fonts (*.SM)|*.SM"},
        {MPathKind::SaveFont, "Save Font, to write|Showmarquee colour fonts (*.SM)|*.SM"},
        {MPathKind::SavePicture, "Save Picture, to write|PNG Files (*.PNG)|*.PNG"},
        {MPathKind::SaveHtml, "Save HTML, to write|HTML Files (*.HTML)|*.HTML"},
        {MPathKind::ImportPhotofont, "Import Photofont|PHF Files (*.PHF)|*.PHF"},
        {MPathKind::ImportHtml, "Import HTML|Javascript Files (*.JS)|*.JS"},
        {MPathKind::SaveGameFont, "Export as game font, to write|FNT Files (*.FNT)|*.FNT"},
        {MPathKind::ImportGameFont,
         "Import game font|Game fonts (*.fnt;*.xml;*.bin;*.json)|*.fnt;*.xml;*.bin;*.json"},
        {MPathKind::SaveWebFont, "Export as web font, to write|Web fonts (*.woff2;*.ttf)|*.woff2;*.ttf"},
        // Also where the table was not built, as in programs without a window.
        {MPathKind::FindPicture, "Load Picture|Picture files (" + pictures + ")|" + pictures},
    };
    for (const auto& [kind, text] : cases)
        EXPECT_EQ(filter(kind), text);
    ASSERT_TRUE(FileTypes.BuildFileTypes());
    FileTypes.AddExtension(14, "zzz");
    EXPECT_EQ(filter(MPathKind::GlyphPicture),
              "Load Picture|Picture files (" + pictures + ";*.ZZZ)|" + pictures + ";*.ZZZ");
    FileTypes = {};
}
