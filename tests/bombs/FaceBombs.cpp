#include "bombs/Bombs.h"
#include "formats/webfont/MWebFontFile.h"

namespace bombs {

namespace {

using fonts::Bytes;
using fonts::Font;

const fonts::Glyph box{{fonts::Box(100, 0, 900, 700)}};

// A font in which one glyph, the first behind that for missing ones, is every character. But for those that
// heights are measured by: they are the one behind it, where that is `measured`.
Font OneGlyph(bool measured = false) {
    Font font;
    for (int code = 33; code < 256; ++code)
        font.characters[static_cast<char16_t>(code)] = measured && (code == 'I' || code == 'j') ? 2 : 1;
    return font;
}

// Glyphs each made of many of the next one, and the last of `leaf`.
std::string Composites(int depth, int parts, const std::string& leaf) {
    Font font = OneGlyph();
    Bytes glyf;
    Bytes loca;
    loca.U32(0);
    for (int glyph = 1; glyph <= depth; ++glyph) {
        loca.U32(std::ssize(glyf));
        glyf.U16(-1).U16s({0, 0, 900, 900});
        for (int i = 0; i < parts; ++i)
            glyf.U16((i + 1 < parts ? 0x20 : 0) | 2).U16(glyph + 1).U8(i % 100).U8(i % 90);
        while (glyf.size() % 4 != 0)
            glyf.U8(0);
    }
    loca.U32(std::ssize(glyf));
    glyf.Add(leaf);
    loca.U32(std::ssize(glyf));
    font.glyphs.resize(static_cast<std::size_t>(depth) + 2);
    font.tables["glyf"] = glyf;
    font.tables["loca"] = loca;
    font.tables["maxp"] =
        Bytes()
            .U32(0x00010000)
            .U16s({depth + 2, 20000, 2000, 20000, 2000, 2, 0, 0, 0, 0, 0, 0, parts, depth + 1});
    return font.Build();
}

// One glyph of lines up and down over all its height.
std::string Zigzag(int points) {
    Font font = OneGlyph(true);
    std::vector<fonts::Point> line;
    for (int i = 0; i < points; ++i)
        line.push_back({i * 7919 % 1000, i % 2 == 0 ? -200 : 800});
    font.Add({{line}});
    font.Add(box);
    font.tables["maxp"] = Bytes().U32(0x00010000).U16s({3, points, 10, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0});
    return font.Build();
}

std::string ManyNames() {
    constexpr int count = 60'000;
    Font font = OneGlyph();
    font.Add(box);
    Bytes records;
    for (int i = 0; i < count; ++i)
        records.U16s({3, 1, 0x409, i % 2 == 0 ? 1 : 4, 20, i % 4 * 2});
    Bytes text;
    for (const char letter : std::string("Built SansBuilt"))
        text.U16(letter);
    font.tables["name"] = Bytes().U16s({0, count, 6 + count * 12 % 65536}).Add(records).Add(text);
    return font.Build();
}

// As many faces as a collection can name, all of them the same.
std::string Collection(int count) {
    Font font = OneGlyph();
    font.Add(box);
    std::string face = font.Build();
    const std::int64_t header = 12 + std::int64_t{count} * 4;
    Bytes file;
    file.Add("ttcf").U32(0x00010000).U32(count);
    for (int i = 0; i < count; ++i)
        file.U32(header);
    // Tables lie at places of the whole file.
    const auto tables = static_cast<std::size_t>(face[5]);
    for (std::size_t i = 0; i < tables; ++i) {
        const std::size_t at = 12 + i * 16 + 8;
        face.replace(at, 4, Bytes().U32(static_cast<std::int64_t>(NumberAt(face, at, 4)) + header));
    }
    // A collection must have 32 bytes for each of them.
    return file + face + Noise(static_cast<std::size_t>(count) * 28);
}

// A variable font with as many named instances.
Font Instances(int count) {
    Font font = OneGlyph();
    font.Add(box);
    Bytes fvar;
    fvar.U32(0x00010000).U16s({16, 2, 1, 20, count, 8});
    fvar.Add("wght").Fixed(100).Fixed(400).Fixed(900).U16s({0, 2});
    for (int i = 0; i < count; ++i)
        fvar.U16s({2, 0}).Fixed(100 + i % 800);
    font.tables["fvar"] = fvar;
    return font;
}

std::string CharacterMap(int groups) {
    Font font = OneGlyph();
    font.Add(box);
    Bytes table;
    table.U16s({12, 0}).U32(16 + groups * 12).U32(0).U32(groups);
    const int step = 0x110000 / groups;
    for (int i = 0; i < groups; ++i)
        table.U32(i * step).U32(i * step + step - 1).U32(1);
    font.tables["cmap"] = Bytes().U16s({0, 1, 3, 10}).U32(12).Add(table);
    font.glyphs.resize(300, box);
    font.glyphs.resize(40'000); // what the groups run through
    return font.Build();
}

std::string Index(const std::vector<std::string>& parts) {
    Bytes index;
    index.U16(static_cast<int>(parts.size()));
    if (parts.empty()) return index;
    index.U8(4);
    std::size_t at = 1;
    index.U32(static_cast<std::int64_t>(at));
    for (const std::string& part : parts)
        index.U32(static_cast<std::int64_t>(at += part.size()));
    for (const std::string& part : parts)
        index.Add(part);
    return index;
}

// Outlines of the table CFF whose subroutines each call the next one many times (Technical Note 5176 and 5177).
std::string Subroutines(int depth, int calls, const std::string& leaf) {
    Font font = OneGlyph(true);
    font.Add({});
    font.Add({});
    std::vector<std::string> subroutines;
    for (int i = 1; i < depth; ++i) {
        Bytes routine;
        for (int k = 0; k < calls; ++k)
            routine.U8(i - 107 + 139).U8(29);
        subroutines.push_back(routine.U8(11));
    }
    subroutines.push_back(leaf + '\x0B');
    const std::string glyph = Bytes().U8(-107 + 139).U8(29).U8(14);
    const auto number = [](std::size_t value) { return Bytes().U8(29).U32(static_cast<std::int64_t>(value)); };
    const std::string start = std::string("\x01\0\x04\x04", 4) + Index({"Built"});
    const std::string behind = Index({}) + Index(subroutines);
    constexpr std::size_t topSize = 2 + 1 + 8 + 17;
    const std::size_t charStrings = start.size() + topSize + behind.size();
    // A move and three lines, up, right and down.
    const auto operand = [](int value) { return Bytes().U8(28).U16(value); };
    const std::string square =
        operand(0) + operand(0) + '\x15' + operand(700) + operand(900) + operand(-700) + '\x07' + '\x0E';
    const std::string glyphs = Index({std::string("\x0E"), glyph, square});
    const std::string top =
        number(charStrings).U8(17).Add(number(0)).Add(number(charStrings + glyphs.size())).U8(18);
    font.tables["CFF "] = start + Index({top}) + behind + glyphs;
    font.tables["glyf"] = font.tables["loca"] = "";
    font.tables["maxp"] = Bytes().U32(0x00005000).U16(3);
    std::string file = font.Build();
    file.replace(0, 4, "OTTO");
    return file;
}

// A table GPOS whose kerning is so many lookups, each of them the same one.
std::string Lookups(int count) {
    Font font = OneGlyph();
    font.Add(box);
    Bytes all;
    all.U16(1).Add("kern").U16(8).U16s({0, count});
    for (int i = 0; i < count; ++i)
        all.U16(i);
    Bytes list;
    list.U16(count);
    for (int i = 0; i < count; ++i)
        list.U16(2 + count * 2);
    // A single adjustment of the glyph 1 (OpenType 1.9, GPOS lookup type 1, format 1).
    list.U16s({1, 0, 1, 8}).U16s({1, 8, 4, 1}).U16s({1, 1, 1});
    Bytes table;
    const auto scripts = Bytes().U16(1).Add("latn").U16s({8, 4, 0, 0, 0xFFFF, 1, 0});
    const std::int64_t featureAt = 10 + std::ssize(scripts);
    table.U32(0x00010000).U16s({10, featureAt, featureAt + std::ssize(all)});
    font.tables["GPOS"] = table.Add(scripts).Add(all).Add(list);
    return font.Build();
}

// A font in which one table, which no reader needs, is larger than all the rest.
std::string Spare(std::size_t size) {
    Font font = OneGlyph();
    font.Add(box);
    font.tables["zzzz"] = Noise(900'000) + std::string(size, '\0');
    return font.Build();
}

// As compressed for the web (WOFF File Format 1.0): each table a zlib stream. Of the last one, which is the
// large one, `claimed` bytes are told, and it is packed once for all.
std::string Woff(const std::string& font, std::uint32_t claimed, const std::string& packed) {
    const std::size_t count = NumberAt(font, 4, 2);
    Bytes directory;
    Bytes data;
    std::size_t total = 12 + count * 16;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t record = 12 + i * 16;
        const bool large = i + 1 == count;
        const std::size_t length = large ? claimed : NumberAt(font, record + 12, 4);
        const std::string bytes = large ? packed : font.substr(NumberAt(font, record + 8, 4), length);
        directory.Add(font.substr(record, 4)).U32(static_cast<std::int64_t>(44 + count * 20 + data.size()));
        directory.U32(std::ssize(bytes)).U32(static_cast<std::int64_t>(length));
        directory.Add(font.substr(record + 4, 4));
        data.Add(bytes);
        while (data.size() % 4 != 0)
            data.U8(0);
        total += (length + 3) / 4 * 4;
    }
    Bytes header = Bytes().Add("wOFF").U32(0x00010000).U32(44 + std::ssize(directory) + std::ssize(data));
    header.U16s({static_cast<int>(count), 0})
        .U32(static_cast<std::int64_t>(total))
        .U32(1)
        .Add(std::string(20, '\0'));
    return header + directory + data;
}

// The same in one stream for all tables (WOFF File Format 2.0).
std::string Woff2(const std::string& font) {
    const std::vector<std::uint8_t> packed = PackAsWoff2({font.begin(), font.end()});
    return {packed.begin(), packed.end()};
}

} // namespace

std::vector<Bomb> FaceBombs() {
    std::vector<Bomb> all;
    const std::string generate = "--font-file f.ttf --family 'Built Sans' --height 256 --select all --generate";
    const auto add = [&](const char* name, std::string bytes, bool sharp = false,
                         const char* more = " --info") {
        all.push_back({"fonts", name, "f.ttf", std::move(bytes), generate + more, {}, sharp});
    };
    const Bytes outline = Bytes()
                              .U16s({1, 0, 0, 500, 500, 3, 0})
                              .Add(std::string(4, '\x01'))
                              .U16s({0, 0, 500, 0, 0, 500, 0, -500, 0});
    add("glyphs of glyphs of nothing, 1000^4", Composites(4, 1000, ""), true);
    add("glyphs of glyphs, 1000^3", Composites(3, 1000, outline), true);
    add("subroutines, 100^9", Subroutines(10, 100, ""), true);
    add("subroutines that draw, 100^9", Subroutines(10, 100, std::string("\x8C\x8D\x05", 3)));
    add("an outline of 30,000 lines", Zigzag(30'000), true);
    add("an outline of 1,000 lines", Zigzag(1000));
    add("60,000 names", ManyNames());
    add("30,000 faces", Collection(30'000), true);
    add("60,000 instances", Instances(60'000).Build(), true);
    add("a map of all characters", CharacterMap(1));
    add("a map of 40,000 groups", CharacterMap(40'000));
    add("WOFF of 200 MB", Woff(Spare(4), 200'000'000, PackedRun(200'000'000)), true);
    add("WOFF, the most that is read", Woff(Spare(4), 32'000'000, PackedRun(32'000'000)));
    add("WOFF2 of 30 MB", Woff2(Spare(29'000'000)));
    add("WOFF2 of 70 MB", Woff2(Spare(70'000'000)));
    add("a gzip of 100 MB", Gzip(std::string(100'000'000, '\x01')));
    add("kerning of 16,000 lookups", Lookups(16'000), true, " --kern-from-font --info");
    return all;
}

std::vector<Font> OddFaces() {
    Font macintosh = OneGlyph();
    macintosh.Add(box);
    // Format 0: a glyph for each of 256 codes.
    macintosh.tables["cmap"] = Bytes().U16s({0, 1, 1, 0}).U32(12).U16s({0, 262, 0}).Add(std::string(256, '\1'));
    return {Instances(3), macintosh};
}

} // namespace bombs
