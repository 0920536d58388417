// The seam between the command line's words and its work. The work is a module of its own, which is loaded only
// when there is some: its libraries take longer to load than the help takes to print.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct StepCall {
    std::size_t step; // its place in stepNames
    std::vector<std::string> arguments;
};

// Does the steps in order. The status of the program: 0, 1 when a step failed, 2 for arguments that mean
// nothing, which are found before any step is done; a line on standard error tells what.
using RunStepsFunction = int (*)(const std::vector<StepCall>& calls);
inline constexpr const char* RunStepsName = "RunSteps";
inline constexpr const char* StepModuleFile = "lettrino-steps.so";

inline constexpr int StatusFailed = 1;
inline constexpr int StatusWrongUsage = 2;

// One line on standard error.
inline std::string ErrorLine(const std::string& text) {
    return "lettrino-cli: " + text + "\n";
}
