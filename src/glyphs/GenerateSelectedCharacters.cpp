#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "glyphs/MGlyphRenderer.h"
#include "platform/MProgressDialog.h"

#include <cstdint>

namespace {

constexpr std::uint16_t firstCode = 33;
constexpr std::uint16_t lastCode = 255;

void TakeMetrics(MColourFont& font, const MGlyph& letter) {
    std::uint32_t top = 0;
    std::uint32_t bottom = 0;
    letter.GetVerticalMargins(top, bottom);
    font.CapHeight = static_cast<std::int32_t>(letter.Picture.Height - top - bottom);
    font.Baseline = static_cast<std::int32_t>(bottom);
}

} // namespace

bool MColourFont::GenerateSelectedCharacters() {
    const std::int32_t selected = Settings->SelectedCount();
    if (selected == 0) return false;
    MGlyphRenderer renderer(Owner);
    if (!renderer.ready) return true;

    ProgressDialog.Configure(Owner);
    ProgressDialog.Open();
    std::int32_t done = 0;
    for (std::uint16_t code = firstCode; code <= lastCode; ++code) {
        if (!Settings->Selected[code]) continue;
        ++done;
        ProgressDialog.Update(static_cast<float>(done) / static_cast<float>(selected),
                              "Creating characters...");
        // An earlier glyph of the character is gone from here on, also if no new one comes of it.
        const std::int32_t slot = ClaimSlot(code);
        if (slot < 0) continue;
        auto& glyph = Glyphs[static_cast<std::size_t>(slot)];
        glyph = renderer.RenderGlyph(code);
        if (glyph && code == u'A' && (CapHeight == 0 || Baseline == 0)) TakeMetrics(*this, *glyph);
    }
    ProgressDialog.Close();
    return true;
}
