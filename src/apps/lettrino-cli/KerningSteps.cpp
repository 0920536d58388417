#include "apps/lettrino-cli/KerningSteps.h"

#include "apps/lettrino-cli/Words.h"
#include "document/OpticalKerning.h"
#include "foundation/MString.h"
#include "glyphs/KernFromFont.h"

#include <algorithm>

namespace {

constexpr std::int32_t strongest = 300; // percent

// L,R,N
std::optional<MKerningPair> ReadPair(std::string_view text) {
    const auto parts = SplitList(text);
    if (parts.size() != 3) return std::nullopt;
    const auto left = ReadCharacter(parts[0]);
    const auto right = ReadCharacter(parts[1]);
    const auto amount = ReadNumber(parts[2]);
    if (!left || !right || !amount) return std::nullopt;
    return MKerningPair{*left, *right, *amount};
}

StepResult KernOptically(Run& run, MColourFont& font, std::int32_t percent) {
    const MOpticalKerning optical(font);
    if (optical.state == MOpticalKerning::State::NoInk)
        return StepFailure{{}, "no glyph has ink to be measured"};
    if (optical.state == MOpticalKerning::State::NoControlLetters)
        return StepFailure{{}, "the font has none of the letters that spacing is measured by (HINEOU, nohuim)"};
    const auto pairs =
        optical.Pairs({.strength = static_cast<float>(percent) / 100.0F}, run.choices.modelPairs);
    font.ClearKerning();
    if (!font.Kerning.Resize(static_cast<std::int32_t>(pairs.size()), false))
        return StepFailure{{}, "there is no memory for the pairs"};
    std::ranges::copy(pairs, font.Kerning.data);
    font.SortKerningByAmount();
    return {};
}

} // namespace

std::optional<StepAction> PrepareKern(StepArguments) {
    return OnFont([](Run&, MColourFont& font) -> StepResult {
        font.GenerateKerning();
        font.SortKerningByAmount();
        return {};
    });
}

std::optional<StepAction> PrepareSetKerning(StepArguments arguments) {
    const auto pair = ReadPair(arguments[0]);
    if (!pair) return std::nullopt;
    return OnFont([pair = *pair](Run&, MColourFont& font) -> StepResult {
        if (font.SetKerning(static_cast<std::int32_t>(pair.Left), pair.Right, pair.Amount)) return {};
        return StepFailure{{}, "characters below 33 take no kerning"};
    });
}

std::optional<StepAction> PrepareModelPairs(StepArguments arguments) {
    std::vector<MKerningPair> pairs;
    for (std::string_view rest = arguments[0]; !rest.empty();) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        const auto pair = ReadPair(rest.substr(0, end));
        if (!pair || pair->Left < FirstCharacter || pair->Right < FirstCharacter) return std::nullopt;
        pairs.push_back(*pair);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return [pairs](Run& run) -> StepResult {
        run.choices.modelPairs = pairs;
        return {};
    };
}

std::optional<StepAction> PrepareKernOptical(StepArguments arguments) {
    const auto percent = arguments[0].empty() ? std::optional(100) : ReadNumber(arguments[0]);
    if (!percent || *percent < 0 || *percent > strongest) return std::nullopt;
    return OnFont(
        [percent = *percent](Run& run, MColourFont& font) { return KernOptically(run, font, percent); });
}

std::optional<StepAction> PrepareKernFromFont(StepArguments) {
    return OnFont([](Run& run, MColourFont& font) -> StepResult {
        const std::string family = ToSystem(run.choices.settings.FontName);
        switch (KernFromFont(font)) {
        case KernFromFontResult::NoFont: return StepFailure{{}, "the font '" + family + "' can't be measured"};
        case KernFromFontResult::NoKerning:
            return StepFailure{{},
                               "the font '" + family + "' has no kerning for the characters at this height"};
        case KernFromFontResult::TooSlow:
            return StepFailure{{}, "the kerning of the font '" + family + "' takes too long to read"};
        case KernFromFontResult::Kerned: font.SortKerningByAmount(); return {};
        }
        return {};
    });
}
