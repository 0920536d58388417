#include "document/CopyFont.h"

#include "foundation/MMemory.h"

namespace {

std::unique_ptr<MGlyph> CopyGlyph(const MGlyph& from) {
    auto glyph =
        std::make_unique<MGlyph>(from.Character, 0, 0, from.SpacingBefore, from.SpacingAfter, from.FromPicture);
    glyph->Width = from.Width;
    glyph->Height = from.Height;
    glyph->X = from.X;
    glyph->Y = from.Y;
    if (!from.Picture.IsValid()) return glyph;
    glyph->Picture = MPicture(from.Picture.Width, from.Picture.Height, from.Picture.Format);
    if (!glyph->Picture.IsValid()) return nullptr;
    const std::size_t rowBytes = std::size_t{from.Picture.Width} * BytesPerPixel(from.Picture.Format);
    for (std::size_t y = 0; y < from.Picture.Height; ++y)
        MCopyMemory(glyph->Picture.Pixels + y * glyph->Picture.Stride,
                    from.Picture.Pixels + y * from.Picture.Stride, rowBytes);
    return glyph;
}

} // namespace

bool CopyFont(const MColourFont& from, MColourFont& to) {
    to.Clear();
    to.Baseline = from.Baseline;
    to.CapHeight = from.CapHeight;
    to.SpaceWidth = from.SpaceWidth;
    bool whole = to.Kerning.Resize(from.Kerning.count, false);
    for (std::int32_t i = 0; whole && i < from.Kerning.count; ++i)
        to.Kerning.data[i] = from.Kerning.data[i];
    for (std::size_t slot = 0; whole && slot < from.Glyphs.size(); ++slot) {
        if (!from.Glyphs[slot]) continue;
        to.Glyphs[slot] = CopyGlyph(*from.Glyphs[slot]);
        whole = to.Glyphs[slot] != nullptr;
    }
    if (!whole) to.Clear();
    return whole;
}
