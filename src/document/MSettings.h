// The program's choices, and the one home of what the document's operations take from the user: the glyph
// height, the selected characters, the font choice, the padding. A plain record; no value is validated. Load
// and Save are in shell/, with the program's start and end.
#pragma once

#include "foundation/MString.h"
#include "imaging/MColour.h"
#include "platform/Desktop.h"

#include <array>
#include <cstdint>
#include <memory>

// The kinds of file dialog, and with them the entries of MSettings::Paths.
enum class MPathKind : std::uint8_t {
    OpenFont,
    SaveFont,
    FindPicture, // the picture of a font that is being opened
    GlyphPicture,
    SavePicture,
    SaveHtml,
    ImportPhotofont,
    Temporary, // no dialog: where imported pictures are unpacked
    ImportHtml,
    SaveGameFont,
    ImportGameFont,
    SaveWebFont,
    PictureSheet,
};
inline constexpr std::size_t PathKinds = 13;
// Those up to here have a folder to begin with and always a line in the settings file; the others begin where
// fonts are saved, or pictures looked for, and have a line once they were used.
inline constexpr std::size_t FirstPathKinds = 9;

// What dialogs and the command line limit a glyph height to; files may bring any other.
inline constexpr std::int32_t SmallestGlyphHeight = 16;
inline constexpr std::int32_t LargestGlyphHeight = 1024;

// How a font is exported for games; words as the command line and the settings file have them.
struct MGameFontChoices {
    MString Engine = "any";
    MString Form; // empty: the one that the engine likes best
    std::int32_t Gap = 1;
    MString PageSize = "four"; // "free", "four" or "pot"
    std::int32_t Largest = 4096;
    std::int32_t Bleed = 0;

    friend bool operator==(const MGameFontChoices&, const MGameFontChoices&) = default;
};
inline constexpr std::int32_t LargestGameGap = 64;
inline constexpr std::int32_t SmallestGamePage = 16;
inline constexpr std::int32_t LargestGamePage = 16384;

class MSettings {
public:
    MColour BackgroundColour{255, 255, 255};
    MString FontName = "Arial Black";
    std::int32_t Weight = 400; // 100 to 900 as fonts have it, 0: unspecified
    bool Italic = false;
    MColour Colour{255, 0, 0};      // of plain glyphs
    std::int32_t GlyphHeight = 100; // pixels, of every glyph of the current font
    bool ColourFont = false;
    std::array<std::uint8_t, 256> Selected{}; // by character code, 1: wanted; only 33 to 255 count
    std::array<MString, PathKinds> Paths;     // a folder, or the file last chosen in its dialog
    std::uint32_t Char = 35;
    std::int32_t PaddingTop = 0; // this and the next three in pixels, for glyphs made from pictures
    std::int32_t PaddingBottom = 0;
    std::int32_t SpacingBefore = 0;
    std::int32_t SpacingAfter = 0;
    bool Trim = true;
    MString LetterCubesNames;
    MString KerningText = "Hamburgefonstiv AVATAR Tomorrow, Type 1984"; // the line of the optical kerning
    std::int32_t KerningStrength = 100;                                 // percent
    MGameFontChoices GameFont;
    Desktop::Rect WindowRect;
    Desktop::Rect FileWindowRect; // as the file had it, before it was brought into this screen
    std::array<MString, 3> Keys;
    bool FileRead = false; // a settings file was opened for reading
    // As they were after Load, by which Save knows what this run has changed. Null before, and where there was
    // a file that could not be read.
    std::shared_ptr<const MSettings> Start;

    // The defaults that need no desktop: Paths and WindowRect are empty, and no folder is touched.
    MSettings();

    // Fills Paths with the user's folders and creates those that are missing. A folder that can't be made is
    // passed over; a user folder that the system doesn't tell leaves just the fixed tail of its paths.
    void UseUserFolders();
    // A window as high as the screen less 96, 16 by 9 where the screen is wide enough for it.
    void UseDefaultWindowRect();
    // Brings WindowRect into the virtual screen, at least 320 by 240.
    void ClampWindowRect();

    // In the user's folder for program data.
    static MString SettingsFilePath();
    // Reads the file, if there is one, over what stands here, and sets FileRead. A line with missing fields
    // brings zeros or empty texts; unknown keys are passed over. Only the window's place is checked.
    void Load();
    // Writes the file anew. Does nothing if there is one that was not read: what could not be read is never
    // overwritten. What another window has written since Load stays, where this one's user has changed nothing.
    // Tells the user if it can't be written.
    void Save() const;

    // How many of the codes 33 to 255 are selected.
    std::int32_t SelectedCount() const;

    void Write(const MString& path) const; // anew, whatever is there; for Save

    MString& Path(MPathKind kind) { return Paths[static_cast<std::size_t>(kind)]; }
};

// The one object, set before any document exists and cleared last.
extern MSettings* Settings;
