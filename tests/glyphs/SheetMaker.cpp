#include "glyphs/SheetMaker.h"

#include "platform_text/Canvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <utility>

namespace {

// What an effect makes of a glyph's alpha, at its place.
void Draw(const Canvas& layer, const MGlyph& glyph, std::int32_t x, std::int32_t y, SheetLook::Effect effect) {
    const auto alpha = [&](std::int32_t i, std::int32_t j) {
        return static_cast<float>(glyph.GetPixel(i, j).a) / 255.0F;
    };
    const auto stroke = [&](std::int32_t i, std::int32_t j) {
        float most = 0;
        for (std::int32_t dy = -2; dy <= 2; ++dy)
            for (std::int32_t dx = -2; dx <= 2; ++dx)
                if (dx * dx + dy * dy <= 5) most = std::max(most, alpha(i + dx, j + dy));
        return most - alpha(i, j);
    };
    const auto shade = [&](std::int32_t i, std::int32_t j) {
        float sum = 0;
        for (std::int32_t dy = -1; dy <= 1; ++dy)
            for (std::int32_t dx = -1; dx <= 1; ++dx)
                sum += alpha(i - 4 + dx, j - 4 + dy) / 9;
        return sum * 0.45F;
    };
    // A colour, as far as `coverage` tells at each place of the glyph and around it.
    const auto stamp = [&](double red, double green, double blue, const auto& coverage) {
        const Canvas mask(glyph.Width + 12, glyph.Height + 12);
        for (std::int32_t j = 0; j < glyph.Height + 12; ++j)
            for (std::int32_t i = 0; i < glyph.Width + 12; ++i)
                mask.Put(i, j, static_cast<std::uint32_t>(std::lround(coverage(i - 4, j - 4) * 255)) << 24);
        cairo_set_source_rgb(layer.context, red, green, blue);
        cairo_mask_surface(layer.context, mask.image, x - 4, y - 4);
    };
    if (effect == SheetLook::Effect::Shadow) stamp(0, 0, 0, shade);
    if (effect == SheetLook::Effect::Outlined)
        stamp(0.06, 0.08, 0.25, stroke);
    else
        stamp(0.06, 0.08, 0.25, alpha);
}

// Uneven light over warm paper with grain.
void PaintPaper(MPicture& paper, SheetLook::Ground ground) {
    std::mt19937 random(7);
    std::normal_distribution<double> grain(0, 2.5);
    const double width = paper.Width;
    const double height = paper.Height;
    for (std::uint32_t y = 0; y < paper.Height; ++y) {
        for (std::uint32_t x = 0; x < paper.Width; ++x) {
            MColour colour(255, 255, 255, ground == SheetLook::Ground::Transparent ? 0 : 255);
            if (ground == SheetLook::Ground::Paper) {
                const double across = x / width - 0.4;
                const double down = y / height - 0.6;
                const double light = -38 * (across * across + down * down) +
                                     5 * std::sin(9 * across + 4 * down) +
                                     4 * std::cos(11 * down - 3 * across) + grain(random);
                const auto byte = [&](double base) {
                    return static_cast<std::uint8_t>(std::clamp(base + light, 0.0, 255.0));
                };
                colour = MColour(byte(240), byte(233), byte(214));
            }
            std::memcpy(paper.Pixels + std::size_t{y} * paper.Stride + std::size_t{x} * 4, &colour, 4);
        }
    }
}

} // namespace

