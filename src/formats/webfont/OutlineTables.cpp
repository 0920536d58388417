// glyf and loca: simple glyphs of straight lines.
#include "formats/webfont/Tables.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::uint32_t onCurve = 0x01;
constexpr std::uint32_t xShort = 0x02; // one byte, whose sign is the next bit
constexpr std::uint32_t yShort = 0x04;
constexpr std::uint32_t repeated = 0x08;
constexpr std::uint32_t xSameOrPositive = 0x10;
constexpr std::uint32_t ySameOrPositive = 0x20;

// One coordinate of a point, as the difference from the point before it; the flags that tell its form.
std::uint32_t AddDifference(MTableBytes& bytes, std::int32_t difference, std::uint32_t isShort,
                            std::uint32_t sameOrPositive) {
    if (difference == 0) return sameOrPositive;
    if (std::abs(difference) > 255) {
        bytes.U16(difference);
        return 0;
    }
    bytes.U8(static_cast<std::uint32_t>(std::abs(difference)));
    return isShort | (difference > 0 ? sameOrPositive : 0);
}

void AddFlags(MTableBytes& bytes, const std::vector<std::uint32_t>& flags) {
    constexpr std::size_t mostRepeats = 255;
    for (std::size_t i = 0; i < flags.size();) {
        std::size_t end = i + 1;
        while (end < flags.size() && flags[end] == flags[i] && end - i <= mostRepeats)
            ++end;
        const std::size_t repeats = end - i - 1;
        bytes.U8(flags[i] | (repeats > 0 ? repeated : 0));
        if (repeats > 0) bytes.U8(static_cast<std::uint32_t>(repeats));
        i = end;
    }
}

void AddGlyph(MTableBytes& table, const MOutline& outline) {
    const MOutlineBox box = BoxOf(outline);
    table.U16(static_cast<std::int64_t>(outline.size()));
    for (const std::int32_t edge : {box.XMin, box.YMin, box.XMax, box.YMax})
        table.U16(edge);
    MTableBytes xs;
    MTableBytes ys;
    std::vector<std::uint32_t> flags;
    MOutlinePoint last;
    for (const auto& contour : outline) {
        for (const MOutlinePoint& point : contour) {
            flags.push_back(onCurve | AddDifference(xs, point.X - last.X, xShort, xSameOrPositive) |
                            AddDifference(ys, point.Y - last.Y, yShort, ySameOrPositive));
            last = point;
        }
        table.U16(static_cast<std::int64_t>(flags.size()) - 1);
    }
    table.U16(0); // no instructions
    AddFlags(table, flags);
    table.Append(xs.Bytes);
    table.Append(ys.Bytes);
    table.AlignTo(4);
}

} // namespace

MOutlineBox BoxOf(const MOutline& outline) {
    if (outline.empty()) return {};
    const MOutlinePoint& first = outline.front().front();
    MOutlineBox box{first.X, first.Y, first.X, first.Y};
    for (const auto& contour : outline) {
        for (const MOutlinePoint& point : contour) {
            box.XMin = std::min(box.XMin, point.X);
            box.YMin = std::min(box.YMin, point.Y);
            box.XMax = std::max(box.XMax, point.X);
            box.YMax = std::max(box.YMax, point.Y);
        }
    }
    return box;
}

MOutlineTables OutlineTables(const MWebFont& font) {
    MOutlineTables tables;
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        tables.Loca.U32(tables.Glyf.Size());
        if (!glyph.Outline.empty()) AddGlyph(tables.Glyf, glyph.Outline);
    }
    tables.Loca.U32(tables.Glyf.Size());
    return tables;
}
