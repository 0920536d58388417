#include "shell/Commands.h"

#include "document/ChangeGlyphHeight.h"
#include "document/ChooseFile.h"
#include "document/MSettings.h"
#include "formats/MPhotofontImporter.h"
#include "formats/game/MGameFontExport.h"
#include "formats/game/MGameFontImport.h"
#include "foundation/MUtf8.h"
#include "foundation/Product.h"
#include "glyphs/PictureSeries.h"
#include "shell/CurrentFont.h"
#include "shell/OpenFontFile.h"
#include "shell/Shell.h"

namespace {

using Desktop::DialogId;

void Tell(const MString& text) {
    Desktop::ShowMessage(MainWindow, text, ProductName, Desktop::Buttons::Ok, Desktop::Icon::Information);
}

MString Quoted(const MString& path) {
    return "\"" + path + "\"";
}

// The old font stays if the user cancels.
void New() {
    if (!Desktop::RunDialog(MainWindow, DialogId::AddGlyphs)) return;
    MColourFont& font = ReplaceCurrentFont();
    font.GenerateSelectedCharacters();
    RepackAndDraw(font);
}

void SaveAs(MColourFont& font) {
    const MString path = ChooseFile(MainWindow, MPathKind::SaveFont);
    if (path.IsEmpty() || !font.Save(path)) return;
    Tell("Colour font successfully saved as:\n\n" + Quoted(path));
}

void ExportAsHtml(MColourFont& font) {
    const MString path = ChooseFile(MainWindow, MPathKind::SaveHtml);
    if (path.IsEmpty()) return;
    // The name becomes part of an address.
    if (path.Contains(u' ')) {
        Desktop::ShowMessage(MainWindow, "Do not use spaces in your font name", ProductName,
                             Desktop::Buttons::Ok, Desktop::Icon::Error);
        return;
    }
    const auto answer =
        Desktop::ShowMessage(MainWindow, "Would you like to have a minimal HTML page?", ProductName,
                             Desktop::Buttons::YesNoCancel, Desktop::Icon::Question);
    if (answer == Desktop::Answer::Cancel) return;
    if (font.ExportHtml(path, answer == Desktop::Answer::Yes))
        Tell("Colour font successfully exported as:\n\n" + Quoted(path));
}

void ExportAsSingleFiles(MColourFont& font) {
    const MString path = ChooseFile(MainWindow, MPathKind::SavePicture);
    if (!path.IsEmpty() && font.ExportSingleFiles(path))
        Tell("Colour font successfully exported as single files!");
}

void ExportAsCubes(MColourFont& font) {
    if (!Desktop::RunDialog(MainWindow, DialogId::LetterCubesNames)) return;
    const MString path = ChooseFile(MainWindow, MPathKind::SavePicture);
    if (!path.IsEmpty() && font.ExportLetterCubes(path)) Tell("Successfully created letter cubes cut-outs!");
}

void TellFailure(const std::string& reason) {
    Desktop::ShowMessage(MainWindow, FromSystem(reason), ProductName, Desktop::Buttons::Ok,
                         Desktop::Icon::Error);
}

// What is repaired, and what is left to do, stands in the box too: the file's name may have been changed by it.
void ExportAsGameFont(MColourFont& font) {
    if (!Desktop::RunDialog(MainWindow, DialogId::ExportGameFont)) return;
    const MString path = ChooseFile(MainWindow, MPathKind::SaveGameFont);
    if (path.IsEmpty()) return;
    const MFontDescription description = DescribeFont(font, Settings->GlyphHeight);
    const MGameFontPlan plan = PlanGameFont(description, GameFontOptions(*Settings), GameFontName(path));
    if (const std::string failure = WriteGameFont(plan, path, MainWindow); !failure.empty())
        return TellFailure(failure);
    MString text = "Colour font successfully exported as:\n\n" + Quoted(path);
    for (const std::string& line : FindingLines(plan.Findings))
        text += "\n\n" + FromSystem(line);
    Tell(text);
}

// A font that can't be opened leaves the old one alone.
void ImportGameFontFile() {
    const MString path = ChooseFile(MainWindow, MPathKind::ImportGameFont);
    if (path.IsEmpty()) return;
    const bool isNew = !CurrentFont;
    MColourFont& font = CurrentOrNewFont();
    const MGameFontImport import = ImportGameFont(font, path);
    if (!import.Reason.empty()) {
        if (isNew) DestroyCurrentFont();
        return TellFailure(ToSystem(path) + ": " + import.Reason);
    }
    RepackAndDraw(font);
    MString text;
    for (const std::string& note : import.Notes)
        text += (text.IsEmpty() ? "" : "\n\n") + FromSystem(note);
    if (!text.IsEmpty()) Tell(text);
}

// The old font is gone before the user is asked for a file.
void ImportPhotofont() {
    MColourFont& font = ReplaceCurrentFont();
    const MString path = ChooseFile(MainWindow, MPathKind::ImportPhotofont);
    if (!path.IsEmpty() && MPhotofontImporter(MainWindow).Import(path, &font)) RepackAndDraw(font);
}

void AddCharacters() {
    MColourFont& font = CurrentOrNewFont();
    if (!Desktop::RunDialog(MainWindow, DialogId::AddGlyphs)) return;
    font.GenerateSelectedCharacters();
    RepackAndDraw(font);
}

void AddPicture() {
    const bool isNew = !CurrentFont;
    MColourFont& font = CurrentOrNewFont();
    if (!Desktop::RunDialog(MainWindow, DialogId::AddPicture)) return;
    AddChosenPictures(font, isNew);
    font.Draw();
}

// Spacings and metrics don't touch the picture; only a deleted glyph does.
void EditGlyphs(MColourFont& font) {
    const std::int32_t before = font.GlyphCount();
    if (Desktop::RunDialog(MainWindow, DialogId::GlyphEditor) && font.GlyphCount() != before)
        RepackAndDraw(font);
}

void EditKerning(MColourFont&) {
    Desktop::RunDialog(MainWindow, DialogId::KerningEditor);
}

void KernOptically(MColourFont&) {
    Desktop::RunDialog(MainWindow, DialogId::OpticalKerning);
}

void AskGlyphHeight(MColourFont& font) {
    const std::int32_t before = Settings->GlyphHeight;
    if (before < 1 || !Desktop::RunDialog(MainWindow, DialogId::GlyphHeight)) return;
    if (ChangeGlyphHeight(font, before)) font.Draw();
}

void RemoveNonAscii(MColourFont& font) {
    font.RemoveNonAscii();
    RepackAndDraw(font);
}

void TrimVertically(MColourFont& font) {
    font.TrimVertically();
    RepackAndDraw(font);
}

void SetBackgroundColour() {
    if (!Desktop::ChooseColour(MainWindow, Settings->BackgroundColour)) return;
    if (CurrentFont) CurrentFont->Draw();
}

void OnCurrentFont(void (*command)(MColourFont&)) {
    if (CurrentFont) command(*CurrentFont);
}

} // namespace

