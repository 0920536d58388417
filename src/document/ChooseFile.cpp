#include "document/ChooseFile.h"

#include "foundation/MFolders.h"
#include "imaging/MFileTypes.h"

#include <optional>

namespace {

struct DialogKind {
    const char* title;
    bool save;
    Desktop::FileFilter filter;
    const char* extension; // forced on what a save dialog gives; added to a bare name in an open dialog
};

// Of all extensions of a category of the table of file types, which programs without a window don't build.
Desktop::FileFilter FilterOf(std::int32_t category) {
    const auto index = static_cast<std::size_t>(category);
    MFileTypes built;
    const MVector<MString>* extensions = &FileTypes.Extensions[index];
    if (extensions->count == 0 && built.BuildFileTypes()) extensions = &built.Extensions[index];
    MString pattern;
    for (const MString& extension : *extensions) {
        if (!pattern.IsEmpty()) pattern += ";";
        pattern += "*." + extension;
    }
    return {MString(MFileTypes::GetTypeName(category)) + " (" + pattern + ")", pattern};
}

std::optional<DialogKind> DialogOf(MPathKind kind) {
    constexpr std::int32_t colourFonts = 4;
    constexpr std::int32_t pictureFiles = 14;
    switch (kind) {
    case MPathKind::OpenFont: return DialogKind{"Open Font", false, FilterOf(colourFonts), "sm"};
    case MPathKind::SaveFont: return DialogKind{"Save Font", true, FilterOf(colourFonts), "sm"};
    case MPathKind::FindPicture:
    case MPathKind::GlyphPicture: return DialogKind{"Load Picture", false, FilterOf(pictureFiles), ""};
    case MPathKind::SavePicture: return DialogKind{"Save Picture", true, {"PNG Files (*.PNG)", "*.PNG"}, "png"};
    case MPathKind::SaveHtml: return DialogKind{"Save HTML", true, {"HTML Files (*.HTML)", "*.HTML"}, "html"};
    case MPathKind::ImportPhotofont:
        return DialogKind{"Import Photofont", false, {"PHF Files (*.PHF)", "*.PHF"}, "phf"};
    case MPathKind::ImportHtml:
        return DialogKind{"Import HTML", false, {"Javascript Files (*.JS)", "*.JS"}, "js"};
    case MPathKind::Temporary: break;
    }
    return std::nullopt;
}

} // namespace

MString ChooseFile(Desktop::WindowHandle owner, MPathKind kind, MString* typed) {
    const auto dialogKind = DialogOf(kind);
    if (!owner || !dialogKind) return {};
    MString& remembered = Settings->Path(kind);
    Desktop::FileDialog dialog;
    dialog.title = dialogKind->title;
    // A dot anywhere is taken for that of a file name, so a folder with a dot in it loses its last part.
    dialog.folder = remembered.Contains(u'.') ? FolderOf(remembered) : remembered;
    dialog.filters = {dialogKind->filter};
    dialog.save = dialogKind->save;
    MString chosen = Desktop::ShowFileDialog(owner, dialog, dialogKind->extension);
    if (chosen.IsEmpty()) return {};
    if (typed) *typed = chosen;
    if (dialogKind->save) chosen = WithExtension(chosen, dialogKind->extension);
    remembered = chosen;
    return chosen;
}
