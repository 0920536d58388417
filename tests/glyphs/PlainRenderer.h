// The rules of plain glyphs in their plainest form, to hold the fast one against: a whole canvas of grey
// values, cleared for each character, drawn on by FreeType's own glyph bitmaps, and averaged pixel by pixel in
// floats.
#pragma once

#include "imaging/MColour.h"

#include <ft2build.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>
#include FT_FREETYPE_H
#include FT_BBOX_H
#include FT_TRUETYPE_TABLES_H

struct PlainGlyph {
    int before = 0;
    int width = 0;
    int after = 0;
    std::vector<MColour> pixels; // rows of `width`; none if there is no glyph
};

class PlainFace {
public:
    FT_Face face = nullptr;
    int ascent = 0;

    explicit PlainFace(const std::string& file) {
        FT_Init_FreeType(&library);
        FT_New_Face(library, file.c_str(), 0, &face);
    }
    PlainFace(const PlainFace&) = delete;
    PlainFace& operator=(const PlainFace&) = delete;
    ~PlainFace() { FT_Done_FreeType(library); }

    void SetHeight(int height) {
        const auto& os2 = *static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
        const double cell = os2.usWinAscent + os2.usWinDescent;
        const auto em = static_cast<FT_F26Dot6>(std::floor(height * 64.0 * face->units_per_EM / cell + 0.5));
        FT_Set_Char_Size(face, 0, em, 72, 72);
        ascent = static_cast<int>(std::floor(height * os2.usWinAscent / cell + 0.5));
    }
    void GetWidths(char16_t character, int& a, int& b, int& c) const {
        FT_Load_Char(face, character, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
        FT_BBox box;
        FT_Outline_Get_BBox(&face->glyph->outline, &box);
        a = static_cast<int>(std::floor(static_cast<double>(box.xMin) / 64));
        b = static_cast<int>(std::ceil(static_cast<double>(box.xMax) / 64)) - a;
        c = static_cast<int>(std::floor(static_cast<double>(face->glyph->linearHoriAdvance) / 65536 + 0.5)) -
            a - b;
    }

private:
    FT_Library library = nullptr;
};

class PlainRenderer {
public:
    int height;
    int canvasWidth;
    int canvasHeight;
    int fontHeight = 0;
    int verticalOffset = 0;
    MColour colour{10, 20, 30};

    // The face stands in `file`; `reference` too, or it is empty and the rows of the reference ink are given.
    PlainRenderer(const std::string& file, int glyphHeight, int referenceTop, int referenceBottom)
        : height(glyphHeight), canvasWidth((glyphHeight * 3 + 3) / 4 * 4), canvasHeight(canvasWidth * 3 / 2),
          face(file), canvas(static_cast<std::size_t>(canvasWidth) * static_cast<std::size_t>(canvasHeight)) {
        int top = -1, bottom = -1;
        face.SetHeight(height);
        MeasureRows(top, bottom);
        const auto extent = static_cast<float>(bottom - top + 1);
        const float ratio = static_cast<float>(referenceBottom - referenceTop + 1) / extent;
        fontHeight = static_cast<int>(static_cast<float>(height) * ratio);
        verticalOffset =
            static_cast<int>(static_cast<float>(referenceTop) - static_cast<float>(top) * ratio) * 2;
        face.SetHeight(fontHeight * 2);
    }

    PlainGlyph Render(char16_t character) {
        int a = 0, b = 0, c = 0;
        face.GetWidths(character, a, b, c);
        PlainGlyph glyph;
        glyph.before = static_cast<int>(std::ceil(static_cast<float>(a) / 2));
        glyph.width = static_cast<int>(std::ceil(static_cast<float>(b) / 2));
        glyph.after = static_cast<int>(std::ceil(static_cast<float>(c) / 2));
        if (glyph.width <= 1) return glyph;
        canvas.assign(canvas.size(), 0);
        DrawCharacter(character, -a, verticalOffset + face.ascent, 0);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < glyph.width; ++x)
                glyph.pixels.push_back(Box(x * 2, y * 2));
        return glyph;
    }

private:
    PlainFace face;
    std::vector<std::uint8_t> canvas;

    std::uint8_t& At(int x, int y) {
        return canvas[static_cast<std::size_t>(y % canvasHeight) * static_cast<std::size_t>(canvasWidth) +
                      static_cast<std::size_t>(x % canvasWidth)];
    }
    void DrawCharacter(char16_t character, int x, int baseline, int clipLeft) {
        FT_Load_Char(face.face, character, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP | FT_LOAD_RENDER);
        const FT_Bitmap& bitmap = face.face->glyph->bitmap;
        for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
            for (int column = 0; column < static_cast<int>(bitmap.width); ++column) {
                const int toX = x + face.face->glyph->bitmap_left + column;
                const int toY = baseline - face.face->glyph->bitmap_top + row;
                if (toX < clipLeft || toX >= canvasWidth || toY < 0 || toY >= canvasHeight) continue;
                const std::uint8_t value = bitmap.buffer[row * bitmap.pitch + column];
                if (value > At(toX, toY)) At(toX, toY) = value;
            }
        }
    }
    void MeasureRows(int& top, int& bottom) {
        canvas.assign(canvas.size(), 0);
        const int left = static_cast<int>(static_cast<float>(height) * 0.2F);
        int a = 0, b = 0, c = 0;
        face.GetWidths(u'I', a, b, c);
        DrawCharacter(u'I', left, face.ascent, left);
        DrawCharacter(u'j', left + a + b + c, face.ascent, left);
        for (int y = 0; y < canvasHeight; ++y) {
            for (int x = 0; x < canvasWidth; ++x) {
                if (At(x, y) == 0) continue;
                if (top < 0) top = y;
                bottom = y;
            }
        }
    }
    MColour Box(int x, int y) {
        float sum = 0;
        for (const int j : {0, 1})
            for (const int i : {0, 1})
                sum += static_cast<float>(At(x + i, y + j));
        return {colour.r, colour.g, colour.b, static_cast<std::uint8_t>(sum / 4.0F)};
    }
};
