// How many pixels may be unpacked from files in one run of a command, so that a few kilobytes can't take the
// machine's memory and minutes of its time, be it in one picture or in many.
//
// A quarter of a million pixels are free for each picture, until they are 64 million together, and 64 more for
// each byte of its file: photographs and drawings have far fewer. What goes beyond is taken from one budget of
// 8192 x 4096 pixels for all pictures together, and no picture of less than a megabyte has more than that. The
// picture of a whole font may be as large as the best compression lets its file be: measured on fonts of every
// size, one of 8192 x 8192 pixels takes a megabyte, so that the program's own are not refused.
//
// Pixels of more than four bytes count twice, as do those of HEIF and of interlaced PNG, and rows as if they
// were no shorter than 16 pixels.
#pragma once

#include "foundation/MString.h"

#include <cstdint>

inline constexpr std::uint64_t FreePixels = std::uint64_t{1} << 18;
inline constexpr std::uint64_t AllFreePixels = std::uint64_t{1} << 26;
inline constexpr std::uint64_t FreePixelsPerByte = 64;
inline constexpr std::uint64_t FontPixels = std::uint64_t{1} << 26;
inline constexpr std::uint64_t FontPixelsPerByte = 260;
inline constexpr std::uint64_t SparePixels = std::uint64_t{1} << 25;

// The whole budget again, and no refusal: where a command begins.
void RestorePixelBudget();
// Takes a picture of this size, which `fileBytes` hold, and each of whose pixels counts as so many. False, with
// nothing taken, if it is more than is left.
bool TakePixels(std::uint64_t width, std::uint64_t height, std::uint64_t fileBytes, std::uint64_t weight = 1);
// Takes pixels that no file is measured by, all of them from the budget.
bool TakeSparePixels(std::uint64_t count);
// While it lives, the pictures that decoders allocate are taken, as from a file of so many bytes. Outside of it
// they are not limited.
class MPixelLimit {
public:
    explicit MPixelLimit(std::uint64_t fileBytes);
    MPixelLimit(const MPixelLimit&) = delete;
    MPixelLimit& operator=(const MPixelLimit&) = delete;
    ~MPixelLimit();
};
// While it lives, pictures are those of whole fonts.
class MFontPictureScope {
public:
    MFontPictureScope();
    MFontPictureScope(const MFontPictureScope&) = delete;
    MFontPictureScope& operator=(const MFontPictureScope&) = delete;
    ~MFontPictureScope();
};
// What the decoders ask. True where there is no limit.
bool IsWithinPixelLimit(std::uint64_t width, std::uint64_t height, std::uint64_t weight = 1);
// Why a picture was refused, with its numbers, since this was last asked or the budget restored; empty if none
// was.
MString TakePixelRefusal();
