#include "apps/lettrino-cli/Steps.h"

#include "apps/lettrino-cli/FontFiles.h"
#include "apps/lettrino-cli/PictureSteps.h"
#include "apps/lettrino-cli/Report.h"
#include "apps/lettrino-cli/StepNames.h"
#include "apps/lettrino-cli/Words.h"
#include "document/ChangeGlyphHeight.h"
#include "foundation/MNumbers.h"
#include "foundation/MUtf8.h"
#include "platform/headless/Headless.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using Prepared = std::optional<StepAction>;

// A step that does nothing but put a value into a field of the settings.
template<auto Field, typename Value>
Prepared Set(const std::optional<Value>& value) {
    if (!value) return std::nullopt;
    return [value = *value](Run& run) -> StepResult {
        run.settings.*Field = value;
        return {};
    };
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

Prepared Generate(StepArguments) {
    return [](Run& run) -> StepResult {
        MColourFont& font = run.FontOrNew();
        if (!font.GenerateSelectedCharacters()) return StepFailure{{}, "no character is selected"};
        if (StepResult failure = RepackResult(font)) return failure;
        for (std::size_t code = 33; code < run.settings.Selected.size(); ++code) {
            if (run.settings.Selected[code] && font.GetGlyph(static_cast<char16_t>(code))) return {};
        }
        const std::string family = ToSystem(run.settings.FontName);
        return StepFailure{{}, "the font '" + family + "' gave no glyph for the selection"};
    };
}

Prepared Kern(StepArguments) {
    return OnFont([](Run&, MColourFont& font) -> StepResult {
        font.GenerateKerning();
        font.SortKerningByAmount();
        return {};
    });
}

Prepared SetKerning(StepArguments arguments) {
    const auto parts = SplitList(arguments[0]);
    if (parts.size() != 3) return std::nullopt;
    const auto left = ReadCharacter(parts[0]);
    const auto right = ReadCharacter(parts[1]);
    const auto amount = ReadNumber(parts[2]);
    if (!left || !right || !amount) return std::nullopt;
    return OnFont([left = *left, right = *right, amount = *amount](Run&, MColourFont& font) -> StepResult {
        if (font.SetKerning(left, right, amount)) return {};
        return StepFailure{{}, "characters below 33 take no kerning"};
    });
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
        run.settings.*First = first;
        run.settings.*Second = second;
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
        const std::int32_t oldHeight = run.settings.GlyphHeight;
        if (oldHeight < 1) return StepFailure{{}, "the font's glyph height is below 1"};
        run.settings.GlyphHeight = wanted;
        Headless::script.answers = {Normalise};
        const bool changed = ChangeGlyphHeight(font, oldHeight);
        Headless::script.answers.clear(); // a font without a cap height raises no question
        return PackedResult(!changed || font.Picture.IsValid());
    });
}

struct Preparation {
    std::string_view name;
    PrepareStep prepare;
};

constexpr std::array preparations{
    Preparation{"--family",
                [](StepArguments arguments) {
                    return Set<&MSettings::FontName>(std::optional(FromSystem(arguments[0])));
                }},
    Preparation{"--weight",
                [](StepArguments arguments) { return Set<&MSettings::Weight>(ReadNumber(arguments[0])); }},
    Preparation{"--italic", [](StepArguments) { return Set<&MSettings::Italic>(std::optional(true)); }},
    Preparation{"--height", SetHeight},
    Preparation{"--colour",
                [](StepArguments arguments) { return Set<&MSettings::Colour>(ReadColour(arguments[0])); }},
    Preparation{"--colour-font",
                [](StepArguments) { return Set<&MSettings::ColourFont>(std::optional(true)); }},
    Preparation{
        "--background",
        [](StepArguments arguments) { return Set<&MSettings::BackgroundColour>(ReadColour(arguments[0])); }},
    Preparation{"--select",
                [](StepArguments arguments) { return Set<&MSettings::Selected>(ReadSelection(arguments[0])); }},
    Preparation{"--font-file", PrepareFontFile},
    Preparation{"--generate", Generate},
    Preparation{"--open", PrepareOpen},
    Preparation{"--padding", SetPair<&MSettings::PaddingTop, &MSettings::PaddingBottom>},
    Preparation{"--spacing", SetPair<&MSettings::SpacingBefore, &MSettings::SpacingAfter>},
    Preparation{"--trim", SetTrim},
    Preparation{"--picture", PreparePicture},
    Preparation{"--pictures", PreparePictures},
    Preparation{"--kern", Kern},
    Preparation{"--set-kerning", SetKerning},
    Preparation{"--remove", Remove},
    Preparation{"--ascii-only", EditAll<&MColourFont::RemoveNonAscii>},
    Preparation{"--trim-rows", EditAll<&MColourFont::TrimVertically>},
    Preparation{"--resize", Resize<Desktop::Answer::No>},
    Preparation{"--resize-normalised", Resize<Desktop::Answer::Yes>},
    Preparation{"--save", PrepareSave},
    Preparation{"--single-files", PrepareSingleFiles},
    Preparation{"--html", PrepareHtml},
    Preparation{"--minimal-html", PrepareMinimalHtml},
    Preparation{"--names", PrepareNames},
    Preparation{"--cubes", PrepareCubes},
    Preparation{"--text", PrepareText},
    Preparation{"--info", PrepareInfo},
    Preparation{"--list-fonts", PrepareFontList},
};

static_assert(std::ranges::equal(preparations, stepNames, {}, &Preparation::name, &StepName::name),
              "every step that is named has its preparation, in the same order");

} // namespace

PrepareStep PreparationOf(std::size_t step) {
    return preparations[step].prepare;
}
