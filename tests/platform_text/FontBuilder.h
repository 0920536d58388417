// Builds TrueType fonts for tests, byte by byte: simple outlines, a character map, and whatever further tables
// a test brings. Browsers accept them too.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

namespace fonts {

// Numbers as OpenType writes them.
class Bytes : public std::string {
public:
    using std::string::string;
    Bytes() = default;
    Bytes(std::string text) : std::string(std::move(text)) {}

    Bytes& Number(std::int64_t value, int size) {
        for (int shift = (size - 1) * 8; shift >= 0; shift -= 8)
            push_back(static_cast<char>(value >> shift & 0xFF));
        return *this;
    }
    Bytes& U8(std::int64_t value) { return Number(value, 1); }
    Bytes& U16(std::int64_t value) { return Number(value, 2); }
    Bytes& U16s(std::initializer_list<std::int64_t> values) {
        for (const std::int64_t value : values)
            U16(value);
        return *this;
    }
    Bytes& U24(std::int64_t value) { return Number(value, 3); }
    Bytes& U32(std::int64_t value) { return Number(value, 4); }
    Bytes& F2Dot14(double value) { return U16(std::llround(value * 16384)); }
    Bytes& Fixed(double value) { return U32(std::llround(value * 65536)); }
    Bytes& Add(const std::string& bytes) {
        append(bytes);
        return *this;
    }
};

struct Point {
    int x;
    int y;
};

struct Glyph {
    std::vector<std::vector<Point>> contours; // straight lines, clockwise is filled
    int advance = 1000;
};

inline std::vector<Point> Box(int left, int bottom, int right, int top) {
    return {{left, bottom}, {left, top}, {right, top}, {right, bottom}};
}

inline std::vector<Point> Circle(int x, int y, int radius) {
    std::vector<Point> points;
    for (int i = 0; i < 48; ++i) {
        const double angle = -i * 2 * 3.14159265358979 / 48;
        points.push_back({x + static_cast<int>(std::lround(radius * std::cos(angle))),
                          y + static_cast<int>(std::lround(radius * std::sin(angle)))});
    }
    return points;
}

struct Font {
    std::string family = "Built Sans";
    int weight = 400;
    int unitsPerEm = 1000;
    int ascent = 800;
    int descent = 200;
    std::vector<Glyph> glyphs{Glyph{{Box(100, 0, 900, 700)}}}; // the first is the box for what is missing
    std::map<char16_t, std::uint16_t> characters;
    std::map<std::string, std::string> tables; // further ones, or instead of those made here

    // Adds a glyph, and the character for it unless that is 0.
    std::uint16_t Add(Glyph glyph, char16_t character = 0) {
        glyphs.push_back(std::move(glyph));
        const auto index = static_cast<std::uint16_t>(glyphs.size() - 1);
        if (character) characters[character] = index;
        return index;
    }

