#include "apps/lettrino-cli/WebFontSteps.h"

#include "apps/lettrino-cli/Words.h"
#include "formats/webfont/MWebFontExport.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

// What of it went well but not without a word, and what didn't.
StepResult Told(const char* step, const std::string& file, const MWebFontOptions& options,
                const MWebFontResult& result) {
    if (!result.Reason.empty()) return StepFailure{file, result.Reason};
    if (!result.Failures.empty()) {
        std::string reasons;
        for (const MWriteFailure& failure : result.Failures) {
            reasons += (reasons.empty() ? "" : "; ") + ToSystem(failure.path) +
                       " could not be written: " + ToSystem(failure.reason);
        }
        return StepFailure{file, reasons};
    }
    for (const std::uint32_t code : result.LostCharacters)
        std::fprintf(stderr, "lettrino-cli: %s: note: code %u is left out: no font file can name it\n", step,
                     code);
    for (std::size_t i = 0; i < result.StrikeBytes.size(); ++i) {
        std::fprintf(stderr, "lettrino-cli: %s: note: the pictures for %d pixels take %zu bytes\n", step,
                     options.Strikes[i], result.StrikeBytes[i]);
    }
    return {};
}

StepResult RefuseFolder(const std::string& file, const MString& path) {
    const std::filesystem::path folder = ToSystemPath(path).parent_path();
    std::error_code error;
    if (std::filesystem::is_directory(folder, error)) return {};
    return StepFailure{file, "there is no folder " + folder.string()};
}

MFontDescription Describe(const Run& run, const MColourFont& font) {
    return DescribeFont(font, run.choices.settings.GlyphHeight);
}

StepAction ExportAction(const char* step, const std::string& file, MWebFontForm form) {
    return OnFont([step, file, form](Run& run, MColourFont& font) -> StepResult {
        const MString path = FullPath(FromSystem(file));
        if (StepResult refusal = RefuseFolder(file, path)) return refusal;
        const MWebFontOptions& options = run.choices.webFont;
        return Told(step, file, options, ExportWebFont(Describe(run, font), path, form, options, font.Owner));
    });
}

} // namespace

std::optional<StepAction> PrepareWebFontName(StepArguments arguments) {
    return [name = FromSystem(arguments[0])](Run& run) -> StepResult {
        run.choices.webFont.Family = name;
        return {};
    };
}

std::optional<StepAction> PrepareWebFontStrikes(StepArguments arguments) {
    std::vector<std::int32_t> strikes;
    for (const std::string& part : SplitList(arguments[0])) {
        const auto height = ReadNumber(part);
        if (!height || *height < 1 || *height > LargestGlyphHeight) return std::nullopt;
        strikes.push_back(*height);
    }
    return [strikes](Run& run) -> StepResult {
        run.choices.webFont.Strikes = strikes;
        return {};
    };
}

std::optional<StepAction> PrepareTrueType(StepArguments arguments) {
    return ExportAction("--ttf", arguments[0], MWebFontForm::TrueType);
}

std::optional<StepAction> PrepareWoff2(StepArguments arguments) {
    return ExportAction("--woff2", arguments[0], MWebFontForm::Woff2);
}

std::optional<StepAction> PrepareCssPage(StepArguments arguments) {
    return OnFont([file = arguments[0]](Run& run, MColourFont& font) -> StepResult {
        const MString path = WithExtension(FullPath(FromSystem(file)), "html");
        if (StepResult refusal = RefuseFolder(file, path)) return refusal;
        const MWebFontOptions& options = run.choices.webFont;
        return Told("--css-page", file, options, ExportCssPage(Describe(run, font), path, options, font.Owner));
    });
}
