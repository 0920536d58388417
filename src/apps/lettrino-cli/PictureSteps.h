// The steps that make glyphs from picture files.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PreparePicture(StepArguments arguments);
std::optional<StepAction> PreparePictures(StepArguments arguments);
