// The exports that make a font file of pictures: the file itself, and a page beside it that uses it by style
// sheets alone.
#pragma once

#include "formats/webfont/MWebFontFile.h"
#include "foundation/MSafeFile.h"

struct MWebFontOptions {
    MString Family;                    // empty: the file's name
    std::vector<std::int32_t> Strikes; // heights of smaller sets of pictures
};

struct MWebFontResult {
    std::string Reason;                        // why nothing was written; empty if all was
    MWriteFailures Failures;                   // the same, of what the system refused
    std::vector<std::uint32_t> LostCharacters; // as the plan has them
    std::vector<std::size_t> StrikeBytes;      // what each of Strikes takes in the file, in their order

    bool Ok() const { return Reason.empty() && Failures.empty(); }
};

// Writes the font file at `path`. `font` looks at glyphs that must live as long.
MWebFontResult ExportWebFont(const MFontDescription& font, const MString& path, MWebFontForm form,
                             const MWebFontOptions& options, Desktop::WindowHandle owner);
// Writes the page at `path` with its style sheet and the font as WOFF2 beside it, all of one name.
MWebFontResult ExportCssPage(const MFontDescription& font, const MString& path, const MWebFontOptions& options,
                             Desktop::WindowHandle owner);

// What the page and the style sheet say, in UTF-8; `name` is that of the files, without folder and extension.
std::string CssPageText(const MWebFont& font, const std::string& name);
std::string CssSheetText(const MWebFont& font, const std::string& name);