MadeSheet::MadeSheet(const SheetLook& look) : before(std::exchange(Settings, &settings)), font(nullptr) {
    settings.FontName = MString(look.family.c_str());
    settings.Weight = look.weight;
    settings.Italic = look.italic;
    settings.GlyphHeight = look.height;
    settings.Selected.fill(0);
    std::u16string all;
    for (const std::u16string& line : look.lines) {
        for (const char16_t character : line)
            settings.Selected[character] = 1;
        all += line + u'\n';
    }
    settings.Selected[u'A'] = 1; // it tells the base line
    text = MString(all);
    font.GenerateSelectedCharacters();

    const std::int32_t margin = look.height * 2 / 3 + (look.degrees != 0 ? look.height : 0);
    const std::int32_t pitch = look.height * 3 / 2;
    const auto advance = [&](char16_t character) {
        const MGlyph& glyph = *font.GetGlyph(character);
        return glyph.SpacingBefore + glyph.Width + glyph.SpacingAfter + look.extraGap;
    };
    std::int32_t widest = 0;
    for (const std::u16string& line : look.lines) {
        std::int32_t width = 0;
        for (const char16_t character : line)
            width += advance(character);
        widest = std::max(widest, width);
    }
    const std::int32_t width = widest + 2 * margin;
    const std::int32_t height = static_cast<std::int32_t>(look.lines.size()) * pitch + 2 * margin;
    const Canvas layer(width, height);
    const Canvas turned(width, height);
    const double angle = look.degrees * std::numbers::pi / 180;
    const auto turn = [&](double& x, double& y) {
        const double dx = x - width / 2.0;
        const double dy = y - height / 2.0;
        x = std::cos(angle) * dx - std::sin(angle) * dy + width / 2.0;
        y = std::sin(angle) * dx + std::cos(angle) * dy + height / 2.0;
    };
    // How far the effects reach beyond the letter: left and above, right and below.
    const bool outlined = look.effect == SheetLook::Effect::Outlined;
    const bool shaded = look.effect == SheetLook::Effect::Shadow;
    const double near = outlined ? 2 : 0;
    const double far = outlined ? 2 : shaded ? 5 : 0;
    std::mt19937 random(3);
    std::uniform_int_distribution<std::int32_t> stray(-look.wander / 2, look.wander / 2);
    for (std::uint32_t line = 0; line < look.lines.size(); ++line) {
        std::int32_t pen = margin;
        for (const char16_t character : look.lines[line]) {
            const MGlyph& glyph = *font.GetGlyph(character);
            const std::int32_t x = pen + glyph.SpacingBefore + stray(random);
            const auto wave = std::sin(x / (6.0 * look.height) + line);
            const std::int32_t top = margin + static_cast<std::int32_t>(line) * pitch +
                                     static_cast<std::int32_t>(std::lround(look.wander * wave)) + stray(random);
            Draw(layer, glyph, x, top, look.effect);
            std::uint32_t above = 0, right = 0, below = 0, left = 0;
            glyph.Picture.GetMargins(above, right, below, left);
            const double inkLeft = x + static_cast<double>(left) - near;
            const double inkRight = x + static_cast<double>(glyph.Width) - right + far;
            const double inkTop = top + static_cast<double>(above) - near;
            const double inkBottom = top + static_cast<double>(glyph.Height) - below + far;
            MadeLetter letter{character,
                              line,
                              (inkLeft + inkRight) / 2,
                              (inkTop + inkBottom) / 2,
                              inkRight - inkLeft,
                              inkBottom - inkTop,
                              0};
            double baseX = letter.x;
            letter.base = top + look.height - font.Baseline + far;
            turn(baseX, letter.base);
            turn(letter.x, letter.y);
            letters.push_back(letter);
            pen += advance(character);
        }
    }
    cairo_translate(turned.context, width / 2.0, height / 2.0);
    cairo_rotate(turned.context, angle);
    cairo_set_source_surface(turned.context, layer.image, -width / 2.0, -height / 2.0);
    cairo_paint(turned.context);
    picture = MPicture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), FormatRGBA8);
    paper = MPicture(picture.Width, picture.Height, FormatRGBA8);
    PaintPaper(paper, look.ground);
    const bool clear = look.ground == SheetLook::Ground::Transparent;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const std::uint32_t over = turned.At(x, y);
            const std::uint32_t alpha = over >> 24;
            const MColour under = paper.GetPixel(x, y);
            const auto mix = [&](std::uint32_t premultiplied, std::uint8_t below) {
                const std::uint32_t straight = alpha > 0 ? premultiplied * 255 / alpha : 0;
                return static_cast<std::uint8_t>(clear ? straight
                                                       : premultiplied + below * (255 - alpha) / 255);
            };
            picture.SetPixel(x, y,
                             MColour(mix(over >> 16 & 255, under.r), mix(over >> 8 & 255, under.g),
                                     mix(over & 255, under.b), clear ? static_cast<std::uint8_t>(alpha) : 255));
        }
    }
}

MadeSheet::~MadeSheet() {
    picture.Free();
    paper.Free();
    Settings = before;
}
