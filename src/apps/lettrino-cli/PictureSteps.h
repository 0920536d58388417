// The steps that make glyphs from picture files.
#pragma once

#include "apps/lettrino-cli/Steps.h"

struct CharacterFile {
    char16_t character;
    std::string file;
};
// CHAR=FILE; the character may itself be "=".
std::optional<CharacterFile> ReadCharacterFile(const std::string& text);

std::optional<StepAction> PreparePicture(StepArguments arguments);
std::optional<StepAction> PreparePictures(StepArguments arguments);
