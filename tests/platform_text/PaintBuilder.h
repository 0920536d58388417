// The tables COLR and CPAL for tests: paints as the bytes that they are in the font, each followed by what it
// points to.
#pragma once

#include "platform_text/FontBuilder.h"

#include <array>

namespace fonts {

inline constexpr int foreground = 0xFFFF;

struct Stop {
    double offset;
    int entry;
    double alpha = 1;
};

inline Bytes ColourLine(int extend, const std::vector<Stop>& stops) {
    Bytes line;
    line.U8(extend).U16(static_cast<int>(stops.size()));
    for (const Stop& stop : stops)
        line.F2Dot14(stop.offset).U16(stop.entry).F2Dot14(stop.alpha);
    return line;
}

inline Bytes Solid(int entry, double alpha = 1) {
    return Bytes().U8(2).U16(entry).F2Dot14(alpha);
}
inline Bytes Layers(int first, int count) {
    return Bytes().U8(1).U8(count).U32(first);
}
// `numbers` are the coordinates and radii in font units.
inline Bytes Linear(const std::array<int, 6>& numbers, const Bytes& line) {
    Bytes paint;
    paint.U8(4).U24(16);
    for (const int number : numbers)
        paint.U16(number);
    return paint.Add(line);
}
inline Bytes Radial(const std::array<int, 6>& numbers, const Bytes& line) {
    return Bytes().U8(6).Add(Linear(numbers, line).substr(1));
}
// Angles in degrees.
inline Bytes Sweep(int x, int y, double start, double end, const Bytes& line) {
    return Bytes().U8(8).U24(12).U16(x).U16(y).F2Dot14(start / 180 - 1).F2Dot14(end / 180 - 1).Add(line);
}
inline Bytes Outline(int glyph, const Bytes& child) {
    return Bytes().U8(10).U24(6).U16(glyph).Add(child);
}
inline Bytes ColrGlyph(int glyph) {
    return Bytes().U8(11).U16(glyph);
}
inline Bytes Affine(const std::array<double, 6>& matrix, const Bytes& child) {
    Bytes paint;
    paint.U8(12).U24(7 + 24).U24(7);
    for (const double number : matrix)
        paint.Fixed(number);
    return paint.Add(child);
}
// Formats 14 to 31: `values` are factors or half turns, `units` are coordinates; both as the format has them.
inline Bytes Transform(int format, const std::vector<double>& values, const std::vector<int>& units,
                       const Bytes& child) {
    Bytes numbers;
    for (const double value : values)
        numbers.F2Dot14(value);
    for (const int unit : units)
        numbers.U16(unit);
    if (format % 2 != 0) numbers.U32(0xFFFFFFFF);
    return Bytes().U8(format).U24(static_cast<int>(4 + numbers.size())).Add(numbers).Add(child);
}
inline Bytes Composite(int mode, const Bytes& source, const Bytes& backdrop) {
    return Bytes().U8(32).U24(8).U8(mode).U24(static_cast<int>(8 + source.size())).Add(source).Add(backdrop);
}

struct ColourTables {
    std::map<int, Bytes> glyphs;                          // version 1, by base glyph
    std::vector<Bytes> layers;                            // of version 1
    std::map<int, std::array<int, 4>> boxes;              // clip boxes by base glyph: left, bottom, right, top
    std::map<int, std::vector<std::pair<int, int>>> flat; // version 0: glyph and palette entry of each layer
    std::vector<std::array<int, 4>> palette;              // red, green, blue, alpha

