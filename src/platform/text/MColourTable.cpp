#include "platform/text/MColourTable.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr std::uint32_t foregroundEntry = 0xFFFF;

std::array<float, 6> Multiply(const std::array<float, 6>& m, const std::array<float, 6>& n) {
    return {m[0] * n[0] + m[2] * n[1], m[1] * n[0] + m[3] * n[1],        m[0] * n[2] + m[2] * n[3],
            m[1] * n[2] + m[3] * n[3], m[0] * n[4] + m[2] * n[5] + m[4], m[1] * n[4] + m[3] * n[5] + m[5]};
}

std::array<float, 6> Around(const std::array<float, 6>& m, float x, float y) {
    return Multiply(Multiply({1, 0, 0, 1, x, y}, m), {1, 0, 0, 1, -x, -y});
}

float Radians(float halfTurns) {
    return halfTurns * std::numbers::pi_v<float>;
}

std::array<float, 6> Scaling(float x, float y) {
    return {x, 0, 0, y, 0, 0};
}

std::array<float, 6> Rotation(float halfTurns) {
    const float angle = Radians(halfTurns);
    return {std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), 0, 0};
}

std::array<float, 6> Skew(float xHalfTurns, float yHalfTurns) {
    return {1, std::tan(Radians(yHalfTurns)), -std::tan(Radians(xHalfTurns)), 1, 0, 0};
}

} // namespace

// One reading of one glyph. Offsets and formats are those of OpenType 1.9, chapter "COLR".
class MPaintReader {
public:
    MPaintTree tree;

    explicit MPaintReader(const MColourTable& colourTable)
        : colr(colourTable.colours), cpal(colourTable.palettes) {}

    bool ReadGraph(std::uint32_t glyph) {
        const std::size_t paint = FindGraph(glyph);
        if (paint == noRecord) return false;
        tree.paints.emplace_back();
        ReadBoxed(0, glyph, paint);
        return !refused && !colr.broken;
    }

    bool ReadLayers(std::uint32_t glyph) {
        const std::size_t record = FindRecord(colr, colr.U32(4), colr.U16(2), 6, glyph);
        if (record == noRecord) return false;
        const std::uint32_t first = colr.U16(record + 2);
        const std::uint32_t count = colr.U16(record + 4);
        if (first + count > colr.U16(12)) return false;
        tree.paints.emplace_back();
        for (std::uint32_t i = first; i < first + count && !refused; ++i) {
            const std::size_t layer = colr.U32(8) + std::size_t{i} * 4;
            const std::uint32_t shape = Add(0, MPaintKind::Glyph);
            if (refused) break;
            tree.paints[shape].glyph = static_cast<std::uint16_t>(colr.U16(layer));
            const std::uint32_t fill = Add(shape, MPaintKind::Solid);
            if (refused) break;
            tree.paints[fill].colour = Colour(colr.U16(layer + 2), 1.0F);
        }
        return !refused && !colr.broken;
    }

private:
    MTableView colr;
    std::span<const std::uint8_t> cpal;
    std::vector<std::size_t> open; // paints from the root to the one that is being read
    std::size_t stops = 0;
    bool refused = false;

    std::size_t FindGraph(std::uint32_t glyph) {
        const std::size_t list = colr.U32(14);
        if (list == 0) return noRecord;
        const std::size_t record = FindRecord(colr, list + 4, colr.U32(list), 6, glyph);
        return record == noRecord ? noRecord : list + colr.U32(record + 2);
    }

    // A node that hangs on another one; the root hangs on itself.
    std::uint32_t Add(std::uint32_t parent, MPaintKind kind) {
        if (tree.paints.size() >= MColourTable::maximumPaints) {
            refused = true;
            return 0;
        }
        const auto index = static_cast<std::uint32_t>(tree.paints.size());
        tree.paints.emplace_back().kind = kind;
        if (index != parent) tree.paints[parent].children.push_back(index);
        return index;
    }

    // A glyph of its own, inside its clip box if it has one.
    void ReadBoxed(std::uint32_t parent, std::uint32_t glyph, std::size_t paint) {
        if (const std::size_t box = FindClipBox(glyph); box != noRecord) {
            parent = Add(parent, MPaintKind::Box);
            for (std::size_t i = 0; i < 4; ++i)
                tree.paints[parent].numbers[i] = static_cast<float>(colr.S16(box + 1 + i * 2));
        }
        ReadPaint(parent, paint);
    }

