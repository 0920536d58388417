#include "apps/lettrino-cli/StepModule.h"

#include "apps/lettrino-cli/StepNames.h"
#include "apps/lettrino-cli/Steps.h"
#include "foundation/MUtf8.h"
#include "platform/headless/Headless.h"

#include <unistd.h>

#include <cstdio>
#include <exception>
#include <new>

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

void ReportError(const std::string& text) {
    std::fputs(ErrorLine(text).c_str(), stderr);
}

std::string Describe(const StepName& step, const StepFailure& failure) {
    return std::string(step.name) + ": " + (failure.file.empty() ? "" : failure.file + ": ") + failure.reason;
}

std::string DescribeUsage(const StepName& step, const std::string& argument) {
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

} // namespace

extern "C" __attribute__((visibility("default"))) int RunSteps(const std::vector<StepCall>& calls) {
    std::vector<StepAction> actions;
    for (const auto& [step, arguments] : calls) {
        auto action = PreparationOf(step)(arguments);
        if (!action) {
            ReportError(DescribeUsage(stepNames[step], arguments[0]));
            return StatusWrongUsage;
        }
        actions.push_back(std::move(*action));
    }
    if (isatty(STDERR_FILENO)) Headless::script.onProgress = ShowProgressBar;
    Run run;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (const StepResult failure = Do(actions[i], run)) {
            ReportError(Describe(stepNames[calls[i].step], *failure));
            return StatusFailed;
        }
    }
    return 0;
}
