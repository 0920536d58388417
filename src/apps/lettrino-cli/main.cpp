// lettrino-cli: the program's work without a window. Steps are done in the order given, on one document,
// starting from the default settings; the user's own settings and folders play no part.
//
// Status 0: all steps done. 1: a step failed; one line on standard error names it, its file and the reason.
// 2: wrong usage, found before any step is done.

#include "apps/lettrino-cli/Recipe.h"
#include "apps/lettrino-cli/Runner.h"
#include "apps/lettrino-cli/Serve.h"
#include "apps/lettrino-cli/Watch.h"
#include "foundation/MDebug.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

using StepOptions = std::unordered_map<const CLI::Option*, const Step*>;

// What is wanted of the steps beyond doing them once.
struct Wishes {
    bool dryRun = false;
    bool watch = false;
    int port = -1; // -1: no server
};

void AddStep(CLI::App& app, const Step& step, StepOptions& options) {
    CLI::Option* option = nullptr;
    if (step.argumentCount == 0) {
        option = app.add_flag(step.name, step.help)->disable_flag_override();
    } else {
        option = app.add_option(step.name, step.help)
                     ->option_text(step.arguments)
                     ->type_name(step.arguments) // which messages name
                     ->type_size(step.argumentCount)
                     ->expected(1, CLI::detail::expected_max_vector_size)
                     ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
                     ->allow_extra_args(false);
        if (step.argumentOptional) option->expected(0, 1);
    }
    options[option] = &step;
}

StepOptions AddSteps(CLI::App& app) {
    StepOptions options;
    for (const Step& step : AllSteps())
        AddStep(app, step, options);
    AddStep(app, StepsOfFile, options);
    return options;
}

void AddWishes(CLI::App& app, Wishes& wishes) {
    app.add_flag("--dry-run", wishes.dryRun,
                 "prints which files the steps would read and write, and does none");
    app.add_flag("--watch", wishes.watch, "does the steps again whenever a file that they read changes");
    app.add_option("--serve", wishes.port,
                   "with --watch: shows what is written at http://127.0.0.1:PORT/, where open pages load "
                   "themselves anew (0: any port)")
        ->option_text("PORT")
        ->check(CLI::Range(0, 65535));
}

// The parser tells the options in the order in which their words stood, one entry for each word.
std::vector<StepCall> InOrder(const CLI::App& app, const StepOptions& options) {
    const fs::path here = fs::current_path();
    std::vector<StepCall> calls;
    std::unordered_map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* option : app.parse_order()) {
        const auto known = options.find(option);
        if (known == options.end()) continue;
        const int count = known->second->argumentCount;
        const auto words = static_cast<std::size_t>(std::max(count, 1));
        const std::size_t word = taken[option]++;
        if (word % words == 0) calls.push_back({known->second, {}, here, {}});
        if (count > 0) calls.back().arguments.push_back(option->results()[word]);
    }
    return calls;
}

// Each recipe's steps in its place. What could be read of them, and why one is none.
std::pair<Recipe, std::string> Expand(const std::vector<StepCall>& calls) {
    std::pair<Recipe, std::string> all;
    for (const StepCall& call : calls) {
        if (call.step != &StepsOfFile) {
            all.first.calls.push_back(call);
            continue;
        }
        auto read = ReadRecipe(call.arguments[0]);
        if (const auto* const failure = std::get_if<NoRecipe>(&read)) {
            std::ranges::copy(failure->files, std::back_inserter(all.first.files));
            if (all.second.empty()) all.second = failure->reason;
            continue;
        }
        Recipe& recipe = std::get<Recipe>(read);
        std::ranges::move(recipe.calls, std::back_inserter(all.first.calls));
        std::ranges::move(recipe.files, std::back_inserter(all.first.files));
    }
    return all;
}

// The words of the command line without those that ask for watching.
std::vector<std::string> WordsOfARun(int argc, char** argv) {
    std::vector<std::string> words;
    for (int i = 0; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--serve") ++i;
        if (word == "--watch" || word == "--serve" || word.starts_with("--serve=")) continue;
        words.push_back(word);
    }
    return words;
}

// The lowest folder that holds all that is written; the first one where that would be the whole disk.
fs::path FolderToServe(const std::vector<ListedFile>& files) {
    fs::path first;
    fs::path common;
    for (const ListedFile& file : files) {
        if (!file.written) continue;
        const fs::path folder = file.path.parent_path();
        if (first.empty()) common = first = folder;
        fs::path both;
        for (auto a = common.begin(), b = folder.begin(); a != common.end() && b != folder.end() && *a == *b;
             ++a, ++b)
            both /= *a;
        common = both;
    }
    if (common == common.root_path()) common = first;
    return common.empty() ? fs::current_path() : common;
}

int Watch(const std::vector<StepCall>& calls, const Wishes& wishes, const std::vector<std::string>& words) {
    PageServer server(FolderToServe(ListFiles(Expand(calls).first.calls)));
    const auto files = [&] {
        const Recipe recipe = Expand(calls).first;
        WatchedFiles watched{recipe.files, {}};
        std::vector<fs::path> pages;
        for (const ListedFile& file : ListFiles(recipe.calls)) {
            (file.written ? watched.written : watched.read).push_back(file.path);
            if (file.written && file.path.extension() == ".html") pages.push_back(file.path);
        }
        server.List(pages);
        return watched;
    };
    if (wishes.port >= 0) {
        if (!server.Start(wishes.port)) {
            ReportError("--serve: port " + std::to_string(wishes.port) + " can't be had");
            return StatusFailed;
        }
        ReportError("serving at " + server.Address());
    }
    WatchAndRun(
        files, [&] { return RunAsChild(words); }, [&] { server.Reload(); });
    return 0;
}

int Work(int argc, char** argv) {
    CLI::App app("Makes and converts colour fonts: bitmap fonts whose glyphs are pictures.\n"
                 "Steps are done in the order given, on one font.",
                 "lettrino-cli");
    app.set_help_flag("--help", "prints this text");
    app.set_version_flag("--version", "Lettrino " LETTRINO_VERSION, "prints the version");
    const StepOptions options = AddSteps(app);
    Wishes wishes;
    AddWishes(app, wishes);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        ReportError(std::string(error.what()) + "; --help lists the steps");
        return StatusWrongUsage;
    }
    const std::vector<StepCall> calls = InOrder(app, options);
    if (calls.empty()) {
        ReportError("no steps; --help lists them");
        return StatusWrongUsage;
    }
    if (wishes.port >= 0 && !wishes.watch) {
        ReportError("--serve goes with --watch");
        return StatusWrongUsage;
    }
    DebugToStandardError();
    if (wishes.watch && !wishes.dryRun) return Watch(calls, wishes, WordsOfARun(argc, argv));
    const auto [recipe, failure] = Expand(calls);
    if (!failure.empty()) {
        ReportError("--steps: " + failure);
        return StatusWrongUsage;
    }
    return wishes.dryRun ? PrintFiles(recipe.calls, recipe.files) : RunSteps(recipe.calls);
}

} // namespace

int main(int argc, char** argv) {
    int status = StatusFailed;
    try {
        status = Work(argc, argv);
    } catch (const std::exception& error) { // such as of the system, where the current folder is gone
        ReportError(error.what());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        ReportError("what was to be printed could not be written");
        status = std::max(status, StatusFailed);
    }
    return status;
}
