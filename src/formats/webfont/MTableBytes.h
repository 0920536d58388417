// The bytes of a font table, whose numbers are big-endian (OpenType 1.9, "Data types").
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class MTableBytes {
public:
    std::vector<std::uint8_t> Bytes;

    std::uint32_t Size() const { return static_cast<std::uint32_t>(Bytes.size()); }
    void U8(std::uint32_t value) { Bytes.push_back(static_cast<std::uint8_t>(value)); }
    // The lower half of the value; negative ones in two's complement.
    void U16(std::int64_t value) {
        U8(static_cast<std::uint32_t>(value >> 8));
        U8(static_cast<std::uint32_t>(value));
    }
    void U32(std::int64_t value) {
        U16(value >> 16);
        U16(value);
    }
    void Tag(std::string_view tag) { Bytes.insert(Bytes.end(), tag.begin(), tag.end()); }
    void Append(std::span<const std::uint8_t> bytes) { Bytes.insert(Bytes.end(), bytes.begin(), bytes.end()); }
    void Zeros(std::size_t count) { Bytes.resize(Bytes.size() + count); }
    void AlignTo(std::size_t size) { Zeros((size - Bytes.size() % size) % size); }
    // Over four bytes that were left for it.
    void PutU32(std::size_t place, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            Bytes[place + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }
};
