// The size of the pictures that the HEVC data of a file unpack to, read off their parameter sets. The container
// tells a size too, but the decoder allocates by this one and believes any.
#pragma once

#include <cstdint>
#include <span>

struct MHevcSize {
    std::uint64_t width = 0;
    std::uint64_t height = 0;

    std::uint64_t Pixels() const { return width * height; }
};

// Of the largest; none if there is no parameter set.
MHevcSize LargestHevcPicture(std::span<const std::uint8_t> file);
