// First inputs of the fuzz targets.
#pragma once

#include <string_view>

// Adds one to those of a target.
void AddSeed(std::string_view target, std::string_view bytes);

// Fonts, texts and tables.
void AddFontSeeds();
