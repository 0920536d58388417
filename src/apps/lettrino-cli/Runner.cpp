#include "apps/lettrino-cli/Runner.h"

#include "apps/lettrino-cli/StepFiles.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"
#include "platform/headless/Headless.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>

namespace fs = std::filesystem;

namespace {

void ShowProgressBar(std::int32_t percent, const MString& text) {
    constexpr int width = 40;
    if (percent < 0) {
        std::fputs("\r\033[K", stderr);
        return;
    }
    const std::string bar(static_cast<std::size_t>(percent * width / 100), '#');
    std::fprintf(stderr, "\r%s [%-*s] %d%%\033[K", ToSystem(text).c_str(), width, bar.c_str(), percent);
}

std::string Place(const StepCall& call) {
    return (call.place.empty() ? "" : call.place + ": ") + call.step->name;
}

std::string Describe(const StepCall& call, const StepFailure& failure) {
    return Place(call) + ": " + (failure.file.empty() ? "" : failure.file + ": ") + failure.reason;
}

std::string DescribeUsage(const StepCall& call) {
    const Step& step = *call.step;
    std::string words;
    for (const std::string& argument : call.arguments)
        words += " '" + argument + "'";
    return Place(call) + words + ": wrong usage; it is " + step.name + " " + step.arguments + ": " + step.help;
}

// Of a step whose last argument names a file or a folder: whether it can name one. "" and what ends in "/" are
// what scripts give whose variables are empty; without this ".sm" would be written.
bool NamesItsFile(const StepCall& call) {
    const Step& step = *call.step;
    if (!step.files || step.readsText) return true;
    const fs::path path = ToSystemPath(FromSystem(call.arguments.back()));
    const fs::path name = path.filename();
    const bool isFolder = name.empty() || name == "." || name == "..";
    return !path.empty() && (!isFolder || step.files == WritesSingleFiles);
}

// Files are named from the folder of their step.
void GoTo(const fs::path& folder) {
    std::error_code error;
    if (!folder.empty()) fs::current_path(folder, error);
}

// Nothing that a library throws ends the program without a word.
StepResult Do(const StepAction& action, Run& run) {
    try {
        return action(run);
    } catch (const std::bad_alloc&) {
        return StepFailure{{}, "there is not enough memory for it"};
    } catch (const std::exception& error) {
        return StepFailure{{}, error.what()};
    }
}

// Nothing if one of them means nothing, which is told.
std::optional<std::vector<StepAction>> Prepare(const std::vector<StepCall>& calls) {
    std::vector<StepAction> actions;
    for (const StepCall& call : calls) {
        auto action = call.step->prepare(call.arguments);
        if (!action || !NamesItsFile(call)) {
            ReportError(DescribeUsage(call));
            return std::nullopt;
        }
        actions.push_back(std::move(*action));
    }
    return actions;
}

} // namespace

void ReportError(const std::string& text) {
    std::fprintf(stderr, "lettrino-cli: %s\n", text.c_str());
}

std::vector<ListedFile> ListFiles(const std::vector<StepCall>& calls) {
    std::vector<ListedFile> all;
    const fs::path before = fs::current_path();
    for (const StepCall& call : calls) {
        if (!call.step->files) continue;
        GoTo(call.folder);
        for (const StepFile& file : call.step->files(call.arguments)) {
            std::error_code error;
            fs::path path = fs::absolute(file.path, error).lexically_normal();
            if (error) continue; // it has no name
            // As it is spelled on the disk: "B.png", where the next of a series is "B.PNG".
            if (!file.written) path = FindExisting(FromSystemPath(path)).value_or(path);
            const auto same = [&](const ListedFile& listed) {
                return listed.path == path && (listed.written || !file.written);
            };
            if (std::ranges::none_of(all, same)) all.push_back({path, file.written, file.perhaps});
        }
    }
    GoTo(before);
    return all;
}

int RunSteps(const std::vector<StepCall>& calls) {
    const auto actions = Prepare(calls);
    if (!actions) return StatusWrongUsage;
    if (isatty(STDERR_FILENO)) Headless::script.onProgress = ShowProgressBar;
    Run run;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        GoTo(calls[i].folder);
        if (const StepResult failure = Do((*actions)[i], run)) {
            ReportError(Describe(calls[i], *failure));
            return StatusFailed;
        }
    }
    if (run.choices.sheetReport.empty()) return 0;
    ReportError("--sheet-report: " + run.choices.sheetReport + ": no sheet was cut");
    return StatusFailed;
}

int PrintFiles(const std::vector<StepCall>& calls, const std::vector<fs::path>& recipeFiles) {
    if (!Prepare(calls)) return StatusWrongUsage;
    const fs::path here = fs::current_path();
    const auto print = [&](const char* what, const fs::path& path) {
        const fs::path near = path.lexically_relative(here);
        const bool below = !near.empty() && *near.begin() != "..";
        std::printf("%s %s\n", what, (below ? near : path).c_str());
    };
    for (const fs::path& path : recipeFiles)
        print("reads ", path.lexically_normal());
    for (const ListedFile& file : ListFiles(calls))
        if (!file.perhaps || FindExisting(FromSystemPath(file.path)))
            print(file.written ? "writes" : "reads ", file.path);
    return 0;
}
