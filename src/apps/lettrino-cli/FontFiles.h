// The steps that read and write files. Where the program itself stays silent about a failure, these look what
// came of it and give the reason.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PrepareFontFile(StepArguments arguments);
std::optional<StepAction> PrepareOpen(StepArguments arguments);
std::optional<StepAction> PrepareSave(StepArguments arguments);
std::optional<StepAction> PrepareSingleFiles(StepArguments arguments);
std::optional<StepAction> PrepareHtml(StepArguments arguments);
std::optional<StepAction> PrepareMinimalHtml(StepArguments arguments);
std::optional<StepAction> PrepareText(StepArguments arguments); // TEXT FILE.png
std::optional<StepAction> PrepareNames(StepArguments arguments);
std::optional<StepAction> PrepareCubes(StepArguments arguments);
