#include "platform/text/MSvgGlyphs.h"

#include "platform/text/MColourTable.h"

#include <librsvg/rsvg.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace {

constexpr std::string_view variable = "var(--color";

std::optional<std::string> Inflate(std::span<const std::uint8_t> bytes) {
    z_stream stream{};
    constexpr int gzipOrZlib = 32;
    if (inflateInit2(&stream, MAX_WBITS + gzipOrZlib) != Z_OK) return std::nullopt;
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::string text;
    std::array<char, 65536> piece;
    int result = Z_OK;
    while (result == Z_OK && text.size() <= MSvgGlyphs::maximumDocument) {
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = piece.size();
        result = inflate(&stream, Z_NO_FLUSH);
        text.append(piece.data(), piece.size() - stream.avail_out);
    }
    inflateEnd(&stream);
    if (result != Z_STREAM_END || text.size() > MSvgGlyphs::maximumDocument) return std::nullopt;
    return text;
}

std::string IdOf(std::uint16_t glyph) {
    return "#glyph" + std::to_string(glyph);
}

std::string CssColour(MColour colour) {
    const auto part = [](auto value) { return std::to_string(value); };
    return "rgba(" + part(colour.r) + "," + part(colour.g) + "," + part(colour.b) + "," +
           part(colour.a / 255.0) + ")";
}

// The length of a bracketed text up to and with the bracket that closes it, or 0.
std::size_t Bracketed(std::string_view text) {
    int depth = 0;
    for (std::size_t i = 0; i < text.size() && i < 4096; ++i) {
        if (text[i] == '(') ++depth;
        if (text[i] == ')' && --depth == 0) return i + 1;
    }
    return 0;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

} // namespace

std::string WithPalette(std::string_view document, const std::vector<std::uint8_t>& cpalTable) {
    std::string result;
    result.reserve(document.size());
    while (!document.empty()) {
        const std::size_t at = document.find(variable);
        result.append(document.substr(0, at));
        if (at == std::string_view::npos) break;
        document.remove_prefix(at);
        const std::size_t length = Bracketed(document);
        std::string_view inside =
            document.substr(variable.size(), length > 0 ? length - variable.size() - 1 : 0);
        std::size_t entry = 0;
        const auto [end, error] = std::from_chars(inside.data(), inside.data() + inside.size(), entry);
        if (length == 0 || error != std::errc()) {
            result.append(document.substr(0, variable.size()));
            document.remove_prefix(variable.size());
            continue;
        }
        inside.remove_prefix(static_cast<std::size_t>(end - inside.data()));
        const std::size_t comma = inside.find(',');
        if (const auto colour = PaletteColour(cpalTable, entry)) {
            result.append(CssColour(*colour));
        } else if (comma != std::string_view::npos) {
            result.append(Trimmed(inside.substr(comma + 1)));
        } else {
            result.append("currentColor");
        }
        document.remove_prefix(length);
    }
    return result;
}

MSvgGlyphs::MSvgGlyphs(std::vector<std::uint8_t> svgTable, std::vector<std::uint8_t> cpalTable)
    : svg(std::move(svgTable)), cpal(std::move(cpalTable)) {}

MSvgGlyphs::~MSvgGlyphs() {
    for (const auto& [offset, document] : documents)
        if (document.handle) g_object_unref(document.handle);
}

// OpenType 1.9, chapter "SVG": a header, then the list of documents, sorted by glyph.
MSvgGlyphs::Place MSvgGlyphs::Find(std::uint16_t glyph) const {
    MTableView table(svg);
    const std::size_t list = table.U32(2);
    const std::size_t record = FindRecord(table, list + 2, table.U16(list), 12, glyph, 2);
    if (record == noRecord) return {};
    const Place place{list + table.U32(record + 4), table.U32(record + 8)};
    if (table.broken || place.offset > svg.size() || svg.size() - place.offset < place.length) return {};
    return place;
}

MSvgGlyphs::Document* MSvgGlyphs::Open(std::uint16_t glyph) {
    const Place place = Find(glyph);
    if (place.length == 0) return nullptr;
    if (const auto known = documents.find(place.offset); known != documents.end())
        return known->second.handle ? &known->second : nullptr;
    Document& document = documents[place.offset];

    const auto bytes = std::span(svg).subspan(place.offset, place.length);
    const bool compressed = bytes.size() > 2 && bytes[0] == 0x1F && bytes[1] == 0x8B;
    std::optional<std::string> text =
        compressed ? Inflate(bytes) : std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!text || text->size() > maximumDocument) return nullptr;
    if (static_cast<std::size_t>(std::ranges::count(*text, '<')) > maximumElements) return nullptr;
    const std::string content = WithPalette(*text, cpal);
    // Without a base, no reference that leaves the document is followed.
    document.handle =
        rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(content.data()), content.size(), nullptr);
    return document.handle ? &document : nullptr;
}

bool MSvgGlyphs::Has(std::uint16_t glyph) {
    if (IsEmpty()) return false;
    const Document* const document = Open(glyph);
    return document && rsvg_handle_has_sub(document->handle, IdOf(glyph).c_str());
}

bool MSvgGlyphs::Draw(cairo_t* context, std::uint16_t glyph, std::int32_t unitsPerEm, MColour foreground) {
    if (!Has(glyph)) return false;
    Document& document = *Open(glyph);
    // A style makes librsvg go through the whole document.
    if (!document.coloured || !(document.foreground == foreground)) {
        const std::string style = "svg{color:" + CssColour(foreground) + "}";
        rsvg_handle_set_stylesheet(document.handle, reinterpret_cast<const guint8*>(style.data()), style.size(),
                                   nullptr);
        document.coloured = true;
        document.foreground = foreground;
    }
    const RsvgRectangle viewport{0, 0, static_cast<double>(unitsPerEm), static_cast<double>(unitsPerEm)};
    cairo_save(context);
    const bool drawn =
        rsvg_handle_render_layer(document.handle, context, IdOf(glyph).c_str(), &viewport, nullptr);
    cairo_restore(context);
    return drawn;
}
