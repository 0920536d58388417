// The steps that cut the letters of one picture.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PrepareSelectText(StepArguments arguments);
std::optional<StepAction> PrepareSheetText(StepArguments arguments);
std::optional<StepAction> PrepareSheetGrid(StepArguments arguments);
std::optional<StepAction> PrepareSheetGround(StepArguments arguments);
std::optional<StepAction> PrepareSheetReport(StepArguments arguments);
std::optional<StepAction> PrepareSheet(StepArguments arguments);

// The file of "@FILE"; nothing if the text is given as itself, "@@" being a text that begins with "@".
std::optional<std::string> FileOfText(const std::string& argument);
