#include "platform/text/MOpenFace.h"

#include "foundation/MMemory.h"
#include "foundation/MNumbers.h"
#include "platform/text/MTableView.h"

#include <ft2build.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
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

std::vector<std::uint8_t> ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// In each directory of a font file or a collection: a record of 16 bytes for each table, its name first
// (OpenType 1.9, "Organization of an OpenType font"); of 20 bytes in a WOFF file.
void HideTable(std::vector<std::uint8_t>& file, const char (&name)[5]) {
    MTableView view(file);
    std::vector<std::size_t> directories;
    if (view.U32(0) == ToTag("ttcf")) {
        for (std::size_t i = 0; i < view.U32(8) && !view.broken; ++i)
            directories.push_back(view.U32(12 + i * 4));
    } else {
        directories.push_back(0);
    }
    const bool woff = view.U32(0) == ToTag("wOFF");
    for (const std::size_t directory : directories) {
        const std::size_t count = view.U16(directory + (woff ? 12 : 4));
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t record = woff ? 44 + i * 20 : directory + 12 + i * 16;
            if (view.U32(record) == ToTag(name) && !view.broken) file[record] = 'x';
        }
    }
}

// Apple's published mapping of the codes from 128 on; those below are ASCII.
constexpr std::u16string_view macintoshRoman =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9\u00E8"
    u"\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC"
    u"\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"
    u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA\u00BA\u03A9\u00E6\u00F8"
    u"\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153"
    u"\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"
    u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4"
    u"\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";
static_assert(macintoshRoman.size() == 128);

// 0 for a character that has none.
FT_ULong MacintoshCode(char32_t character) {
    if (character < 128) return character;
    if (character > 0xFFFF) return 0;
    const std::size_t place = macintoshRoman.find(static_cast<char16_t>(character));
    return place == std::u16string_view::npos ? 0 : 128 + place;
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
    bitmaps = face;
    OpenOutlines();
    ApplyVariations();
    ReadCell();
}

MOpenFace::~MOpenFace() {
    if (bitmaps && bitmaps != face) FT_Done_Face(bitmaps);
    if (face) FT_Done_Face(face);
}

// FreeType takes a face with the table CBLC for one of bitmaps alone. It finds outlines beside them in a copy
// of the file in which that table has another name.
void MOpenFace::OpenOutlines() {
    if (FT_IS_SCALABLE(face) || !HasTable("CBLC") ||
        !(HasTable("glyf") || HasTable("CFF ") || HasTable("CFF2")))
        return;
    withoutBitmaps = ReadFile(match.file);
    HideTable(withoutBitmaps, "CBLC");
    FT_Face outlines = nullptr;
    if (FT_New_Memory_Face(FreeTypeLibrary(), withoutBitmaps.data(),
                           static_cast<FT_Long>(withoutBitmaps.size()), FreeTypeIndex(match.index),
                           &outlines) == 0) {
        face = outlines;
    }
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
        if (!face || (FT_Select_Charmap(face, FT_ENCODING_MS_SYMBOL) != 0 &&
                      FT_Select_Charmap(face, FT_ENCODING_APPLE_ROMAN) != 0)) {
            return 0;
        }
    }
    if (face->charmap->encoding == FT_ENCODING_APPLE_ROMAN) {
        const FT_ULong code = MacintoshCode(character);
        return code == 0 ? 0 : FT_Get_Char_Index(face, code);
    }
    const std::uint32_t index = FT_Get_Char_Index(face, character);
    if (index != 0 || face->charmap->encoding != FT_ENCODING_MS_SYMBOL || character > 0xFF) return index;
    return FT_Get_Char_Index(face, 0xF000 + character);
}
