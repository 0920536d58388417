// Rows of a picture of any format as bytes, for forms that hold nothing wider.
#pragma once

#include "imaging/MPicture.h"

#include <cstddef>

enum class MByteOrder { Grey, Bgr, Rgb, Bgra, Rgba };

// What a format becomes where only bytes can be kept: 1, 3 or 4 of them.
int ChannelCount(MPixelFormat format);
// `row` takes Width times 1, 3 or 4 bytes. Wide channels give their upper byte, floats go through ToByte.
void CopyByteRow(const MPicture& picture, std::size_t y, MByteOrder order, std::uint8_t* row);
// In place, for pixels of 3 or 4 bytes without gaps.
void SwapRedAndBlue(std::uint8_t* pixels, std::size_t count, int channels);