    std::string Colr() const {
        Bytes base, paints;
        base.U32(static_cast<int>(glyphs.size()));
        const std::size_t start = 4 + glyphs.size() * 6;
        for (const auto& [glyph, paint] : glyphs) {
            base.U16(glyph).U32(static_cast<int>(start + paints.size()));
            paints.Add(paint);
        }
        base.Add(paints);
        Bytes list;
        paints.clear();
        list.U32(static_cast<int>(layers.size()));
        for (const Bytes& layer : layers) {
            list.U32(static_cast<int>(4 + layers.size() * 4 + paints.size()));
            paints.Add(layer);
        }
        list.Add(paints);
        Bytes clips, clipBoxes;
        clips.U8(1).U32(static_cast<int>(boxes.size()));
        for (const auto& [glyph, box] : boxes) {
            clips.U16(glyph).U16(glyph).U24(static_cast<int>(5 + boxes.size() * 7 + clipBoxes.size()));
            clipBoxes.U8(1);
            for (const int side : box)
                clipBoxes.U16(side);
        }
        clips.Add(clipBoxes);
        Bytes flatGlyphs, flatLayers;
        int count = 0;
        for (const auto& [glyph, parts] : flat) {
            flatGlyphs.U16(glyph).U16(count).U16(static_cast<int>(parts.size()));
            for (const auto& [shape, entry] : parts)
                flatLayers.U16(shape).U16(entry);
            count += static_cast<int>(parts.size());
        }
        std::size_t end = 34; // of the header
        const auto place = [&](const Bytes& part, bool empty) {
            end += part.size();
            return static_cast<std::int64_t>(empty ? 0 : end - part.size());
        };
        Bytes colr;
        colr.U16(1).U16(static_cast<int>(flat.size())).U32(place(flatGlyphs, flat.empty()));
        colr.U32(place(flatLayers, flat.empty())).U16(count).U32(place(base, glyphs.empty()));
        colr.U32(place(list, layers.empty())).U32(place(clips, boxes.empty())).U32(0).U32(0);
        return colr.Add(flatGlyphs).Add(flatLayers).Add(base).Add(list).Add(clips);
    }
    std::string Cpal() const {
        Bytes cpal;
        const auto entries = static_cast<int>(palette.size());
        cpal.U16(0).U16(entries).U16(1).U16(entries).U32(14).U16(0);
        for (const auto& [r, g, b, a] : palette)
            cpal.U8(b).U8(g).U8(r).U8(a);
        return cpal;
    }
};

// The table "SVG " with a document for each glyph from `first` on, or one for all up to `last`.
inline Bytes SvgTable(const std::vector<std::string>& documents, int first, int last) {
    Bytes table = Bytes().U16(0).U32(10).U32(0).U16(std::ssize(documents));
    std::int64_t at = 2 + std::ssize(documents) * 12;
    for (const std::string& document : documents) {
        table.U16(first).U16(documents.size() == 1 ? last : first).U32(at).U32(std::ssize(document));
        ++first;
        at += std::ssize(document);
    }
    for (const std::string& document : documents)
        table.Add(document);
    return table;
}

// One strike of bitmaps of 100 pixels an em, 10 right of the pen and on the baseline. The glyphs up to `last`
// have each a range of its own, and all of them the same place.
inline void AddCbdt(Font& font, const std::string& png, int side, int last) {
    Bytes data;
    data.U16s({3, 0}).U8(side).U8(side).U8(10).U8(20).U8(40).U32(std::ssize(png)).Add(png);
    const Bytes metrics = Bytes().U8(80).U8(-20).U8(100).Add(std::string(9, '\0')); // of lines
    Bytes ranges;
    Bytes tables;
    for (int glyph = 1; glyph <= last; ++glyph) {
        ranges.U16(glyph).U16(glyph).U32(last * 8 + (glyph - 1) * 16);
        tables.U16(1).U16(17).U32(4).U32(0).U32(std::ssize(data) - 4);
    }
    Bytes index =
        Bytes().U16s({3, 0}).U32(1).U32(56).U32(std::ssize(ranges) + std::ssize(tables)).U32(last).U32(0);
    index.Add(metrics).Add(metrics).U16s({1, last}).U8(100).U8(100).U8(32).U8(1);
    font.tables["CBDT"] = data;
    font.tables["CBLC"] = index.Add(ranges).Add(tables);
}

} // namespace fonts
