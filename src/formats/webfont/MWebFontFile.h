// A font of pictures as the bytes of a file: OpenType with TrueType outlines, and that packed as WOFF2.
#pragma once

#include "formats/webfont/MWebFont.h"

#include <cstdint>
#include <string>
#include <vector>

struct MWebFontFile {
    std::vector<std::uint8_t> Bytes;      // empty if there is a reason
    std::vector<std::size_t> StrikeBytes; // of each of the font's strikes, in its order
    std::string Reason;                   // why it can't be made
};

enum class MWebFontForm : std::uint8_t { TrueType, Woff2 };

// Of a plan without a reason of its own. Shows its progress. What will be packed as a whole is not compressed
// in its parts before, since that would make it larger in the end.
MWebFontFile BuildWebFont(const MWebFont& font, MWebFontForm form);
// Nothing if it can't be packed.
std::vector<std::uint8_t> PackAsWoff2(const std::vector<std::uint8_t>& font);
