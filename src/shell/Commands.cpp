#include "shell/Commands.h"

#include "document/ChangeGlyphHeight.h"
#include "document/ChooseFile.h"
#include "document/MSettings.h"
#include "formats/ExportFiles.h"
#include "formats/MPhotofontImporter.h"
#include "formats/WebFont.h"
#include "formats/WebName.h"
#include "formats/game/MGameFontExport.h"
#include "formats/game/MGameFontImport.h"
#include "formats/webfont/MWebFontExport.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"
#include "foundation/Product.h"
#include "glyphs/PictureSeries.h"
#include "imaging/MPixelBudget.h"
#include "shell/CurrentFont.h"
#include "shell/OpenFontFile.h"
#include "shell/Replacing.h"
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
    MString typed;
    const MString path = ChooseFile(MainWindow, MPathKind::SaveFont, &typed);
    if (path.IsEmpty() || !font.Picture.IsValid()) return;
    // The picture of a font belongs to it: who was asked about the one was asked about both.
    const bool asked = typed.Equals(path) && IsThere(path);
    if (!asked && !MayReplace(FontPaths(path))) return;
    MWriteFailures failures;
    font.Save(path, &failures);
    TellFailures(failures);
    Tell("Colour font successfully saved as:\n\n" + Quoted(path));
}

// Of a name that could do harm, or under which the page would draw nothing.
bool InsistsOnName(const MString& path) {
    MString warning;
    if (const std::string_view trouble = WebNameTrouble(path); !IsHarmlessWebName(path)) {
        warning = "WARNING: on the page the name \"" + FileNameOf(path) +
                  "\" could run as script or markup, for everybody who opens it.\n\n"
                  "Letters, digits, \"_\", \"-\", \"$\" and dots are safe.";
    } else if (!trouble.empty()) {
        warning = "WARNING: the name \"" + WebFontName(path) + "\" " + FromSystem(trouble) +
                  ". The page will not work.\n\nA name of letters from A to Z, digits and \"_\" is best.";
    } else {
        return true;
    }
    return Desktop::ShowMessage(MainWindow, warning + "\n\nWould you like to export it all the same?",
                                ProductName, Desktop::Buttons::YesNo,
                                Desktop::Icon::Warning) == Desktop::Answer::Yes;
}

void ExportAsHtml(MColourFont& font) {
    MString typed;
    const MString path = ChooseFile(MainWindow, MPathKind::SaveHtml, &typed);
    if (path.IsEmpty()) return;
    // The name becomes part of an address.
    if (path.Contains(u' ')) {
        Desktop::ShowMessage(MainWindow, "Do not use spaces in your font name", ProductName,
                             Desktop::Buttons::Ok, Desktop::Icon::Error);
        return;
    }
    if (!InsistsOnName(path)) return;
    const auto answer =
        Desktop::ShowMessage(MainWindow, "Would you like to have a minimal HTML page?", ProductName,
                             Desktop::Buttons::YesNoCancel, Desktop::Icon::Question);
    if (answer == Desktop::Answer::Cancel) return;
    const bool minimal = answer == Desktop::Answer::Yes;
    if (!font.Picture.IsValid() || !MayReplace(PagePaths(path, minimal), typed)) return;
    MWriteFailures failures;
    const bool exported = font.ExportHtml(path, minimal, &failures);
    TellFailures(failures);
    if (exported) Tell("Colour font successfully exported as:\n\n" + Quoted(path));
}

void ExportAsSingleFiles(MColourFont& font) {
    MString typed;
    const MString path = ChooseFile(MainWindow, MPathKind::SavePicture, &typed);
    if (path.IsEmpty() || !MayReplace(SingleFilePaths(font, path), typed)) return;
    MWriteFailures failures;
    const bool exported = font.ExportSingleFiles(path, &failures);
    TellFailures(failures);
    if (exported) Tell("Colour font successfully exported as single files!");
}

