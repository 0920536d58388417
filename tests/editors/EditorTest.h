// Fonts and paintings for the tests of the editors.
#pragma once

#include "DocumentFixture.h"
#include "Text.h"
#include "foundation/MNumbers.h"
#include "glyphs/MDirect2DSurface.h"

#include <algorithm>
#include <limits>

inline constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();

class EditorTest : public DocumentTest {
protected:
    MColourFont font{nullptr};

    MGlyph& Add(char16_t character, std::int32_t width, std::int32_t height, const MColour& ink = {0, 0, 255}) {
        MGlyph& glyph = AddGlyph(font, character, width, height);
        glyph.Picture.Fill(ink);
        return glyph;
    }

    static std::size_t Paintings() { return Headless::record.paintings.size(); }

    // Of the last painting, at a place of the window.
    static MColour Painted(std::int32_t x, std::int32_t y) {
        const Headless::Painting& last = Headless::record.paintings.back();
        const auto pixel = static_cast<std::size_t>((y - last.area.top) * last.width + x - last.area.left) * 4;
        return {last.pixels[pixel + 2], last.pixels[pixel + 1], last.pixels[pixel], last.pixels[pixel + 3]};
    }
};
