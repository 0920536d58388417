#include "apps/lettrino-cli/FontFiles.h"

#include "apps/lettrino-cli/GameFontSteps.h"
#include "document/SetText.h"
#include "formats/ExportFiles.h"
#include "formats/MPhotofontImporter.h"
#include "formats/MTextFile.h"
#include "formats/SiblingPath.h"
#include "formats/TextureFont.h"
#include "formats/WebFont.h"
#include "formats/WebName.h"
#include "formats/game/MGameFontImport.h"
#include "foundation/MFile.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"
#include "imaging/MPixelBudget.h"
#include "platform/headless/Headless.h"
#include "platform/text/MSystemFonts.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

bool IsFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

StepResult AddFaces(const std::string& file) {
    const MString path = FromSystem(file);
    if (!FileExists(path)) return StepFailure{file, "no such file"};
    std::string reason;
    if (!AddFontFile(path, &reason)) return StepFailure{file, reason};
    return {};
}

struct FontForm {
    const char16_t* extension; // as MString::GetExtension gives it
    bool (*load)(MColourFont& font, const MString& path);
    bool (*readHeader)(MTextFile& file);
};

constexpr FontForm forms[] = {
    {u"SM", [](MColourFont& font, const MString& path) { return font.Load(path); }, ReadTextureFontHeader},
    {u"JS", [](MColourFont& font, const MString& path) { return font.ImportJavascript(path); },
     [](MTextFile& file) { return file.NextLine() && file.GetLine().Equals(ScriptHeader()); }},
};

std::string WhyNotOpened(const MString& path, const FontForm& form) {
    if (!FileExists(path)) return FolderExists(path) ? "it is a folder" : "no such file";
    MTextFile text(path, false, false, MTextEncoding::Ansi);
    if (!text.ok) return "it can't be opened";
    if (!form.readHeader(text)) return "it is no font of this form: its first line is not the header";
    const MString picture = SiblingPath(path, "png");
    const MString refusal = TakePixelRefusal();
    if (!refusal.IsEmpty()) return "its picture " + ToSystem(picture) + " can't be read: " + ToSystem(refusal);
    return FileExists(picture) ? "its picture " + ToSystem(picture) + " can't be read"
                               : "its picture is not there";
}

// A folder of this run's own for the pictures that an import unpacks.
class TemporaryFolder {
public:
    fs::path path;

    TemporaryFolder() {
        std::error_code error; // the folder that the user's environment names need not exist
        const fs::path parent = fs::temp_directory_path(error);
        std::string name = (parent / "lettrino-XXXXXX").string();
        if (!error && mkdtemp(name.data())) path = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        if (!path.empty()) fs::remove_all(path, error);
    }
};

StepResult OpenPhotofont(Run& run, const std::string& file, const MString& path) {
    if (!FileExists(path)) return StepFailure{file, FolderExists(path) ? "it is a folder" : "no such file"};
    const TemporaryFolder temporary;
    if (temporary.path.empty()) return StepFailure{file, "there is no place for temporary files"};
    run.choices.settings.Path(MPathKind::Temporary) = FromSystemPath(temporary.path);
    run.font.reset(); // a fresh document, as in the window
    MColourFont& font = run.FontOrNew();
    const bool imported = MPhotofontImporter(font.Owner).Import(path, &font);
    run.choices.settings.Path(MPathKind::Temporary) = MString();
    if (!imported) return StepFailure{file, "it can't be opened"};
    if (const MString refusal = TakePixelRefusal(); !refusal.IsEmpty())
        return StepFailure{file, "one of its pictures was not read: " + ToSystem(refusal)};
    if (!font.Repack()) return StepFailure{file, "its glyphs don't fit a picture that memory can hold"};
    return {};
}

StepResult Open(Run& run, const std::string& file) {
    const MString path = FullPath(FromSystem(file)); // the picture is also sought above the file's folder
    if (ExtensionOf(path).Equals(u"PHF")) return OpenPhotofont(run, file, path);
    if (IsGameFontExtension(ExtensionOf(path))) return OpenGameFont(run, file, path);
    const auto form = std::ranges::find_if(
        forms, [extension = ExtensionOf(path)](const FontForm& f) { return extension.Equals(f.extension); });
    if (form == std::end(forms))
        return StepFailure{
            file, "fonts are opened from .sm, .js and .phf files, and from .fnt, .xml, .bin and .json"};
    MColourFont& font = run.FontOrNew();
    font.Clear();
    // The import is a success for the program even where the header is wrong.
    const std::size_t told = Headless::record.messages.size();
    if (!form->load(font, path) || Headless::record.messages.size() != told) {
        return StepFailure{file, WhyNotOpened(path, *form)};
    }
    if (!font.Repack()) return StepFailure{file, "its glyphs don't fit a picture that memory can hold"};
    return {};
}

