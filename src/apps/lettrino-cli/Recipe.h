// Steps from a file, one to a line, in the place of `--steps FILE`:
//
//     # comment
//     family DejaVu Sans
//     select A-Z,a-z
//     generate
//     text "Two words" words.png
//     names @names.txt
//
// The dashes before a step's name may be left out. The rest of the line is its argument as it stands, without
// quotes around blanks; of two arguments the last word is the second, and the first may stand in quotes. An
// argument "@FILE" is what is in the file, "@@" begins one with "@". Files are named from the recipe's own
// folder. A recipe takes in no other.
#pragma once

#include "apps/lettrino-cli/Steps.h"

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

struct StepCall {
    const Step* step;
    std::vector<std::string> arguments;
    std::filesystem::path folder; // from which its files are named
    std::string place;            // "demo.steps:12"; empty for one of the command line
};

struct Recipe {
    std::vector<StepCall> calls;
    std::vector<std::filesystem::path> files; // the recipe, and those that "@" named
};

// The step of the recipe's own name, which the caller replaces by what is in it.
extern const Step StepsOfFile;

struct NoRecipe {
    std::string reason;                       // with its line, where that is to blame
    std::vector<std::filesystem::path> files; // a change of one may mend it
};

std::variant<Recipe, NoRecipe> ReadRecipe(const std::string& file);
