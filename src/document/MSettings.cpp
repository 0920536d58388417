#include "document/MSettings.h"

#include "foundation/MFolders.h"
#include "foundation/Product.h"

#include <algorithm>

MSettings* Settings = nullptr;

namespace {

constexpr std::int32_t minimumWidth = 320;
constexpr std::int32_t minimumHeight = 240;

// One axis of the window: at least `minimum` and at most the screen, starting and ending inside it.
void ClampAxis(std::int32_t& from, std::int32_t& to, std::int32_t minimum, std::int64_t first,
               std::int64_t end) {
    std::int64_t size = std::int64_t{to} - from;
    size = std::min(std::max<std::int64_t>(size, minimum), end - first);
    std::int64_t start = from < first || from >= end ? first : from;
    if (start + size >= end) start = end - size;
    from = static_cast<std::int32_t>(start);
    to = static_cast<std::int32_t>(start + size);
}

} // namespace

MSettings::MSettings() {
    for (std::size_t capital = 'A'; capital <= 'Z'; ++capital)
        Selected[capital] = 1;
    LetterCubesNames =
        "Mary\r\nJohn\r\nRobert\r\nMichael\r\nWilliam\r\nMichelle\r\nSusan\r\nMargaret\r\nMaria\r\nPatricia";
}

void MSettings::UseUserFolders() {
    const MString data = GetAppDataFolder(MakerName, ProductName);
    const MString documents = GetDocumentsFolder(ProductName);
    const MString fonts = JoinPath(documents, "Fonts");
    const MString pictures = JoinPath(documents, "Pictures");
    Path(MPathKind::OpenFont) = JoinPath(JoinPath(GetProgramFolder(), "Media"), "Fonts");
    Path(MPathKind::SaveFont) = fonts;
    Path(MPathKind::FindPicture) = fonts;
    Path(MPathKind::GlyphPicture) = pictures;
    Path(MPathKind::SavePicture) = pictures;
    Path(MPathKind::SaveHtml) = JoinPath(documents, "HTML");
    Path(MPathKind::ImportPhotofont) = MString();
    Path(MPathKind::Temporary) = JoinPath(data, "Temp");
    Path(MPathKind::ImportHtml) = fonts;
    for (const MString& folder : Paths)
        CreateFolder(folder);
}

void MSettings::UseDefaultWindowRect() {
    const Desktop::Rect screen = Desktop::PrimaryScreen();
    constexpr std::int32_t margin = 32;
    WindowRect.left = margin;
    WindowRect.top = margin;
    WindowRect.right = margin + std::min((screen.Height() - 3 * margin) * 16 / 9, screen.Width() - 2 * margin);
    WindowRect.bottom = screen.Height() - 2 * margin;
    ClampWindowRect();
}

void MSettings::ClampWindowRect() {
    const Desktop::Rect screen = Desktop::VirtualScreen();
    ClampAxis(WindowRect.left, WindowRect.right, minimumWidth, screen.left, screen.right);
    ClampAxis(WindowRect.top, WindowRect.bottom, minimumHeight, screen.top, screen.bottom);
}

std::int32_t MSettings::SelectedCount() const {
    return static_cast<std::int32_t>(
        std::count_if(Selected.begin() + 33, Selected.end(), [](std::uint8_t flag) { return flag != 0; }));
}
