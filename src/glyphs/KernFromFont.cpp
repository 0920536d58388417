#include "glyphs/KernFromFont.h"

#include "document/MSettings.h"
#include "foundation/MNumbers.h"
#include "glyphs/MGlyphRenderer.h"
#include "platform/text/MFaceKerning.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <vector>

KernFromFontResult KernFromFont(MColourFont& font) {
    const MGlyphRenderer renderer(font.Owner);
    MFaceKerning kerning(Settings->FontName, Settings->Weight, Settings->Italic);
    if (!renderer.ready || kerning.UnitsPerEm() == 0) return KernFromFontResult::NoFont;
    const double pixelsPerUnit = renderer.EmPixels() / kerning.UnitsPerEm();
    std::vector<char16_t> characters;
    for (const auto& slot : font.Glyphs)
        if (slot && slot->Character >= FirstCharacter && kerning.Has(slot->Character))
            characters.push_back(slot->Character);
    std::vector<MKerningPair> pairs;
    // 50,000 pairs take some tenths of a second, unless the font means harm.
    constexpr double mostSeconds = 1.2;
    const std::clock_t start = std::clock();
    for (const char16_t left : characters) {
        if (static_cast<double>(std::clock() - start) > mostSeconds * CLOCKS_PER_SEC)
            return KernFromFontResult::TooSlow;
        for (const char16_t right : characters) {
            const std::int32_t amount = ToInteger(std::round(kerning.Amount(left, right) * pixelsPerUnit));
            if (amount != 0) pairs.push_back({left, right, amount});
        }
    }
    if (pairs.empty()) return KernFromFontResult::NoKerning;
    if (!font.Kerning.Resize(static_cast<std::int32_t>(pairs.size()), false))
        return KernFromFontResult::NoKerning;
    std::ranges::copy(pairs, font.Kerning.data);
    return KernFromFontResult::Kerned;
}
