// The lines of the kerning editor's list. Tens of thousands of them are filled, found and shown without a walk.
#pragma once

#include "document/MColourFont.h"

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

class MKerningLines {
public:
    // One line for each pair, in the order of the pairs, but none whose text stands already. That happens to
    // characters beyond 16 bits, of which a line shows the lower 16.
    void Fill(std::span<const MKerningPair> pairs);

    std::int32_t Count() const { return static_cast<std::int32_t>(lines.size()); }
    // The left character, four blanks, the right character; empty outside.
    MString Text(std::int32_t position) const;
    // The line that shows these two, or -1.
    std::int32_t Find(std::uint32_t left, std::uint32_t right) const;

private:
    // Both characters, left << 16 | right: two lines with the same text have the same key, and the other way
    // round.
    std::vector<std::uint32_t> lines;
    std::unordered_map<std::uint32_t, std::int32_t> positions;
};
