#include "document/MColourFont.h"

#include "document/MSettings.h"
#include "foundation/MNumbers.h"

#include <algorithm>

MColourFont* CurrentFont = nullptr;

namespace {

std::int32_t HalfOf(std::int32_t height) {
    return ToInteger(height * 0.5);
}

bool IsFilled(const std::unique_ptr<MGlyph>& slot) {
    return slot != nullptr;
}

} // namespace

MColourFont::MColourFont(Desktop::WindowHandle owner)
    : Owner(owner), SpaceWidth(HalfOf(Settings->GlyphHeight)) {}

void MColourFont::Clear() {
    Picture.Free();
    for (auto& slot : Glyphs)
        slot.reset();
    ClearKerning();
}

MGlyph* MColourFont::GetGlyph(char16_t character) const {
    for (const auto& slot : Glyphs) {
        if (slot && slot->Character == character) return slot.get();
    }
    return nullptr;
}

MGlyph* MColourFont::GetGlyphByIndex(std::uint32_t index) const {
    for (const auto& slot : Glyphs) {
        if (slot && index-- == 0) return slot.get();
    }
    return nullptr;
}

std::int32_t MColourFont::GetGlyphIndex(char16_t character) const {
    std::int32_t index = 0;
    for (const auto& slot : Glyphs) {
        if (!slot) continue;
        if (slot->Character == character) return index;
        ++index;
    }
    return -1;
}

std::int32_t MColourFont::GlyphCount() const {
    return static_cast<std::int32_t>(std::ranges::count_if(Glyphs, IsFilled));
}

std::int32_t MColourFont::MaxGlyphWidth() const {
    std::int32_t width = 0;
    for (const auto& slot : Glyphs)
        width = std::max(width, slot ? slot->Width : 0);
    return width;
}

std::int32_t MColourFont::MaxGlyphHeight() const {
    std::int32_t height = 0;
    for (const auto& slot : Glyphs)
        height = std::max(height, slot ? slot->Height : 0);
    return height;
}

std::int32_t MColourFont::ClaimSlot(char16_t character) {
    const auto earlier =
        std::ranges::find_if(Glyphs, [&](const auto& slot) { return slot && slot->Character == character; });
    const auto slot = earlier != Glyphs.end() ? earlier : std::ranges::find_if_not(Glyphs, IsFilled);
    if (slot == Glyphs.end()) return -1;
    slot->reset();
    return static_cast<std::int32_t>(slot - Glyphs.begin());
}

void MColourFont::RemoveGlyph(char16_t character) {
    const auto slot =
        std::ranges::find_if(Glyphs, [&](const auto& glyph) { return glyph && glyph->Character == character; });
    if (slot != Glyphs.end()) slot->reset();

    // The last pair takes the place of a removed one, so the order of the others is not kept.
    std::int32_t count = Kerning.count;
    for (std::int32_t i = 0; i < count;) {
        const MKerningPair& pair = Kerning.data[i];
        if (pair.Left == character || pair.Right == character) {
            Kerning.data[i] = Kerning.data[--count];
        } else {
            ++i;
        }
    }
    if (!Kerning.Resize(count, true)) return; // the list is empty then, as the vector tells
}

void MColourFont::SortGlyphs() {
    const auto holes = std::stable_partition(Glyphs.begin(), Glyphs.end(), IsFilled);
    std::ranges::stable_sort(Glyphs.begin(), holes, {}, [](const auto& slot) { return slot->Character; });
}

bool MColourFont::SetKerning(std::int32_t left, std::uint32_t right, std::int32_t amount) {
    if (!TakesKerning(left, right)) return false;
    if (MKerningPair* const pair = FindKerning(static_cast<char16_t>(left), right)) {
        pair->Amount = amount;
        return true;
    }
    if (!Kerning.Resize(Kerning.count + 1, true)) return false;
    Kerning.data[Kerning.count - 1] = {static_cast<std::uint32_t>(left), right, amount};
    return true;
}

void MColourFont::ChangeKerning(char16_t left, std::uint32_t right, std::int32_t amount) {
    if (MKerningPair* const pair = FindKerning(left, right)) pair->Amount = amount;
}

MKerningPair* MColourFont::FindKerning(char16_t left, std::uint32_t right) const {
    MKerningPair* const end = Kerning.data + Kerning.count;
    MKerningPair* const pair = std::find_if(
        Kerning.data, end, [&](const MKerningPair& p) { return p.Left == left && p.Right == right; });
    return pair == end ? nullptr : pair;
}

void MColourFont::SortKerningByAmount() {
    std::ranges::stable_sort(Kerning, {}, &MKerningPair::Amount);
}

void MColourFont::SetGlyphHeight(std::int32_t height) {
    Settings->GlyphHeight = height;
    SpaceWidth = HalfOf(height);
}
