#include "DocumentFixture.h"
#include "glyphs/BoxColours.h"
#include "glyphs/MGlyphRenderer.h"
#include "glyphs/Pixels.h"
#include "imaging/Pictures.h"
#include "platform_text/FontFixture.h"
#include "platform_text/PaintFont.h"

#include <gtest/gtest.h>

namespace {

class ColourGlyphs : public DocumentTest {
protected:
    AddedFonts added;

    ColourGlyphs() {
        settings.ColourFont = true;
        settings.Colour = MColour(1, 2, 3);
        settings.GlyphHeight = 60;
    }
};

// "A" as red on blue, "B" without an outline but with paints, "C" plain; "I" and "j" plain, 700 and 900 units
// high.
fonts::Font Letters(const std::string& family) {
    fonts::Font font;
    font.family = family;
    const int outline = font.Add({{fonts::Box(100, 0, 800, 700)}}, u'A');
    const int bare = font.Add({}, u'B');
    font.Add({{fonts::Box(-100, 0, 500, 700)}}, u'C');
    font.Add({{fonts::Box(100, 0, 300, 700)}}, u'I');
    font.Add({{fonts::Box(100, -200, 300, 700)}}, u'j');
    const int inner = font.Add({{fonts::Box(300, 200, 600, 500)}});
    fonts::ColourTables tables;
    tables.palette = {{255, 0, 0, 255}, {0, 0, 255, 255}};
    tables.layers = {fonts::Outline(outline, fonts::Solid(1)), fonts::Outline(inner, fonts::Solid(0))};
    tables.glyphs[outline] = fonts::Layers(0, 2);
    tables.glyphs[bare] = fonts::Transform(14, {}, {50, 0}, fonts::Layers(0, 2));
    font.tables["COLR"] = tables.Colr();
    font.tables["CPAL"] = tables.Cpal();
    return font;
}

// A colour of the glyph at a place between 0 and 1 of its width, and rows up from the baseline of "A".
MColour At(const MGlyph& glyph, double x, std::int32_t row) {
    return glyph.GetPixel(static_cast<std::int32_t>(x * glyph.Width), row);
}

} // namespace

TEST_F(ColourGlyphs, ComeInTheFontsOwnColours) {
    ASSERT_TRUE(added.Add("letters.ttf", Letters("Laboratory Sans").Build()));
    settings.FontName = "Laboratory Sans";
    MGlyphRenderer renderer(nullptr);
    const auto a = renderer.RenderGlyph(u'A');
    const auto b = renderer.RenderGlyph(u'B');
    const auto c = renderer.RenderGlyph(u'C');
    ASSERT_TRUE(a && b && c);
    const MRows rows = RowsOf(*a);
    const std::int32_t middle = (rows.top + rows.end) / 2;
    EXPECT_EQ(At(*a, 0.1, middle), MColour(0, 0, 255));
    EXPECT_EQ(At(*a, 0.5, middle), MColour(255, 0, 0));
    EXPECT_EQ(At(*a, 0.5, 0), MColour(0, 0, 0, 0));
    EXPECT_EQ(At(*c, 0.5, middle), MColour(255, 255, 255)) << "without colours, not the text's";
    EXPECT_LT(c->SpacingBefore, 0);

    // Without an outline, the width is that of the colours: the same as of "A", a little further to the right.
    EXPECT_EQ(At(*b, 0.5, middle), MColour(255, 0, 0));
    EXPECT_NEAR(b->Width, a->Width, 1);
    EXPECT_GT(b->SpacingBefore, a->SpacingBefore);
    EXPECT_NEAR(b->SpacingBefore + b->Width + b->SpacingAfter, a->SpacingBefore + a->Width + a->SpacingAfter,
                1);

    settings.ColourFont = false;
    EXPECT_EQ(At(*renderer.RenderGlyph(u'A'), 0.5, middle), MColour(1, 2, 3));
    EXPECT_EQ(renderer.RenderGlyph(u'B'), nullptr) << "plain, it has no ink";
    EXPECT_EQ(MGlyphRenderer(nullptr).surface, nullptr);
}

TEST_F(ColourGlyphs, OfAFamilyWithoutColoursAreThoseOfItsFace) {
    settings.FontName = "Liberation Sans";
    for (const auto& [weight, italic] : {std::pair(400, false), {700, false}, {400, true}}) {
        settings.Weight = weight;
        settings.Italic = italic;
        settings.ColourFont = true;
        const auto coloured = MGlyphRenderer(nullptr).RenderGlyph(u'H');
        settings.ColourFont = false;
        const auto plain = MGlyphRenderer(nullptr).RenderGlyph(u'H');
        ASSERT_TRUE(coloured && plain);
        std::int32_t different = 0;
        for (const auto& [x, y] : PlacesOf(plain->Picture))
            different += std::abs(coloured->GetPixel(x, y).a - plain->GetPixel(x, y).a) > 160;
        EXPECT_LT(different, 40) << weight << italic;
    }
}

