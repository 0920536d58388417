#include "document/SetText.h"

#include "foundation/MNumbers.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace {

std::uint8_t Blend(std::uint8_t source, std::uint8_t alpha, std::uint8_t ground) {
    return static_cast<std::uint8_t>((source * alpha + ground * (255 - alpha) + 127) / 255);
}

// Without the rows that a glyph only claims, which hold no ink.
std::int32_t HeightOf(const MColourFont& font) {
    std::int32_t height = 0;
    for (const auto& slot : font.Glyphs)
        height = std::max(height, slot ? slot->PictureRows() : 0);
    return height;
}

void DrawRow(std::span<const MColour> inks, MColour* row) {
    for (const MColour& ink : inks) {
        if (ink.a != 0) {
            row->r = Blend(ink.r, ink.a, row->r);
            row->g = Blend(ink.g, ink.a, row->g);
            row->b = Blend(ink.b, ink.a, row->b);
        }
        ++row;
    }
}

// On a picture of format 7 that the glyph lies in.
void Draw(const MGlyph& glyph, std::int64_t left, MPicture& picture) {
    std::vector<MColour> inks(static_cast<std::size_t>(std::max(glyph.Width, 0)));
    for (std::int32_t y = 0; y < glyph.PictureRows(); ++y) {
        auto* const row = reinterpret_cast<MColour*>(picture.PixelAddress(static_cast<std::int32_t>(left), y));
        if (glyph.RowsMatchPicture()) {
            DrawRow({reinterpret_cast<const MColour*>(glyph.Picture.PixelAddress(0, y)), inks.size()}, row);
            continue;
        }
        for (std::size_t x = 0; x < inks.size(); ++x)
            inks[x] = glyph.GetPixel(static_cast<std::int32_t>(x), y);
        DrawRow(inks, row);
    }
}

std::int32_t AmountOf(std::span<const MKerningPair> kerning, char16_t left, char16_t right) {
    const auto pair = std::ranges::find_if(
        kerning, [=](const MKerningPair& each) { return each.Left == left && each.Right == right; });
    return pair == kerning.end() ? 0 : pair->Amount;
}

} // namespace

MTextLine LayOutText(const MColourFont& font, const MString& text, std::span<const MKerningPair> kerning) {
    MTextLine line;
    line.height = HeightOf(font);
    std::int64_t pen = 0;
    const MGlyph* previous = nullptr;
    for (const char16_t character : text.View()) {
        const MGlyph* const glyph = font.GetGlyph(character);
        if (glyph) {
            const std::int32_t amount = previous ? AmountOf(kerning, previous->Character, character) : 0;
            const std::int64_t x = pen + amount + glyph->SpacingBefore;
            line.glyphs.push_back({glyph, x, previous != nullptr});
            line.left = std::min(line.left, x);
            line.right = std::max(line.right, x + glyph->Width);
            pen = x + glyph->Width + glyph->SpacingAfter;
        } else if (character == u' ') {
            pen += font.SpaceWidth;
        }
        previous = glyph;
        line.right = std::max(line.right, pen);
    }
    return line;
}

MPicture DrawTextLine(const MTextLine& line, const MColour& background) {
    if (line.Width() < 1 || line.Width() > std::numeric_limits<std::int32_t>::max() || line.height < 1)
        return {};
    MPicture picture(static_cast<std::uint32_t>(line.Width()), static_cast<std::uint32_t>(line.height),
                     FormatRGBA8);
    picture.Fill(MColour(background.r, background.g, background.b));
    if (!picture.IsValid()) return picture;
    for (const MPlacedGlyph& placed : line.glyphs)
        Draw(*placed.glyph, placed.x - line.left, picture);
    return picture;
}

MPicture SetText(const MColourFont& font, const MString& text, const MColour& background) {
    const std::span kerning(font.Kerning.data, static_cast<std::size_t>(font.Kerning.count));
    MPicture picture = DrawTextLine(LayOutText(font, text, kerning), background);
    if (!picture.IsValid()) return picture;
    MPicture opaque(picture, picture.Width, picture.Height, FormatRGB8, false, false);
    picture.Free();
    return opaque;
}
