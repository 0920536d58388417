// Any bytes as an SVG document for one glyph.
#include "platform/text/MSvgGlyphs.h"

#include <cairo.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

// A table SVG whose only document serves glyph 1.
std::vector<std::uint8_t> TableOf(const std::uint8_t* document, std::uint32_t size) {
    const auto high = static_cast<std::uint8_t>(size >> 24);
    const auto middle = static_cast<std::uint8_t>(size >> 16);
    const auto low = static_cast<std::uint8_t>(size >> 8);
    std::vector<std::uint8_t> table{0, 0, 0, 0,  0,    10,     0,   0,
                                    0, 0, 0, 1,  0,    1,      0,   1,
                                    0, 0, 0, 14, high, middle, low, static_cast<std::uint8_t>(size)};
    table.insert(table.end(), document, document + size);
    return table;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MSvgGlyphs glyphs(TableOf(data, static_cast<std::uint32_t>(size)), {});
    if (!glyphs.Has(1)) return 0;
    cairo_surface_t* const image = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 24, 24);
    cairo_t* const context = cairo_create(image);
    cairo_scale(context, 0.02, 0.02);
    glyphs.Draw(context, 1, 1000, MColour(1, 2, 3));
    if (cairo_status(context) != CAIRO_STATUS_SUCCESS) std::abort();
    cairo_destroy(context);
    cairo_surface_destroy(image);
    return 0;
}
