#include "platform/text/MSvgGlyphs.h"

#include "TemporaryFolder.h"
#include "bombs/Bombs.h"
#include "imaging/Pictures.h"
#include "platform/text/MDrawingCredit.h"
#include "platform_text/Canvas.h"
#include "platform_text/PaintBuilder.h"

#include <gtest/gtest.h>

namespace {

constexpr int units = 1000;

// A table with one document, for glyphs 3 to 5.
std::vector<std::uint8_t> Table(const std::string& document) {
    const fonts::Bytes table = fonts::SvgTable({document}, 3, 5);
    return {table.begin(), table.end()};
}

std::string Repeated(std::string_view text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string Document(const std::string& content, const std::string& attributes = "") {
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' " + attributes +
           ">" + content + "</svg>";
}

// What is at (x, y) of a hundred by hundred pixels, the glyph's em as wide and its baseline at the bottom; as
// alpha, red, green, blue. 1 if nothing was drawn.
std::uint32_t PixelOf(MSvgGlyphs& glyphs, std::uint16_t glyph, int x, int y,
                      MColour foreground = {255, 255, 255}) {
    const Canvas canvas(100, 100);
    cairo_translate(canvas.context, 0, 100);
    cairo_scale(canvas.context, 0.1, 0.1);
    return glyphs.Draw(canvas.context, glyph, units, foreground) ? canvas.At(x, y) : 1;
}

std::uint32_t PixelOf(const std::string& document, int x, int y) {
    MSvgGlyphs glyphs(Table(document), {});
    return PixelOf(glyphs, 3, x, y);
}

} // namespace

TEST(SvgGlyphs, DrawsTheElementOfTheGlyph) {
    const std::string document =
        Document("<rect id='glyph3' x='200' y='-600' width='300' height='400' fill='#00ff00'/>"
                 "<rect id='glyph4' x='200' y='-600' width='300' height='400' fill='currentColor'/>");
    for (const std::string& text : {document, bombs::Gzip(document)}) {
        MSvgGlyphs glyphs(Table(text), {});
        EXPECT_EQ(PixelOf(glyphs, 3, 25, 45), 0xFF00FF00U);
        EXPECT_EQ(PixelOf(glyphs, 3, 15, 45), 0U);
        EXPECT_EQ(PixelOf(glyphs, 3, 25, 85), 0U) << "between the shape and the baseline";
        EXPECT_EQ(PixelOf(glyphs, 4, 25, 45, MColour(0, 0, 255)), 0xFF0000FFU);
        EXPECT_EQ(PixelOf(glyphs, 4, 25, 45, MColour(255, 0, 0)), 0xFFFF0000U) << "the colour of the moment";
        EXPECT_FALSE(glyphs.Has(5)) << "the document has no element for it";
        EXPECT_FALSE(glyphs.Has(6)) << "no document serves it";
    }
    EXPECT_EQ(PixelOf(Document("<rect id='glyph3' x='10' y='-30' width='15' height='20' fill='#00f'/>",
                               "viewBox='0 0 50 50'"),
                      25, 45),
              0xFF0000FFU)
        << "a view box is as large as the em";
}

// The em is 50 pixels of the hundred here, and the shape stands in the em above it and to the right.
TEST(SvgGlyphs, WhatNeedsAPictureInBetweenIsDrawnWhereverItStands) {
    const std::string mask =
        "<mask id='m' maskUnits='userSpaceOnUse' x='0' y='-2000' width='2000' height='2000'>"
        "<rect y='-2000' width='2000' height='2000' fill='#fff'/></mask>";
    const std::string filter = "<filter id='f'><feOffset dx='0' dy='0'/></filter>";
    const std::string faded = "opacity='0.5'";
    const std::string entity =
        "<?xml version='1.0'?><!-- <svg> --><!DOCTYPE svg [<!-- ' --><!ENTITY a \"]><svg>\">]>";
    const struct {
        std::string before, attributes, definitions, group;
        std::uint32_t alpha;
    } rows[] = {
        {"", "", "", faded, 0x80},
        {"", "", mask, "mask='url(#m)'", 0xFF},
        {"", "", filter, "filter='url(#f)'", 0xFF},
        {"", "", "", "style='mix-blend-mode:multiply'", 0xFF},
        {"", "", "<style>svg{isolation:isolate}</style>", "", 0xFF},
        {entity, "", "", faded, 0x80},
        {"", "x='9' y='9' width='10' height='10' style='overflow:hidden'", "", faded, 0x80},
        {"", "viewBox='0 0 1000 1000' width='10'", "", faded, 0x80},
    };
    for (const auto& [before, attributes, definitions, group, alpha] : rows) {
        MSvgGlyphs glyphs(Table(before + Document(definitions + "<g id='glyph3' " + group +
                                                      "><rect x='1400' y='-1600' width='200' height='200' "
                                                      "fill='#0f0'/></g>",
                                                  attributes)),
                          {});
        const Canvas canvas(100, 100);
        cairo_translate(canvas.context, 0, 100);
        cairo_scale(canvas.context, 0.05, 0.05);
        EXPECT_TRUE(glyphs.Draw(canvas.context, 3, units, {}));
        const std::uint32_t pixel = canvas.At(75, 25);
        EXPECT_NEAR(pixel >> 24, alpha, 1) << before << attributes << definitions << group;
        EXPECT_EQ(pixel & 0xFFFFFF, (pixel >> 24) << 8);
        EXPECT_EQ(canvas.At(69, 25) | canvas.At(75, 31), 0U);
    }
}

TEST(SvgGlyphs, PaletteStandsForVariables) {
    fonts::ColourTables tables;
    tables.palette = {{1, 2, 3, 255}, {255, 128, 0, 51}};
    const std::string cpal = tables.Cpal();
    const std::vector<std::uint8_t> palette(cpal.begin(), cpal.end());
    const std::pair<const char*, const char*> cases[] = {
        {"a var(--color0) b", "a rgba(1,2,3,1.000000) b"},
        {"var(--color1,red)", "rgba(255,128,0,0.200000)"},
        {"var(--color9, rgb(1, 2, 3) )var(--color0)", "rgb(1, 2, 3)rgba(1,2,3,1.000000)"},
        {"var(--color9)", "currentColor"},
        {"var(--colorful, red)", "var(--colorful, red)"},
        {"var(--color0", "var(--color0"},
    };
    for (const auto& [document, expected] : cases)
        EXPECT_EQ(WithPalette(document, palette), expected);
    EXPECT_EQ(WithPalette("var(--color0, blue)", {}), "blue");
}

TEST(SvgGlyphs, NothingOutsideTheDocumentIsRead) {
    const TemporaryFolder folder;
    ASSERT_TRUE(FilledPicture(100, 100, MColour(255, 0, 0)).Save(folder.File("red.png")));
    const std::string path = ToSystem(folder.File("red.png"));
    const std::string shape = "<rect width='1000' height='1000' y='-1000' fill='#00ff00'/>";
    const auto image = [&](const std::string& reference) {
        return Document("<g id='glyph3'>" + shape + "<image width='1000' height='1000' y='-1000' xlink:href='" +
                        reference + "'/></g>");
    };
    for (const std::string& reference : {path, "file://" + path, std::string("http://localhost:1/red.png")})
        EXPECT_EQ(PixelOf(image(reference), 50, 50), 0xFF00FF00U) << reference;
    const std::string entity = "<!DOCTYPE svg [<!ENTITY other SYSTEM 'file://" + path + "'>]>";
    EXPECT_EQ(PixelOf(entity + Document("<g id='glyph3'>" + shape + "</g>"), 50, 50), 0xFF00FF00U);
}

TEST(SvgGlyphs, HugeAndBrokenDocumentsHaveNoGlyphs) {
    const std::string shape = "<rect id='glyph3' width='1000' height='1000' y='-1000'/>";
    const std::string many = Repeated("<g/>", 300'000);
    const std::string bomb = bombs::Gzip(Document(shape + "<!--" + std::string(64 << 20, ' ') + "-->"));
    ASSERT_LT(bomb.size(), 100'000U);
    std::string cut = bombs::Gzip(Document(shape));
    cut.resize(cut.size() / 2);
    for (const std::string& document :
         {Document(shape + many), Document("<g>" + many + shape + "</g>"), bomb, cut, std::string("<svg"),
          std::string(), std::string("\x1F\x8B"), Document("<rect id='glyph3'/>").substr(10)}) {
        MSvgGlyphs glyphs(Table(document), {});
        EXPECT_FALSE(glyphs.Has(3)) << document.substr(0, 50);
        EXPECT_EQ(PixelOf(glyphs, 3, 50, 50), 1U);
    }
    EXPECT_TRUE(MSvgGlyphs({}, {}).IsEmpty());
}

// The one ends the library's process while it draws, the other holds it up while it is read.
TEST(SvgGlyphs, ADocumentThatEndsItsRendererCostsNothingButItsGlyph) {
    const auto filter = [](const std::string& primitives) {
        return "<filter id='f' x='0' y='0' width='1' height='1'>" + primitives + "</filter>";
    };
    std::string style = "<style>";
    for (int i = 0; i < 30'000; ++i)
        style += "g>g>g>.x" + std::to_string(i) + "{x:y}";
    style += "</style>" + Repeated("<g class='x1'/>", 30'000);
    const std::tuple<const char*, std::string, bool> cases[] = {
        {"tile", filter("<feFlood x='0' y='0' width='0' height='0' result='e'/><feTile in='e'/>"), false},
        {"style", style, true}};
    for (const auto& [name, definitions, takesAll] : cases) {
        const std::uint32_t other = takesAll ? 0U : 0xFF00FF00U;
        MSvgGlyphs glyphs(
            Table(Document(definitions +
                           "<g id='glyph3'><rect width='1000' height='1000' y='-500' filter='url(#f)'/></g>"
                           "<rect id='glyph4' width='1000' height='1000' y='-1000' fill='#00ff00'/>")),
            {});
        LostGlyphs::Take();
        EXPECT_EQ(PixelOf(glyphs, 4, 50, 50), other) << name;
        for (int time = 0; time < 2; ++time)
            EXPECT_EQ(PixelOf(glyphs, 3, 50, 50), 0U) << name << ": drawn, and empty";
        EXPECT_EQ(LostGlyphs::Take(), takesAll ? 2 : 1) << name << ": each is counted once";
        EXPECT_EQ(PixelOf(glyphs, 4, 50, 50), other) << name << ": the others stay";
    }
}
