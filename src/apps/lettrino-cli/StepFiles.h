// Which files the steps of the command line read and write.
#pragma once

#include "apps/lettrino-cli/Steps.h"

std::vector<StepFile> ReadsFile(StepArguments arguments);
std::vector<StepFile> OpensFont(StepArguments arguments);
std::vector<StepFile> ReadsPicture(StepArguments arguments);
std::vector<StepFile> ReadsPictures(StepArguments arguments);
std::vector<StepFile> WritesFile(StepArguments arguments);
std::vector<StepFile> WritesTextureFont(StepArguments arguments);
std::vector<StepFile> WritesSingleFiles(StepArguments arguments);
std::vector<StepFile> WritesPage(StepArguments arguments);
std::vector<StepFile> WritesMinimalPage(StepArguments arguments);
std::vector<StepFile> WritesCubes(StepArguments arguments);
std::vector<StepFile> WritesGameFont(StepArguments arguments);
std::vector<StepFile> WritesCssPage(StepArguments arguments);
std::vector<StepFile> WritesText(StepArguments arguments);
std::vector<StepFile> ReadsFileOfText(StepArguments arguments);
