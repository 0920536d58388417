#include "apps/lettrino-cli/Steps.h"

#include "apps/lettrino-cli/FontFiles.h"
#include "apps/lettrino-cli/GameFontSteps.h"
#include "apps/lettrino-cli/KerningSteps.h"
#include "apps/lettrino-cli/MarkSteps.h"
#include "apps/lettrino-cli/PictureSteps.h"
#include "apps/lettrino-cli/Report.h"
#include "apps/lettrino-cli/SheetSteps.h"
#include "apps/lettrino-cli/StepFiles.h"
#include "apps/lettrino-cli/WebFontSteps.h"
#include "apps/lettrino-cli/Words.h"
#include "document/ChangeGlyphHeight.h"
#include "foundation/MNumbers.h"
#include "foundation/MString.h"
#include "platform/headless/Headless.h"
#include "platform/text/MSystemFonts.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>

namespace {

using Prepared = std::optional<StepAction>;

// A step that does nothing but put a value into a field of the settings.
template<auto Field, typename Value>
Prepared Set(const std::optional<Value>& value) {
    if (!value) return std::nullopt;
    return [value = *value](Run& run) -> StepResult {
        run.choices.settings.*Field = value;
        return {};
    };
}

Prepared SetFamily(StepArguments arguments) {
    return Set<&MSettings::FontName>(std::optional(FromSystem(arguments[0])));
}

Prepared SetWeight(StepArguments arguments) {
    return Set<&MSettings::Weight>(ReadNumber(arguments[0]));
}

Prepared SetItalic(StepArguments) {
    return Set<&MSettings::Italic>(std::optional(true));
}

Prepared SetColour(StepArguments arguments) {
    return Set<&MSettings::Colour>(ReadColour(arguments[0]));
}

Prepared SetColourFont(StepArguments) {
    return Set<&MSettings::ColourFont>(std::optional(true));
}

Prepared SetBackground(StepArguments arguments) {
    return Set<&MSettings::BackgroundColour>(ReadColour(arguments[0]));
}

Prepared SetSelection(StepArguments arguments) {
    return Set<&MSettings::Selected>(ReadSelection(arguments[0]));
}

std::optional<std::int32_t> ReadHeight(const std::string& text) {
    auto height = ReadNumber(text);
    if (height) Clamp(*height, SmallestGlyphHeight, LargestGlyphHeight);
    return height;
}

Prepared SetHeight(StepArguments arguments) {
    return Set<&MSettings::GlyphHeight>(ReadHeight(arguments[0]));
}

StepResult PackedResult(bool packed) {
    if (packed) return {};
    return StepFailure{{}, "the glyphs don't fit a picture that memory can hold"};
}

StepResult RepackResult(MColourFont& font) {
    return PackedResult(font.Repack());
}

// What a window would have told while the step was done, which did not end it: each in one line.
void PrintMessages(const char* step, std::size_t first) {
    for (const Headless::Message& message : std::span(Headless::record.messages).subspan(first)) {
        std::string text = ToSystem(message.text);
        std::ranges::replace(text, '\n', ' ');
        std::fprintf(stderr, "lettrino-cli: %s: %s\n", step, text.c_str());
    }
}

// A name with a slip would give letters of another family without a word.
void TellOfSubstitute(const MString& family) {
    if (IsFamilyInstalled(family) || family.Equals(MSettings().FontName)) return;
    std::fprintf(stderr, "lettrino-cli: --generate: note: there is no family '%s'; another one stands for it\n",
                 ToSystem(family).c_str());
}

Prepared Generate(StepArguments) {
    return [](Run& run) -> StepResult {
        MColourFont& font = run.FontOrNew();
        TellOfSubstitute(run.choices.settings.FontName);
        const std::size_t told = Headless::record.messages.size();
        if (!font.GenerateSelectedCharacters()) return StepFailure{{}, "no character is selected"};
        PrintMessages("--generate", told);
        if (StepResult failure = RepackResult(font)) return failure;
        for (std::size_t code = 33; code < run.choices.settings.Selected.size(); ++code) {
            if (run.choices.settings.Selected[code] && font.GetGlyph(static_cast<char16_t>(code))) return {};
        }
        const std::string family = ToSystem(run.choices.settings.FontName);
        return StepFailure{{}, "the font '" + family + "' gave no glyph for the selection"};
    };
}

Prepared Remove(StepArguments arguments) {
    const auto character = ReadCharacter(arguments[0]);
    if (!character) return std::nullopt;
    return OnFont([character = *character](Run&, MColourFont& font) -> StepResult {
        if (!font.GetGlyph(character)) return StepFailure{{}, "the font has no glyph for this character"};
        font.RemoveGlyph(character);
        return RepackResult(font);
    });
}

// TOP,BOTTOM and the like: two numbers into two fields.
template<auto First, auto Second>
Prepared SetPair(StepArguments arguments) {
    const auto parts = SplitList(arguments[0]);
    if (parts.size() != 2) return std::nullopt;
    const auto first = ReadNumber(parts[0]);
    const auto second = ReadNumber(parts[1]);
    if (!first || !second) return std::nullopt;
    return [first = *first, second = *second](Run& run) -> StepResult {
        run.choices.settings.*First = first;
        run.choices.settings.*Second = second;
        return {};
    };
}

Prepared SetTrim(StepArguments arguments) {
    if (arguments[0] != "yes" && arguments[0] != "no") return std::nullopt;
    return Set<&MSettings::Trim>(std::optional(arguments[0] == "yes"));
}

// An edit of the whole font that can't fail, then a repack.
template<void (MColourFont::*Edit)()>
Prepared EditAll(StepArguments) {
    return OnFont([](Run&, MColourFont& font) -> StepResult {
        (font.*Edit)();
        return RepackResult(font);
    });
}

// Change glyph height; `Normalise` answers its question.
template<Desktop::Answer Normalise>
Prepared Resize(StepArguments arguments) {
    const auto wanted = ReadHeight(arguments[0]);
    if (!wanted) return std::nullopt;
    return OnFont([wanted = *wanted](Run& run, MColourFont& font) -> StepResult {
        const std::int32_t oldHeight = run.choices.settings.GlyphHeight;
        if (oldHeight < 1) return StepFailure{{}, "the font's glyph height is below 1"};
        run.choices.settings.GlyphHeight = wanted;
        Headless::script.answers = {Normalise};
        const bool changed = ChangeGlyphHeight(font, oldHeight);
        Headless::script.answers.clear(); // a font without a cap height raises no question
        return PackedResult(!changed || font.Picture.IsValid());
    });
}

constexpr std::array steps{
    Step{"--family", "NAME", 1, "the font family to render; a missing one is substituted (Arial Black)",
         SetFamily},
    Step{"--weight", "N", 1, "its weight, 100 to 900 (400)", SetWeight},
    Step{"--italic", "", 0, "its italic face", SetItalic},
    Step{"--height", "N", 1, "the glyph height in pixels, limited to 16 to 1024 (100)", SetHeight},
    Step{"--colour", "RRGGBB", 1, "the colour of plain glyphs (FF0000)", SetColour},
    Step{"--colour-font", "", 0, "glyphs in the font's own colours; what it does not colour is white",
         SetColourFont},
    Step{"--background", "RRGGBB", 1, "the background colour (FFFFFF)", SetBackground},
    Step{"--select", "SET", 1, "the characters: A-Z,a-z,48-57,U+00E9 or all (33 to 255) or none (A-Z)",
         SetSelection},
    Step{"--select-text", "FILE", 1, "the characters that a text file uses", PrepareSelectText, ReadsFile},
    Step{"--font-file", "FILE", 1, "makes the faces of a font file available, as if installed", PrepareFontFile,
         ReadsFile},
    Step{"--generate", "", 0, "renders the selected characters into the font, then repacks", Generate},
    Step{"--open", "FILE", 1,
         "opens a font: .sm, .js of a web page, .phf, or a game's .fnt, .xml, .bin or .json; then repacks",
         PrepareOpen, OpensFont},
    Step{"--padding", "TOP,BOTTOM", 1, "pixels above and below the pictures that follow (0,0)",
         SetPair<&MSettings::PaddingTop, &MSettings::PaddingBottom>},
    Step{"--spacing", "BEFORE,AFTER", 1, "spacings of the pictures that follow (0,0)",
         SetPair<&MSettings::SpacingBefore, &MSettings::SpacingAfter>},
    Step{"--trim", "yes|no", 1, "whether their empty columns are removed (yes)", SetTrim},
    Step{"--picture", "CHAR=FILE", 1, "a picture as a glyph; the first one of a new font sets its height",
         PreparePicture, ReadsPicture},
    Step{"--pictures", "CHAR=FILE", 1,
         "the same with all pictures that follow it: A.png, B.png or x65.png, x66.png", PreparePictures,
         ReadsPictures},
    Step{"--sheet-text", "TEXT", 1,
         "the characters on the sheets that follow, or @FILE (the selected ones by their codes)",
         PrepareSheetText, ReadsFileOfText, false, true},
    Step{"--sheet-grid", "WxH", 1, "their cells in pixels, where they have fixed ones", PrepareSheetGrid},
    Step{"--sheet-ground", "auto|alpha|RRGGBB", 1,
         "what their letters stand on: found, transparent, or paper of about this colour (auto)",
         PrepareSheetGround},
    Step{"--sheet-report", "FILE.png", 1,
         "draws what was found into the sheet cut before, else into the first one that follows",
         PrepareSheetReport, WritesFile},
    Step{"--sheet", "FILE", 1, "cuts a picture of many letters into glyphs; docs/sheets.md", PrepareSheet,
         ReadsFile},
    Step{"--kern", "", 0, "generates and sorts the kerning: ink touches in its closest row", PrepareKern},
    Step{"--set-kerning", "L,R,N", 1, "sets the kerning of a pair in pixels", PrepareSetKerning},
    Step{"--model-pairs", "L,R,N;...", 1, "pairs that the optical kerning keeps and follows",
         PrepareModelPairs},
    Step{"--kern-optical", "[PERCENT]", 1, "kerns by the white between the letters, for running text (100)",
         PrepareKernOptical, nullptr, true},
    Step{"--kern-from-font", "", 0, "takes the kerning of the family, scaled to the glyph height",
         PrepareKernFromFont},
    Step{"--remove", "CHAR", 1, "removes a glyph and its kerning", Remove},
    Step{"--ascii-only", "", 0, "removes the glyphs from code 128 on", EditAll<&MColourFont::RemoveNonAscii>},
    Step{"--trim-rows", "", 0, "removes the rows that are empty in all glyphs",
         EditAll<&MColourFont::TrimVertically>},
    Step{"--resize", "N", 1, "scales the font to a glyph height, limited to 16 to 1024",
         Resize<Desktop::Answer::No>},
    Step{"--resize-normalised", "N", 1,
         "the same to the height at which capitals take 70 % of N; N itself without a cap height",
         Resize<Desktop::Answer::Yes>},
    Step{"--save", "FILE.sm", 1, "writes the font as a texture font, FILE.sm and FILE.png", PrepareSave,
         WritesTextureFont},
    Step{"--single-files", "FOLDER", 1, "writes each glyph as a PNG into a folder", PrepareSingleFiles,
         WritesSingleFiles},
    Step{"--html", "FILE.html", 1, "writes a web page on which the font can be tried, and all it needs",
         PrepareHtml, WritesPage},
    Step{"--minimal-html", "FILE.html", 1, "the same with a minimal page", PrepareMinimalHtml,
         WritesMinimalPage},
    Step{"--names", "TEXTFILE", 1, "the names that the letter cubes shall spell, one to a line", PrepareNames,
         ReadsFile},
    Step{"--cubes", "FILE.png", 1,
         "writes the nets of letter cubes, FILE1.png and so on; prints their statistics", PrepareCubes,
         WritesCubes},
    Step{"--fnt-for", "ENGINE", 1,
         "whom a game font is for: any, pixi, phaser, love, godot, libgdx, raylib or jimp (any)",
         PrepareGameEngine},
    Step{"--fnt-form", "FORM", 1, "its form: text, xml, binary or json (text, but what the engine reads)",
         PrepareGameForm},
    Step{"--fnt-gap", "N", 1, "clear pixels between its glyphs, limited to 0 to 64 (1)", PrepareGameGap},
    Step{"--fnt-bleed", "N", 1, "how many pixels a glyph's edges are repeated around it, 0 to 64 (0)",
         PrepareGameBleed},
    Step{"--fnt-size", "free|four|pot", 1, "the sides of its pages: any, multiples of 4, powers of two (four)",
         PrepareGamePageSize},
    Step{"--fnt-max", "N", 1, "the largest side of a page, limited to 16 to 16384 (4096)", PrepareGameLargest},
    Step{"--fnt", "FILE", 1, "writes the font as game engines load it: FILE beside its pages, NAME_0.png",
         PrepareGameFont, WritesGameFont},
    Step{"--font-name", "NAME", 1, "the family name of the font files that follow (the file's own name)",
         PrepareWebFontName},
    Step{"--strikes", "N,N", 1,
         "heights of smaller sets of pictures in them, for sharp small text; tells their bytes",
         PrepareWebFontStrikes},
    Step{"--ttf", "FILE.ttf", 1, "writes a font file with the glyphs as pictures, for programs and browsers",
         PrepareTrueType, WritesFile},
    Step{"--woff2", "FILE.woff2", 1, "the same packed for the web", PrepareWoff2, WritesFile},
    Step{"--css-page", "FILE.html", 1,
         "writes it with a style sheet and a page on which to try it, without a script", PrepareCssPage,
         WritesCssPage},
    Step{"--check-form", "json|lines", 1, "how a check is printed (json)", PrepareGameCheckForm},
    Step{"--check", "ENGINES", 1, "prints what the font breaks of the engines' rules, and what --fnt repairs",
         PrepareGameCheck},
    Step{"--text", "TEXT FILE.png", 2, "sets a line of text with the font, on the background", PrepareText,
         WritesText},
    Step{"--mark", "NAME", 1, "remembers the font and all choices as they are now", PrepareMark},
    Step{"--back", "NAME", 1, "goes back to them, as often as wanted: one master for several heights",
         PrepareBack},
    Step{"--info", "", 0, "prints the font's numbers as JSON", PrepareInfo},
    Step{"--list-fonts", "", 0, "prints the installed faces as JSON", PrepareFontList},
};

} // namespace

std::span<const Step> AllSteps() {
    return steps;
}
