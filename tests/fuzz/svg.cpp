// Any bytes as the tables SVG and CPAL: the first two tell where the latter begins. What draws documents does
// not stand beside this program, so each ends as a lost glyph; the documents are read up to there.
#include "platform/text/MSvgGlyphs.h"

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::size_t split = 2 + std::min<std::size_t>(std::size_t{data[0]} << 8 | data[1], size - 2);
    MSvgGlyphs glyphs({data + 2, data + split}, {data + split, data + size});
    for (std::uint16_t glyph = 0; glyph < 4; ++glyph)
        if (glyphs.Has(glyph) != glyphs.Has(glyph)) std::abort();
    return 0;
}
