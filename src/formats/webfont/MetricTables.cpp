// head, hhea, maxp, OS/2, hmtx and post: the font's numbers.
#include "formats/webfont/Tables.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

// The same font gives the same bytes on any day: 1 January 2026, in seconds since 1904.
constexpr std::int64_t date = 3850070400;

MOutlineBox BoxOfAll(const MWebFont& font) {
    MOutlineBox all;
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        const MOutlineBox box = BoxOf(glyph.Outline);
        all = {std::min(all.XMin, box.XMin), std::min(all.YMin, box.YMin), std::max(all.XMax, box.XMax),
               std::max(all.YMax, box.YMax)};
    }
    return all;
}

// The bits of OS/2's ulUnicodeRange for the blocks that fonts of the program's have at times.
struct UnicodeRange {
    char16_t first;
    char16_t last;
    unsigned bit;
};
constexpr std::array unicodeRanges{
    UnicodeRange{0x0020, 0x007E, 0},  UnicodeRange{0x00A0, 0x00FF, 1},  UnicodeRange{0x0100, 0x017F, 2},
    UnicodeRange{0x0180, 0x024F, 3},  UnicodeRange{0x0250, 0x02AF, 4},  UnicodeRange{0x02B0, 0x02FF, 5},
    UnicodeRange{0x0300, 0x036F, 6},  UnicodeRange{0x0370, 0x03FF, 7},  UnicodeRange{0x0400, 0x052F, 9},
    UnicodeRange{0x0530, 0x058F, 10}, UnicodeRange{0x0590, 0x05FF, 11}, UnicodeRange{0x0600, 0x06FF, 13},
    UnicodeRange{0x0900, 0x097F, 15}, UnicodeRange{0x0E00, 0x0E7F, 24}, UnicodeRange{0x10A0, 0x10FF, 26},
    UnicodeRange{0x1E00, 0x1EFF, 29}, UnicodeRange{0x1F00, 0x1FFF, 30}, UnicodeRange{0x2000, 0x206F, 31},
    UnicodeRange{0x2070, 0x209F, 32}, UnicodeRange{0x20A0, 0x20CF, 33}, UnicodeRange{0x2100, 0x214F, 35},
    UnicodeRange{0x2150, 0x218F, 36}, UnicodeRange{0x2190, 0x21FF, 37}, UnicodeRange{0x2200, 0x22FF, 38},
    UnicodeRange{0x2300, 0x23FF, 39}, UnicodeRange{0x2460, 0x24FF, 42}, UnicodeRange{0x2500, 0x257F, 43},
    UnicodeRange{0x2580, 0x259F, 44}, UnicodeRange{0x25A0, 0x25FF, 45}, UnicodeRange{0x2600, 0x26FF, 46},
    UnicodeRange{0x2700, 0x27BF, 47}, UnicodeRange{0x3000, 0x303F, 48}, UnicodeRange{0x3040, 0x309F, 49},
    UnicodeRange{0x30A0, 0x30FF, 50}, UnicodeRange{0xAC00, 0xD7AF, 56}, UnicodeRange{0x4E00, 0x9FFF, 59},
    UnicodeRange{0xE000, 0xF8FF, 60}};

std::array<std::uint32_t, 4> UnicodeBits(const MWebFont& font) {
    std::array<std::uint32_t, 4> bits{};
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        const auto range = std::ranges::find_if(unicodeRanges, [&](const UnicodeRange& each) {
            return glyph.Character >= each.first && glyph.Character <= each.last;
        });
        if (range != unicodeRanges.end()) bits[range->bit / 32] |= 1U << range->bit % 32;
    }
    return bits;
}

std::int64_t AverageAdvance(const MWebFont& font) {
    std::int64_t sum = 0;
    std::int64_t count = 0;
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        sum += glyph.Advance;
        count += glyph.Advance > 0 ? 1 : 0;
    }
    return count == 0 ? 0 : sum * font.Scale / count;
}

// A part of the em, in thousandths.
std::int64_t EmPart(const MWebFont& font, std::int64_t thousandths) {
    return font.UnitsPerEm() * thousandths / 1000;
}

} // namespace

MTableBytes HeadTable(const MWebFont& font) {
    const MOutlineBox box = BoxOfAll(font);
    MTableBytes table;
    table.U32(0x00010000);
    table.U32(0x00010000); // the font's own version, 1.0
    table.U32(0);          // the file's checksum, filled in when it is put together
    table.U32(0x5F0F3CF5);
    table.U16(0x0003); // the baseline lies at 0, and outlines begin at their side bearing
    table.U16(font.UnitsPerEm());
    for (int i = 0; i < 2; ++i) { // created, modified
        table.U32(0);
        table.U32(date);
    }
    for (const std::int32_t edge : {box.XMin, box.YMin, box.XMax, box.YMax})
        table.U16(edge);
    table.U16(0); // neither bold nor italic
    table.U16(std::min(font.Strikes.front(), 8));
    table.U16(2); // fontDirectionHint, always 2 (OpenType 1.9)
    table.U16(1); // loca in 32 bits
    table.U16(0);
    return table;
}

