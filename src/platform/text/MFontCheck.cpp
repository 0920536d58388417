#include "platform/text/MFontCheck.h"

#include "platform/text/MOpenFace.h"
#include "platform/text/MTableView.h"

#include <ft2build.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <vector>
#include FT_FREETYPE_H

namespace {

constexpr std::uint64_t mostParts = 1000; // of a glyph, parts of parts included
constexpr int deepest = 32;
// A picture of a glyph, by the bytes that it has in the file.
constexpr std::uint64_t freePixels = std::uint64_t{1} << 18;
constexpr std::uint64_t pixelsPerByte = 32;
constexpr FT_Long mostFaces = 1024; // each is opened several times
// Of a file for the web, which is unpacked whenever it is opened; real ones have two to four times its size.
constexpr std::uint64_t freeBytes = std::uint64_t{32} << 20;
constexpr std::uint64_t bytesPerByte = 16;

// Glyphs that are made of others (OpenType 1.9, "glyf"), all of them without end where the file means harm.
class Composites {
public:
    explicit Composites(const MOpenFace& face)
        : glyf(face.Table("glyf")), loca(face.Table("loca")), head(face.Table("head")),
          counts(static_cast<std::size_t>(std::max<FT_Long>(face.face->num_glyphs, 0)), unknown) {
        longOffsets = MTableView(head).U16(50) != 0;
    }

    bool AreFew() {
        for (std::size_t glyph = 0; glyph < counts.size(); ++glyph)
            if (CountOf(glyph, 0) > mostParts) return false;
        return true;
    }

private:
    static constexpr std::uint64_t unknown = std::numeric_limits<std::uint64_t>::max();
    static constexpr std::uint64_t tooMany = mostParts + 1;

    std::vector<std::uint8_t> glyf;
    std::vector<std::uint8_t> loca;
    std::vector<std::uint8_t> head;
    std::vector<std::uint64_t> counts;
    bool longOffsets = false;

    std::size_t OffsetOf(std::size_t glyph) const {
        MTableView table(loca);
        return longOffsets ? table.U32(glyph * 4) : std::size_t{2} * table.U16(glyph * 2);
    }

    std::uint64_t CountOf(std::size_t glyph, int depth) {
        if (glyph >= counts.size()) return 0;
        // Parts that run in a circle are left to the library, which knows them.
        if (depth > deepest) return 0;
        std::uint64_t& count = counts[glyph];
        if (count == unknown) {
            count = 0;
            count = PartsOf(glyph, depth);
        }
        return count;
    }

