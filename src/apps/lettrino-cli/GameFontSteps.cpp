#include "apps/lettrino-cli/GameFontSteps.h"

#include "apps/lettrino-cli/Words.h"
#include "formats/game/MGameFontExport.h"
#include "formats/game/MGameFontImport.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace {

using Json = nlohmann::ordered_json;

// One choice of the settings' game font.
template<auto Field, typename Value>
std::optional<StepAction> Choose(const std::optional<Value>& value) {
    if (!value) return std::nullopt;
    return [value = *value](Run& run) -> StepResult {
        run.choices.settings.GameFont.*Field = value;
        return {};
    };
}

template<auto Field>
std::optional<StepAction> ChooseNumber(const std::string& text, std::int32_t low, std::int32_t high) {
    auto number = ReadNumber(text);
    if (number) number = std::clamp(*number, low, high);
    return Choose<Field>(number);
}

void Tell(const char* step, const char* kind, const std::string& line) {
    std::fprintf(stderr, "lettrino-cli: %s: %s: %s\n", step, kind, line.c_str());
}

void TellFindings(std::vector<MGameFinding> findings) {
    const auto open = std::stable_partition(findings.begin(), findings.end(),
                                            [](const auto& finding) { return finding.Rule->Repaired; });
    const std::vector<MGameFinding> toDo(open, findings.end());
    findings.erase(open, findings.end());
    for (const std::string& line : FindingLines(findings))
        Tell("--fnt", "note", line);
    for (const std::string& line : FindingLines(toDo))
        Tell("--fnt", "warning", line);
}

StepResult Export(Run& run, MColourFont& font, const std::string& file) {
    const MGameFontOptions options = GameFontOptions(run.choices.settings);
    const MString path = FullPath(GameFontPath(FromSystem(file), options.FormToWrite()));
    const std::filesystem::path folder = ToSystemPath(path).parent_path();
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        return StepFailure{file, "there is no folder " + folder.string()};
    run.choices.gameFontName = GameFontName(path);
    const MFontDescription description = DescribeFont(font, run.choices.settings.GlyphHeight);
    const MGameFontPlan plan = PlanGameFont(description, options, run.choices.gameFontName);
    const std::string failure = WriteGameFont(plan, path, font.Owner);
    if (!failure.empty()) return StepFailure{file, failure};
    TellFindings(plan.Findings);
    return {};
}

Json FindingJson(const MGameFinding& finding) {
    Json json{{"rule", finding.Rule->Name}};
    if (finding.Characters.size() == 1) json["code"] = finding.Characters[0];
    if (finding.Characters.size() == 2) {
        json["left"] = finding.Characters[0];
        json["right"] = finding.Characters[1];
    }
    if (!finding.Detail.empty()) json["detail"] = finding.Detail;
    json["problem"] = finding.Rule->Problem;
    json["repaired"] = finding.Rule->Repaired;
    json["action"] = finding.Rule->Action;
    return json;
}

StepResult Check(Run& run, MColourFont& font, const std::vector<const MGameEngine*>& engines) {
    MGameFontOptions options = GameFontOptions(run.choices.settings);
    const MFontDescription description = DescribeFont(font, run.choices.settings.GlyphHeight);
    Json report = Json::array();
    for (const MGameEngine* const engine : engines) {
        options.Engine = engine;
        const MGameFontPlan plan = PlanGameFont(description, options, run.choices.gameFontName);
        if (run.choices.checkAsLines) {
            const std::string name(engine->Name);
            for (const std::string& line : FindingLines(plan.Findings))
                std::printf("%s: %s\n", name.c_str(), line.c_str());
            if (!plan.Reason.empty()) std::printf("%s: not written: %s\n", name.c_str(), plan.Reason.c_str());
            continue;
        }
        Json findings = Json::array();
        for (const MGameFinding& finding : plan.Findings)
            findings.push_back(FindingJson(finding));
        report.push_back({{"engine", engine->Name},
                          {"form", FormatOf(plan.Form).Name},
                          {"written", plan.Reason.empty()},
                          {"reason", plan.Reason},
                          {"findings", std::move(findings)}});
    }
    if (!run.choices.checkAsLines)
        std::puts(
            Json{{"engines", std::move(report)}}.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
    return {};
}

} // namespace

std::optional<StepAction> PrepareGameEngine(StepArguments arguments) {
    return Choose<&MGameFontChoices::Engine>(EngineNamed(arguments[0]) ? std::optional(FromSystem(arguments[0]))
                                                                       : std::nullopt);
}

std::optional<StepAction> PrepareGameForm(StepArguments arguments) {
    return Choose<&MGameFontChoices::Form>(BmFormatNamed(arguments[0]) ? std::optional(FromSystem(arguments[0]))
                                                                       : std::nullopt);
}

std::optional<StepAction> PrepareGameGap(StepArguments arguments) {
    return ChooseNumber<&MGameFontChoices::Gap>(arguments[0], 0, LargestGameGap);
}

std::optional<StepAction> PrepareGameBleed(StepArguments arguments) {
    return ChooseNumber<&MGameFontChoices::Bleed>(arguments[0], 0, LargestGameGap);
}

std::optional<StepAction> PrepareGamePageSize(StepArguments arguments) {
    constexpr std::array<std::string_view, 3> sizes{"free", "four", "pot"};
    const bool known = std::ranges::find(sizes, arguments[0]) != sizes.end();
    return Choose<&MGameFontChoices::PageSize>(known ? std::optional(FromSystem(arguments[0])) : std::nullopt);
}

std::optional<StepAction> PrepareGameLargest(StepArguments arguments) {
    return ChooseNumber<&MGameFontChoices::Largest>(arguments[0], SmallestGamePage, LargestGamePage);
}

std::optional<StepAction> PrepareGameFont(StepArguments arguments) {
    return OnFont([file = arguments[0]](Run& run, MColourFont& font) { return Export(run, font, file); });
}

std::optional<StepAction> PrepareGameCheckForm(StepArguments arguments) {
    if (arguments[0] != "json" && arguments[0] != "lines") return std::nullopt;
    return [lines = arguments[0] == "lines"](Run& run) -> StepResult {
        run.choices.checkAsLines = lines;
        return {};
    };
}

std::optional<StepAction> PrepareGameCheck(StepArguments arguments) {
    std::vector<const MGameEngine*> engines;
    for (const std::string& name : SplitList(arguments[0])) {
        engines.push_back(EngineNamed(name));
        if (!engines.back()) return std::nullopt;
    }
    return OnFont([engines](Run& run, MColourFont& font) { return Check(run, font, engines); });
}

StepResult OpenGameFont(Run& run, const std::string& file, const MString& path) {
    MColourFont& font = run.FontOrNew();
    font.Clear();
    const MGameFontImport import = ImportGameFont(font, path);
    if (!import.Reason.empty()) return StepFailure{file, import.Reason};
    for (const std::string& note : import.Notes)
        Tell("--open", "note", note);
    if (!font.Repack()) return StepFailure{file, "its glyphs don't fit a picture that memory can hold"};
    return {};
}
