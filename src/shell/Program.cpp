#include "shell/Program.h"

#include "document/MSettings.h"
#include "foundation/MFolders.h"
#include "foundation/Product.h"
#include "glyphs/MFontList.h"
#include "imaging/MFileTypes.h"
#include "imaging/MPixelBudget.h"
#include "licensing/MLicense.h"
#include "shell/Commands.h"
#include "shell/CurrentFont.h"
#include "shell/OpenFontFile.h"
#include "shell/Preview.h"
#include "shell/Shell.h"

#include <memory>

Desktop::WindowHandle MainWindow = nullptr;
MString CommandLineFile;

namespace {

void OpenTextureFont(const MString& path) {
    RestorePixelBudget();
    if (ExtensionOf(path).Equals("SM")) OpenFontFile(path);
}

// Moves the window a little down and to the right for each that is open. Where it stands then.
Desktop::Rect BesideEarlierWindows(MSettings& settings) {
    constexpr std::int32_t step = 32; // about a title bar
    const std::int32_t distance = step * Desktop::EarlierWindows();
    Desktop::Rect& frame = settings.WindowRect;
    frame = {frame.left + distance, frame.top + distance, frame.right + distance, frame.bottom + distance};
    settings.ClampWindowRect();
    return frame;
}

// What the user meets between the opening of the window and its end.
int RunWindow(const MString& file) {
    if (License->Name.IsEmpty()) Desktop::RunDialog(MainWindow, Desktop::DialogId::About);
    CommandLineFile = file;
    OpenTextureFont(CommandLineFile);
    const int code = Desktop::RunMessageLoop();
    DestroyCurrentFont();
    ForgetPreview();
    return code;
}

} // namespace

int RunProgram(const MString& file) {
    const auto settings = std::make_unique<MSettings>();
    Settings = settings.get();
    settings->UseUserFolders();
    settings->UseDefaultWindowRect();
    settings->Load();
    const auto license = std::make_unique<MLicense>(*settings);
    License = license.get();

    int code = 0;
    const Desktop::Rect stored = settings->WindowRect;
    const Desktop::Rect placed = BesideEarlierWindows(*settings);
    MainWindow = Desktop::OpenMainWindow(ProductName, settings->WindowRect);
    if (MainWindow) {
        if (FileTypes.BuildFileTypes()) code = RunWindow(file);
        FontList.reset();
        // That it opened beside another is no choice of the user.
        if (settings->WindowRect == placed) settings->WindowRect = stored;
        settings->Save();
    }
    MainWindow = nullptr;
    Settings = nullptr;
    License = nullptr;
    return code;
}

void RecordWindowRect(const Desktop::Rect& frame) {
    if (Settings) Settings->WindowRect = frame;
}

void PaintMainWindow() {
    if (CurrentFont) CurrentFont->Draw();
}

void OpenDroppedFile(const MString& path) {
    if (FileTypes.IsPicture(ExtensionOf(path))) {
        Settings->Path(MPathKind::PictureSheet) = path;
        RunCommand(CommandId::AddSheet);
    } else {
        OpenTextureFont(path);
    }
}
