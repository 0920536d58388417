// Any bytes as an SVG document for one glyph.
#include "platform/text/MSvgGlyphs.h"
#include "platform_text/Canvas.h"
#include "platform_text/PaintBuilder.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fonts::Bytes table = fonts::SvgTable(std::string(data, data + size), 1, 1);
    MSvgGlyphs glyphs({table.begin(), table.end()}, {});
    if (!glyphs.Has(1)) return 0;
    const Canvas canvas(24, 24);
    cairo_scale(canvas.context, 0.02, 0.02);
    glyphs.Draw(canvas.context, 1, 1000, MColour(1, 2, 3));
    if (!canvas.IsSound()) std::abort();
    return 0;
}
