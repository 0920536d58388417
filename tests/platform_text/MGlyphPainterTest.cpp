#include "platform/text/MGlyphPainter.h"

#include "TemporaryFolder.h"
#include "imaging/Pictures.h"
#include "platform/text/MPaintTreePainter.h"
#include "platform/text/MSystemFonts.h"
#include "platform_text/Canvas.h"
#include "platform_text/PaintFont.h"

#include <gtest/gtest.h>

namespace {

constexpr int side = 120, em = 100, penX = 10, penY = 90;

// A drawing of one character, an em of 100 pixels with its pen at (10, 90).
class Drawing : Canvas {
public:
    Drawing(const std::string& file, char16_t character, bool colours, MColour colour = {255, 255, 255})
        : Canvas(side, side) {
        MFontMatch match;
        match.file = file;
        MGlyphPainter painter(match);
        painter.Draw(context, painter.face.GlyphIndex(character), penX, penY, em, colour, colours);
        EXPECT_TRUE(IsSound());
    }
    Drawing(const fonts::Font& font, bool colours, MColour colour = {255, 255, 255}, char16_t character = u'A')
        : Drawing(ToSystem(TemporaryFolder().Write("font.ttf", font.Build())), character, colours, colour) {}

    // The pixel at a place of the glyph in units of a thousandth of its em, y upwards.
    std::uint32_t At(int x, int y) const { return Canvas::At(penX + x / 10, penY - y / 10 - 1); }
    bool IsEmpty() const {
        std::uint32_t ink = 0;
        for (int i = 0; i < side * side; ++i)
            ink |= Canvas::At(i % side, i / side);
        return ink == 0;
    }
};

fonts::Font OneBox() {
    fonts::Font font;
    font.Add({{fonts::Box(100, 0, 900, 700)}}, u'A');
    return font;
}

void AddPaint(fonts::Font& font, const fonts::Bytes& paint) {
    fonts::ColourTables tables;
    tables.palette = {{0, 255, 0, 255}, {0, 0, 255, 255}};
    tables.glyphs[1] = paint;
    font.tables["COLR"] = tables.Colr();
    font.tables["CPAL"] = tables.Cpal();
}

// One box whose outline has this paint.
fonts::Font PaintedBox(const fonts::Bytes& paint) {
    fonts::Font font = OneBox();
    AddPaint(font, fonts::Outline(1, paint));
    return font;
}

// A PNG of 20 by 20 pixels.
std::string Png(MColour colour) {
    const TemporaryFolder folder;
    EXPECT_TRUE(FilledPicture(20, 20, colour).Save(folder.File("bitmap.png")));
    return folder.Read("bitmap.png");
}

// Strikes of 20 and 200 pixels an em, whose glyph 1 is a bitmap of 20 by 20 pixels.
std::string SbixTable(const std::string& small, const std::string& large) {
    const auto strike = [](int size, const std::string& png) {
        fonts::Bytes bytes;
        bytes.U16s({size, 72}).U32(16).U32(16).U32(static_cast<std::int64_t>(4 + 12 + 8 + png.size()));
        return bytes.U16s({0, 0}).Add("png ").Add(png);
    };
    const fonts::Bytes first = strike(20, small);
    const auto second = static_cast<std::int64_t>(16 + first.size());
    return fonts::Bytes().U16s({1, 1}).U32(2).U32(16).U32(second).Add(first).Add(strike(200, large));
}

constexpr std::uint32_t white = 0xFFFFFFFF;
constexpr std::uint32_t red = 0xFFFF0000;
constexpr std::uint32_t green = 0xFF00FF00;
constexpr std::uint32_t blue = 0xFF0000FF;

} // namespace

