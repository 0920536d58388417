// The seam to the desktop: all that the program asks of one. Implemented twice and chosen at link time:
// headless/ answers from a script that the caller sets, qt/ shows real windows. Free functions and plain
// structs only.
//
// Everything is called on the one thread of the program. A null owner is allowed everywhere.
#pragma once

#include "foundation/MString.h"
#include "imaging/MColour.h"

#include <cstdint>
#include <vector>

namespace Desktop {

struct Window; // the desktop's own; never looked into by the program
using WindowHandle = Window*;

struct Rect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;  // exclusive
    std::int32_t bottom = 0; // exclusive

    std::int32_t Width() const { return right - left; }
    std::int32_t Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    friend bool operator==(const Rect&, const Rect&) = default;
};

// The program's main window with its menu, empty and shown; null if it can't be made. `frame` is the place of
// the whole window on the virtual screen, with its title bar.
WindowHandle OpenMainWindow(const MString& title, const Rect& frame);
// How many main windows of the program this user had open when it was asked first, so that a further one need
// not cover them.
std::int32_t EarlierWindows();
// Runs until the main window is closed, after which it is gone. The program's exit code.
int RunMessageLoop();

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Icon { None, Information, Warning, Error, Question };
enum class Answer { Ok, Cancel, Yes, No };

// Modal. Closing the box counts as Cancel where that button exists, else as No, else as Ok.
Answer ShowMessage(WindowHandle owner, const MString& text, const MString& caption, Buttons buttons, Icon icon);

struct FileFilter {
    MString name;    // "PNG Files (*.PNG)"
    MString pattern; // "*.PNG", several separated by ';'
};

struct FileDialog {
    MString title;
    MString folder; // where it starts
    std::vector<FileFilter> filters;
    std::vector<MString> places;  // folders to go to at once, besides the desktop's own
    std::int32_t filterIndex = 1; // from 1; in and out
    MString fileName;             // what the name field starts with
    bool save = false;            // asks before it overwrites; an open dialog accepts existing files only
};

// Modal. The chosen path, or empty if the user cancelled. `extension`, without dots, is added to a name that
// has none.
MString ShowFileDialog(WindowHandle owner, FileDialog& dialog, const MString& extension);

// Modal, starts with `colour` and writes it on OK, opaque; false if the user cancelled. The custom colours that
// the dialog offers start white and are kept while the program runs.
bool ChooseColour(WindowHandle owner, MColour& colour);

// The program's own dialogs, by number.
enum class DialogId : std::uint16_t {
    About = 130,
    LicenseKeys = 131,
    AddGlyphs = 136,
    AddPicture = 137,
    LetterCubesNames = 139,
    GlyphHeight = 140,
    KerningEditor = 141,
    GlyphEditor = 142,
    ExportGameFont = 150,
    OpticalKerning = 151,
    AddSheet = 152,
};

// Modal. A dialog works on the process-wide settings and document; true if it ended with OK.
bool RunDialog(WindowHandle owner, DialogId id);

// Opens an address with the user's own program for it, which is the browser.
void OpenInBrowser(const MString& url);

// The one progress window. Opening is false if no window can be shown; the other three do nothing then. It
// paints itself at once on every change, since the caller does not return to the message loop.
bool OpenProgress(WindowHandle owner);
void SetProgressPercent(std::int32_t percent); // 0 to 100
void SetProgressText(const MString& text);
void CloseProgress();

// A window's client area in its own pixels, from (0, 0); empty for a minimised window.
Rect ClientRect(WindowHandle window);
MString WindowTitle(WindowHandle window);
void SetWindowTitle(WindowHandle window, const MString& title);
void CloseWindow(WindowHandle window);

// What buttons and the ground of dialogs are painted with.
MColour ButtonColour();

// The primary screen, from (0, 0), and the rectangle around all screens. Both in pixels.
Rect PrimaryScreen();
Rect VirtualScreen();

// What a paint surface holds: premultiplied blue, green, red and alpha bytes, row after row from the top.
struct PaintImage {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t stride = 0;              // bytes from one row to the next
    const std::uint8_t* pixels = nullptr; // not owned; valid during the call
};

// Shows the image, whose alpha means nothing, in the part of the window's client area that starts at the
// rectangle's left and top. Also called while the window paints itself; what was shown last stays until it is
// painted over.
void Present(WindowHandle window, const Rect& area, const PaintImage& image);

} // namespace Desktop
