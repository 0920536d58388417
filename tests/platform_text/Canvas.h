// A Cairo image for tests to draw on.
#pragma once

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

class Canvas {
public:
    cairo_surface_t* image;
    cairo_t* context;

    Canvas(int width, int height)
        : image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)), context(cairo_create(image)) {}
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas() {
        cairo_destroy(context);
        cairo_surface_destroy(image);
    }

    // Whether nothing that was drawn has broken it.
    bool IsSound() const { return cairo_status(context) == CAIRO_STATUS_SUCCESS; }

    // Alpha, red, green and blue from the highest byte on; premultiplied.
    std::uint32_t At(int x, int y) const {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, Address(x, y), sizeof pixel);
        return pixel;
    }
    void Put(int x, int y, std::uint32_t pixel) const {
        std::memcpy(Address(x, y), &pixel, sizeof pixel);
        cairo_surface_mark_dirty_rectangle(image, x, y, 1, 1);
    }

private:
    unsigned char* Address(int x, int y) const {
        cairo_surface_flush(image);
        return cairo_image_surface_get_data(image) + std::ptrdiff_t{y} * cairo_image_surface_get_stride(image) +
               std::ptrdiff_t{x} * 4;
    }
};
