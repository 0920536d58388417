// The size of the pictures that the HEVC data of a file unpack to, read off their parameter sets. The container
// tells a size too, but the decoder allocates by this one and believes any.
#pragma once

#include <cstdint>
#include <span>

// Width times height of the largest; 0 if there is no parameter set.
std::uint64_t LargestHevcPicture(std::span<const std::uint8_t> file);
