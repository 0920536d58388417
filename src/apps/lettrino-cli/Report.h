// The steps that print JSON on standard output.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PrepareInfo(StepArguments arguments);
std::optional<StepAction> PrepareFontList(StepArguments arguments);
