// A font for games: a BMFont file in one of its forms and the pages that it names, PNGs beside it.
//
// How the document maps onto the format: the line is as high as the glyph height, its base as far down as the
// baseline; a character's rectangle is the ink of its glyph, with as many of its cell's empty columns as lie in
// the gap around it; its offsets are the spacing before and what is empty above and to the left; and it
// advances by width and both spacings. The space has no rectangle.
#pragma once

#include "formats/game/AtlasPacking.h"
#include "formats/game/MGameFontCheck.h"

#include <optional>
#include <string>
#include <vector>

struct MGameFontOptions {
    const MGameEngine* Engine = &gameEngines[0]; // never null
    std::optional<MBmForm> Form;                 // the engine's first one, if none is told
    MAtlasOptions Page;
    std::int32_t Bleed = 0; // how far the edges of a glyph are repeated around it, in pixels

    MBmForm FormToWrite() const { return Form.value_or(Engine->First); }
};

class MSettings;
// What the settings remember of it; words that mean nothing count as the defaults.
MGameFontOptions GameFontOptions(const MSettings& settings);

// All that will be written, before any file is.
struct MGameFontPlan {
    MBmFont File;
    MBmForm Form = MBmForm::Text;
    std::vector<const MGlyphDescription*> Glyphs; // of File.Chars, one for one
    std::int32_t Bleed = 0;
    std::vector<MGameFinding> Findings;
    std::string Reason; // why it can't be written; empty if it can
};

// `name` is that of the file, without folder and extension. The plan looks at the description and the glyphs
// of the font, which must live as long.
MGameFontPlan PlanGameFont(const MFontDescription& font, const MGameFontOptions& options,
                           const std::string& name);

// A file's name without folder and extension, in UTF-8.
std::string GameFontName(const MString& path);
// `path` as it is if it has an extension, otherwise with that of the form.
MString GameFontPath(const MString& path, MBmForm form);
// Of the page beside the font file at `path`.
MString GamePagePath(const MString& path, const MBmPage& page);

// All that is written for the font file at `path`, itself first.
std::vector<MString> GameFontPaths(const MGameFontPlan& plan, const MString& path);
// Writes the pages and the file at `path`, over what is there, when all of them are complete beside their
// places. What went wrong, as the end of a sentence about the file; empty if all of it was written, and old
// files stay otherwise. `owner` is the window of the progress of large fonts.
std::string WriteGameFont(const MGameFontPlan& plan, const MString& path, Desktop::WindowHandle owner);