    std::size_t FindClipBox(std::uint32_t glyph) {
        const std::size_t list = colr.U32(22);
        if (list == 0 || colr.U8(list) != 1) return noRecord;
        const std::size_t clip = FindRecord(colr, list + 5, colr.U32(list + 1), 7, glyph, 2);
        return clip == noRecord ? noRecord : list + colr.U24(clip + 4);
    }

    MPaintColour Colour(std::uint32_t entry, float alpha) {
        alpha = std::clamp(alpha, 0.0F, 1.0F);
        MPaintColour colour;
        if (entry == foregroundEntry) {
            colour.foreground = true;
            colour.a = alpha;
            return colour;
        }
        // An entry that the palette doesn't have is not painted.
        const MColour known = PaletteColour(cpal, entry).value_or(MColour(0, 0, 0, 0));
        const auto channel = [](std::uint8_t value) { return static_cast<float>(value) / 255.0F; };
        colour = {channel(known.r), channel(known.g), channel(known.b), channel(known.a) * alpha, false};
        return colour;
    }

    void ReadColourLine(MPaint& paint, std::size_t at, bool varies) {
        switch (colr.U8(at)) {
        case 1: paint.extend = MExtend::Repeat; break;
        case 2: paint.extend = MExtend::Reflect; break;
        default: paint.extend = MExtend::Pad; break;
        }
        const std::size_t count = colr.U16(at + 1);
        const std::size_t size = varies ? 10 : 6;
        stops += count;
        if (count == 0 || stops > MColourTable::maximumStops) refused = true;
        for (std::size_t i = 0; i < count && !refused && !colr.broken; ++i) {
            const std::size_t stop = at + 3 + i * size;
            paint.stops.push_back({colr.F2Dot14(stop), Colour(colr.U16(stop + 2), colr.F2Dot14(stop + 4))});
        }
        std::ranges::stable_sort(paint.stops, {}, &MColourStop::offset);
    }

    void ReadGradient(std::uint32_t parent, std::size_t at, std::uint32_t format) {
        static constexpr std::array kinds{MPaintKind::Linear, MPaintKind::Radial, MPaintKind::Sweep};
        const std::uint32_t index = Add(parent, kinds[(format - 4) / 2]);
        if (refused) return;
        MPaint& paint = tree.paints[index];
        const auto number = [&](std::size_t i) { return static_cast<float>(colr.S16(at + 4 + i * 2)); };
        if (paint.kind == MPaintKind::Sweep) {
            // A half turn is added to both angles, so that their format reaches a whole turn.
            paint.numbers = {number(0), number(1), (colr.F2Dot14(at + 8) + 1) * 180,
                             (colr.F2Dot14(at + 10) + 1) * 180};
        } else {
            for (std::size_t i = 0; i < 6; ++i)
                paint.numbers[i] = number(i);
        }
        if (paint.kind == MPaintKind::Radial) {
            paint.numbers[2] = static_cast<float>(colr.U16(at + 8));
            paint.numbers[5] = static_cast<float>(colr.U16(at + 14));
        }
        ReadColourLine(paint, at + colr.U24(at + 1), format % 2 != 0);
    }

    // Formats 12 to 31: a paint and a way to transform it.
    std::array<float, 6> ReadTransform(std::size_t at, std::uint32_t format) {
        const std::size_t data = at + 4;
        const auto units = [&](std::size_t i) { return static_cast<float>(colr.S16(data + i * 2)); };
        const auto factor = [&](std::size_t i) { return colr.F2Dot14(data + i * 2); };
        switch (format & ~1U) {
        case 12: {
            const std::size_t matrix = at + colr.U24(data);
            std::array<float, 6> numbers{};
            for (std::size_t i = 0; i < 6; ++i)
                numbers[i] = colr.Fixed(matrix + i * 4);
            return numbers;
        }
        case 14: return {1, 0, 0, 1, units(0), units(1)};
        case 16: return Scaling(factor(0), factor(1));
        case 18: return Around(Scaling(factor(0), factor(1)), units(2), units(3));
        case 20: return Scaling(factor(0), factor(0));
        case 22: return Around(Scaling(factor(0), factor(0)), units(1), units(2));
        case 24: return Rotation(factor(0));
        case 26: return Around(Rotation(factor(0)), units(1), units(2));
        case 28: return Skew(factor(0), factor(1));
        default: return Around(Skew(factor(0), factor(1)), units(2), units(3));
        }
    }

