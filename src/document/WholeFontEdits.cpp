// The edits that change all glyphs at once. The caller repacks.

#include "document/GlyphPixels.h"
#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "foundation/MDebug.h"
#include "foundation/MNumbers.h"
#include "platform/MLongWork.h"

#include <algorithm>

namespace {

// Where the search for the smallest margin starts; a font without glyphs ends with it.
constexpr std::uint32_t noMargin = 10000;

// What was taken away may be more than a number holds, since trimming an empty font takes 20000 each time.
std::int32_t Less(std::int32_t value, std::uint32_t rows) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(std::max(std::int64_t{value} - rows, lowest));
}

} // namespace

void MColourFont::Scale(float factor) {
    const auto scale = [factor](std::int32_t& value) { value = ToInteger(static_cast<float>(value) * factor); };
    scale(Baseline);
    scale(CapHeight);
    scale(SpaceWidth);
    MLongWork work(Owner, "Scaling characters...", GlyphPixels(*this));
    for (std::size_t place = 0; place < SlotCount; ++place) {
        work.At(place, SlotCount);
        if (Glyphs[place]) Glyphs[place]->Scale(factor);
    }
    for (MKerningPair& pair : Kerning)
        scale(pair.Amount);
}

void MColourFont::TrimVertically() {
    std::uint32_t top = noMargin;
    std::uint32_t bottom = noMargin;
    MLongWork work(Owner, "Trimming characters...", GlyphPixels(*this));
    for (const auto& slot : Glyphs) {
        if (!slot) continue;
        std::uint32_t glyphTop = 0;
        std::uint32_t glyphBottom = 0;
        slot->GetVerticalMargins(glyphTop, glyphBottom);
        top = std::min(top, glyphTop);
        bottom = std::min(bottom, glyphBottom);
    }
    const auto number = [](std::uint32_t value) { return MString(static_cast<std::int32_t>(value)); };
    DebugOutput((MString("Trimming Vertically: ") + number(top) + " " + number(bottom) + "\n").View());
    if (top == 0 && bottom == 0) return;
    for (std::size_t place = 0; place < SlotCount; ++place) {
        work.At(place, SlotCount);
        if (Glyphs[place]) Glyphs[place]->TrimRows(top, bottom);
    }
    // Whether or not every glyph could be trimmed.
    Settings->GlyphHeight = Less(Settings->GlyphHeight, top + bottom);
    Baseline = Less(Baseline, bottom);
}

void MColourFont::RemoveNonAscii() {
    for (const auto& slot : Glyphs) {
        if (slot && slot->Character >= 128) RemoveGlyph(slot->Character);
    }
}
