// The steps that kern the font.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PrepareKern(StepArguments arguments);
std::optional<StepAction> PrepareSetKerning(StepArguments arguments);
std::optional<StepAction> PrepareModelPairs(StepArguments arguments);  // L,R,N;L,R,N
std::optional<StepAction> PrepareKernOptical(StepArguments arguments); // [PERCENT]
std::optional<StepAction> PrepareKernFromFont(StepArguments arguments);
