// The steps that go back to what was before.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PrepareMark(StepArguments arguments);
std::optional<StepAction> PrepareBack(StepArguments arguments);
