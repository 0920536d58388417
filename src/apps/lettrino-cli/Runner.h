// Doing the steps, and telling what they would do.
#pragma once

#include "apps/lettrino-cli/Recipe.h"

#include <filesystem>
#include <string>
#include <vector>

inline constexpr int StatusFailed = 1;
inline constexpr int StatusWrongUsage = 2;

void ReportError(const std::string& text);

// A file of the steps, by its full path. A '*' in its name stands for what the font decides.
struct ListedFile {
    std::filesystem::path path;
    bool written;
    bool perhaps;
};

// What the steps read and write, each file once, in the order of the steps; one that is first written and then
// read is listed as written alone.
std::vector<ListedFile> ListFiles(const std::vector<StepCall>& calls);

// Does them one after another. The status that the program ends with; a failure is told.
int RunSteps(const std::vector<StepCall>& calls);

// Prints what RunSteps would read and write. Wrong usage is told as by it.
int PrintFiles(const std::vector<StepCall>& calls, const std::vector<std::filesystem::path>& recipeFiles);