void RunCommand(CommandId command) {
    switch (command) {
    case CommandId::New: return New();
    case CommandId::Open: return OpenFontFile(ChooseFile(MainWindow, MPathKind::OpenFont));
    case CommandId::SaveAs: return OnCurrentFont(SaveAs);
    case CommandId::ImportHtml: return OpenFontFile(ChooseFile(MainWindow, MPathKind::ImportHtml));
    case CommandId::ImportPhotofont: return ImportPhotofont();
    case CommandId::ExportHtml: return OnCurrentFont(ExportAsHtml);
    case CommandId::ExportSingleFiles: return OnCurrentFont(ExportAsSingleFiles);
    case CommandId::ExportCubes: return OnCurrentFont(ExportAsCubes);
    case CommandId::ExportGameFont: return OnCurrentFont(ExportAsGameFont);
    case CommandId::ImportGameFont: return ImportGameFontFile();
    case CommandId::Exit: return Desktop::CloseWindow(MainWindow);
    case CommandId::AddCharacters: return AddCharacters();
    case CommandId::AddPicture: return AddPicture();
    case CommandId::GlyphsEditor: return OnCurrentFont(EditGlyphs);
    case CommandId::KerningEditor: return OnCurrentFont(EditKerning);
    case CommandId::OpticalKerning: return OnCurrentFont(KernOptically);
    case CommandId::ChangeGlyphHeight: return OnCurrentFont(AskGlyphHeight);
    case CommandId::RemoveNonAscii: return OnCurrentFont(RemoveNonAscii);
    case CommandId::TrimVertically: return OnCurrentFont(TrimVertically);
    case CommandId::SetBackgroundColour: return SetBackgroundColour();
    case CommandId::EnterLicenseKeys: Desktop::RunDialog(MainWindow, DialogId::LicenseKeys); return;
    case CommandId::UserGuide: return OpenUrl(MakerSite + "/lettrinomanual");
    case CommandId::OrderingInformation: return OpenUrl(MakerSite + "/lettrinomanual#buy");
    case CommandId::Community: return OpenUrl(MakerSite + "/community/");
    case CommandId::About: Desktop::RunDialog(MainWindow, DialogId::About); return;
    }
}
