// A font's kerning as tests compare it.
#pragma once

#include "document/MColourFont.h"

#include <ostream>
#include <vector>

using Pairs = std::vector<MKerningPair>;

inline Pairs PairsOf(const MColourFont& font) {
    return {font.Kerning.begin(), font.Kerning.end()};
}

inline std::ostream& operator<<(std::ostream& out, const MKerningPair& pair) {
    return out << pair.Left << ' ' << pair.Right << ' ' << pair.Amount;
}
