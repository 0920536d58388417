// The texture font: the program's own form, and the one that the titling product Showmarquee reads. A text file
// of tab-separated records (UTF-16LE with its mark, CR LF) beside a PNG of the same name:
//
//   Showmarquee TextureFont 1.0
//   FSZ  glyph height, baseline, cap height
//   TEX  path of the PNG as saved, its width, its height
//   CHA  character, x, y, width, height, spacing before, spacing after    one for each glyph, in slot order
//   SPA  width of the space
//   KER  left character, right character, amount    one for each pair, but for those of amount 0

#include "formats/TextureFont.h"

#include "document/ChooseFile.h"
#include "document/MColourFont.h"
#include "document/MKerningTable.h"
#include "document/MSettings.h"
#include "formats/ExportFiles.h"
#include "formats/MFontPair.h"
#include "formats/MGlyphCutter.h"
#include "formats/MTextFile.h"
#include "formats/SiblingPath.h"
#include "foundation/MFile.h"
#include "foundation/MFolders.h"
#include "imaging/MPixelBudget.h"
#include "platform/MLongWork.h"

#include <algorithm>
#include <iterator>

namespace {

void WriteCharacter(MTextFile& file, std::uint32_t character) {
    const char16_t text[] = {static_cast<char16_t>(character), u'\0'};
    file.WriteString(MString(text));
}

void WriteRecord(MTextFile& file, const char* tag, std::initializer_list<std::int32_t> numbers) {
    file.WriteString(tag);
    for (const std::int32_t number : numbers)
        file.WriteInt(number);
    file.EndLine();
}

void WriteGlyph(MTextFile& file, const MGlyph& glyph) {
    file.WriteString("CHA");
    WriteCharacter(file, glyph.Character);
    for (const std::int32_t number :
         {glyph.X, glyph.Y, glyph.Width, glyph.Height, glyph.SpacingBefore, glyph.SpacingAfter}) {
        file.WriteInt(number);
    }
    file.EndLine();
}

void WriteKerning(MTextFile& file, const MKerningPair& pair) {
    if (pair.Amount == 0) return;
    file.WriteString("KER");
    WriteCharacter(file, pair.Left);
    WriteCharacter(file, pair.Right);
    file.WriteInt(pair.Amount);
    file.EndLine();
}

// Beside the file, in the folder Textures above its folder, or where the user says, which `chosen` keeps. Empty
// if cancelled. The path in the TEX record plays no part: it may name a place that no longer exists.
MString FindPicture(const MString& path, Desktop::WindowHandle owner, MString& chosen) {
    MString beside = SiblingPath(path, "png");
    if (FileExists(beside)) return beside;
    const MString above = FolderOf(FolderOf(path));
    MString inTextures = JoinPath(JoinPath(above, "Textures"), FileNameOf(beside));
    if (FileExists(inTextures)) return inTextures;
    return chosen = ChooseFile(owner, MPathKind::FindPicture);
}

MSafeFile WriteText(const MColourFont& font, const MString& path, const MString& picturePath) {
    MTextFile file(path, true, false, MTextEncoding::Utf16Le);
    file.EndLine("Showmarquee TextureFont 1.0");
    WriteRecord(file, "FSZ", {Settings->GlyphHeight, font.Baseline, font.CapHeight});
    file.WriteString("TEX");
    file.WriteString(picturePath);
    file.WriteInt(font.PictureWidth);
    file.WriteInt(font.PictureHeight);
    file.EndLine();
    for (const auto& slot : font.Glyphs) {
        if (slot) WriteGlyph(file, *slot);
    }
    WriteRecord(file, "SPA", {font.SpaceWidth});
    for (const MKerningPair& pair : font.Kerning)
        WriteKerning(file, pair);
    return file.Take();
}

class RecordReader {
public:
    RecordReader(MColourFont& target, const MPicture& picture)
        : font(target), cutter(picture), pictureWidth(picture.Width), pictureHeight(picture.Height),
          kerning(target) {}

    void Read(MTextFile& file) {
        while (file.NextLine()) {
            const MString tag = file.GetString(0);
            if (tag.Equals(u"FSZ")) ReadMetrics(file);
            if (tag.Equals(u"TEX")) ReadScale(file);
            if (tag.Equals(u"CHA")) ReadGlyph(file);
            if (tag.Equals(u"SPA")) font.SpaceWidth = file.GetInt(1);
            if (tag.Equals(u"KER")) ReadKerning(file);
        }
        kerning.Store(font);
    }

private:
    MColourFont& font;
    MGlyphCutter cutter;
    std::uint32_t pictureWidth;
    std::uint32_t pictureHeight;
    MKerningTable kerning;

