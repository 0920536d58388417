// BC1, BC2 and BC3 blocks (S3TC), after Khronos Data Format 1.3, chapter 18. End points are fractions of 31 and
// 63, interpolated as such and rounded to bytes once, as the graphics programming guides of the form have it;
// decoders that round the end points first come out up to one level apart.
#pragma once

#include <cstdint>
#include <span>

inline constexpr std::size_t Bc1BlockBytes = 8;
inline constexpr std::size_t Bc2BlockBytes = 16; // and BC3's

// 4 by 4 pixels, row by row, each red, green, blue and alpha. Every block has a meaning.
void DecodeBc1Block(std::span<const std::uint8_t, Bc1BlockBytes> block, std::span<std::uint8_t, 64> rgba);
void DecodeBc2Block(std::span<const std::uint8_t, Bc2BlockBytes> block, std::span<std::uint8_t, 64> rgba);
void DecodeBc3Block(std::span<const std::uint8_t, Bc2BlockBytes> block, std::span<std::uint8_t, 64> rgba);
