// lettrino-cli: the program's work without a window. Steps are done in the order given, on one document,
// starting from the default settings; the user's own settings and folders play no part.
//
// Status 0: all steps done. 1: a step failed; one line on standard error names it, its file and the reason.
// 2: wrong usage, found before any step is done.

#include "apps/lettrino-cli/Steps.h"
#include "foundation/MDebug.h"
#include "foundation/MUtf8.h"
#include "platform/headless/Headless.h"

#include <CLI/CLI.hpp>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr int statusFailed = 1;
constexpr int statusWrongUsage = 2;

struct StepCall {
    const Step* step;
    std::vector<std::string> arguments;
};

using StepOptions = std::unordered_map<const CLI::Option*, const Step*>;

void ReportError(const std::string& text) {
    std::fprintf(stderr, "lettrino-cli: %s\n", text.c_str());
}

StepOptions AddSteps(CLI::App& app) {
    StepOptions options;
    for (const Step& step : AllSteps()) {
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
            if (step.argumentOptional) option->expected(0, 1);
        }
        options[option] = &step;
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
        const int count = known->second->argumentCount;
        const auto words = static_cast<std::size_t>(std::max(count, 1));
        const std::size_t word = taken[option]++;
        if (word % words == 0) calls.push_back({known->second, {}});
        if (count > 0) calls.back().arguments.push_back(option->results()[word]);
    }
    return calls;
}

void ShowProgressBar(std::int32_t percent, const MString& text) {
    constexpr int width = 40;
    if (percent < 0) {
        std::fputs("\r\033[K", stderr);
        return;
    }
    const std::string bar(static_cast<std::size_t>(percent * width / 100), '#');
    std::fprintf(stderr, "\r%s [%-*s] %d%%\033[K", ToSystem(text).c_str(), width, bar.c_str(), percent);
}

std::string Describe(const Step& step, const StepFailure& failure) {
    return std::string(step.name) + ": " + (failure.file.empty() ? "" : failure.file + ": ") + failure.reason;
}

std::string DescribeUsage(const Step& step, const std::string& argument) {
    return std::string(step.name) + " '" + argument + "': wrong usage; it is " + step.name + " " +
           step.arguments + ": " + step.help;
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

int RunSteps(const std::vector<StepCall>& calls) {
    std::vector<StepAction> actions;
    for (const auto& [step, arguments] : calls) {
        auto action = step->prepare(arguments);
        if (!action) {
            ReportError(DescribeUsage(*step, arguments[0]));
            return statusWrongUsage;
        }
        actions.push_back(std::move(*action));
    }
    if (isatty(STDERR_FILENO)) Headless::script.onProgress = ShowProgressBar;
    Run run;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (const StepResult failure = Do(actions[i], run)) {
            ReportError(Describe(*calls[i].step, *failure));
            return statusFailed;
        }
    }
    return 0;
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
        return statusWrongUsage;
    }
    const std::vector<StepCall> calls = InOrder(app, options);
    if (calls.empty()) {
        ReportError("no steps; --help lists them");
        return statusWrongUsage;
    }
    DebugToStandardError();
    return RunSteps(calls);
}
