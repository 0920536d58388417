// Base64 (RFC 4648, section 4) of embedded files.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// Groups of four characters, each "=" counting as 0, make three bytes; a group that is cut off is dropped, and
// a "=" in each of the last two places takes one byte away. Other characters are not detected. Nothing below 2
// characters.
std::optional<std::vector<std::uint8_t>> DecodeBase64(std::string_view text);
