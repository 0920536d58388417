#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "foundation/Product.h"
#include "glyphs/MGlyphRenderer.h"
#include "platform/Desktop.h"
#include "platform/MProgressDialog.h"
#include "platform/text/MDrawingCredit.h"

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

// The characters whose drawings in the font ended what draws them, or took it too long.
void TellLost(Desktop::WindowHandle owner, const MString& characters, std::int32_t count) {
    if (count == 0) return;
    Desktop::ShowMessage(
        owner,
        "The drawings of these " + MString(count) + " characters in the font \"" + Settings->FontName +
            "\" can't be drawn, or take too much time or memory. They are left empty:\n\n" + characters,
        ProductName, Desktop::Buttons::Ok, Desktop::Icon::Warning);
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
    MString lost;
    std::int32_t lostCount = 0;
    LostGlyphs::Take();
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
        if (LostGlyphs::Take() > 0) {
            const char16_t unit = code;
            lost += MString(std::u16string_view(&unit, 1));
            ++lostCount;
        }
        if (glyph && code == u'A' && (CapHeight == 0 || Baseline == 0)) TakeMetrics(*this, *glyph);
    }
    ProgressDialog.Close();
    TellLost(Owner, lost, lostCount);
    return true;
}
