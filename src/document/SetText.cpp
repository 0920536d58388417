#include "document/SetText.h"

#include "foundation/MNumbers.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace {

struct PlacedGlyph {
    const MGlyph* glyph;
    std::int64_t x;
};

struct Line {
    std::vector<PlacedGlyph> glyphs;
    std::int64_t left = 0;
    std::int64_t right = 0;
};

Line LayOut(const MColourFont& font, const MString& text) {
    Line line;
    std::int64_t pen = 0;
    const MGlyph* previous = nullptr;
    for (const char16_t character : text.View()) {
        const MGlyph* const glyph = font.GetGlyph(character);
        if (glyph) {
            const MKerningPair* const pair =
                previous ? font.FindKerning(previous->Character, character) : nullptr;
            const std::int64_t x = pen + (pair ? pair->Amount : 0) + glyph->SpacingBefore;
            line.glyphs.push_back({glyph, x});
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

void Draw(const MGlyph& glyph, std::int64_t left, MPicture& picture) {
    for (std::int32_t y = 0; y < glyph.PictureRows(); ++y) {
        for (std::int32_t x = 0; x < glyph.Width; ++x) {
            const MColour ink = glyph.GetPixel(x, y);
            if (ink.a == 0) continue;
            const auto column = static_cast<std::int32_t>(left + x);
            const MColour ground = picture.GetPixel(column, y);
            picture.SetPixel(column, y,
                             MColour(Blend(ink.r, ink.a, ground.r), Blend(ink.g, ink.a, ground.g),
                                     Blend(ink.b, ink.a, ground.b)));
        }
    }
}

} // namespace

MPicture SetText(const MColourFont& font, const MString& text, const MColour& background) {
    const Line line = LayOut(font, text);
    const std::int64_t width = line.right - line.left;
    const std::int32_t height = HeightOf(font);
    if (width < 1 || width > std::numeric_limits<std::int32_t>::max() || height < 1) return {};
    MPicture picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), FormatRGB8);
    picture.Fill(background);
    if (!picture.IsValid()) return picture;
    for (const auto& [glyph, x] : line.glyphs)
        Draw(*glyph, x - line.left, picture);
    return picture;
}
