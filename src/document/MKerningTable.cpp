#include "document/MKerningTable.h"

#include <algorithm>
#include <limits>

namespace {

std::uint64_t Key(std::uint32_t left, std::uint32_t right) {
    return std::uint64_t{left} << 32 | right;
}

} // namespace

MKerningTable::MKerningTable(const MColourFont& font) : pairs(font.Kerning.begin(), font.Kerning.end()) {
    for (std::size_t i = 0; i < pairs.size(); ++i)
        places.try_emplace(Key(pairs[i].Left, pairs[i].Right), i);
}

bool MKerningTable::Set(std::int32_t left, std::uint32_t right, std::int32_t amount) {
    if (!TakesKerning(left, right)) return false;
    const auto found = places.find(Key(static_cast<char16_t>(left), right));
    if (found != places.end()) {
        pairs[found->second].Amount = amount;
        return true;
    }
    if (pairs.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) return false;
    places.try_emplace(Key(static_cast<std::uint32_t>(left), right), pairs.size());
    pairs.push_back({static_cast<std::uint32_t>(left), right, amount});
    return true;
}

bool MKerningTable::Store(MColourFont& font) const {
    if (!font.Kerning.Resize(static_cast<std::int32_t>(pairs.size()), false)) return false;
    std::ranges::copy(pairs, font.Kerning.data);
    return true;
}
