#include "bombs/Bombs.h"
#include "platform_text/PaintBuilder.h"

namespace bombs {

namespace {

using fonts::Bytes;
using fonts::ColourTables;
using fonts::Font;

constexpr int codes = 223;

// Glyphs 1 to 223 are the characters from 33 on, each a box.
Font AllGlyphs() {
    Font font;
    for (int i = 0; i < codes; ++i)
        font.Add({{fonts::Box(0, -200, 1000, 800)}}, static_cast<char16_t>(33 + i));
    return font;
}

// A document for each glyph, or one for all where `documents` is it alone.
std::string Svg(const std::vector<std::string>& documents) {
    Font font = AllGlyphs();
    font.tables["SVG "] = fonts::SvgTable(documents, 1, codes);
    return font.Build();
}

std::string Document(int glyph, const std::string& definitions, const std::string& content) {
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink'>" + definitions +
           "<g id='glyph" + std::to_string(glyph) + "'>" + content + "</g></svg>";
}

std::string SvgOfEach(const std::string& definitions, const std::string& content) {
    std::vector<std::string> documents;
    for (int glyph = 1; glyph <= codes; ++glyph)
        documents.push_back(Document(glyph, definitions, content));
    return Svg(documents);
}

std::string Noisy(int octaves) {
    return "<filter id='f' x='0' y='0' width='1' height='1'><feTurbulence baseFrequency='0.1' numOctaves='" +
           std::to_string(octaves) + "'/></filter>";
}
const std::string filtered = "<rect width='1000' height='1000' y='-800' filter='url(#f)'/>";

// Every glyph is the same picture.
std::string Sbix(const std::string& png) {
    Font font = AllGlyphs();
    // The place of each glyph's picture is where the last one ended, so only as many fit as the file has room.
    const std::size_t each = png.size() + 8;
    const std::size_t room = std::min<std::size_t>(codes, (largestFile - 60'000) / each);
    Bytes strike;
    strike.U16s({512, 72}).U32(4 + (codes + 2) * 4); // the box for what is missing has none
    for (std::size_t glyph = 0; glyph <= codes; ++glyph)
        strike.U32(static_cast<std::int64_t>(4 + (codes + 2) * 4 + std::min(glyph, room) * each));
    Bytes data;
    for (std::size_t glyph = 0; glyph < room; ++glyph)
        data.U16s({0, 0}).Add("png ").Add(png);
    font.tables["sbix"] = Bytes().U16(1).U16(1).U32(1).U32(12).Add(strike).Add(data);
    return font.Build();
}

std::string Cbdt(const std::string& png, int side) {
    Font font = AllGlyphs();
    fonts::AddCbdt(font, png, side, codes);
    return font.Build();
}

// All glyphs have these paints; the file has them once for each.
std::string Colr(const ColourTables& made, const Bytes& paint) {
    ColourTables tables = made;
    tables.palette = {{230, 40, 40, 128}, {30, 160, 60, 255}};
    Font font = AllGlyphs();
    for (int glyph = 1; glyph <= codes; ++glyph)
        tables.glyphs[glyph] = paint;
    font.tables["COLR"] = tables.Colr();
    font.tables["CPAL"] = tables.Cpal();
    return font.Build();
}

// So many layers over one another, each of them everywhere. More than 255 are layers of layers.
std::string Layered(int count, const Bytes& layer) {
    ColourTables tables;
    Bytes all = fonts::Layers(0, std::min(count, 255));
    for (int i = 0; i < std::min(count, 255); ++i)
        tables.layers.push_back(count > 255 ? fonts::Layers(255, std::min(count / 255, 255)) : layer);
    for (int i = 0; count > 255 && i < std::min(count / 255, 255); ++i)
        tables.layers.push_back(layer);
    return Colr(tables, all);
}

// Each of two paints is again two: a tree as deep as this.
Bytes Composites(int depth, const Bytes& leaf) {
    if (depth == 0) return leaf;
    const Bytes below = Composites(depth - 1, leaf);
    return fonts::Composite(3, below, below);
}

} // namespace

std::vector<Bomb> ColourBombs() {
    std::vector<Bomb> all;
    const auto add = [&](const char* reader, const std::string& name, std::string bytes, bool sharp = false) {
        all.push_back({reader,
                       name,
                       "f.ttf",
                       std::move(bytes),
                       "--font-file f.ttf --family 'Built Sans' --colour-font --height 256 --select all "
                       "--generate --info",
                       {},
                       sharp});
    };
    for (const int octaves : {1, 3, 10, 100, 1'000'000})
        add("SVG", "noise of " + std::to_string(octaves) + " octaves in each glyph",
            SvgOfEach(Noisy(octaves), filtered), octaves == 3);
    std::string document = "<svg xmlns='http://www.w3.org/2000/svg'>";
    for (int i = 0; i < 200'000; ++i)
        document += "<g/>";
    for (int glyph = 1; glyph <= codes; ++glyph)
        document += "<rect id='glyph" + std::to_string(glyph) + "' width='9' height='9'/>";
    add("SVG", "one document of 200,000 elements", Svg({Gzip(document + "</svg>")}));
    const std::string space = "<!--" + std::string(std::size_t{30} << 20, ' ') + "-->";
    const std::string packed = Gzip(Document(1, space, filtered));
    add("SVG", "a document of 30 MB for each glyph",
        Svg(std::vector(std::min<std::size_t>(codes, (largestFile - 100'000) / packed.size()), packed)), true);
    std::string uses = "<g id='u0'><rect width='900' height='900' y='-800'/></g>";
    for (int i = 1; i < 10; ++i) {
        uses += "<g id='u" + std::to_string(i) + "'>";
        for (int k = 0; k < 10; ++k)
            uses += "<use xlink:href='#u" + std::to_string(i - 1) + "'/>";
        uses += "</g>";
    }
    add("SVG", "uses of uses, 10^9", SvgOfEach(uses, "<use xlink:href='#u9'/>"));

    add("sbix", "20000 x 20000", Sbix(FlatPng(20000, 20000, 1, 0)));
    add("sbix", "1100 x 1100 in each glyph", Sbix(FlatPng(1100, 1100, 8, 6)), true);
    add("sbix", "512 x 512 of 16 bits in each glyph", Sbix(FlatPng(511, 511, 16, 6)));
    add("CBDT", "20000 x 20000", Cbdt(FlatPng(20000, 20000, 1, 0), 255));
    add("CBDT", "255 x 255 in each glyph", Cbdt(FlatPng(255, 255, 8, 6), 255));
    add("CBDT", "1100 x 1100 in each glyph", Cbdt(FlatPng(1100, 1100, 8, 6), 255), true);

    const Bytes solid = fonts::Outline(1, fonts::Solid(0, 0.5));
    const std::vector<fonts::Stop> stops = {{0, 0}, {1, 1}};
    const Bytes sweep = fonts::Outline(1, fonts::Sweep(500, 400, 0, 90, fonts::ColourLine(1, stops)));
    const Bytes radial =
        fonts::Outline(1, fonts::Radial({300, 300, 60, 700, 500, 180}, fonts::ColourLine(2, stops)));
    add("COLR", "255 layers", Layered(255, solid));
    add("COLR", "7,500 layers", Layered(7'650, solid), true);
    add("COLR", "7,500 layers of sweeps", Layered(7'650, sweep), true);
    add("COLR", "7,500 layers of cones", Layered(7'650, radial));
    add("COLR", "composites of composites, 2^7", Colr({}, Composites(7, solid)), true);
    std::vector<fonts::Stop> many;
    for (int i = 0; i < 700; ++i)
        many.push_back({i / 700.0, i % 2});
    add("COLR", "700 stops",
        Colr({}, fonts::Outline(1, fonts::Sweep(500, 400, 0, 0.1, fonts::ColourLine(1, many)))));
    return all;
}

std::vector<std::string> SmallFaces() {
    Font plain = AllGlyphs();
    ColourTables layers;
    layers.palette = {{230, 40, 40, 128}, {30, 160, 60, 255}};
    layers.flat = {{33, {{1, 0}, {2, 1}}}};
    Font flat = AllGlyphs();
    flat.tables["COLR"] = layers.Colr();
    flat.tables["CPAL"] = layers.Cpal();
    return {plain.Build(), flat.Build(), Sbix(FlatPng(20, 20, 8, 6)), Cbdt(FlatPng(20, 20, 8, 6), 20),
            Svg({Document(1, "", "<rect width='9' height='9'/>")})};
}

} // namespace bombs
