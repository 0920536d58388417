// A font file as FreeType alone opens it.
#pragma once

#include <ft2build.h>

#include <string>
#include FT_FREETYPE_H
#include FT_BBOX_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

class RawFace {
public:
    FT_Face face = nullptr;

    explicit RawFace(const std::string& file) {
        FT_Init_FreeType(&library);
        FT_New_Face(library, file.c_str(), 0, &face);
    }
    RawFace(const RawFace&) = delete;
    RawFace& operator=(const RawFace&) = delete;
    ~RawFace() { FT_Done_FreeType(library); }

    // Font units above the baseline, and of the whole cell.
    double Ascent() const {
        return static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2))->usWinAscent;
    }
    double Cell() const {
        return Ascent() + static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2))->usWinDescent;
    }

private:
    FT_Library library = nullptr;
};
