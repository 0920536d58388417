// The steps of fonts for games: their choices, the export, the check, and the import behind --open.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PrepareGameEngine(StepArguments arguments);
std::optional<StepAction> PrepareGameForm(StepArguments arguments);
std::optional<StepAction> PrepareGameGap(StepArguments arguments);
std::optional<StepAction> PrepareGameBleed(StepArguments arguments);
std::optional<StepAction> PrepareGamePageSize(StepArguments arguments);
std::optional<StepAction> PrepareGameLargest(StepArguments arguments);
std::optional<StepAction> PrepareGameFont(StepArguments arguments);
std::optional<StepAction> PrepareGameCheckForm(StepArguments arguments);
std::optional<StepAction> PrepareGameCheck(StepArguments arguments);

// `file` is named in a failure; notes of what didn't fit go to standard error.
StepResult OpenGameFont(Run& run, const std::string& file, const MString& path);
