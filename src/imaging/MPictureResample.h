// What the two files of the box filter share.
#pragma once

#include "imaging/MPicture.h"

#include <algorithm>
#include <cstddef>

inline constexpr std::uint32_t mostSamples = 32; // along one side of the square

// The samples along one axis for one new coordinate: `count` source coordinates from `first` on, `step` apart.
struct SampleSpan {
    std::size_t first;
    std::size_t count;
    std::size_t step;
};

// A single new row or column reads the first one only, as often as the square is wide.
inline SampleSpan SpanOf(std::uint32_t coordinate, std::uint32_t sourceSize, std::uint32_t targetSize,
                         std::uint32_t samples) {
    if (targetSize == 1) return {0, samples, 0};
    const std::uint64_t first = std::uint64_t{coordinate} * sourceSize / targetSize;
    return {first, std::min<std::uint64_t>(samples, sourceSize - first), 1};
}

// The box filter for a source of format 7 and any target. Frees the target without memory for its sums.
void ScaleBytes(const MPicture& source, MPicture& target, std::uint32_t samples);
