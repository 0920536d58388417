#include "apps/lettrino-cli/StepFiles.h"

#include "apps/lettrino-cli/PictureSteps.h"
#include "apps/lettrino-cli/SheetSteps.h"
#include "formats/SiblingPath.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"
#include "glyphs/PictureSeries.h"

#include <initializer_list>

namespace {

std::string Beside(const std::string& file, const char* extension) {
    return ToSystem(SiblingPath(FromSystem(file), extension));
}

std::string InFolderOf(const std::string& file, const std::string& name) {
    const std::size_t separator = file.find_last_of('/');
    return separator == std::string::npos ? name : file.substr(0, separator + 1) + name;
}

std::vector<StepFile> Written(std::initializer_list<std::string> paths) {
    std::vector<StepFile> files;
    for (const std::string& path : paths)
        files.push_back({path, true});
    return files;
}

std::string NameOf(const std::string& file) {
    return ToSystem(FileNameOf(FromSystem(file)));
}

std::string WithoutExtension(const std::string& file) {
    const std::string name = NameOf(file);
    return name.substr(0, name.find_last_of('.'));
}

} // namespace

std::vector<StepFile> ReadsFile(StepArguments arguments) {
    return {{arguments[0]}};
}

// Not the pages that a game font names inside: the first of them is called like the font.
std::vector<StepFile> OpensFont(StepArguments arguments) {
    const std::string& file = arguments[0];
    const MString extension = ExtensionOf(FromSystem(file));
    std::vector<StepFile> files{{file}};
    if (extension.Equals("SM") || extension.Equals("JS")) files.push_back({Beside(file, "png")});
    if (extension.Equals("SM")) {
        const std::string folder = ToSystem(FolderOf(FullPath(FromSystem(file))));
        files.push_back({InFolderOf(folder, "Textures/" + WithoutExtension(file) + ".png"), false, true});
    }
    if (extension.Equals("FNT") || extension.Equals("XML") || extension.Equals("BIN") ||
        extension.Equals("JSON"))
        files.push_back({InFolderOf(file, WithoutExtension(file) + "_0.png"), false, true});
    return files;
}

std::vector<StepFile> ReadsPicture(StepArguments arguments) {
    const auto wanted = ReadCharacterFile(arguments[0]);
    if (!wanted) return {};
    return {{wanted->file}};
}

std::vector<StepFile> ReadsPictures(StepArguments arguments) {
    const auto wanted = ReadCharacterFile(arguments[0]);
    if (!wanted) return {};
    std::vector<StepFile> files{{wanted->file}};
    MString path = FullPath(FromSystem(wanted->file));
    char16_t character = wanted->character;
    bool exists = true;
    while (exists) {
        const MString before = path;
        exists = NextSuccessivePicture(path, character);
        if (path.Equals(before)) break;
        files.push_back({ToSystem(path), false, true}); // the last one is not there yet
    }
    return files;
}

std::vector<StepFile> WritesFile(StepArguments arguments) {
    return Written({arguments[0]});
}

std::vector<StepFile> WritesTextureFont(StepArguments arguments) {
    return Written({Beside(arguments[0], "sm"), Beside(arguments[0], "png")});
}

std::vector<StepFile> WritesSingleFiles(StepArguments arguments) {
    return Written({arguments[0] + "/C*.png"});
}

std::vector<StepFile> WritesMinimalPage(StepArguments arguments) {
    const std::string& file = arguments[0];
    return Written(
        {Beside(file, "html"), Beside(file, "js"), Beside(file, "png"), InFolderOf(file, "lettrino-1.0.js")});
}

std::vector<StepFile> WritesPage(StepArguments arguments) {
    std::vector<StepFile> files = WritesMinimalPage(arguments);
    for (const char* const name : {"colourpicker.png", "try.css", "try.js"})
        files.push_back({InFolderOf(arguments[0], name), true});
    return files;
}

std::vector<StepFile> WritesCubes(StepArguments arguments) {
    return Written({arguments[0].substr(0, arguments[0].find('.')) + "*.png"});
}

std::vector<StepFile> WritesGameFont(StepArguments arguments) {
    return Written({arguments[0], InFolderOf(arguments[0], WithoutExtension(arguments[0]) + "_*.png")});
}

std::vector<StepFile> WritesCssPage(StepArguments arguments) {
    return Written({Beside(arguments[0], "html"), Beside(arguments[0], "css"), Beside(arguments[0], "woff2")});
}

std::vector<StepFile> WritesText(StepArguments arguments) {
    return Written({arguments[1]});
}

std::vector<StepFile> ReadsFileOfText(StepArguments arguments) {
    const auto file = FileOfText(arguments[0]);
    if (!file) return {};
    return {{*file}};
}
