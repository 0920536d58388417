// The steps of font files whose glyphs are pictures: their choices and the exports.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::optional<StepAction> PrepareWebFontName(StepArguments arguments);
std::optional<StepAction> PrepareWebFontStrikes(StepArguments arguments);
std::optional<StepAction> PrepareTrueType(StepArguments arguments);
std::optional<StepAction> PrepareWoff2(StepArguments arguments);
std::optional<StepAction> PrepareCssPage(StepArguments arguments);
