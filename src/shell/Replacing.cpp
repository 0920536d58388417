#include "shell/Replacing.h"

#include "foundation/MFolders.h"
#include "foundation/Product.h"
#include "shell/Shell.h"

#include <algorithm>

namespace {

constexpr std::size_t mostNamed = 8; // in a box that fits the screen

MString Number(std::size_t count) {
    return MString(static_cast<std::int32_t>(count));
}

MString Rest(std::size_t count) {
    return count > mostNamed ? "\n\nand " + Number(count - mostNamed) + " more" : MString();
}

MString Quoted(const MString& path) {
    return "\n\"" + path + "\"";
}

} // namespace

bool IsThere(const MString& path) {
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(PlaceToWrite(path), error));
}

bool MayReplace(const std::vector<MString>& paths, const MString& askedAbout) {
    std::vector<MString> existing;
    std::ranges::copy_if(paths, std::back_inserter(existing),
                         [&](const MString& path) { return !path.Equals(askedAbout) && IsThere(path); });
    if (existing.empty()) return true;
    MString text = existing.size() == 1
                       ? MString("This file is there already and will be replaced:\n")
                       : Number(existing.size()) + " files are there already and will be replaced:\n";
    for (std::size_t i = 0; i < std::min(existing.size(), mostNamed); ++i)
        text += Quoted(existing[i]);
    text += Rest(existing.size()) + "\n\nWould you like to go on?";
    return Desktop::ShowMessage(MainWindow, text, ProductName, Desktop::Buttons::YesNo,
                                Desktop::Icon::Question) == Desktop::Answer::Yes;
}

void TellFailures(const MWriteFailures& failures) {
    if (failures.empty()) return;
    MString text = failures.size() == 1 ? MString("This file could not be written:\n")
                                        : Number(failures.size()) + " files could not be written:\n";
    for (std::size_t i = 0; i < std::min(failures.size(), mostNamed); ++i)
        text += Quoted(failures[i].path) + "\n" + failures[i].reason;
    text += Rest(failures.size());
    Desktop::ShowMessage(MainWindow, text, ProductName, Desktop::Buttons::Ok, Desktop::Icon::Error);
}
