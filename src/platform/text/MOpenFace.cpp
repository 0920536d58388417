#include "platform/text/MOpenFace.h"

#include "foundation/MMemory.h"
#include "foundation/MNumbers.h"

#include <ft2build.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <vector>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include FT_MULTIPLE_MASTERS_H
#include FT_TRUETYPE_TABLES_H

namespace {

// fontconfig's mark for a variable face as a whole, in the bits of the named instance.
constexpr std::int32_t wholeVariableFace = 0x8000;

FT_Long FreeTypeIndex(std::int32_t index) {
    const std::int32_t instance = (index >> 16) & 0xFFFF;
    return instance == wholeVariableFace ? index & 0xFFFF : index & 0x7FFFFFFF;
}

FT_ULong ToTag(std::string_view name) {
    FT_ULong tag = 0;
    for (const char letter : name)
        tag = tag << 8 | static_cast<unsigned char>(letter);
    return tag;
}

} // namespace

FT_LibraryRec_* FreeTypeLibrary() {
    static const FT_Library library = [] {
        FT_Library fresh = nullptr;
        return FT_Init_FreeType(&fresh) == 0 ? fresh : nullptr;
    }();
    return library;
}

MOpenFace::MOpenFace(const MFontMatch& fontMatch) : match(fontMatch) {
    FT_Library const library = FreeTypeLibrary();
    if (!library || FT_New_Face(library, match.file.c_str(), FreeTypeIndex(match.index), &face) != 0) {
        face = nullptr;
        return;
    }
    ApplyVariations();
    ReadCell();
}

MOpenFace::~MOpenFace() {
    if (face) FT_Done_Face(face);
}

// Axes that are not named keep the coordinates that they have, those of the named instance included.
void MOpenFace::ApplyVariations() {
    if (match.variations.empty()) return;
    FT_MM_Var* axes = nullptr;
    if (FT_Get_MM_Var(face, &axes) != 0) return;
    std::vector<FT_Fixed> coordinates(axes->num_axis);
    FT_Get_Var_Design_Coordinates(face, axes->num_axis, coordinates.data());
    std::string_view settings = match.variations;
    while (!settings.empty()) {
        const std::string_view setting = settings.substr(0, settings.find(','));
        settings.remove_prefix(std::min(settings.size(), setting.size() + 1));
        const std::size_t equals = setting.find('=');
        if (equals == std::string_view::npos) continue;
        const std::string_view text = setting.substr(equals + 1);
        double value = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) continue;
        for (FT_UInt axis = 0; axis < axes->num_axis; ++axis) {
            if (ToTag(setting.substr(0, equals)) == axes->axis[axis].tag)
                coordinates[axis] = ToInteger(value * 65536);
        }
    }
    FT_Set_Var_Design_Coordinates(face, axes->num_axis, coordinates.data());
    FT_Done_MM_Var(face->glyph->library, axes);
}

void MOpenFace::ReadCell() {
    unitsPerEm = face->units_per_EM;
    // FreeType leaves it out for a face that has bitmaps.
    const auto* const head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    if (unitsPerEm <= 0 && head) unitsPerEm = head->Units_Per_EM;
    if (unitsPerEm <= 0) unitsPerEm = 1000;
    // Bitmaps of the table sbix hide the outlines beside them until it is told to show both.
    if (FT_HAS_SBIX(face)) {
        face->units_per_EM = static_cast<FT_UShort>(unitsPerEm);
        face->face_flags |= FT_FACE_FLAG_SCALABLE;
    }
    if (const auto* const os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2))) {
        cellAscent = os2->usWinAscent;
        cellDescent = os2->usWinDescent;
    }
    if (cellAscent + cellDescent <= 0) {
        cellAscent = face->ascender;
        cellDescent = -face->descender;
    }
    if (cellAscent + cellDescent <= 0) {
        cellAscent = static_cast<std::int32_t>(face->bbox.yMax);
        cellDescent = static_cast<std::int32_t>(-face->bbox.yMin);
    }
    if (cellAscent + cellDescent <= 0) {
        cellAscent = unitsPerEm;
        cellDescent = 0;
    }
}

std::int32_t MOpenFace::Advance(std::uint32_t glyph) const {
    FT_Fixed advance = 0;
    if (!face || FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance) != 0) return 0;
    return static_cast<std::int32_t>(std::clamp<FT_Fixed>(advance, 0, INT16_MAX * 2));
}

bool MOpenFace::HasTable(const char (&tag)[5]) const {
    FT_ULong length = 0;
    return face && FT_IS_SFNT(face) && FT_Load_Sfnt_Table(face, ToTag(tag), 0, nullptr, &length) == 0 &&
           length > 0;
}

std::vector<std::uint8_t> MOpenFace::Table(const char (&tag)[5]) const {
    FT_ULong length = 0;
    if (!face || !FT_IS_SFNT(face) || FT_Load_Sfnt_Table(face, ToTag(tag), 0, nullptr, &length) != 0) return {};
    // A compressed file's tables may be longer than the file, but not without end.
    if (length == 0 || length > MemoryLimit() / 16) return {};
    std::vector<std::uint8_t> bytes(length);
    if (FT_Load_Sfnt_Table(face, ToTag(tag), 0, bytes.data(), &length) != 0) return {};
    return bytes;
}

std::uint32_t MOpenFace::GlyphIndex(char32_t character) const {
    if (!face || !face->charmap) {
        if (!face || FT_Select_Charmap(face, FT_ENCODING_MS_SYMBOL) != 0) return 0;
    }
    const std::uint32_t index = FT_Get_Char_Index(face, character);
    if (index != 0 || face->charmap->encoding != FT_ENCODING_MS_SYMBOL || character > 0xFF) return index;
    return FT_Get_Char_Index(face, 0xF000 + character);
}
