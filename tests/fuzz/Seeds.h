// First inputs for the targets that read fonts, texts and tables.
#pragma once

#include <filesystem>

void WriteFontSeeds(const std::filesystem::path& root);
