#include "glyphs/SheetMaker.h"

#include "glyphs/MSurfaceBitmap.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <utility>

namespace {

const MColour ink(15, 20, 64);

// What an effect makes of a glyph's alpha, at its place.
void Draw(cairo_t* sheet, const MGlyph& glyph, std::int32_t x, std::int32_t y, SheetLook::Effect effect) {
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
    constexpr std::int32_t reach = 4, most = 8; // of the effects, at the left and the right
    const auto paint = [&](const MColour& colour, const auto& coverage) {
        MPicture part(static_cast<std::uint32_t>(glyph.Width + reach + most),
                      static_cast<std::uint32_t>(glyph.Height + reach + most), FormatRGBA8);
        for (std::int32_t j = -reach; j < glyph.Height + most; ++j) {
            for (std::int32_t i = -reach; i < glyph.Width + most; ++i) {
                const auto a = static_cast<std::uint8_t>(std::lround(coverage(i, j) * 255));
                part.SetPixel(i + reach, j + reach, {colour.r, colour.g, colour.b, a});
            }
        }
        const MSurfaceBitmap bitmap(part);
        part.Free();
        cairo_set_source_surface(sheet, bitmap.image, x - reach, y - reach);
        cairo_paint(sheet);
    };
    if (effect == SheetLook::Effect::Shadow) paint({0, 0, 0}, shade);
    if (effect == SheetLook::Effect::Outlined)
        paint(ink, stroke);
    else
        paint(ink, alpha);
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
    MSurfaceBitmap layer(widest + 2 * margin,
                         static_cast<std::int32_t>(look.lines.size()) * pitch + 2 * margin);
    cairo_t* const context = cairo_create(layer.image);
    const double angle = look.degrees * std::numbers::pi / 180;
    const auto turn = [&](double& x, double& y) {
        const double dx = x - layer.width / 2.0;
        const double dy = y - layer.height / 2.0;
        x = std::cos(angle) * dx - std::sin(angle) * dy + layer.width / 2.0;
        y = std::sin(angle) * dx + std::cos(angle) * dy + layer.height / 2.0;
    };
    // How far the effects reach beyond the letter: left and above, right and below.
    const bool outlined = look.effect == SheetLook::Effect::Outlined;
    const bool shaded = look.effect == SheetLook::Effect::Shadow;
    const double near = outlined ? 2 : 0;
    const double far = outlined ? 2 : shaded ? 5 : 0;
    for (std::uint32_t line = 0; line < look.lines.size(); ++line) {
        std::int32_t pen = margin;
        const std::int32_t top = margin + static_cast<std::int32_t>(line) * pitch;
        for (const char16_t character : look.lines[line]) {
            const MGlyph& glyph = *font.GetGlyph(character);
            const std::int32_t x = pen + glyph.SpacingBefore;
            Draw(context, glyph, x, top, look.effect);
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
    cairo_destroy(context);
    paper = MPicture(static_cast<std::uint32_t>(layer.width), static_cast<std::uint32_t>(layer.height),
                     FormatRGBA8);
    PaintPaper(paper, look.ground);
    const MSurfaceBitmap sheet(paper);
    cairo_t* const turned = cairo_create(sheet.image);
    cairo_translate(turned, layer.width / 2.0, layer.height / 2.0);
    cairo_rotate(turned, angle);
    cairo_set_source_surface(turned, layer.image, -layer.width / 2.0, -layer.height / 2.0);
    cairo_paint(turned);
    cairo_destroy(turned);
    picture = sheet.ToPicture();
}

MadeSheet::~MadeSheet() {
    picture.Free();
    paper.Free();
    Settings = before;
}
