#include "formats/MFontPair.h"

#include "formats/MTextFile.h"
#include "formats/SiblingPath.h"
#include "formats/TextureFont.h"
#include "foundation/MFolders.h"

#include <array>
#include <optional>

namespace fs = std::filesystem;

namespace {

// Two: one may be that of a save that was interrupted, until the next one takes its place.
constexpr std::array secondNames{".saved-0", ".saved-1"};

// ".demo.saved-0.png" for "demo.png".
fs::path SecondName(const fs::path& picture, const char* mark) {
    constexpr std::size_t longest = 200; // a name close to the longest that file systems take is cut
    const std::string stem = picture.stem().string().substr(0, longest);
    return picture.parent_path() / ("." + stem + mark + picture.extension().string());
}

// The picture that a text of ours names, which it does in the third line.
MString NamedPicture(MTextFile& text) {
    if (!ReadTextureFontHeader(text) || !text.NextLine() || !text.NextLine()) return {};
    return text.GetString(0).Equals(u"TEX") ? text.GetString(1) : MString();
}

// Where a name leads, through all symbolic links. As given, if it leads nowhere.
fs::path RealPath(const MString& path) {
    std::error_code error;
    const fs::path given = FindExisting(path).value_or(ToSystemPath(path));
    const fs::path real = fs::canonical(given, error);
    return error ? given : real;
}

// The second name that the text has for the picture, if that is there. By its last part alone: the folder may
// have been moved since.
std::optional<fs::path> UnfinishedPicture(const MString& textPath, const fs::path& picture) {
    MTextFile text(textPath, false, false, MTextEncoding::Ansi);
    const fs::path named = ToSystemPath(FileNameOf(NamedPicture(text)));
    for (const char* mark : secondNames) {
        const fs::path second = SecondName(picture, mark);
        std::error_code error;
        if (second.filename() == named && fs::is_regular_file(second, error)) return second;
    }
    return std::nullopt;
}

// A second name that no text uses; of those that were left behind, the others go.
fs::path FreeSecondName(const fs::path& text, const fs::path& picture) {
    const auto used = UnfinishedPicture(FromSystemPath(text), picture);
    fs::path free;
    for (const char* mark : secondNames) {
        const fs::path second = SecondName(picture, mark);
        if (second == used) continue;
        std::error_code error;
        if (fs::exists(second, error)) RemoveFile(second);
        free = second;
    }
    return free;
}

bool Fail(const MSafeFile& file, MWriteFailures& failures) {
    failures.push_back({file.Path(), file.Failure()});
    return false;
}

bool CopyBytes(const fs::path& from, MSafeFile& to) {
    MFile source(FromSystemPath(from), false, false);
    std::array<std::uint8_t, 65536> piece;
    std::uint64_t done = 0;
    while (const std::uint32_t came = source.ReadSome(piece.data(), piece.size())) {
        if (!to.WriteAt(done, piece.data(), came)) return false;
        done += came;
    }
    return done != 0 && done == static_cast<std::uint64_t>(source.GetSize());
}

// The text as it stands, but for the name of the picture.
MSafeFile Renamed(const MString& textPath, const MString& picturePath) {
    MTextFile old(textPath, false, false, MTextEncoding::Ansi);
    MTextFile text(textPath, true, false, old.encoding);
    for (int line = 1; old.NextLine(); ++line) {
        if (line != 3) {
            text.EndLine(MString(old.RawLine()));
            continue;
        }
        text.WriteString("TEX");
        text.WriteString(picturePath);
        text.WriteInt(old.GetInt(2));
        text.WriteInt(old.GetInt(3));
        text.EndLine();
    }
    return text.Take();
}

// Steps 3 to 5.
bool PlaceUnderOwnNames(MSafeFile& picture, MSafeFile& text) {
    const fs::path pictureFolder = picture.Target().parent_path();
    if (!picture.Rename() || !FlushFolder(pictureFolder)) return false;
    if (!text.Rename() || !FlushFolder(text.Target().parent_path())) return false;
    // That of an interrupted save, whose text is replaced now, as well.
    for (const char* mark : secondNames)
        RemoveFile(SecondName(picture.Target(), mark));
    return true;
}

} // namespace

bool PlaceFontPair(MSafeFile picture, MSafeFile text, const MWriteFontText& writeText,
                   MWriteFailures& failures) {
    const bool pictureWritten = picture.Finish() || Fail(picture, failures);
    const bool textWritten = text.Finish() || Fail(text, failures);
    if (!pictureWritten || !textWritten) return false;

    const fs::path pictureFolder = picture.Target().parent_path();
    const fs::path textFolder = text.Target().parent_path();
    const MFolderLock lock({pictureFolder, textFolder});
    if (!lock.IsHeld()) {
        failures.push_back({text.Path(), "another program is writing into its folder"});
        return false;
    }
    const fs::path second = FreeSecondName(text.Target(), picture.Target());
    if (!LinkOrCopy(picture.Beside(), second)) {
        failures.push_back({picture.Path(), "there is no room for it beside the old one"});
        return false;
    }
    MSafeFile between = writeText(FullPath(FromSystemPath(second)));
    if (!between.Finish() || !FlushFolder(pictureFolder) || !between.Rename()) {
        RemoveFile(second);
        return Fail(between, failures);
    }
    if (FlushFolder(textFolder) && PlaceUnderOwnNames(picture, text)) return true;
    return Fail(picture.Ok() ? text : picture, failures);
}

MString UnfinishedPicture(const MString& textPath) {
    const auto unfinished = UnfinishedPicture(textPath, RealPath(SiblingPath(textPath, "png")));
    return unfinished ? FromSystemPath(*unfinished) : MString();
}

void FinishFontPair(const MString& textPath) {
    const MString picturePath = SiblingPath(textPath, "png");
    const fs::path real = RealPath(picturePath);
    const MFolderLock lock({real.parent_path(), RealPath(textPath).parent_path()});
    const auto second = UnfinishedPicture(textPath, real);
    if (!lock.IsHeld() || !second) return;
    MSafeFile picture(picturePath);
    if (!CopyBytes(*second, picture) || !picture.Finish()) return;
    MSafeFile text = Renamed(textPath, FullPath(picturePath));
    if (text.Finish()) PlaceUnderOwnNames(picture, text);
}
