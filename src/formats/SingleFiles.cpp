// One PNG for each glyph: C65.png for "A".

#include "document/MColourFont.h"
#include "foundation/MFolders.h"

bool MColourFont::ExportSingleFiles(const MString& path) {
    if (path.IsEmpty()) return false;
    bool anyWritten = false;
    for (const auto& slot : Glyphs) {
        if (!slot) continue;
        const MString name = MString("C") + MString(slot->Character) + ".png";
        anyWritten |= slot->SavePicture(JoinPath(path.GetFolder(), name));
    }
    return anyWritten;
}
