#include "glyphs/MSurfaceBitmap.h"

#include "foundation/MMemory.h"

#include <cairo.h>

namespace {

constexpr std::int32_t largestSide = 32767; // Cairo's own limit

} // namespace

MSurfaceBitmap::MSurfaceBitmap(std::int32_t bitmapWidth, std::int32_t bitmapHeight) {
    if (bitmapWidth < 1 || bitmapHeight < 1 || bitmapWidth > largestSide || bitmapHeight > largestSide) return;
    if (static_cast<std::size_t>(bitmapWidth) * static_cast<std::size_t>(bitmapHeight) > MemoryLimit() / 4)
        return;
    Hold(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, bitmapWidth, bitmapHeight));
}

MSurfaceBitmap::MSurfaceBitmap(const MPicture& picture) {
    if (picture.Width > largestSide || picture.Height > largestSide) return;
    MPicture bitmap = picture.CreateWicBitmap();
    block.reset(bitmap.Pixels);
    if (!bitmap.IsValid()) return;
    Hold(cairo_image_surface_create_for_data(bitmap.Pixels, CAIRO_FORMAT_ARGB32, static_cast<int>(bitmap.Width),
                                             static_cast<int>(bitmap.Height), static_cast<int>(bitmap.Stride)));
}

void MSurfaceBitmap::Hold(_cairo_surface* surface) {
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return;
    }
    width = cairo_image_surface_get_width(surface);
    height = cairo_image_surface_get_height(surface);
    stride = cairo_image_surface_get_stride(surface);
    pixels = cairo_image_surface_get_data(surface);
    image = surface;
}

MSurfaceBitmap::~MSurfaceBitmap() {
    if (image) cairo_surface_destroy(image);
}

const std::uint8_t* MSurfaceBitmap::Row(std::int32_t y) const {
    return IsValid() && y >= 0 && y < height ? pixels + static_cast<std::ptrdiff_t>(y) * stride : nullptr;
}

MPicture MSurfaceBitmap::ToPicture() const {
    return MPicture(MBitmapView{pixels, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                                static_cast<std::uint32_t>(stride)});
}
