// Numbers: conversions that are defined for every input, and bounds.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

// Truncates toward zero; what does not fit 32 bits, or is not a number, gives the smallest 32-bit number.
template<typename Float>
constexpr std::int32_t ToInteger(Float value) {
    constexpr Float low = static_cast<Float>(std::numeric_limits<std::int32_t>::min());
    return value > low && value < -low ? static_cast<std::int32_t>(value)
                                       : std::numeric_limits<std::int32_t>::min();
}

// `coordinate` brought into 0 to size - 1 by adding or subtracting the size as often as it takes. `size` is
// above 0.
constexpr std::uint32_t Wrap(std::int64_t coordinate, std::uint32_t size) {
    const std::int64_t rest = coordinate % std::int64_t{size};
    return static_cast<std::uint32_t>(rest < 0 ? rest + size : rest);
}

template<typename Number>
constexpr void Clamp(Number& value, Number low, Number high) {
    value = std::max(low, std::min(value, high));
}
