#include "apps/lettrino-cli/FontFiles.h"

#include "formats/MTextFile.h"
#include "foundation/MFile.h"
#include "foundation/MFolders.h"
#include "foundation/MUtf8.h"
#include "platform/text/MSystemFonts.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

namespace {

namespace fs = std::filesystem;

MString Absolute(const std::string& file) {
    std::error_code error;
    const fs::path absolute = fs::absolute(file, error);
    return FromSystemPath(error ? fs::path(file) : absolute);
}

std::string WhyNotOpened(const MString& path) {
    if (!FileExists(path)) return FolderExists(path) ? "it is a folder" : "no such file";
    MTextFile text(path, false, false, MTextEncoding::Ansi);
    if (!text.ok) return "it can't be opened";
    const bool headerStands = text.NextLine() && text.GetString(0).Equals(u"Showmarquee") &&
                              text.GetString(1).Equals(u"TextureFont");
    if (!headerStands) return "it is no texture font: its first line is not the header";
    MString picture = path;
    picture.SetExtension("png");
    return FileExists(picture) ? "its picture " + ToSystem(picture) + " can't be read"
                               : "its picture is neither beside it nor in ../Textures";
}

// A PNG that was written to its end closes with the chunk IEND (PNG, third edition, 11.2.5).
bool IsWholePng(const MString& path) {
    static constexpr std::string_view end("\0\0\0\0IEND\xAE\x42\x60\x82", 12);
    MFile file(path, false, false);
    std::array<char, end.size()> tail{};
    return file.Seek(file.GetSize() - std::int64_t{end.size()}) && file.Read(tail.data(), tail.size()) &&
           std::string_view(tail.data(), tail.size()) == end;
}

bool HasAllRecords(const MString& path, const MColourFont& font) {
    constexpr std::int32_t others = 4; // the header, FSZ, TEX and SPA
    const auto pairs = std::ranges::count_if(font.Kerning, [](const auto& pair) { return pair.Amount != 0; });
    MTextFile text(path, false, false, MTextEncoding::Ansi);
    std::int64_t lines = 0;
    while (text.NextLine()) ++lines;
    return lines == others + font.GlyphCount() + pairs;
}

bool IsFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

StepResult AddFaces(const std::string& file) {
    const MString path = FromSystem(file);
    if (!FileExists(path)) return StepFailure{file, "no such file"};
    if (!AddFontFile(path)) return StepFailure{file, "it is no font"};
    return {};
}

StepResult Open(Run& run, const std::string& file) {
    const MString path = FromSystem(file);
    if (!path.GetExtension().Equals(u"SM")) return StepFailure{file, "fonts are opened from .sm files"};
    MColourFont& font = run.FontOrNew();
    font.Clear();
    if (!font.Load(path)) return StepFailure{file, WhyNotOpened(path)};
    if (!font.Repack()) return StepFailure{file, "its glyphs don't fit a picture that memory can hold"};
    return {};
}

StepResult Save(MColourFont& font, const std::string& file) {
    const MString path = Absolute(file); // the font file records its picture's full path
    const fs::path folder = ToSystemPath(path).parent_path();
    if (!IsFolder(folder)) return StepFailure{file, "there is no folder " + folder.string()};
    if (!font.Save(path)) return StepFailure{file, "the font has no picture: there was no memory for it"};

    // Saving is a success for the program even where nothing could be written.
    MString text = path;
    text.SetExtension("sm");
    MString picture = path;
    picture.SetExtension("png");
    if (IsWholePng(picture) && HasAllRecords(text, font)) return {};
    DeleteFile(text, false, false);
    DeleteFile(picture, false, false);
    return StepFailure{file, "it and its picture could not be written"};
}

StepResult SaveGlyphs(MColourFont& font, const std::string& file) {
    const MString folder = Absolute(file);
    if (!IsFolder(ToSystemPath(folder))) return StepFailure{file, "there is no such folder"};
    if (font.ExportSingleFiles(JoinPath(folder, "glyph"))) return {};
    return StepFailure{file, font.GlyphCount() == 0 ? "the font has no glyphs" : "no file could be written"};
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
