// The OpenType table SVG: glyphs as elements of SVG documents, which may be compressed and may each serve many
// glyphs. Nothing outside the document is ever read for it, and no document can end or hold up the program:
// they are drawn by a process of their own (MSvgRenderer.h). A glyph that is lost there is empty.
#pragma once

#include "imaging/MColour.h"
#include "platform/text/MSvgRenderer.h"
#include "platform/text/MTableView.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

struct _cairo;

class MSvgGlyphs {
public:
    static constexpr std::size_t maximumDocument = 32 << 20; // bytes, decompressed
    // Of all compressed documents, and for each byte of the table.
    static constexpr std::size_t maximumUnpacked = 4 << 20;
    static constexpr std::size_t maximumRatio = 16;
    static constexpr std::size_t maximumElements = 250'000; // tags in a document

    MSvgGlyphs() = default;
    // The tables SVG and CPAL; palette 0 stands for the variables --color0, --color1 and so on.
    MSvgGlyphs(std::vector<std::uint8_t> svgTable, std::vector<std::uint8_t> cpalTable);
    MSvgGlyphs(const MSvgGlyphs&) = delete;
    MSvgGlyphs& operator=(const MSvgGlyphs&) = delete;

    bool IsEmpty() const { return svg.empty(); }
    // True if a document says that it serves the glyph and has an element for it, and for a lost one, which is
    // told to LostGlyphs once.
    bool Has(std::uint16_t glyph);
    // In coordinates whose unit is the font's, with y downwards and the origin on the baseline. `foreground` is
    // the document's currentColor. False, with nothing painted, if Has is. A lost glyph paints nothing.
    bool Draw(_cairo* context, std::uint16_t glyph, std::int32_t unitsPerEm, MColour foreground);

private:
    struct Place {
        std::size_t offset = 0;
        std::size_t length = 0;
    };

    std::vector<std::uint8_t> svg;
    std::vector<std::uint8_t> cpal;
    std::map<std::size_t, std::optional<std::string>> documents; // by offset; none for one that is refused
    std::size_t unpacked = 0;                                    // bytes, of all documents that were compressed
    std::set<std::uint16_t> lost;
    MSvgRenderer renderer;

    Place Find(std::uint16_t glyph) const;
    std::optional<std::string> Unpack(std::span<const std::uint8_t> bytes);
    const std::string* Open(const Place& place); // null if there is none that can be read
    bool Ask(const SvgWire::Request& request, MSvgRenderer::Image& image);
};

// The document's text with palette entries in place of var(--colorN, ...), or with what stands after the comma
// where there is no such entry. Anything else stays as it is.
std::string WithPalette(std::string_view document, const std::vector<std::uint8_t>& cpalTable);
