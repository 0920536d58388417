// Feeds the reader and the painter of colour tables. The input is a COLR table with a CPAL table behind it: its
// first two bytes are the length of the former.
#include "platform/text/MColourTable.h"
#include "platform/text/MPaintTreePainter.h"
#include "platform_text/Canvas.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Outlines to paint with.
const MOpenFace& Face() {
    static const MOpenFace face([] {
        MFontMatch match;
        match.file = "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf";
        return match;
    }());
    return face;
}

void PaintGlyph(const MPaintTree& tree) {
    const Canvas canvas(24, 24);
    cairo_translate(canvas.context, 2, 20);
    cairo_scale(canvas.context, 20.0 / 2048, -20.0 / 2048);
    PaintTree(canvas.context, tree, Face(), MColour(255, 255, 255));
    // Whatever the paints say, what is drawn next must come out.
    if (!canvas.IsSound()) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::span<const std::uint8_t> bytes(data + 2, size - 2);
    const std::size_t length = std::min<std::size_t>(std::size_t{data[0]} << 8 | data[1], bytes.size());
    const MColourTable table(bytes.first(length), bytes.subspan(length));
    for (std::uint16_t glyph = 0; glyph < 4; ++glyph) {
        const auto tree = table.Read(glyph);
        // Large trees are slow under the fuzzer, and no different.
        if (tree && tree->paints.size() < 400) PaintGlyph(*tree);
    }
    return 0;
}
