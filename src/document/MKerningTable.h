// Many pairs set one after another, with the result of as many calls of MColourFont::SetKerning in the time of
// a look-up each. For readers of files, whose pairs run into tens of thousands.
#pragma once

#include "document/MColourFont.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

class MKerningTable {
public:
    // Starts from the pairs that the font has.
    explicit MKerningTable(const MColourFont& font);

    // As MColourFont::SetKerning; refuses a side below 33.
    bool Set(std::int32_t left, std::uint32_t right, std::int32_t amount);
    // Gives the pairs to the font, in the order in which they were appended. Without memory the font's list is
    // lost and the result false.
    bool Store(MColourFont& font) const;

private:
    std::vector<MKerningPair> pairs;
    // Where the first pair of (left << 32 | right) stands. A left beyond 16 bits is stored, but not found
    // again, since a look-up cuts its left to 16 bits.
    std::unordered_map<std::uint64_t, std::size_t> places;
};
