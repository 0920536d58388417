#include "editors/MKerningLines.h"

namespace {

// A left character of 0 ends the text before it begins, whatever follows.
std::uint32_t Key(std::uint32_t left, std::uint32_t right) {
    const auto first = static_cast<char16_t>(left);
    return first == 0 ? 0 : std::uint32_t{first} << 16 | static_cast<char16_t>(right);
}

} // namespace

void MKerningLines::Fill(std::span<const MKerningPair> pairs) {
    lines.clear();
    positions.clear();
    lines.reserve(pairs.size());
    positions.reserve(pairs.size());
    for (const MKerningPair& pair : pairs) {
        const std::uint32_t key = Key(pair.Left, pair.Right);
        if (positions.try_emplace(key, Count()).second) lines.push_back(key);
    }
}

MString MKerningLines::Text(std::int32_t position) const {
    if (position < 0 || position >= Count()) return {};
    const std::uint32_t key = lines[static_cast<std::size_t>(position)];
    MString text = "X    X";
    text.SetChar(5, static_cast<char16_t>(key));
    text.SetChar(0, static_cast<char16_t>(key >> 16));
    return text;
}

std::int32_t MKerningLines::Find(std::uint32_t left, std::uint32_t right) const {
    const auto found = positions.find(Key(left, right));
    return found == positions.end() ? -1 : found->second;
}
