// The rules of plain glyphs in their plainest form, to hold the fast one against: a whole canvas of grey
// values, cleared for each character, drawn on by FreeType's own glyph bitmaps, and averaged pixel by pixel.
#pragma once

#include "imaging/MColour.h"

#include <ft2build.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>
#include FT_FREETYPE_H
#include FT_BBOX_H
#include FT_TRUETYPE_TABLES_H

struct PlainGlyph {
    int before = 0, width = 0, after = 0;
    std::vector<MColour> pixels; // rows of `width`; none if there is no glyph
};

class PlainRenderer {
public:
    int canvasWidth, canvasHeight;

    // By the rows of the reference ink.
    PlainRenderer(const std::string& file, int glyphHeight, int referenceTop, int referenceBottom)
        : canvasWidth((glyphHeight * 3 + 3) / 4 * 4), canvasHeight(canvasWidth * 3 / 2), height(glyphHeight) {
        FT_Init_FreeType(&library);
        FT_New_Face(library, file.c_str(), 0, &face);
        int top = -1, bottom = -1;
        SetHeight(height);
        MeasureRows(top, bottom);
        const float ratio =
            static_cast<float>(referenceBottom - referenceTop + 1) / static_cast<float>(bottom - top + 1);
        verticalOffset =
            static_cast<int>(static_cast<float>(referenceTop) - static_cast<float>(top) * ratio) * 2;
        SetHeight(static_cast<int>(static_cast<float>(height) * ratio) * 2);
    }
    PlainRenderer(const PlainRenderer&) = delete;
    PlainRenderer& operator=(const PlainRenderer&) = delete;
    ~PlainRenderer() { FT_Done_FreeType(library); }

    PlainGlyph Render(char16_t character) {
        const Widths widths = WidthsOf(character);
        const auto halved = [](int full) { return static_cast<int>(std::ceil(static_cast<float>(full) / 2)); };
        PlainGlyph glyph{halved(widths.a), halved(widths.b), halved(widths.c), {}};
        if (glyph.width <= 1) return glyph;
        Clear();
        DrawCharacter(character, -widths.a, verticalOffset + ascent, 0);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < glyph.width; ++x)
                glyph.pixels.push_back(Box(x * 2, y * 2));
        return glyph;
    }

private:
    struct Widths {
        int a, b, c;
    };
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    int height, ascent = 0, verticalOffset = 0;
    std::vector<std::uint8_t> canvas;

    void SetHeight(int pixels) {
        const auto& os2 = *static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
        const double cell = os2.usWinAscent + os2.usWinDescent;
        const auto em = static_cast<FT_F26Dot6>(std::floor(pixels * 64.0 * face->units_per_EM / cell + 0.5));
        FT_Set_Char_Size(face, 0, em, 72, 72);
        ascent = static_cast<int>(std::floor(pixels * os2.usWinAscent / cell + 0.5));
    }
    Widths WidthsOf(char16_t character) const {
        FT_Load_Char(face, character, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
        FT_BBox box;
        FT_Outline_Get_BBox(&face->glyph->outline, &box);
        const int a = static_cast<int>(std::floor(static_cast<double>(box.xMin) / 64));
        const int b = static_cast<int>(std::ceil(static_cast<double>(box.xMax) / 64)) - a;
        const double advance = static_cast<double>(face->glyph->linearHoriAdvance) / 65536;
        return {a, b, static_cast<int>(std::floor(advance + 0.5)) - a - b};
    }
    void Clear() {
        canvas.assign(static_cast<std::size_t>(canvasWidth) * static_cast<std::size_t>(canvasHeight), 0);
    }
    std::uint8_t& At(int x, int y) {
        return canvas[static_cast<std::size_t>(y % canvasHeight) * static_cast<std::size_t>(canvasWidth) +
                      static_cast<std::size_t>(x % canvasWidth)];
    }
    void DrawCharacter(char16_t character, int x, int baseline, int clipLeft) {
        FT_Load_Char(face, character, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP | FT_LOAD_RENDER);
        const FT_Bitmap& bitmap = face->glyph->bitmap;
        for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
            for (int column = 0; column < static_cast<int>(bitmap.width); ++column) {
                const int toX = x + face->glyph->bitmap_left + column;
                const int toY = baseline - face->glyph->bitmap_top + row;
                if (toX < clipLeft || toX >= canvasWidth || toY < 0 || toY >= canvasHeight) continue;
                std::uint8_t& to = At(toX, toY);
                to = std::max(to, bitmap.buffer[row * bitmap.pitch + column]);
            }
        }
    }
    void MeasureRows(int& top, int& bottom) {
        Clear();
        const int left = static_cast<int>(static_cast<float>(height) * 0.2F);
        const Widths widths = WidthsOf(u'I');
        DrawCharacter(u'I', left, ascent, left);
        DrawCharacter(u'j', left + widths.a + widths.b + widths.c, ascent, left);
        for (int y = 0; y < canvasHeight; ++y) {
            for (int x = 0; x < canvasWidth; ++x) {
                if (At(x, y) == 0) continue;
                if (top < 0) top = y;
                bottom = y;
            }
        }
    }
    MColour Box(int x, int y) {
        const int sum = At(x, y) + At(x + 1, y) + At(x, y + 1) + At(x + 1, y + 1);
        return {10, 20, 30, static_cast<std::uint8_t>(sum / 4)}; // the colour of the settings
    }
};