// Why `file` can't be written, which makes the `targets`: its folder is missing, or one of them stands there
// and can't be written over. What is looked at after writing would be the old one then.
StepResult RefuseTargets(const std::string& file, const std::vector<MString>& targets) {
    const fs::path folder = PlaceToWrite(FullPath(FromSystem(file))).parent_path();
    if (!IsFolder(folder)) return StepFailure{file, "there is no folder " + folder.string()};
    for (const MString& target : targets) {
        std::error_code error;
        const fs::path path = PlaceToWrite(target);
        if (!fs::exists(path, error) || (!IsReadOnly(target) && access(path.c_str(), W_OK) == 0)) continue;
        return StepFailure{file, path.string() + " can't be written over"};
    }
    return {};
}

// What could not be written, if anything. Several reasons are joined by `separator`.
StepResult Unwritten(const std::string& file, const MWriteFailures& failures, const std::string& separator) {
    std::string reasons;
    for (const MWriteFailure& failure : failures) {
        if (!reasons.empty()) reasons += separator;
        reasons += ToSystem(failure.path) + " could not be written: " + ToSystem(failure.reason);
    }
    if (reasons.empty()) return {};
    return StepFailure{file, reasons};
}

// A line for each of many files, all like the first one.
std::string NextLine(const char* step, const std::string& file) {
    return std::string("\nlettrino-cli: ") + step + ": " + file + ": ";
}

StepResult Save(MColourFont& font, const std::string& file) {
    const MString path = FullPath(FromSystem(file)); // the font file records its picture's full path
    const MString text = SiblingPath(path, "sm");
    const MString picture = SiblingPath(path, "png");
    if (StepResult failure = RefuseTargets(file, {text, picture})) return failure;
    MWriteFailures failures;
    if (!font.Save(path, &failures))
        return StepFailure{file, "the font has no picture: there was no memory for it"};
    return Unwritten(file, failures, "; ");
}

StepResult SaveGlyphs(MColourFont& font, const std::string& file) {
    const MString folder = FullPath(FromSystem(file));
    if (!FolderExists(folder)) return StepFailure{file, "there is no such folder"};
    MWriteFailures failures;
    const bool anyWritten = font.ExportSingleFiles(JoinPath(folder, "glyph"), &failures);
    if (StepResult failure = Unwritten(file, failures, NextLine("--single-files", file))) return failure;
    if (anyWritten) return {};
    return StepFailure{file, font.GlyphCount() == 0 ? "the font has no glyphs" : "no file could be written"};
}

void WarnOfName(const std::string& step, const MString& path) {
    const std::string_view trouble = WebNameTrouble(path);
    if (trouble.empty()) return;
    std::fprintf(stderr, "lettrino-cli: %s: warning: the name '%s' %s; the page will not work\n", step.c_str(),
                 ToSystem(WebFontName(path)).c_str(), std::string(trouble).c_str());
}

StepResult ExportPage(MColourFont& font, const std::string& file, bool minimal) {
    if (file.find(' ') != std::string::npos)
        return StepFailure{file, "a font for the web takes no blanks in its path"};
    const MString path = FullPath(FromSystem(file));
    const MString picture = SiblingPath(path, "png");
    const MString script = SiblingPath(path, "js");
    const MString page = SiblingPath(path, "html");
    if (StepResult failure = RefuseTargets(file, {picture, script, page})) return failure;
    if (!IsHarmlessWebName(path)) {
        return StepFailure{file,
                           "on the page its name could run as script or markup; letters, digits, '_', '-', '$' "
                           "and dots are safe"};
    }
    WarnOfName(minimal ? "--minimal-html" : "--html", path);
    MWriteFailures failures;
    const bool exported = font.ExportHtml(path, minimal, &failures);
    if (StepResult failure = Unwritten(file, failures, "; ")) return failure;
    if (!exported) return StepFailure{file, "the font has no picture: there was no memory for it"};
    if (!FileExists(page)) return StepFailure{file, "the page is missing beside the program, in Media/www"};
    if (!FileExists(JoinPath(FolderOf(path), "lettrino-1.0.js"))) {
        return StepFailure{file, "the run-time script is missing beside the program, in Media/www"};
    }
    return {};
}

