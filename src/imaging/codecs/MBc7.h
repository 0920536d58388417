// BC7 blocks (BPTC), after Khronos Data Format 1.3, chapter 20.
#pragma once

#include <cstdint>
#include <span>

inline constexpr std::size_t Bc7BlockBytes = 16;

// 4 by 4 pixels, row by row, each red, green, blue and alpha. Every block has a meaning; those of the reserved
// mode are transparent black.
void DecodeBc7Block(std::span<const std::uint8_t, Bc7BlockBytes> block, std::span<std::uint8_t, 64> rgba);
