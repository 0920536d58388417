// One PNG for each glyph: C65.png for "A".

#include "document/MColourFont.h"
#include "formats/ExportFiles.h"
#include "foundation/MFolders.h"

#include <vector>

namespace {

MString FileOf(const MGlyph& glyph, const MString& folder) {
    return JoinPath(folder, MString("C") + MString(glyph.Character) + ".png");
}

} // namespace

std::vector<MString> SingleFilePaths(const MColourFont& font, const MString& path) {
    std::vector<MString> paths;
    for (const auto& slot : font.Glyphs) {
        if (slot && slot->Picture.IsValid()) paths.push_back(FileOf(*slot, FolderOf(path)));
    }
    return paths;
}

bool MColourFont::ExportSingleFiles(const MString& path, MWriteFailures* failures) {
    if (path.IsEmpty()) return false;
    std::vector<MSafeFile> files;
    for (const auto& slot : Glyphs) {
        if (!slot || !slot->Picture.IsValid()) continue;
        files.push_back(
            slot->Picture.PrepareSave(FileOf(*slot, FolderOf(path)), FormatNone, MLinks::StayInFolder));
    }
    return PlaceAll(files, failures) > 0;
}
