// Where an encoder puts its bytes: a block in memory that grows, so that a file is made only once all of it is
// known to be there. Exhausted memory makes the sink fail for good, without an exception, since it is written
// to from the middle of C libraries.
#pragma once

#include "foundation/MMemory.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>

class MByteSink {
public:
    bool Write(const void* bytes, std::size_t count) { return WriteAt(used, bytes, count); }

    // Overwrites from `offset` on, and grows as needed; a gap reads as 0. For formats that go back to a header.
    bool WriteAt(std::size_t offset, const void* bytes, std::size_t count) {
        if (count == 0) return !failed;
        if (!Reserve(offset, count)) return false;
        if (offset > used) std::fill(data.get() + used, data.get() + offset, std::uint8_t{0});
        MCopyMemory(data.get() + offset, bytes, count);
        used = std::max(used, offset + count);
        return true;
    }

    bool Failed() const { return failed; }
    std::span<const std::uint8_t> Bytes() const { return {data.get(), used}; }

private:
    std::unique_ptr<std::uint8_t[]> data;
    std::size_t used = 0;
    std::size_t capacity = 0;
    bool failed = false;

    bool Reserve(std::size_t offset, std::size_t count) {
        const std::size_t needed = offset + count;
        failed = failed || needed < offset;
        if (failed || needed <= capacity) return !failed;
        constexpr std::size_t first = 65536;
        const std::size_t larger = std::max({first, capacity * 2, needed});
        std::unique_ptr<std::uint8_t[]> fresh(MGetMemory(larger));
        failed = !fresh;
        if (failed) return false;
        MCopyMemory(fresh.get(), data.get(), used);
        data = std::move(fresh);
        capacity = larger;
        return true;
    }
};
