// What the words on the command line mean. Nothing, for words that mean nothing.
#pragma once

#include "imaging/MColour.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A whole number of 32 bits.
std::optional<std::int32_t> ReadNumber(std::string_view text);
// RRGGBB, hexadecimal; opaque.
std::optional<MColour> ReadColour(std::string_view text);
// One 16-bit unit: a character as itself, its decimal code (two digits or more), or U+ and its hexadecimal
// code.
std::optional<char16_t> ReadCharacter(std::string_view text);

using Selection = std::array<std::uint8_t, 256>; // by code, 1: selected
// "all" (33 to 255), "none", or a comma list of characters and of ranges of them, "A-Z,a-z,48-57,U+00E9". Codes
// up to 32 are understood and select nothing; codes above 255 can't be selected.
std::optional<Selection> ReadSelection(std::string_view text);

// A text file in UTF-8 of at most 1 MB, without its mark and without carriage returns; nothing if it is no such
// file.
std::optional<std::string> ReadSmallText(const std::filesystem::path& path);

// The parts between the commas.
std::vector<std::string> SplitList(std::string_view text);
