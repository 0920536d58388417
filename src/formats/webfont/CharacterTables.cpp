// cmap and name: which glyph a character has, and what the font is called.
#include "formats/webfont/Tables.h"

#include <algorithm>
#include <bit>
#include <string>

namespace {

// Characters in a row whose glyphs are in a row as well; glyphs come by character, so each run of codes is one.
struct Segment {
    char16_t first;
    char16_t last;
    std::size_t glyph; // of the first
};

std::vector<Segment> SegmentsOf(const MWebFont& font) {
    std::vector<Segment> segments;
    for (std::size_t i = 1; i < font.Glyphs.size(); ++i) {
        const char16_t character = font.Glyphs[i].Character;
        if (segments.empty() || segments.back().last + 1 != character)
            segments.push_back({character, character, i});
        segments.back().last = character;
    }
    segments.push_back({0xFFFF, 0xFFFF, 0}); // ends the list; its character has no glyph
    return segments;
}

MTableBytes Format4(const MWebFont& font) {
    const std::vector<Segment> segments = SegmentsOf(font);
    const auto count = static_cast<std::uint32_t>(segments.size());
    const std::uint32_t power = std::bit_floor(count);
    MTableBytes table;
    table.U16(4);
    table.U16(16 + 8 * std::int64_t{count});
    table.U16(0);
    table.U16(2 * std::int64_t{count});
    table.U16(2 * std::int64_t{power}); // what a binary search begins with
    table.U16(std::countr_zero(power));
    table.U16(2 * (std::int64_t{count} - power));
    for (const Segment& segment : segments)
        table.U16(segment.last);
    table.U16(0);
    for (const Segment& segment : segments)
        table.U16(segment.first);
    for (const Segment& segment : segments)
        table.U16(static_cast<std::int64_t>(segment.glyph) - segment.first);
    table.Zeros(2 * segments.size());
    return table;
}

// What may be the name of a PostScript font: some of ASCII, and at most 63 of it.
std::u16string PostScriptName(const std::u16string& family) {
    constexpr std::size_t longest = 63;
    constexpr std::u16string_view delimiters = u"[](){}<>/%";
    std::u16string name;
    for (const char16_t c : family) {
        const bool allowed = c > u' ' && c < 0x7F && delimiters.find(c) == std::u16string_view::npos;
        if (allowed && name.size() < longest) name += c;
    }
    return name.empty() ? u"ColourFont" : name;
}

} // namespace

MTableBytes CmapTable(const MWebFont& font) {
    constexpr std::int64_t place = 20; // of the one map, which both platforms name
    MTableBytes table;
    table.U16(0);
    table.U16(2);
    for (const auto& [platform, encoding] : {std::pair{0, 3}, std::pair{3, 1}}) {
        table.U16(platform);
        table.U16(encoding);
        table.U32(place);
    }
    table.Append(Format4(font).Bytes);
    return table;
}

MTableBytes NameTable(const MWebFont& font) {
    struct Record {
        std::int64_t id;
        std::u16string text;
    };
    const std::u16string postScript = PostScriptName(font.Family);
    const std::vector<Record> records{{1, font.Family}, {2, u"Regular"},       {3, u"1.000;" + postScript},
                                      {4, font.Family}, {5, u"Version 1.000"}, {6, postScript}};
    MTableBytes texts;
    MTableBytes table;
    table.U16(0);
    table.U16(static_cast<std::int64_t>(records.size()));
    table.U16(6 + 12 * static_cast<std::int64_t>(records.size()));
    for (const Record& record : records) {
        const std::int64_t place = texts.Size();
        for (const char16_t unit : record.text)
            texts.U16(unit);
        for (const std::int64_t value : {std::int64_t{3}, std::int64_t{1}, std::int64_t{0x409}, record.id})
            table.U16(value); // for Windows, in Unicode, American English, which all programs ask for
        table.U16(texts.Size() - place);
        table.U16(place);
    }
    table.Append(texts.Bytes);
    return table;
}