TEST(GlyphPainter, FirstFormThatHasTheGlyphWins) {
    fonts::Font font = OneBox();
    font.tables["SVG "] = fonts::SvgTable({"<svg xmlns='http://www.w3.org/2000/svg'><g id='glyph1'>"
                                           "<rect y='-700' width='1000' height='700' fill='#f00'/></g></svg>"},
                                          1, 1);
    EXPECT_EQ(Drawing(font, true).At(500, 300), red);
    EXPECT_EQ(Drawing(font, false, MColour(0, 255, 0)).At(500, 300), green) << "colours were not asked for";

    AddPaint(font, fonts::Outline(1, fonts::Solid(0)));
    EXPECT_EQ(Drawing(font, true).At(500, 300), green) << "paints before documents";
    AddPaint(font, fonts::Outline(1, fonts::Solid(fonts::foreground)));
    EXPECT_EQ(Drawing(font, true, MColour(0, 0, 255)).At(500, 300), blue) << "the colour of the text";
    AddPaint(font, fonts::ColrGlyph(1));
    EXPECT_EQ(Drawing(font, true).At(500, 300), red) << "paints that run in a circle";
    font.tables["SVG "] = "nothing that could be read";
    EXPECT_EQ(Drawing(font, true).At(500, 300), white) << "and nothing else";
    EXPECT_EQ(Drawing(font, true).At(500, 750), 0U) << "above it";
    EXPECT_TRUE(Drawing("/no/such/font.ttf", u'A', true).IsEmpty());
}

TEST(GlyphPainter, BitmapsComeFromTheNearestStrike) {
    fonts::Font font = OneBox();
    font.tables["sbix"] = SbixTable(Png(MColour(255, 0, 0)), Png(MColour(0, 0, 255)));
    // The larger strike is shrunk to the em: a bitmap of 20 of 200 pixels is a tenth of it.
    EXPECT_EQ(Drawing(font, true).At(150, 50), blue) << "at the outline's left edge";
    EXPECT_EQ(Drawing(font, true).At(500, 300), 0U) << "not the outline";
    EXPECT_EQ(Drawing(font, false).At(500, 300), white);

    font.tables["sbix"] = SbixTable("broken", "broken");
    EXPECT_EQ(Drawing(font, true).At(500, 300), white) << "no picture: the outline";
}

// FreeType takes a face with such bitmaps for one without outlines.
TEST(GlyphPainter, OutlinesBesideBitmapsAreDrawnWhereThereIsNoPicture) {
    fonts::Font font = OneBox();
    font.Add({{fonts::Box(300, 0, 500, 700)}}, u'B');
    fonts::AddCbdt(font, Png(MColour(255, 0, 0)), 20, 1);
    EXPECT_EQ(Drawing(font, true).At(150, 50), red);
    EXPECT_EQ(Drawing(font, true).At(500, 300), 0U) << "not the outline";
    EXPECT_EQ(Drawing(font, false).At(500, 300), white);
    for (const bool colours : {false, true})
        EXPECT_EQ(Drawing(font, colours, {255, 255, 255}, u'B').At(400, 300), white) << "it has no picture";
}

TEST(GlyphPainter, ACharacterMapOfMacintoshRomanIsEnough) {
    fonts::Font font = OneBox();
    font.Add({{fonts::Box(300, 0, 500, 700)}});
    fonts::Bytes map;
    map.U16(0).U16(1).U16(1).U16(0).U32(12).U16(0).U16(262).U16(0);
    for (int code = 0; code < 256; ++code)
        map.U8(code == 'A' ? 1 : code == 0x8E ? 2 : 0); // é
    font.tables["cmap"] = map;
    const TemporaryFolder folder;
    const std::string file = ToSystem(folder.Write("font.ttf", font.Build()));
    EXPECT_EQ(Drawing(file, u'\u00E9', false).At(150, 300), 0U);
    EXPECT_EQ(Drawing(file, u'\u00E9', false).At(400, 300), white);
    MFontMatch match;
    match.file = file;
    const MOpenFace face(match);
    EXPECT_EQ(face.GlyphIndex(u'\u008E'), 0U) << "a code is no character";
    EXPECT_EQ(face.GlyphIndex(U'\U0001F600'), 0U);
}

TEST(GlyphPainter, EveryPaintIsDrawn) {
    const fonts::PaintFont paints;
    const TemporaryFolder folder;
    const std::string file = ToSystem(folder.Write("paints.ttf", paints.font.Build()));
    for (std::size_t i = 0; i < paints.names.size(); ++i) {
        const Drawing drawing(file, static_cast<char16_t>(0x100 + i), true);
        EXPECT_EQ(drawing.IsEmpty(), paints.names[i] == "composite 0") << paints.names[i];
    }
}

