#include "bombs/Bombs.h"

namespace bombs {

namespace {

using fonts::Bytes;
using fonts::Font;

// A font in which one glyph, the first behind that for missing ones, is every character.
Font OneGlyph() {
    Font font;
    for (int code = 33; code < 256; ++code)
        font.characters[static_cast<char16_t>(code)] = 1;
    return font;
}

// Glyphs each made of many of the next one, and the last of `leaf`.
std::string Composites(int depth, int parts, const std::string& leaf) {
    Font font = OneGlyph();
    Bytes glyf;
    Bytes loca;
    loca.U32(0);
    for (int glyph = 1; glyph <= depth; ++glyph) {
        loca.U32(static_cast<std::int64_t>(glyf.size()));
        glyf.U16(-1).U16s({0, 0, 900, 900});
        for (int i = 0; i < parts; ++i)
            glyf.U16((i + 1 < parts ? 0x20 : 0) | 2).U16(glyph + 1).U8(i % 100).U8(i % 90);
        while (glyf.size() % 4 != 0)
            glyf.U8(0);
    }
    loca.U32(static_cast<std::int64_t>(glyf.size()));
    glyf.Add(leaf);
    loca.U32(static_cast<std::int64_t>(glyf.size()));
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
    Font font = OneGlyph();
    std::vector<fonts::Point> line;
    for (int i = 0; i < points; ++i)
        line.push_back({i * 7919 % 1000, i % 2 == 0 ? -200 : 800});
    font.Add({{line}});
    font.tables["maxp"] = Bytes().U32(0x00010000).U16s({2, points, 10, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0});
    return font.Build();
}

std::string ManyNames() {
    constexpr int count = 60'000;
    Font font = OneGlyph();
    font.Add({{fonts::Box(100, 0, 900, 700)}});
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
    font.Add({{fonts::Box(100, 0, 900, 700)}});
    std::string face = font.Build();
    const std::int64_t header = 12 + std::int64_t{count} * 4;
    Bytes file;
    file.Add("ttcf").U32(0x00010000).U32(count);
    for (int i = 0; i < count; ++i)
        file.U32(header);
    // Tables lie at places of the whole file.
    const auto tables = static_cast<std::size_t>(face[5]);
    for (std::size_t i = 0; i < tables; ++i) {
        std::size_t at = 12 + i * 16 + 8;
        std::uint32_t place = 0;
        for (std::size_t k = 0; k < 4; ++k)
            place = place << 8 | static_cast<unsigned char>(face[at + k]);
        face.replace(at, 4, Bytes().U32(place + header));
    }
    return file + face;
}

// A variable font with as many named instances.
std::string Instances(int count) {
    Font font = OneGlyph();
    font.Add({{fonts::Box(100, 0, 900, 700)}});
    Bytes fvar;
    fvar.U32(0x00010000).U16s({16, 2, 1, 20, count, 8});
    fvar.Add("wght").Fixed(100).Fixed(400).Fixed(900).U16s({0, 2});
    for (int i = 0; i < count; ++i)
        fvar.U16s({2, 0}).Fixed(100 + i % 800);
    font.tables["fvar"] = fvar;
    return font.Build();
}

std::string CharacterMap(int groups) {
    Font font = OneGlyph();
    font.Add({{fonts::Box(100, 0, 900, 700)}});
    Bytes table;
    table.U16s({12, 0}).U32(16 + groups * 12).U32(0).U32(groups);
    const int step = 0x110000 / groups;
    for (int i = 0; i < groups; ++i)
        table.U32(i * step).U32(i * step + step - 1).U32(1);
    font.tables["cmap"] = Bytes().U16s({0, 1, 3, 10}).U32(12).Add(table);
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
    Font font = OneGlyph();
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
    const std::string glyphs = Index({std::string("\x0E"), glyph});
    const std::string top =
        number(charStrings).U8(17).Add(number(0)).Add(number(charStrings + glyphs.size())).U8(18);
    font.tables["CFF "] = start + Index({top}) + behind + glyphs;
    font.tables["glyf"] = font.tables["loca"] = "";
    font.tables["maxp"] = Bytes().U32(0x00005000).U16(2);
    std::string file = font.Build();
    file.replace(0, 4, "OTTO");
    return file;
}

// A table GPOS whose kerning is so many lookups, each of them the same one.
std::string Lookups(int count) {
    Font font = OneGlyph();
    font.Add({{fonts::Box(100, 0, 900, 700)}});
    Bytes gpos;
    const int features = 10 + 8 + 4 + 2;
    gpos.U32(0x00010000).U16s({10, features, features + 8 + 6 + count * 2 - 2});
    gpos.U16(1).Add("latn").U16(8).U16s({4, 0}).U16s({0, 0xFFFF, 1, 0});
    Bytes all;
    all.U16(1).Add("kern").U16(8).U16s({0, count});
    for (int i = 0; i < count; ++i)
        all.U16(i);
    const std::size_t lookupsAt = 10 + 8 + 4 + 2 + 6 + all.size();
    Bytes list;
    list.U16(count);
    for (int i = 0; i < count; ++i)
        list.U16(2 + count * 2);
    // A single adjustment of the glyph 1 (OpenType 1.9, GPOS lookup type 1, format 1).
    list.U16s({1, 0, 1, 8}).U16s({1, 8, 4, 1}).U16s({1, 1, 1});
    Bytes table;
    const auto scripts = Bytes().U16(1).Add("latn").U16s({8, 4, 0, 0, 0xFFFF, 1, 0});
    const auto featureAt = static_cast<int>(10 + scripts.size());
    (void)lookupsAt;
    table.U32(0x00010000).U16s({10, featureAt, static_cast<int>(featureAt + static_cast<int>(all.size()))});
    font.tables["GPOS"] = table.Add(scripts).Add(all).Add(list);
    return font.Build();
}

} // namespace

std::vector<Bomb> FaceBombs() {
    std::vector<Bomb> all;
    const std::string generate = "--font-file f.ttf --family 'Built Sans' --height 256 --select all --generate";
    const auto add = [&](const char* name, std::string bytes, bool sharp = false,
                         const std::string& more = " --info") {
        all.push_back({.reader = "fonts",
                       .name = name,
                       .file = "f.ttf",
                       .bytes = std::move(bytes),
                       .steps = generate + more,
                       .sharp = sharp});
    };
    const std::string box = Bytes()
                                .U16s({1, 0, 0, 500, 500, 3, 0})
                                .Add(std::string(4, '\x01'))
                                .U16s({0, 0, 500, 0})
                                .U16s({0, 500, 0, -500})
                                .U16(0);
    add("glyphs of glyphs of nothing, 1000^4", Composites(4, 1000, ""), true);
    add("glyphs of glyphs, 1000^3", Composites(3, 1000, box), true);
    add("subroutines, 100^9", Subroutines(10, 100, ""), true);
    add("subroutines that draw, 100^9", Subroutines(10, 100, std::string("\x8C\x8D\x05", 3)));
    add("an outline of 30,000 lines", Zigzag(30'000), true);
    add("an outline of 1,000 lines", Zigzag(1000));
    add("60,000 names", ManyNames());
    add("200,000 faces", Collection(5'000));
    add("60,000 instances", Instances(60'000), true);
    add("a map of all characters", CharacterMap(1));
    add("a map of 70,000 groups", CharacterMap(40'000));
    add("kerning of 16,000 lookups", Lookups(16'000), true, " --kern-from-font --info");
    return all;
}

} // namespace bombs
