// The program's one array: always exactly `count` elements, no spare capacity.
#pragma once

#include "foundation/MMemory.h"

#include <algorithm>
#include <cstdint>
#include <utility>

template<typename T>
class MVector {
public:
    std::int32_t count = 0;
    T* data = nullptr; // owned; null when count is 0

    MVector() = default;
    MVector(const MVector&) = delete;
    MVector& operator=(const MVector&) = delete;
    MVector(MVector&& other) noexcept
        : count(std::exchange(other.count, 0)), data(std::exchange(other.data, nullptr)) {}
    MVector& operator=(MVector&& other) noexcept {
        if (this != &other) {
            delete[] data;
            count = std::exchange(other.count, 0);
            data = std::exchange(other.data, nullptr);
        }
        return *this;
    }
    ~MVector() { delete[] data; }

    T* begin() { return data; }
    T* end() { return data + count; }
    const T* begin() const { return data; }
    const T* end() const { return data + count; }

    void Clear() {
        count = 0;
        delete[] std::exchange(data, nullptr);
    }

    // Makes the array `newCount` elements long (0 or below: empty). An equal count changes nothing, whatever
    // `keep` says. Otherwise the first elements stay when `keep` is set and the rest are default elements,
    // which for plain types means uninitialised. False when memory is exhausted: the vector is empty then, its
    // old contents lost, also when they were to be kept. A line on the debug channel tells of it.
    [[nodiscard]] bool Resize(std::int32_t newCount, bool keep) {
        if (newCount == count) return true;
        if (newCount <= 0) {
            Clear();
            return true;
        }
        const bool keepsElements = keep && count > 0;
        if (!keepsElements) Clear();
        T* const fresh =
            AllocateArray<T>(static_cast<std::size_t>(newCount), u"MVector: out of memory exception\n");
        if (!fresh) {
            Clear();
            return false;
        }
        if (keepsElements) std::move(data, data + std::min(newCount, count), fresh);
        delete[] data;
        data = fresh;
        count = newCount;
        return true;
    }
};
