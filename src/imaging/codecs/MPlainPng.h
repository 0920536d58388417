// The PNG that nearly all files are, in a fraction of libpng's time: 8 bits a channel, grey, RGB or RGBA, not
// interlaced, nothing transparent by a key. The rows are packed and unpacked at once by libdeflate, which takes
// one more copy of them. Whatever else a file is, and whatever is doubtful in it, is left to libpng, whose word
// counts. Formats: ISO/IEC 15948 (PNG), RFC 1950 (zlib).
#pragma once

#include "imaging/MPicture.h"
#include "imaging/codecs/MByteStreams.h"

#include <cstdint>
#include <optional>
#include <span>

// Rows that take more than this are left to libpng, which needs no copy of them.
inline constexpr std::uint64_t MostPlainBytes = std::uint64_t{1} << 30;

// The whole file, if the picture is of bytes and large, and shrinks so well that a photograph's filters would
// gain nothing. Nothing without a value, and then nothing was written; false if the sink failed.
std::optional<bool> EncodePlainPng(const MPicture& picture, MByteSink& sink);

// The picture of a plain file that is whole to its last checksum. False for any other; then `picture` is empty,
// or has its size and format already, which are those that libpng would give it, and counts in the budget of
// pixels.
bool DecodePlainPng(std::span<const std::uint8_t> file, MPicture& picture);

// What libpng alone makes of a file, for comparison.
bool DecodePngByLibpng(std::span<const std::uint8_t> file, MPicture& picture);
