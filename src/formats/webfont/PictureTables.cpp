// sbix and SVG: the same PNG files in the two tables that between them all browsers draw.
#include "formats/webfont/Tables.h"

#include <glib.h>
#include <zlib.h>

#include <memory>
#include <string>

namespace {

void AddStrike(MTableBytes& table, std::int32_t height, const MStrikePngs& pngs) {
    constexpr std::int64_t dotsPerInch = 72;
    const std::size_t start = table.Size();
    table.U16(height);
    table.U16(dotsPerInch);
    const std::size_t offsets = table.Size();
    table.Zeros(4 * (pngs.size() + 1));
    for (std::size_t i = 0; i < pngs.size(); ++i) {
        table.PutU32(offsets + 4 * i, static_cast<std::uint32_t>(table.Size() - start));
        if (pngs[i].empty()) continue;
        table.U32(0); // from the lower left corner of the outline's box, which is the picture's own
        table.Tag("png ");
        table.Append(pngs[i]);
    }
    table.PutU32(offsets + 4 * pngs.size(), static_cast<std::uint32_t>(table.Size() - start));
}

std::string Base64(std::span<const std::uint8_t> bytes) {
    const std::unique_ptr<gchar, void (*)(gpointer)> text(g_base64_encode(bytes.data(), bytes.size()), g_free);
    return text.get();
}

// One unit is a font unit, y downwards from the baseline.
std::string DocumentOf(const MWebFont& font, std::size_t glyph, std::span<const std::uint8_t> png) {
    const MGlyphBox& box = font.Glyphs[glyph].Box;
    const auto length = [&](const char* name, std::int32_t pixels) {
        return std::string(" ") + name + "=\"" + std::to_string(pixels * font.Scale) + "\"";
    };
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"><g "
           "id=\"glyph" +
           std::to_string(glyph) + "\"><image preserveAspectRatio=\"none\"" + length("x", box.Left) +
           length("y", -(box.Bottom + box.Height)) + length("width", box.Width) + length("height", box.Height) +
           " xlink:href=\"data:image/png;base64," + Base64(png) + "\"/></g></svg>";
}

// Makes gzip files, one after another in the same memory. There is nothing to find again in the base64 text of
// a PNG, but six bits in each character.
class Compressor {
public:
    Compressor() {
        constexpr int smallGzipWindow = 12 + 16;
        constexpr int memoryLevel = 8;
        if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, smallGzipWindow, memoryLevel,
                         Z_HUFFMAN_ONLY) != Z_OK)
            throw std::bad_alloc();
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { deflateEnd(&stream); }

    void Append(MTableBytes& table, const std::string& text) {
        deflateReset(&stream);
        const std::size_t start = table.Size();
        table.Zeros(deflateBound(&stream, text.size()));
        stream.next_in = reinterpret_cast<z_const Bytef*>(const_cast<char*>(text.data()));
        stream.avail_in = static_cast<uInt>(text.size());
        stream.next_out = table.Bytes.data() + start;
        stream.avail_out = static_cast<uInt>(table.Size() - start);
        deflate(&stream, Z_FINISH); // the bound is enough for all of it
        table.Bytes.resize(start + stream.total_out);
    }

private:
    z_stream stream{};
};

} // namespace

MTableBytes SbixTable(const MWebFont& font, std::span<const MStrikePngs> strikes) {
    MTableBytes table;
    table.U16(1);
    table.U16(1); // outlines are not drawn over the pictures
    table.U32(static_cast<std::int64_t>(strikes.size()));
    const std::size_t offsets = table.Size();
    table.Zeros(4 * strikes.size());
    for (std::size_t i = 0; i < strikes.size(); ++i) {
        table.AlignTo(4);
        table.PutU32(offsets + 4 * i, table.Size());
        AddStrike(table, font.Strikes[i], strikes[i]);
    }
    return table;
}

MTableBytes SvgTable(const MWebFont& font, const MStrikePngs& pngs, bool compressed) {
    constexpr std::int64_t listPlace = 10;
    constexpr std::size_t recordSize = 12;
    std::vector<std::size_t> drawn;
    for (std::size_t i = 0; i < pngs.size(); ++i) {
        if (!pngs[i].empty()) drawn.push_back(i);
    }
    MTableBytes table;
    table.U16(0);
    table.U32(listPlace);
    table.U32(0);
    table.U16(static_cast<std::int64_t>(drawn.size()));
    std::size_t record = table.Size();
    table.Zeros(recordSize * drawn.size());
    Compressor compressor;
    for (const std::size_t glyph : drawn) {
        const std::uint32_t place = table.Size();
        const std::string document = DocumentOf(font, glyph, pngs[glyph]);
        if (compressed)
            compressor.Append(table, document);
        else
            table.Tag(document);
        table.PutU32(record, static_cast<std::uint32_t>(glyph << 16 | glyph));
        table.PutU32(record + 4, place - static_cast<std::uint32_t>(listPlace));
        table.PutU32(record + 8, table.Size() - place);
        record += recordSize;
    }
    return table;
}
