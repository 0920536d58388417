#include "document/ChooseFile.h"

#include "foundation/MFolders.h"
#include "foundation/Product.h"
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

// Game fonts in the forms XML and JSON have an extension of their own.
DialogKind GameFontDialog() {
    const MString& form = Settings->GameFont.Form;
    if (form.Equals(u"xml")) return {"Export as game font", true, {"XML Files (*.XML)", "*.XML"}, "xml"};
    if (form.Equals(u"json")) return {"Export as game font", true, {"JSON Files (*.JSON)", "*.JSON"}, "json"};
    return {"Export as game font", true, {"FNT Files (*.FNT)", "*.FNT"}, "fnt"};
}

std::optional<DialogKind> DialogOf(MPathKind kind) {
    constexpr std::int32_t colourFonts = 4;
    constexpr std::int32_t pictureFiles = 14;
    switch (kind) {
    case MPathKind::OpenFont: return DialogKind{"Open Font", false, FilterOf(colourFonts), "sm"};
    case MPathKind::SaveFont: return DialogKind{"Save Font", true, FilterOf(colourFonts), "sm"};
    case MPathKind::FindPicture:
    case MPathKind::PictureSheet:
    case MPathKind::GlyphPicture: return DialogKind{"Load Picture", false, FilterOf(pictureFiles), ""};
    case MPathKind::SavePicture: return DialogKind{"Save Picture", true, {"PNG Files (*.PNG)", "*.PNG"}, "png"};
    case MPathKind::SaveHtml: return DialogKind{"Save HTML", true, {"HTML Files (*.HTML)", "*.HTML"}, "html"};
    case MPathKind::ImportPhotofont:
        return DialogKind{"Import Photofont", false, {"PHF Files (*.PHF)", "*.PHF"}, "phf"};
    case MPathKind::ImportHtml:
        return DialogKind{"Import HTML", false, {"Javascript Files (*.JS)", "*.JS"}, "js"};
    case MPathKind::SaveGameFont: return GameFontDialog();
    case MPathKind::ImportGameFont:
        return DialogKind{"Import game font",
                          false,
                          {"Game fonts (*.fnt;*.xml;*.bin;*.json)", "*.fnt;*.xml;*.bin;*.json"},
                          "fnt"};
    case MPathKind::SaveWebFont:
        return DialogKind{"Export as web font", true, {"Web fonts (*.woff2;*.ttf)", "*.woff2;*.ttf"}, "woff2"};
    case MPathKind::Temporary: break;
    }
    return std::nullopt;
}

} // namespace

MString ChooseFile(Desktop::WindowHandle owner, MPathKind kind, MString* typed) {
    const auto dialogKind = DialogOf(kind);
    if (!owner || !dialogKind) return {};
    MString& remembered = Settings->Path(kind);
    const bool unused = remembered.IsEmpty() && static_cast<std::size_t>(kind) >= FirstPathKinds;
    const MPathKind likely = kind == MPathKind::PictureSheet ? MPathKind::GlyphPicture : MPathKind::SaveFont;
    const MString& start = unused ? Settings->Path(likely) : remembered;
    Desktop::FileDialog dialog;
    dialog.title = dialogKind->title;
    // A dot anywhere is taken for that of a file name, so a folder with a dot in it loses its last part.
    dialog.folder = start.Contains(u'.') ? FolderOf(start) : start;
    dialog.places = {JoinPath(JoinPath(GetProgramFolder(), "Media"), "Fonts")};
    const MString documents = GetDocumentsFolder(ProductName);
    for (const char* const name : {"Fonts", "Pictures", "HTML"})
        dialog.places.push_back(JoinPath(documents, name));
    dialog.filters = {dialogKind->filter};
    dialog.save = dialogKind->save;
    MString chosen = Desktop::ShowFileDialog(owner, dialog, dialogKind->extension);
    if (chosen.IsEmpty()) return {};
    if (typed) *typed = chosen;
    // The extension of a web font is the user's choice between its two forms.
    const bool own = kind == MPathKind::SaveWebFont && ExtensionOf(chosen).Equals(u"TTF");
    if (dialogKind->save && !own) chosen = WithExtension(chosen, dialogKind->extension);
    remembered = chosen;
    return chosen;
}