StepResult DrawText(Run& run, MColourFont& font, const std::string& text, const std::string& file) {
    const MString path = FullPath(FromSystem(file));
    MPicture picture = SetText(font, FromSystem(text), run.choices.settings.BackgroundColour);
    if (!picture.IsValid()) return StepFailure{file, "the text is empty in this font"};
    MSafeFile written = picture.PrepareSave(path);
    picture.Free();
    if (written.Place()) return {};
    return StepFailure{file, "the picture could not be written: " + ToSystem(written.Failure())};
}

// A text as editors write it: UTF-8 also without its mark.
MString ReadUtf8Text(const MString& path) {
    MString text = MTextFile::ReadWholeFile(path);
    const bool bytes = std::ranges::all_of(text.View(), [](char16_t unit) { return unit < 256; });
    if (!bytes) return text;
    std::string narrow(text.View().begin(), text.View().end());
    const MString decoded(narrow.c_str(), 65001);
    return decoded.Contains(u'\uFFFD') ? text : decoded;
}

StepResult ReadNames(Run& run, const std::string& file) {
    const MString path = FromSystem(file);
    if (!FileExists(path)) return StepFailure{file, "no such file"};
    constexpr std::int64_t most = 1 << 20;
    if (GetFileSize(path) > most) return StepFailure{file, "it is no list of names, but more than 1 MB"};
    run.choices.settings.LetterCubesNames = ReadUtf8Text(path);
    if (run.choices.settings.LetterCubesNames.IsEmpty())
        return StepFailure{file, "it is empty, or can't be read"};
    return {};
}

// The path with no folder that wasn't typed, since the names of cubes are cut at the first dot of it all:
// "./a.png" is "a.png". What climbs with ".." becomes a full path.
MString PathAsTyped(const std::string& file) {
    const fs::path typed = ToSystemPath(FromSystem(file));
    std::error_code error;
    const bool climbs = std::ranges::find(typed, fs::path("..")) != typed.end();
    return FromSystemPath(climbs ? fs::weakly_canonical(typed, error) : typed.lexically_normal());
}

StepResult ExportCubes(MColourFont& font, const std::string& file) {
    const MString path = PathAsTyped(file);
    if (StepResult failure = RefuseTargets(file, LetterCubePaths(font, path))) return failure;
    auto& told = Headless::record.messages;
    const std::size_t before = told.size();
    MWriteFailures failures;
    const bool exported = font.ExportLetterCubes(path, &failures);
    const std::string text = told.size() > before ? ToSystem(told.back().text) : "the list of names is empty";
    if (told.size() > before && told.back().icon == Desktop::Icon::Error) return StepFailure{file, text};
    std::printf("%s\n", text.substr(0, text.find("\n\n")).c_str());
    if (StepResult failure = Unwritten(file, failures, NextLine("--cubes", file))) return failure;
    if (exported) return {};
    return StepFailure{file, "there was no memory for the pictures"};
}

} // namespace

std::optional<StepAction> PrepareFontFile(StepArguments arguments) {
    return [file = arguments[0]](Run&) { return AddFaces(file); };
}

std::optional<StepAction> PrepareOpen(StepArguments arguments) {
    return [file = arguments[0]](Run& run) { return Open(run, file); };
}

std::optional<StepAction> PrepareSave(StepArguments arguments) {
    return OnFont([file = arguments[0]](Run&, MColourFont& font) { return Save(font, file); });
}

std::optional<StepAction> PrepareSingleFiles(StepArguments arguments) {
    return OnFont([file = arguments[0]](Run&, MColourFont& font) { return SaveGlyphs(font, file); });
}

std::optional<StepAction> PrepareHtml(StepArguments arguments) {
    return OnFont([file = arguments[0]](Run&, MColourFont& font) { return ExportPage(font, file, false); });
}

std::optional<StepAction> PrepareMinimalHtml(StepArguments arguments) {
    return OnFont([file = arguments[0]](Run&, MColourFont& font) { return ExportPage(font, file, true); });
}

std::optional<StepAction> PrepareText(StepArguments arguments) {
    return OnFont([text = arguments[0], file = arguments[1]](Run& run, MColourFont& font) {
        return DrawText(run, font, text, file);
    });
}

std::optional<StepAction> PrepareNames(StepArguments arguments) {
    return [file = arguments[0]](Run& run) { return ReadNames(run, file); };
}

std::optional<StepAction> PrepareCubes(StepArguments arguments) {
    return OnFont([file = arguments[0]](Run&, MColourFont& font) { return ExportCubes(font, file); });
}
