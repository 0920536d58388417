// Any bytes as a font file: it is added to the system's, matched by its name, measured, and drawn in all the
// ways that there are.
#include "TemporaryFolder.h"
#include "foundation/MMemory.h"
#include "imaging/MPixelBudget.h"
#include "platform/text/MFaceKerning.h"
#include "platform/text/MGlyphPainter.h"
#include "platform/text/MSizedFont.h"
#include "platform_text/Canvas.h"

#include <fontconfig/fontconfig.h>

#include <cstdint>
#include <cstdlib>

namespace {

constexpr const char* family = "Built Sans";

void Draw(const MFontMatch& match) {
    const auto painter = MGlyphPainter::Shared(match);
    if (!painter->face.face) return;
    for (const char16_t character : {u'A', u'B', u'\u0101', u'\u0120'}) {
        const Canvas canvas(40, 40);
        const std::uint32_t glyph = painter->face.GlyphIndex(character);
        painter->Draw(canvas.context, glyph, 4, 32, 30, MColour(255, 255, 255), true);
        painter->Draw(canvas.context, glyph, 4, 32, 30, MColour(255, 255, 255), false);
        if (!canvas.IsSound() || painter->face.Advance(glyph) < 0) std::abort();
    }
}

void Measure(std::int32_t weight, bool italic) {
    MSizedFont font(family, weight, italic);
    if (font.SetHeight(40)) {
        for (const char16_t character : {u'A', u'B'}) {
            MInk ink;
            font.GetInk(character, ink);
            font.Draw(
                character, 4, 32, {0, 0, 60, 60}, [](std::int32_t, std::span<const MSpan>, void*) {}, nullptr);
        }
    }
    MFaceKerning(family, weight, italic).Amount(u'A', u'B');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    SetMemoryLimit(std::size_t{1} << 30);
    RestorePixelBudget();
    const MString file = folder.Write("f.ttf", {reinterpret_cast<const char*>(data), size});
    if (!AddFontFile(file)) return 0;
    MFontMatch match;
    match.file = ToSystemPath(file).string();
    Draw(match);
    match.variations = "wght=650,wdth=80";
    match.embolden = true;
    Draw(match);
    if (IsFamilyInstalled(family)) {
        Measure(400, false);
        Measure(700, true);                    // made of the other by the mapper
        if (size % 16 == 0) ListSystemFaces(); // of all fonts, which takes its time
    }
    FcConfigAppFontClear(nullptr);
    return 0;
}
