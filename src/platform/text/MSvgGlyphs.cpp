#include "platform/text/MSvgGlyphs.h"

#include "foundation/MDebug.h"
#include "foundation/MNumbers.h"
#include "platform/text/MColourTable.h"
#include "platform/text/MDrawingCredit.h"

#include <cairo.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace {

constexpr std::string_view variable = "var(--color";
constexpr double largestSide = 16384; // pixels of an image to draw on

std::optional<std::string> Inflate(std::span<const std::uint8_t> bytes, std::size_t most) {
    z_stream stream{};
    constexpr int gzipOrZlib = 32;
    if (inflateInit2(&stream, MAX_WBITS + gzipOrZlib) != Z_OK) return std::nullopt;
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::string text;
    std::array<char, 65536> piece;
    int result = Z_OK;
    while (result == Z_OK && text.size() <= most) {
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = piece.size();
        result = inflate(&stream, Z_NO_FLUSH);
        text.append(piece.data(), piece.size() - stream.avail_out);
    }
    inflateEnd(&stream);
    if (result != Z_STREAM_END || text.size() > most) return std::nullopt;
    return text;
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

// As much of it as all documents together may still have.
std::optional<std::string> MSvgGlyphs::Unpack(std::span<const std::uint8_t> bytes) {
    const std::size_t all = maximumUnpacked + svg.size() * maximumRatio;
    const std::size_t most = std::min(maximumDocument, all - std::min(all, unpacked));
    auto text = Inflate(bytes, most);
    unpacked += text ? text->size() : most; // also what came to nothing
    return text;
}

const std::string* MSvgGlyphs::Open(const Place& place) {
    if (place.length == 0) return nullptr;
    if (const auto known = documents.find(place.offset); known != documents.end())
        return known->second ? &*known->second : nullptr;
    std::optional<std::string>& document = documents[place.offset];

    const auto bytes = std::span(svg).subspan(place.offset, place.length);
    const bool compressed = bytes.size() > 2 && bytes[0] == 0x1F && bytes[1] == 0x8B;
    std::optional<std::string> text =
        compressed ? Unpack(bytes) : std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!text || text->empty() || text->size() > maximumDocument) return nullptr;
    if (static_cast<std::size_t>(std::ranges::count(*text, '<')) > maximumElements) return nullptr;
    document = WithPalette(*text, cpal);
    return &*document;
}

bool MSvgGlyphs::Ask(const SvgWire::Request& request, MSvgRenderer::Image& image) {
    const auto glyph = static_cast<std::uint16_t>(request.glyph);
    if (lost.contains(glyph)) return true;
    const Place place = Find(glyph);
    const std::string* const text = Open(place);
    if (!text) return false;
    const auto result = renderer.Ask(request, place.offset, *text, image);
    if (result != MSvgRenderer::Result::Lost) return result == MSvgRenderer::Result::Done;
    image = {};
    lost.insert(glyph);
    LostGlyphs::Add();
    DebugOutput(u"An SVG glyph could not be drawn within its time and memory\n");
    return true;
}

bool MSvgGlyphs::Has(std::uint16_t glyph) {
    if (IsEmpty()) return false;
    MSvgRenderer::Image none;
    return Ask({.task = SvgWire::Task::HasElement, .glyph = glyph}, none);
}

bool MSvgGlyphs::Draw(cairo_t* context, std::uint16_t glyph, std::int32_t unitsPerEm, MColour foreground) {
    if (IsEmpty()) return false;
    SvgWire::Request request{.task = SvgWire::Task::Draw,
                             .glyph = glyph,
                             .viewport = static_cast<double>(unitsPerEm),
                             .foreground = {foreground.r, foreground.g, foreground.b, foreground.a}};
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    cairo_save(context);
    cairo_identity_matrix(context);
    double left = 0, top = 0, right = 0, bottom = 0;
    cairo_clip_extents(context, &left, &top, &right, &bottom);
    left = std::floor(left);
    top = std::floor(top);
    request.width = ToInteger(std::clamp(std::ceil(right) - left, 0.0, largestSide));
    request.height = ToInteger(std::clamp(std::ceil(bottom) - top, 0.0, largestSide));
    std::ranges::copy(std::array{matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0 - left, matrix.y0 - top},
                      request.matrix);
    MSvgRenderer::Image image;
    const bool drawn = Ask(request, image);
    if (!image.pixels.empty()) {
        cairo_surface_t* const surface = cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(image.pixels.data()), CAIRO_FORMAT_ARGB32, image.place.width,
            image.place.height, image.place.width * static_cast<int>(sizeof(std::uint32_t)));
        cairo_set_source_surface(context, surface, left + image.place.x, top + image.place.y);
        cairo_paint(context);
        cairo_surface_destroy(surface);
    }
    cairo_restore(context);
    return drawn;
}
