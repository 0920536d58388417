// The tables of a font file, each as its bytes. The numbers after a table's name are those of OpenType 1.9.
#pragma once

#include "formats/webfont/MTableBytes.h"
#include "formats/webfont/MWebFont.h"

// The pictures of one strike as PNG files, one for each glyph; empty for a glyph without one.
using MStrikePngs = std::vector<std::vector<std::uint8_t>>;

MTableBytes HeadTable(const MWebFont& font);
MTableBytes HheaTable(const MWebFont& font);
MTableBytes MaxpTable(const MWebFont& font);
MTableBytes Os2Table(const MWebFont& font);
MTableBytes HmtxTable(const MWebFont& font);
MTableBytes PostTable(const MWebFont& font);
MTableBytes CmapTable(const MWebFont& font);
MTableBytes NameTable(const MWebFont& font);

struct MOutlineTables {
    MTableBytes Glyf;
    MTableBytes Loca; // offsets of 32 bits
};
MOutlineTables OutlineTables(const MWebFont& font);

// Only for a font with pairs.
MTableBytes GposTable(const MWebFont& font);

// `strikes` are those of the font, in its order. Both need a picture at least.
MTableBytes SbixTable(const MWebFont& font, std::span<const MStrikePngs> strikes);
// Of the pictures in the font's own height. Its documents are compressed each for itself if `compressed`.
MTableBytes SvgTable(const MWebFont& font, const MStrikePngs& pngs, bool compressed);

// What of a glyph's outline the tables have in common. All 0 without an outline.
struct MOutlineBox {
    std::int32_t XMin = 0;
    std::int32_t YMin = 0;
    std::int32_t XMax = 0;
    std::int32_t YMax = 0;
};
MOutlineBox BoxOf(const MOutline& outline);