    void ReadPaint(std::uint32_t parent, std::size_t at) {
        if (refused || colr.broken) return;
        if (open.size() >= MColourTable::maximumDepth || std::ranges::find(open, at) != open.end()) {
            refused = true;
            return;
        }
        open.push_back(at);
        ReadFormat(parent, at, colr.U8(at));
        open.pop_back();
    }

    void ReadFormat(std::uint32_t parent, std::size_t at, std::uint32_t format) {
        const auto child = [&](std::size_t field) { return at + colr.U24(at + field); };
        if (format == 1) {
            const std::uint32_t index = Add(parent, MPaintKind::Layers);
            const std::size_t list = colr.U32(18);
            const std::size_t count = colr.U8(at + 1);
            const std::size_t first = colr.U32(at + 2);
            if (list == 0 || first + count > colr.U32(list)) refused = true;
            for (std::size_t i = first; i < first + count && !refused; ++i)
                ReadPaint(index, list + colr.U32(list + 4 + i * 4));
        } else if (format == 2 || format == 3) {
            const std::uint32_t index = Add(parent, MPaintKind::Solid);
            tree.paints[index].colour = Colour(colr.U16(at + 1), colr.F2Dot14(at + 3));
        } else if (format >= 4 && format <= 9) {
            ReadGradient(parent, at, format);
        } else if (format == 10) {
            const std::uint32_t index = Add(parent, MPaintKind::Glyph);
            tree.paints[index].glyph = static_cast<std::uint16_t>(colr.U16(at + 4));
            ReadPaint(index, child(1));
        } else if (format == 11) {
            const std::uint32_t glyph = colr.U16(at + 1);
            // A glyph without paints of its own has nothing to paint.
            const std::uint32_t index = Add(parent, MPaintKind::Layers);
            if (const std::size_t paint = FindGraph(glyph); paint != noRecord) ReadBoxed(index, glyph, paint);
        } else if (format >= 12 && format <= 31) {
            const std::uint32_t index = Add(parent, MPaintKind::Transform);
            tree.paints[index].numbers = ReadTransform(at, format);
            ReadPaint(index, child(1));
        } else if (format == 32) {
            const std::uint32_t index = Add(parent, MPaintKind::Composite);
            const std::uint32_t mode = colr.U8(at + 4);
            if (mode > 27) refused = true;
            tree.paints[index].mode = static_cast<std::uint8_t>(mode);
            ReadPaint(index, child(1));
            ReadPaint(index, child(5));
        } else {
            refused = true;
        }
    }
};

// OpenType 1.9, chapter "CPAL"
std::optional<MColour> PaletteColour(std::span<const std::uint8_t> cpal, std::size_t entry) {
    MTableView table(cpal);
    if (table.U16(4) == 0 || entry >= table.U16(2)) return std::nullopt;
    const std::size_t index = table.U16(12) + entry;
    if (index >= table.U16(6)) return std::nullopt;
    const std::size_t record = table.U32(8) + index * 4;
    const auto channel = [&](std::size_t i) { return static_cast<std::uint8_t>(table.U8(record + i)); };
    const MColour colour(channel(2), channel(1), channel(0), channel(3));
    return table.broken ? std::nullopt : std::optional(colour);
}

MColourTable::MColourTable(std::span<const std::uint8_t> colr, std::span<const std::uint8_t> cpal)
    : colours(colr), palettes(cpal) {
    MTableView table(colr);
    const std::uint32_t version = table.U16(0);
    table.U32(10);
    graphs = version == 1 && table.U32(14) != 0;
    layers = table.U16(2) > 0;
    valid = version <= 1 && !table.broken;
}

std::optional<MPaintTree> MColourTable::Read(std::uint16_t glyph) const {
    if (!valid) return std::nullopt;
    if (graphs) {
        MPaintReader reader(*this);
        if (reader.ReadGraph(glyph)) return std::move(reader.tree);
    }
    MPaintReader reader(*this);
    if (reader.ReadLayers(glyph)) return std::move(reader.tree);
    return std::nullopt;
}
