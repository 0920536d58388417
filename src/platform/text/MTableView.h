// A font table's bytes, read as OpenType writes numbers: most significant byte first. Nothing is ever read
// outside the table: such a read gives 0 and marks the view as broken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

class MTableView {
public:
    std::span<const std::uint8_t> bytes; // not owned
    bool broken = false;

    MTableView() = default;
    explicit MTableView(std::span<const std::uint8_t> table) : bytes(table) {}

    std::uint32_t U8(std::size_t at) { return Read(at, 1); }
    std::uint32_t U16(std::size_t at) { return Read(at, 2); }
    std::uint32_t U24(std::size_t at) { return Read(at, 3); }
    std::uint32_t U32(std::size_t at) { return Read(at, 4); }
    std::int32_t S16(std::size_t at) { return static_cast<std::int16_t>(Read(at, 2)); }
    float F2Dot14(std::size_t at) { return static_cast<float>(S16(at)) / 16384.0F; }
    float Fixed(std::size_t at) {
        return static_cast<float>(static_cast<std::int32_t>(Read(at, 4))) / 65536.0F;
    }

private:
    std::uint32_t Read(std::size_t at, std::size_t size) {
        if (at > bytes.size() || bytes.size() - at < size) {
            broken = true;
            return 0;
        }
        std::uint32_t value = 0;
        for (const std::uint8_t byte : bytes.subspan(at, size))
            value = value << 8 | byte;
        return value;
    }
};

inline constexpr std::size_t noRecord = SIZE_MAX;

// Where the record for a glyph begins, among `count` records of `size` bytes from `at` on that are sorted by
// glyph. Each begins with the first glyph that it is for, and has the last one `last` bytes further on; 0
// stands for records of a single glyph. `noRecord` if there is none, or the table is cut short.
inline std::size_t FindRecord(MTableView& table, std::size_t at, std::size_t count, std::size_t size,
                              std::uint32_t glyph, std::size_t last = 0) {
    std::size_t low = 0;
    std::size_t high = count;
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const std::size_t record = at + middle * size;
        const std::uint32_t firstGlyph = table.U16(record);
        const std::uint32_t lastGlyph = table.U16(record + last);
        if (table.broken) return noRecord;
        if (glyph >= firstGlyph && glyph <= lastGlyph) return record;
        if (glyph < firstGlyph) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return noRecord;
}
