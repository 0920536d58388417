// GPOS: the feature kern, with all pairs. Offsets inside a subtable have 16 bits and the pairs of a whole font
// need more, so there are several subtables, each behind an extension that leads to it by 32 bits.
#include "formats/webfont/Tables.h"

namespace {

using Pairs = std::span<const MWebFontPair>;

constexpr std::size_t largestSubtable = 65000;

struct Subtable {
    std::vector<Pairs> sets; // all pairs of a left glyph each
    std::size_t size = 0;
};

constexpr std::size_t SizeOfSet(Pairs set) {
    return 2 + 4 * set.size() + 4; // with its offset and its left glyph
}

std::vector<Subtable> Split(Pairs pairs) {
    std::vector<Subtable> subtables(1);
    for (std::size_t start = 0; start < pairs.size();) {
        std::size_t end = start;
        while (end < pairs.size() && pairs[end].Left == pairs[start].Left)
            ++end;
        const Pairs set = pairs.subspan(start, end - start);
        if (subtables.back().size + SizeOfSet(set) > largestSubtable) subtables.emplace_back();
        subtables.back().sets.push_back(set);
        subtables.back().size += SizeOfSet(set);
        start = end;
    }
    return subtables;
}

// Pair positioning, format 1: the first glyph's advance alone.
void AddPairPositions(MTableBytes& table, const Subtable& subtable, std::int32_t scale) {
    constexpr std::int64_t headerSize = 10;
    constexpr std::int64_t xAdvance = 4;
    const auto count = static_cast<std::int64_t>(subtable.sets.size());
    const std::int64_t coverage = headerSize + 2 * count;
    for (const std::int64_t value : {std::int64_t{1}, coverage, xAdvance, std::int64_t{0}, count})
        table.U16(value);
    std::int64_t place = coverage + 4 + 2 * count;
    for (const Pairs set : subtable.sets) {
        table.U16(place);
        place += 2 + 4 * static_cast<std::int64_t>(set.size());
    }
    table.U16(1); // coverage as a list
    table.U16(count);
    for (const Pairs set : subtable.sets)
        table.U16(set.front().Left);
    for (const Pairs set : subtable.sets) {
        table.U16(static_cast<std::int64_t>(set.size()));
        for (const MWebFontPair& pair : set) {
            table.U16(pair.Right);
            table.U16(std::int64_t{pair.Amount} * scale);
        }
    }
}

// The lists of scripts and features, with one feature and one lookup for all.
void AddLists(MTableBytes& table) {
    constexpr std::int64_t scripts = 10;
    constexpr std::int64_t features = scripts + 26;
    constexpr std::int64_t lookups = features + 14;
    for (const std::int64_t value : {std::int64_t{1}, std::int64_t{0}, scripts, features, lookups})
        table.U16(value);
    table.U16(2);
    table.Tag("DFLT");
    table.U16(14);
    table.Tag("latn");
    table.U16(14);                                           // the same
    for (const std::int64_t value : {4, 0, 0, 0xFFFF, 1, 0}) // the script, then its only language
        table.U16(value);
    table.U16(1);
    table.Tag("kern");
    for (const std::int64_t value : {8, 0, 1, 0})
        table.U16(value);
}

} // namespace

MTableBytes GposTable(const MWebFont& font) {
    const std::vector<Subtable> subtables = Split(font.Pairs);
    const auto count = static_cast<std::int64_t>(subtables.size());
    constexpr std::int64_t extensionType = 9;
    constexpr std::int64_t pairType = 2;
    constexpr std::int64_t extensionSize = 8;
    MTableBytes table;
    AddLists(table);
    table.U16(1);
    table.U16(4);
    table.U16(extensionType);
    table.U16(0);
    table.U16(count);
    for (std::int64_t i = 0; i < count; ++i)
        table.U16(6 + 2 * count + extensionSize * i);
    const std::size_t extensions = table.Size();
    table.Zeros(static_cast<std::size_t>(extensionSize * count));
    for (std::size_t i = 0; i < subtables.size(); ++i) {
        const std::size_t extension = extensions + static_cast<std::size_t>(extensionSize) * i;
        table.PutU32(extension, 1 << 16 | pairType);
        table.PutU32(extension + 4, static_cast<std::uint32_t>(table.Size() - extension));
        AddPairPositions(table, subtables[i], font.Scale);
    }
    return table;
}