TEST_F(ColourGlyphs, AreAsTallAsTheRule) {
    ASSERT_TRUE(added.Add("letters.ttf", Letters("Laboratory Sans").Build()));
    settings.FontName = "Laboratory Sans";
    settings.GlyphHeight = 1000;
    const MGlyphRenderer renderer(nullptr);
    // Of the reference at this height: rows 272 to 930. An em of 1000 pixels has "Ij" in rows 100 to 999, whose
    // extent counts one row less here than there.
    EXPECT_FLOAT_EQ(renderer.colourSizeFactor, 658.0F / 899.0F);
    EXPECT_EQ(renderer.verticalOffset, static_cast<std::int32_t>(272.0F - 658.0F / 899.0F * 100.0F) * 2);
    EXPECT_EQ(renderer.fontHeight, static_cast<std::int32_t>(1000.0F * (658.0F / 900.0F)));
}

TEST_F(ColourGlyphs, AreThoseOfTheWholeBitmap) {
    ASSERT_TRUE(added.Add("paints.ttf", fonts::PaintFont().font.Build()));
    settings.FontName = "Every Paint";
    settings.BackgroundColour = MColour(250, 120, 30);
    MGlyphRenderer renderer(nullptr);
    ASSERT_TRUE(renderer.ready);
    const auto h = static_cast<float>(settings.GlyphHeight);
    for (char16_t code = 0x100; code < 0x100 + 88; code = static_cast<char16_t>(code + 9)) {
        const auto glyph = renderer.RenderGlyph(code);
        ASSERT_TRUE(glyph);
        // The plain way: all of the bitmap is drawn, read back, scaled and cut.
        MInk ink;
        ASSERT_TRUE(renderer.font->GetInk(code, ink));
        MSurfaceBitmap bitmap(renderer.canvasWidth, renderer.canvasHeight);
        MDirect2DSurface surface(bitmap);
        surface.Clear(MColour(250, 120, 30, 0));
        surface.DrawText(
            {-ink.a, renderer.verticalOffset, ink.b, 2 * renderer.fontHeight + renderer.verticalOffset},
            MString(std::u16string_view(&code, 1)), settings.FontName, h * 2.0F * renderer.colourSizeFactor,
            400, false, MColour(255, 255, 255), -1, -1, true, false, true, true);
        const OwnedPicture whole(bitmap.ToPicture());
        const OwnedPicture halved(MPicture(whole, static_cast<std::uint32_t>(renderer.canvasWidth / 2),
                                           static_cast<std::uint32_t>(renderer.canvasHeight / 2), FormatRGBA8,
                                           true, false));
        for (const auto& [x, y] : PlacesOf(glyph->Picture))
            ASSERT_EQ(glyph->GetPixel(x, y), halved.GetPixel(x, y)) << int{code} << " at " << x << ", " << y;
    }
}

TEST_F(ColourGlyphs, BitmapsAloneHaveWidthsToo) {
    settings.FontName = "Noto Color Emoji";
    MGlyphRenderer renderer(nullptr);
    const auto nine = renderer.RenderGlyph(u'9');
    const auto copyright = renderer.RenderGlyph(u'\u00A9');
    ASSERT_TRUE(nine && copyright);
    EXPECT_GT(copyright->Width, nine->Width);
    EXPECT_NEAR(copyright->Width, 65, 25);
    EXPECT_GT(RowsOf(*copyright).Count(), 35);
    EXPECT_EQ(renderer.RenderGlyph(u' '), nullptr);
    settings.ColourFont = false;
    EXPECT_EQ(MGlyphRenderer(nullptr).RenderGlyph(u'9'), nullptr) << "it has no outlines";
}

// Text leaves it out where no line ends at it.
TEST_F(ColourGlyphs, TheSoftHyphenHasItsInk) {
    settings.FontName = "DejaVu Sans";
    for (const char16_t hyphen : {u'\u00AD', u'-'}) {
        const auto glyph = MGlyphRenderer(nullptr).RenderGlyph(hyphen);
        ASSERT_NE(glyph, nullptr);
        EXPECT_NEAR(RowsOf(*glyph).Count(), 4, 2) << static_cast<int>(hyphen);
    }
}

TEST(BoxColours, AGlyphLargerThanTheCanvasRepeatsIt) {
    MSurfaceBitmap bitmap(96, 72);
    MDirect2DSurface(bitmap).DrawPictureAt(RandomPicture(96, 72, FormatRGBA8, 1), 0, 0, false);
    OwnedPicture canvas = BlankPicture(48, 36, FormatRGBA8), glyph = BlankPicture(70, 40, FormatRGBA8);
    BoxDownColours(bitmap, canvas);
    BoxDownColours(bitmap, glyph);
    for (const auto& [x, y] : PlacesOf(glyph))
        ASSERT_EQ(glyph.GetPixel(x, y), canvas.GetPixel(x, y)) << x << ", " << y;
}