MTableBytes HheaTable(const MWebFont& font) {
    std::int64_t widest = 0;
    std::int64_t leftmost = 0;
    std::int64_t narrowestRight = 0;
    std::int64_t rightmost = 0;
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        const std::int64_t advance = std::int64_t{glyph.Advance} * font.Scale;
        widest = std::max(widest, advance);
        if (glyph.Outline.empty()) continue;
        const MOutlineBox box = BoxOf(glyph.Outline);
        leftmost = std::min<std::int64_t>(leftmost, box.XMin);
        rightmost = std::max<std::int64_t>(rightmost, box.XMax);
        narrowestRight = std::min(narrowestRight, advance - box.XMax);
    }
    MTableBytes table;
    table.U32(0x00010000);
    table.U16(font.Ascent * font.Scale);
    table.U16(-font.Descent * font.Scale);
    table.U16(0); // no gap between lines
    table.U16(widest);
    table.U16(leftmost);
    table.U16(std::max<std::int64_t>(narrowestRight, INT16_MIN));
    table.U16(rightmost);
    table.U16(1); // an upright caret
    table.Zeros(14);
    table.U16(static_cast<std::int64_t>(font.Glyphs.size()));
    return table;
}

MTableBytes MaxpTable(const MWebFont& font) {
    std::size_t points = 0;
    std::size_t contours = 0;
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        std::size_t ofGlyph = 0;
        for (const auto& contour : glyph.Outline)
            ofGlyph += contour.size();
        points = std::max(points, ofGlyph);
        contours = std::max(contours, glyph.Outline.size());
    }
    MTableBytes table;
    table.U32(0x00010000);
    table.U16(static_cast<std::int64_t>(font.Glyphs.size()));
    table.U16(static_cast<std::int64_t>(points));
    table.U16(static_cast<std::int64_t>(contours));
    table.Zeros(4);
    table.U16(2); // zones, as usual without instructions
    table.Zeros(16);
    return table;
}

MTableBytes Os2Table(const MWebFont& font) {
    const std::int64_t ascent = std::int64_t{font.Ascent} * font.Scale;
    const std::int64_t descent = std::int64_t{font.Descent} * font.Scale;
    MTableBytes table;
    table.U16(4);
    table.U16(AverageAdvance(font));
    table.U16(400);                                                     // a regular weight
    table.U16(5);                                                       // and width
    table.U16(0);                                                       // may be embedded and installed
    for (const std::int64_t part : {650, 600, 0, 75, 650, 600, 0, 350}) // subscripts and superscripts
        table.U16(EmPart(font, part));
    table.U16(EmPart(font, 50)); // a line struck out
    table.U16(font.XHeight > 0 ? font.XHeight * font.Scale / 2 : EmPart(font, 250));
    table.Zeros(2 + 10); // no class, no PANOSE
    for (const std::uint32_t bits : UnicodeBits(font))
        table.U32(bits);
    table.Tag("NONE");
    table.U16(0x00C0); // regular; the typographic metrics are the ones to use
    table.U16(font.Glyphs[1].Character);
    table.U16(font.Glyphs.back().Character);
    table.U16(ascent);
    table.U16(-descent);
    table.U16(0);
    table.U16(std::max<std::int64_t>(ascent, 0));
    table.U16(std::max<std::int64_t>(descent, 0));
    table.U32(1); // Latin 1
    table.U32(0);
    table.U16(std::max(font.XHeight, 0) * font.Scale);
    table.U16(std::max(font.CapHeight, 0) * font.Scale);
    table.U16(0);
    table.U16(u' ');
    table.U16(font.Pairs.empty() ? 1 : 2);
    return table;
}

MTableBytes HmtxTable(const MWebFont& font) {
    MTableBytes table;
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        table.U16(std::int64_t{glyph.Advance} * font.Scale);
        table.U16(BoxOf(glyph.Outline).XMin);
    }
    return table;
}

MTableBytes PostTable(const MWebFont& font) {
    MTableBytes table;
    table.U32(0x00030000); // no names of glyphs
    table.U32(0);
    table.U16(-EmPart(font, 100)); // the underline
    table.U16(EmPart(font, 50));
    table.Zeros(20);
    return table;
}
