// How the steps of the command line do their work.
#pragma once

#include "apps/lettrino-cli/Run.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Why a step couldn't do its work. `file` is empty where none is involved.
struct StepFailure {
    std::string file;
    std::string reason;
};
using StepResult = std::optional<StepFailure>; // nothing: it is done

using StepAction = std::function<StepResult(Run&)>;
using StepArguments = std::span<const std::string>;

// Understands a step's arguments, before any step is done. Nothing if they mean nothing.
using PrepareStep = std::optional<StepAction> (*)(StepArguments arguments);

// A file that a step reads or writes, as its arguments name it.
struct StepFile {
    std::string path;
    bool written = false;
    bool perhaps = false; // read only if it is there
};
// Which files those are, as far as the arguments and the folders tell.
using ListStepFiles = std::vector<StepFile> (*)(StepArguments arguments);

struct Step {
    const char* name;      // "--save"
    const char* arguments; // as the help shows them, separated by blanks; empty for none
    int argumentCount;
    const char* help;
    PrepareStep prepare;
    ListStepFiles files = nullptr; // null if there are none
    bool argumentOptional = false; // its one argument is empty then
    bool readsText = false;        // its argument may be "@FILE", which it reads itself
};

// All that the command line understands, in the order of the help.
std::span<const Step> AllSteps();

// The action of a step that needs a document, which fails without one.
template<typename Work>
StepAction OnFont(Work work) {
    return [work](Run& run) -> StepResult {
        if (!run.font) return StepFailure{{}, "there is no font yet: nothing was generated or opened before"};
        return work(run, *run.font);
    };
}