    std::string Build() const {
        std::map<std::string, std::string> all{{"OS/2", Os2()},  {"cmap", Cmap()}, {"head", Head()},
                                               {"hhea", Hhea()}, {"hmtx", Hmtx()}, {"maxp", Maxp()},
                                               {"name", Name()}, {"post", Post()}};
        std::tie(all["glyf"], all["loca"]) = Outlines();
        for (const auto& [tag, bytes] : tables)
            all[tag] = bytes;
        std::erase_if(all, [](const auto& table) { return table.second.empty(); });

        const auto count = static_cast<int>(all.size());
        const int log = static_cast<int>(std::log2(count));
        Bytes font;
        font.U32(0x00010000).U16(count).U16(16 << log).U16(log).U16(count * 16 - (16 << log));
        Bytes data;
        const std::size_t start = 12 + all.size() * 16;
        for (const auto& [tag, bytes] : all) { // their check sums are looked at by nobody
            font.Add(tag).U32(0).U32(static_cast<std::int64_t>(start + data.size()));
            font.U32(static_cast<std::int64_t>(bytes.size()));
            data.Add(bytes);
            while (data.size() % 4 != 0)
                data.U8(0);
        }
        return font + data;
    }

private:
    std::pair<std::string, std::string> Outlines() const {
        Bytes glyf, loca;
        for (const Glyph& glyph : glyphs) {
            loca.U32(static_cast<std::int64_t>(glyf.size()));
            if (glyph.contours.empty()) continue;
            Point low{32767, 32767}, high{-32768, -32768};
            Bytes ends, flags, xs, ys;
            Point last{0, 0};
            int points = 0;
            for (const auto& contour : glyph.contours) {
                for (const Point& point : contour) {
                    low = {std::min(low.x, point.x), std::min(low.y, point.y)};
                    high = {std::max(high.x, point.x), std::max(high.y, point.y)};
                    flags.U8(1); // on the curve, both coordinates in two bytes
                    xs.U16(point.x - last.x);
                    ys.U16(point.y - last.y);
                    last = point;
                    ++points;
                }
                ends.U16(points - 1);
            }
            glyf.U16(static_cast<int>(glyph.contours.size())).U16(low.x).U16(low.y).U16(high.x).U16(high.y);
            glyf.Add(ends).U16(0).Add(flags).Add(xs).Add(ys);
            while (glyf.size() % 4 != 0)
                glyf.U8(0);
        }
        loca.U32(static_cast<std::int64_t>(glyf.size()));
        return {glyf, loca};
    }

    std::string Head() const {
        const Bytes start = Bytes().U32(0x00010000).U32(0x00010000).U32(0).U32(0x5F0F3CF5);
        return Bytes(start).U16s(
            {3, unitsPerEm, 0, 0, 0, 0, 0, 0, 0, 0, -1000, -1000, 2000, 2000, 0, 8, 2, 1, 0});
    }
    std::string Hhea() const {
        const auto count = static_cast<std::int64_t>(glyphs.size());
        return Bytes()
            .U32(0x00010000)
            .U16s({ascent, -descent, 0, 2000, 0, 0, 2000, 1, 0, 0, 0, 0, 0, 0, 0, count});
    }
    std::string Hmtx() const {
        Bytes hmtx;
        for (const Glyph& glyph : glyphs) {
            int left = glyph.contours.empty() ? 0 : 32767;
            for (const auto& contour : glyph.contours)
                for (const Point& point : contour)
                    left = std::min(left, point.x);
            hmtx.U16(glyph.advance).U16(left);
        }
        return hmtx;
    }
    std::string Maxp() const {
        const auto count = static_cast<std::int64_t>(glyphs.size());
        return Bytes().U32(0x00010000).U16s({count, 200, 8, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    std::string Cmap() const {
        const auto count = static_cast<std::int64_t>(characters.size());
        Bytes table;
        table.U16(12).U16(0).U32(16 + count * 12).U32(0).U32(count);
        for (const auto& [character, glyph] : characters)
            table.U32(character).U32(character).U32(glyph);
        return Bytes().U16(0).U16(1).U16(3).U16(10).U32(12).Add(table);
    }
    std::string Name() const {
        Bytes text, records;
        for (const auto& [id, value] :
             {std::pair{1, family}, {2, std::string("Regular")}, {4, family}, {6, family}}) {
            std::string name = value;
            if (id == 6) std::erase(name, ' ');
            records.U16(3).U16(1).U16(0x409).U16(id).U16(static_cast<int>(name.size() * 2));
            records.U16(static_cast<int>(text.size()));
            for (const char c : name)
                text.U16(c);
        }
        return Bytes().U16(0).U16(4).U16(6 + 48).Add(records).Add(text);
    }
    std::string Os2() const {
        Bytes os2;
        os2.U16s(
            {4, 600, weight, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0});
        os2.Add("TEST").U16s({0x40, 32, 0xFFFF, ascent, -descent, 0, ascent, descent});
        return os2.U16s({0, 1, 0, 0, 500, 700, 0, 32, 1});
    }
    static std::string Post() { return Bytes().U16s({3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}); }
};

} // namespace fonts