// What lies below a radius of 0 is not drawn and moves no colour: the middle is half way from green to blue.
TEST(GlyphPainter, RadiiBelow0) {
    const auto around = [](int extend) {
        return fonts::Radial({500, 350, 0, 500, 350, 300}, fonts::ColourLine(extend, {{-1, 0}, {1, 1}}));
    };
    const fonts::Bytes shrinking =
        fonts::Radial({500, 350, 300, 500, 350, 0}, fonts::ColourLine(0, {{0, 0}, {1.99, 1}}));
    for (const fonts::Bytes& gradient : {around(0), around(1), around(2), shrinking}) {
        const Drawing drawing(PaintedBox(gradient), true);
        for (const int distance : {5, 95, 195, 285}) {
            const double t = distance / 300.0;
            const double toBlue = gradient == shrinking ? (1 - t) / 1.99 : (t + 1) / 2;
            const std::uint32_t pixel = drawing.At(500 + distance, 355);
            EXPECT_EQ(pixel >> 16, 0xFF00U);
            EXPECT_NEAR(pixel >> 8 & 0xFF, 255 * (1 - toBlue), 4) << distance;
            EXPECT_NEAR(pixel & 0xFF, 255 * toBlue, 4) << distance;
        }
    }
}

TEST(GlyphPainter, GeometryThatSaysNothingPaintsNothing) {
    const fonts::Bytes line = fonts::ColourLine(0, {{0, 0}, {1, 1}});
    const fonts::Bytes spot = fonts::ColourLine(1, {{0.5, 0}, {0.5, 1}});
    for (const fonts::Bytes& paint :
         {fonts::Linear({300, 0, 300, 0, 300, 500}, line), fonts::Linear({300, 0, 700, 0, 900, 0}, line),
          fonts::Linear({300, 0, 700, 0, 300, 500}, spot), fonts::Radial({500, 350, 9, 500, 350, 9}, line),
          fonts::Sweep(500, 350, 90, 90, fonts::ColourLine(1, {{0, 0}, {1, 1}})),
          fonts::Transform(16, {0, 1}, {}, fonts::Solid(0)),
          fonts::Transform(14, {}, {5000, 0}, fonts::Outline(1, fonts::Solid(0))),
          fonts::Radial({500, 350, 0, 500, 350, 9}, fonts::ColourLine(0, {{-1.5, 0}, {-1, 1}})),
          fonts::Affine({1, 1, 1, 1, 0, 0}, fonts::Solid(0))})
        EXPECT_TRUE(Drawing(PaintedBox(paint), true).IsEmpty()) << int{paint[0]};
}

TEST(GlyphPainter, AGradientTooSmallForTheImageLibraryHarmsNoOther) {
    MPaintTree tree;
    tree.paints.resize(3);
    for (const std::uint32_t i : {0U, 1U}) {
        tree.paints[i].kind = MPaintKind::Transform;
        tree.paints[i].numbers = {0.0158691F, 0, 0, 0.0158691F, 2268.42F, 0.984131F};
        tree.paints[i].children = {i + 1};
    }
    tree.paints[2].kind = MPaintKind::Radial;
    tree.paints[2].numbers = {0, 16385, 1033, 256, 25, 20995};
    tree.paints[2].stops = {{}};

    const Canvas canvas(24, 24);
    cairo_translate(canvas.context, 2, 20);
    cairo_scale(canvas.context, 20.0 / 2048, -20.0 / 2048);
    PaintTree(canvas.context, tree, MOpenFace(*MatchFont("Liberation Sans", 400, false)), MColour(1, 2, 3));
    EXPECT_TRUE(canvas.IsSound());
}

TEST(GlyphPainter, PaintsThatCostTooMuchAreNotPainted) {
    // Sixty groups inside one another, and sixteen thousand coats over the whole em.
    fonts::Bytes nested = fonts::Solid(0);
    for (int i = 0; i < 60; ++i)
        nested = fonts::Composite(3, nested, fonts::Solid(1));
    fonts::Font font = PaintedBox(nested);
    EXPECT_EQ(Drawing(font, true).At(500, 300), white);

    fonts::ColourTables tables;
    tables.palette = {{0, 255, 0, 255}};
    tables.glyphs[1] = fonts::Layers(0, 120);
    for (int i = 0; i < 120; ++i)
        tables.layers.push_back(fonts::Layers(120, 130));
    for (int i = 0; i < 130; ++i)
        tables.layers.push_back(fonts::Transform(16, {1.9, 1.9}, {}, fonts::Outline(1, fonts::Solid(0))));
    font.tables["COLR"] = tables.Colr();
    EXPECT_EQ(Drawing(font, true).At(500, 300), white);
}