    std::uint64_t PartsOf(std::size_t glyph, int depth) {
        const std::size_t start = OffsetOf(glyph);
        const std::size_t end = std::min(OffsetOf(glyph + 1), glyf.size());
        if (start >= end) return 0;
        MTableView outline(std::span<const std::uint8_t>(glyf).subspan(start, end - start));
        if (outline.S16(0) >= 0) return 0;
        constexpr std::uint32_t wordArguments = 0x1, oneScale = 0x8, more = 0x20, twoScales = 0x40,
                                matrix = 0x80;
        std::uint64_t count = 0;
        std::uint32_t flags = more;
        for (std::size_t at = 10; (flags & more) != 0 && !outline.broken && count <= mostParts;) {
            flags = outline.U16(at);
            count += 1 + CountOf(outline.U16(at + 2), depth + 1);
            at += 4 + ((flags & wordArguments) != 0 ? 4U : 2U);
            at += (flags & oneScale) != 0    ? 2U
                  : (flags & twoScales) != 0 ? 4U
                  : (flags & matrix) != 0    ? 8U
                                             : 0U;
        }
        return std::min(count, tooMany);
    }
};

// The pictures of the table sbix, by the headers of those that are PNG (ISO/IEC 15948, 11.2.2).
bool HaveSmallPictures(const MOpenFace& face) {
    const auto bytes = face.Table("sbix");
    MTableView table(bytes);
    const auto glyphs = static_cast<std::size_t>(std::max<FT_Long>(face.face->num_glyphs, 0));
    const std::size_t strikes = table.U32(4);
    for (std::size_t strike = 0; strike < strikes && !table.broken; ++strike) {
        const std::size_t start = table.U32(8 + strike * 4);
        MTableView offsets(bytes);
        for (std::size_t glyph = 0; glyph < glyphs && !offsets.broken; ++glyph) {
            const std::size_t place = start + offsets.U32(start + 4 + glyph * 4);
            const std::size_t end = start + offsets.U32(start + 8 + glyph * 4);
            MTableView picture(bytes);
            if (end <= place || picture.U32(place + 4) != 0x706E6720) continue; // "png "
            const std::uint64_t weight = picture.U8(place + 32) > 8 ? 2 : 1;    // of 16 bits
            const std::uint64_t pixels =
                std::uint64_t{picture.U32(place + 24)} * picture.U32(place + 28) / 8 * weight;
            if (!picture.broken && pixels > freePixels / 8 + (end - place) * pixelsPerByte / 8) return false;
        }
    }
    return true;
}

// Compressed documents of the table SVG, which the library unpacks anew for each glyph, by the size that their
// last four bytes tell (RFC 1952, 2.3.1).
bool UnpackToLittle(const MOpenFace& face) {
    constexpr std::uint64_t most = std::uint64_t{256} << 20;
    constexpr std::uint64_t mostForEachByte = 64;
    constexpr std::uint64_t glyphsOfAFont = 223; // of ours
    const auto bytes = face.Table("SVG ");
    MTableView table(bytes);
    const std::size_t list = table.U32(2);
    const std::size_t count = table.U16(list);
    std::uint64_t unpacked = 0;
    for (std::size_t i = 0; i < count && !table.broken; ++i) {
        const std::size_t record = list + 2 + i * 12;
        const std::uint64_t glyphs = table.U16(record + 2) - std::uint64_t{table.U16(record)} + 1;
        const std::size_t start = list + table.U32(record + 4);
        const std::size_t length = table.U32(record + 8);
        MTableView document(bytes);
        if (length < 18 || document.U16(start) != 0x1F8B) continue;
        std::uint64_t size = 0;
        for (std::size_t byte = 1; byte <= 4; ++byte)
            size = size << 8 | document.U8(start + length - byte);
        if (!document.broken) unpacked += size * std::min(glyphs, glyphsOfAFont);
    }
    return unpacked <= most + bytes.size() * mostForEachByte;
}

// By the first bytes alone.
std::string WhyWrongForm(const std::string& file) {
    std::array<std::uint8_t, 20> start{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(start.data()), start.size());
    MTableView view(start);
    const std::uint32_t signature = view.U32(0);
    // Bitmap fonts come packed as a whole, by gzip, compress or bzip2; none of them has outlines.
    if (signature >> 16 == 0x1F8B || signature >> 16 == 0x1F9D || signature >> 8 == 0x425A68)
        return "it is packed";
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(file, error);
    // "wOFF" and "wOF2", in which the size of all tables has one place.
    if ((signature == 0x774F4646 || signature == 0x774F4632) && !error &&
        view.U32(16) > freeBytes + size * bytesPerByte)
        return "it unpacks to " + std::to_string(view.U32(16)) + " bytes, which is more than a font needs";
    return {};
}

} // namespace

std::string WhyUnsafe(const std::string& file) {
    if (std::string why = WhyWrongForm(file); !why.empty()) return why;
    MFontMatch match;
    match.file = file;
    FT_Long faces = 1;
    for (FT_Long index = 0; index < faces; ++index) {
        match.index = static_cast<std::int32_t>(index);
        const MOpenFace face(match);
        if (!face.face) continue;
        faces = face.face->num_faces;
        if (faces > mostFaces) return "it has " + std::to_string(faces) + " faces";
        if (!Composites(face).AreFew()) return "its glyphs are made of too many others";
        if (!UnpackToLittle(face)) return "its drawings unpack to more than a glyph could need";
        if (!HaveSmallPictures(face)) return "it has pictures that are larger than a glyph could need";
    }
    return {};
}
