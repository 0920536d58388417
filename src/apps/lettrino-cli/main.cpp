// lettrino-cli: the program's work without a window. Steps are done in the order given, on one document,
// starting from the default settings; the user's own settings and folders play no part.
//
// Status 0: all steps done. 1: a step failed; one line on standard error names it, its file and the reason.
// 2: wrong usage.

#include "apps/lettrino-cli/StepModule.h"
#include "apps/lettrino-cli/StepNames.h"

#include <CLI/CLI.hpp>
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using StepOptions = std::unordered_map<const CLI::Option*, std::size_t>;

void ReportError(const std::string& text) {
    std::fputs(ErrorLine(text).c_str(), stderr);
}

StepOptions AddSteps(CLI::App& app) {
    StepOptions options;
    for (std::size_t i = 0; i < stepNames.size(); ++i) {
        const StepName& step = stepNames[i];
        CLI::Option* option = nullptr;
        if (step.argumentCount == 0) {
            option = app.add_flag(step.name, step.help)->disable_flag_override();
        } else {
            option = app.add_option(step.name, step.help)
                         ->option_text(step.arguments)
                         ->type_size(step.argumentCount)
                         ->expected(1, CLI::detail::expected_max_vector_size)
                         ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
                         ->allow_extra_args(false);
        }
        options[option] = i;
    }
    return options;
}

// The parser tells the options in the order in which their words stood, one entry for each word.
std::vector<StepCall> InOrder(const CLI::App& app, const StepOptions& options) {
    std::vector<StepCall> calls;
    std::unordered_map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* option : app.parse_order()) {
        const auto known = options.find(option);
        if (known == options.end()) continue;
        const int count = stepNames[known->second].argumentCount;
        const auto words = static_cast<std::size_t>(std::max(count, 1));
        const std::size_t word = taken[option]++;
        if (word % words == 0) calls.push_back({known->second, {}});
        if (count > 0) calls.back().arguments.push_back(option->results()[word]);
    }
    return calls;
}

// Beside the program; asked for by its full path, since a run path is not followed under every run time.
std::string ModulePath() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / StepModuleFile).string();
}

int LoadAndRun(const std::vector<StepCall>& calls) {
    void* const module = dlopen(ModulePath().c_str(), RTLD_NOW | RTLD_LOCAL); // stays loaded to the end
    void* const function = module ? dlsym(module, RunStepsName) : nullptr;
    if (!function) {
        ReportError(dlerror());
        return StatusFailed;
    }
    return reinterpret_cast<RunStepsFunction>(function)(calls);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Makes and converts colour fonts: bitmap fonts whose glyphs are pictures.\n"
                 "Steps are done in the order given, on one font.",
                 "lettrino-cli");
    app.set_help_flag("--help", "prints this text");
    app.set_version_flag("--version", "Lettrino " LETTRINO_VERSION, "prints the version");
    const StepOptions options = AddSteps(app);
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
    return LoadAndRun(calls);
}