void ExportAsCubes(MColourFont& font) {
    if (!Desktop::RunDialog(MainWindow, DialogId::LetterCubesNames)) return;
    MString typed;
    const MString path = ChooseFile(MainWindow, MPathKind::SavePicture, &typed);
    if (path.IsEmpty() || !MayReplace(LetterCubePaths(font, path), typed)) return;
    MWriteFailures failures;
    const bool exported = font.ExportLetterCubes(path, &failures);
    TellFailures(failures);
    if (exported) Tell("Successfully created letter cubes cut-outs!");
}

void TellFailure(const std::string& reason) {
    Desktop::ShowMessage(MainWindow, FromSystem(reason), ProductName, Desktop::Buttons::Ok,
                         Desktop::Icon::Error);
}

// What is repaired, and what is left to do, stands in the box too: the file's name may have been changed by it.
void ExportAsGameFont(MColourFont& font) {
    if (!Desktop::RunDialog(MainWindow, DialogId::ExportGameFont)) return;
    MString typed;
    const MString path = ChooseFile(MainWindow, MPathKind::SaveGameFont, &typed);
    if (path.IsEmpty()) return;
    const MFontDescription description = DescribeFont(font, Settings->GlyphHeight);
    const MGameFontPlan plan = PlanGameFont(description, GameFontOptions(*Settings), GameFontName(path));
    if (!MayReplace(GameFontPaths(plan, path), typed)) return;
    if (const std::string failure = WriteGameFont(plan, path, MainWindow); !failure.empty())
        return TellFailure(failure);
    MString text = "Colour font successfully exported as:\n\n" + Quoted(path);
    for (const std::string& line : FindingLines(plan.Findings))
        text += "\n\n" + FromSystem(line);
    Tell(text);
}

void ExportAsWebFont(MColourFont& font) {
    MString typed;
    const MString path = ChooseFile(MainWindow, MPathKind::SaveWebFont, &typed);
    if (path.IsEmpty() || !MayReplace({path}, typed)) return;
    const MWebFontForm form = ExtensionOf(path).Equals(u"TTF") ? MWebFontForm::TrueType : MWebFontForm::Woff2;
    const MFontDescription description = DescribeFont(font, Settings->GlyphHeight);
    const MWebFontResult result = ExportWebFont(description, path, form, {}, MainWindow);
    if (!result.Reason.empty()) return TellFailure(ToSystem(path) + ": " + result.Reason);
    TellFailures(result.Failures);
    if (!result.Ok()) return;
    MString text = "Colour font successfully exported as:\n\n" + Quoted(path);
    if (!result.LostCharacters.empty()) text += "\n\nCodes that no font file can name are left out.";
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
    const bool accepted = Desktop::RunDialog(MainWindow, DialogId::AddPicture);
    RestorePixelBudget(); // the dialog has shown pictures
    if (!accepted) return;
    AddChosenPictures(font, isNew);
    font.Draw();
}

// A font that nothing came into is none.
void AddSheet() {
    const bool isNew = !CurrentFont;
    MColourFont& font = CurrentOrNewFont();
    const bool accepted = Desktop::RunDialog(MainWindow, DialogId::AddSheet);
    RestorePixelBudget(); // the dialog has shown pictures
    if (accepted) {
        RepackAndDraw(font);
    } else if (isNew) {
        DestroyCurrentFont();
    }
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

void Run(CommandId command) {
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
    case CommandId::ExportWebFont: return OnCurrentFont(ExportAsWebFont);
    case CommandId::ImportGameFont: return ImportGameFontFile();
    case CommandId::Exit: return Desktop::CloseWindow(MainWindow);
    case CommandId::AddCharacters: return AddCharacters();
    case CommandId::AddPicture: return AddPicture();
    case CommandId::AddSheet: return AddSheet();
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

} // namespace

void RunCommand(CommandId command) {
    RestorePixelBudget();
    Run(command);
    const MString refusal = TakePixelRefusal();
    if (refusal.IsEmpty()) return;
    Desktop::ShowMessage(MainWindow, "A picture was not read: " + refusal, ProductName, Desktop::Buttons::Ok,
                         Desktop::Icon::Error);
}
