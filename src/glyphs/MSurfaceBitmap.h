// The picture that a drawing surface draws on: premultiplied blue, green, red and alpha, rows from the top.
#pragma once

#include "imaging/MPicture.h"

#include <cstdint>
#include <memory>

struct _cairo_surface;

class MSurfaceBitmap {
public:
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t stride = 0;         // bytes from one row to the next
    std::uint8_t* pixels = nullptr;  // of `image`
    _cairo_surface* image = nullptr; // owned; null if the bitmap is not valid

    // Fully transparent. Not valid for a size below 1 or above 32767, and without memory.
    MSurfaceBitmap(std::int32_t bitmapWidth, std::int32_t bitmapHeight);
    // For drawing a picture, as MPicture::CreateWicBitmap has it. Not valid if that isn't, nor for a size above
    // 32767.
    explicit MSurfaceBitmap(const MPicture& picture);
    MSurfaceBitmap(const MSurfaceBitmap&) = delete;
    MSurfaceBitmap& operator=(const MSurfaceBitmap&) = delete;
    ~MSurfaceBitmap();

    bool IsValid() const { return image != nullptr; }
    // Null outside.
    const std::uint8_t* Row(std::int32_t y) const;
    // A picture of format 7 with straight alpha, owned by the caller; invalid without memory.
    MPicture ToPicture() const;

private:
    std::unique_ptr<std::uint8_t[]> block; // the pixels of a picture, which the image only points to

    void Hold(_cairo_surface* surface);
};