    void ReadMetrics(const MTextFile& file) {
        Settings->GlyphHeight = file.GetInt(1);
        font.Baseline = file.GetInt(2);
        font.CapHeight = file.GetInt(3);
    }

    // The picture may have been scaled since the file was written, and the records that follow go with it. The
    // metrics and the kerning don't.
    void ReadScale(const MTextFile& file) {
        cutter.horizontalScale = static_cast<float>(pictureWidth) / static_cast<float>(file.GetInt(2));
        cutter.verticalScale = static_cast<float>(pictureHeight) / static_cast<float>(file.GetInt(3));
    }

    // An empty text reads as "?".
    static char16_t Character(const MTextFile& file, int index) { return file.GetString(index).GetChar(0); }

    void ReadGlyph(const MTextFile& file) {
        cutter.Cut(font, {Character(file, 1), file.GetInt(2), file.GetInt(3), file.GetInt(4), file.GetInt(5),
                          file.GetInt(6), file.GetInt(7)});
    }

    void ReadKerning(const MTextFile& file) {
        kerning.Set(Character(file, 1), Character(file, 2), file.GetInt(3));
    }
};

bool ReadRecords(MColourFont& font, const MString& path, const MPicture& picture) {
    MTextFile file(path, false, false, MTextEncoding::Ansi);
    if (!file.ok || !ReadTextureFontHeader(file)) return false;
    RecordReader(font, picture).Read(file);
    return true;
}

bool LoadPair(MColourFont& font, const MString& path, const MString& picturePath) {
    const MFontPictureScope scope;
    MPicture picture(picturePath);
    if (!picture.IsValid()) return false;
    const bool loaded = ReadRecords(font, path, picture);
    picture.Free();
    return loaded;
}

} // namespace

bool ReadTextureFontHeader(MTextFile& file) {
    return file.NextLine() && file.GetString(0).Equals(u"Showmarquee") &&
           file.GetString(1).Equals(u"TextureFont");
}

std::vector<MString> FontPaths(const MString& path) {
    return {SiblingPath(path, "sm"), SiblingPath(path, "png")};
}

bool MColourFont::Save(const MString& path, MWriteFailures* failures) {
    if (!Picture.IsValid()) return false;
    const MLongWork work(Owner, "Saving font...", std::uint64_t{Picture.Width} * Picture.Height);
    const MString picturePath = SiblingPath(path, "png");
    const auto writeText = [&](const MString& namedPicture) {
        return WriteText(*this, SiblingPath(path, "sm"), namedPicture);
    };
    MWriteFailures failed;
    PlaceFontPair(Picture.PrepareSave(picturePath), writeText(picturePath), writeText, failed);
    if (failures) std::ranges::move(failed, std::back_inserter(*failures));
    return true;
}

bool MColourFont::Load(const MString& path) {
    if (!FileExists(path)) return false;
    if (!UnfinishedPicture(path).IsEmpty()) FinishFontPair(path);
    // A save by another program while the two files are read makes them read again.
    constexpr int mostAttempts = 100;
    const auto text = FindExisting(path).value_or(std::filesystem::path());
    MString chosen; // by the user, who is asked once
    bool loaded = false;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const MFileStamp before = StampOf(text);
        MString picturePath = UnfinishedPicture(path);
        if (picturePath.IsEmpty()) picturePath = chosen.IsEmpty() ? FindPicture(path, Owner, chosen) : chosen;
        if (picturePath.IsEmpty()) return false;
        // What packs well has some sixty pixels a byte.
        constexpr std::uint64_t pixelsPerByte = 64;
        const auto fileBytes = static_cast<std::uint64_t>(std::max<std::int64_t>(GetFileSize(picturePath), 0));
        const MLongWork work(Owner, "Opening font...", fileBytes * pixelsPerByte);
        loaded = LoadPair(*this, path, picturePath);
        if (StampOf(text) == before) break;
        Clear();
        loaded = false;
    }
    if (loaded) SortKerningByAmount();
    return loaded;
}
