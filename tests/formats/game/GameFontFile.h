// What the tests of game fonts share.
#pragma once

#include "formats/FontFile.h"
#include "formats/game/MGameFontExport.h"
#include "formats/game/MGameFontImport.h"

#include <gmock/gmock.h>

class GameFontTest : public FontFileTest {
protected:
    GameFontTest() { settings.GlyphHeight = 20; }

    // A glyph as high as the line, inked on `ink` rows from `top` on and on all columns but the last `clear`.
    MGlyph& AddInked(char16_t character, std::int32_t width, std::int32_t before, std::int32_t after,
                     std::int32_t top = 3, std::int32_t ink = 12, std::int32_t clear = 0) {
        MGlyph& glyph = AddGlyph(font, character, width, settings.GlyphHeight);
        glyph.SpacingBefore = before;
        glyph.SpacingAfter = after;
        for (std::int32_t y = top; y < top + ink; ++y) {
            for (std::int32_t x = 0; x < width - clear; ++x)
                glyph.SetPixel(x, y,
                               MColour(static_cast<std::uint8_t>(17 * x + character),
                                       static_cast<std::uint8_t>(11 * y), static_cast<std::uint8_t>(character),
                                       static_cast<std::uint8_t>(1 + (x * 37 + y * 91 + character) % 255)));
        }
        return glyph;
    }

    void AddFont() {
        AddInked(u'A', 9, 1, 2, 4, 12);
        AddInked(u'b', 14, -3, -6, 0, 20, 1);
        MGlyph& leftClear = AddInked(u'\u0416', 31, 0, -40, 2, 5);
        for (std::int32_t y = 0; y < 20; ++y)
            leftClear.SetPixel(0, y, MColour(0, 0, 0, 0));
        AddInked(u'\u20AC', 1, -9, 12, 19, 1);
        AddInked(u'\uFFFD', 7, 0, 0, 0, 1);
        font.SetKerning('A', 'b', -4);
        font.SetKerning('b', 0x20AC, 300);
        font.SetKerning(0x416, 'A', -130);
        font.Baseline = 5;
        font.CapHeight = 12;
        font.SpaceWidth = 11;
    }

    // What is written at NAME; the reason if it can't be.
    std::string Export(const char* name, const MGameFontOptions& options) {
        const MFontDescription description = DescribeFont(font, settings.GlyphHeight);
        const MGameFontPlan plan = PlanGameFont(description, options, GameFontName(folder.File(name)));
        return WriteGameFont(plan, folder.File(name), nullptr);
    }
};
