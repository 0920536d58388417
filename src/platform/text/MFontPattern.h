// From fontconfig's patterns to what this program keeps of them.
#pragma once

#include "platform/text/MSystemFonts.h"

#include <cstdint>
#include <optional>

struct _FcPattern;

// None if the pattern names no file.
std::optional<MFontMatch> ToMatch(const _FcPattern* pattern);

// Grows whenever fonts are added to the run.
std::uint32_t FontsVersion();
