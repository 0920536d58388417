#include "glyphs/SheetMaker.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <utility>

namespace {

// Premultiplied, so that it can be blurred and turned.
struct Layer {
    std::int32_t width;
    std::int32_t height;
    std::vector<std::array<float, 4>> pixels; // blue, green, red, alpha, 0 to 1

    Layer(std::int32_t w, std::int32_t h)
        : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

    bool Holds(std::int32_t x, std::int32_t y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    std::size_t At(std::int32_t x, std::int32_t y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
    std::array<float, 4> Get(std::int32_t x, std::int32_t y) const {
        return Holds(x, y) ? pixels[At(x, y)] : std::array<float, 4>{};
    }
    void Over(std::int32_t x, std::int32_t y, const std::array<float, 4>& colour) {
        if (!Holds(x, y)) return;
        for (std::size_t c = 0; c < 4; ++c)
            pixels[At(x, y)][c] = colour[c] + pixels[At(x, y)][c] * (1 - colour[3]);
    }
};

constexpr std::array<float, 3> ink{0.25F, 0.08F, 0.06F};

// What an effect makes of a glyph's alpha, at its place.
void Draw(Layer& layer, const MGlyph& glyph, std::int32_t x, std::int32_t y, SheetLook::Effect effect) {
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
    for (std::int32_t j = -4; j < glyph.Height + 8; ++j) {
        for (std::int32_t i = -4; i < glyph.Width + 8; ++i) {
            if (effect == SheetLook::Effect::Shadow) layer.Over(x + i, y + j, {0, 0, 0, shade(i, j)});
            const float a = effect == SheetLook::Effect::Outlined ? stroke(i, j) : alpha(i, j);
            layer.Over(x + i, y + j, {ink[0] * a, ink[1] * a, ink[2] * a, a});
        }
    }
}

Layer Turned(const Layer& from, double degrees) {
    if (degrees == 0) return from;
    Layer to(from.width, from.height);
    const double angle = degrees * std::numbers::pi / 180;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (std::int32_t y = 0; y < to.height; ++y) {
        for (std::int32_t x = 0; x < to.width; ++x) {
            const double dx = x + 0.5 - to.width / 2.0;
            const double dy = y + 0.5 - to.height / 2.0;
            const double fx = c * dx + s * dy + to.width / 2.0 - 0.5;
            const double fy = -s * dx + c * dy + to.height / 2.0 - 0.5;
            const auto left = static_cast<std::int32_t>(std::floor(fx));
            const auto top = static_cast<std::int32_t>(std::floor(fy));
            const auto across = static_cast<float>(fx - left);
            const auto down = static_cast<float>(fy - top);
            for (std::size_t i = 0; i < 4; ++i) {
                const float above = std::lerp(from.Get(left, top)[i], from.Get(left + 1, top)[i], across);
                const float below =
                    std::lerp(from.Get(left, top + 1)[i], from.Get(left + 1, top + 1)[i], across);
                to.pixels[to.At(x, y)][i] = std::lerp(above, below, down);
            }
        }
    }
    return to;
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
    Layer layer(widest + 2 * margin, static_cast<std::int32_t>(look.lines.size()) * pitch + 2 * margin);
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
    const Layer turned = Turned(layer, look.degrees);
    const auto width = static_cast<std::uint32_t>(layer.width);
    const auto height = static_cast<std::uint32_t>(layer.height);
    picture = MPicture(width, height, FormatRGBA8);
    paper = MPicture(width, height, FormatRGBA8);
    PaintPaper(paper, look.ground);
    for (std::size_t i = 0; i < turned.pixels.size(); ++i) {
        const std::array<float, 4>& over = turned.pixels[i];
        std::uint8_t* const to = picture.Pixels + i * 4;
        const std::uint8_t* const under = paper.Pixels + i * 4;
        const bool clear = look.ground == SheetLook::Ground::Transparent;
        for (std::size_t c = 0; c < 3; ++c) {
            const float straight = over[3] > 0 ? over[c] / over[3] : 0;
            const float value =
                clear ? straight * 255 : over[c] * 255 + static_cast<float>(under[c]) * (1 - over[3]);
            to[c] = static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 255.0F)));
        }
        to[3] = clear ? static_cast<std::uint8_t>(std::lround(over[3] * 255)) : 255;
    }
}

MadeSheet::~MadeSheet() {
    picture.Free();
    paper.Free();
    Settings = before;
}
