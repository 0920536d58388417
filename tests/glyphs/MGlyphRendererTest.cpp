#include "glyphs/MGlyphRenderer.h"

#include "DocumentFixture.h"
#include "foundation/MMemory.h"
#include "glyphs/Pixels.h"
#include "glyphs/PlainRenderer.h"
#include "platform_text/FontBuilder.h"
#include "platform_text/FontFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace {

class GlyphRenderer : public DocumentTest {
protected:
    GlyphRenderer() {
        settings.FontName = "Liberation Sans";
        settings.Colour = MColour(10, 20, 30);
    }
};

// Rows of the reference ink at a glyph height, where the reference family is not installed.
int ReferenceTop(int h) {
    return static_cast<int>(std::floor(h * 2254 / 2888.0 + 0.5) - std::ceil(h * 1466 / 2888.0));
}
int ReferenceBottom(int h) {
    return static_cast<int>(std::floor(h * 2254 / 2888.0 + 0.5) + std::ceil(h * 431 / 2888.0)) - 1;
}

fonts::Font Letters(const char* family) {
    fonts::Font font;
    font.family = family;
    font.Add({{fonts::Box(-50, 0, 950, 700)}}, u'A');
    font.Add({{fonts::Circle(400, 200, 390)}}, u'g');
    font.Add({{fonts::Box(100, 300, 400, 380)}}, u'-');
    font.Add({{fonts::Box(90, 500, 190, 720)}}, u'\'');
    font.Add({{fonts::Box(100, 0, 300, 700)}}, u'I');
    font.Add({{fonts::Box(-20, -200, 300, 700)}}, u'j');
    return font;
}

void ExpectSame(const MGlyph* actual, const PlainGlyph& expected) {
    ASSERT_EQ(actual == nullptr, expected.pixels.empty());
    if (!actual) return;
    ASSERT_EQ(std::tuple(actual->Width, actual->SpacingBefore, actual->SpacingAfter),
              std::tuple(expected.width, expected.before, expected.after));
    ASSERT_TRUE(actual->RowsMatchPicture());
    ASSERT_EQ(expected.pixels.size(), std::size_t{actual->Picture.Width} * actual->Picture.Height);
    const auto* const pixels = reinterpret_cast<const MColour*>(actual->Picture.Pixels);
    const auto at = std::mismatch(expected.pixels.begin(), expected.pixels.end(), pixels).first;
    EXPECT_EQ(at, expected.pixels.end()) << "pixel " << at - expected.pixels.begin();
}

} // namespace

TEST_F(GlyphRenderer, HeightsThatNoCanvasHas) {
    for (const std::int32_t height : {0, -1, INT32_MIN, INT32_MAX, 1'000'000}) {
        settings.GlyphHeight = height;
        EXPECT_FALSE(MGlyphRenderer(nullptr).ready) << height;
    }
}

TEST_F(GlyphRenderer, GlyphsAreThoseOfTheWholeCanvas) {
    const std::tuple<const char*, int, bool, const char*, int, int> cases[] = {
        // family, weight, slant; its file, the glyph height, and each how many codes
        {"Liberation Sans", 400, false, "LiberationSans-Regular", 100, 1},
        {"Liberation Serif", 400, true, "LiberationSerif-Italic", 101, 1},
        {"DejaVu Sans", 700, false, "DejaVuSans-Bold", 16, 1},
        {"DejaVu Sans", 200, false, "DejaVuSans-ExtraLight", 16, 1}, // ink too thin for a glyph
        {"DejaVu Sans Mono", 400, false, "DejaVuSansMono", 1024, 40},
    };
    for (const auto& [family, weight, italic, file, height, step] : cases) {
        settings.FontName = family;
        settings.Weight = weight;
        settings.Italic = italic;
        settings.GlyphHeight = height;
        settings.Colour = MColour(1, 2, 3);
        MGlyphRenderer renderer(nullptr);
        ASSERT_TRUE(renderer.ready);
        settings.Colour = MColour(10, 20, 30, 77); // read at every use, but for its alpha
        PlainRenderer plain(FontPath(file), height, ReferenceTop(height), ReferenceBottom(height));
        ASSERT_EQ(std::pair(renderer.canvasWidth, renderer.canvasHeight),
                  std::pair(plain.canvasWidth, plain.canvasHeight));
        for (int code = 33; code < 256; code += step) {
            SCOPED_TRACE(testing::Message() << file << " " << height << " code " << code);
            const auto character = static_cast<char16_t>(code);
            const auto glyph = renderer.RenderGlyph(character);
            ExpectSame(glyph.get(), plain.Render(character));
            EXPECT_TRUE(!glyph || (glyph->Height == height && !glyph->FromPicture));
        }
    }
}

TEST_F(GlyphRenderer, TheReferenceFamilyIsItsOwnMeasure) {
    const AddedFonts added;
    ASSERT_TRUE(added.Add("black.ttf", Letters("Arial Black").Build()));
    ASSERT_TRUE(added.Add("same.ttf", Letters("Laboratory Sans").Build()));
    settings.FontName = "Arial Black";
    settings.ColourFont = true;
    MGlyphRenderer reference(nullptr);
    ASSERT_TRUE(reference.ready);
    EXPECT_EQ(reference.fontHeight, 100);
    EXPECT_EQ(reference.verticalOffset, 0);
    EXPECT_EQ(reference.colourSizeFactor, 1.0F);

    // Any other family is measured against it: the same outlines under their own name come out the same size.
    settings.ColourFont = false;
    settings.FontName = "Laboratory Sans";
    const MGlyphRenderer same(nullptr);
    EXPECT_EQ(same.fontHeight, 100);
    EXPECT_EQ(same.verticalOffset, 0);
    settings.FontName = "arial black";
    EXPECT_EQ(MGlyphRenderer(nullptr).fontHeight, 100) << "measured, by the same face";

    fonts::Font bold = Letters("Arial Black");
    bold.weight = 700;
    bold.glyphs[bold.characters[u'I']] = {{fonts::Box(100, 0, 300, 350)}};
    bold.glyphs[bold.characters[u'j']] = {{fonts::Box(100, -100, 300, 350)}};
    ASSERT_TRUE(added.Add("bold.ttf", bold.Build()));
    settings.FontName = "Laboratory Sans";
    settings.Weight = 700;
    EXPECT_NEAR(MGlyphRenderer(nullptr).fontHeight, 50, 4) << "by the face of the same weight";
}

// Without ink to measure, the size grows by the whole reference extent: glyphs reach beyond the canvas, and
// wrap.
TEST_F(GlyphRenderer, AFamilyWithoutTheMeasureTextIsHugeAndHarmless) {
    fonts::Font font = Letters("Laboratory Sans");
    for (const char16_t character : {u'I', u'j'})
        font.glyphs[font.characters[character]].contours.clear();
    const AddedFonts added;
    const MString path = added.Write("blank.ttf", font.Build());
    ASSERT_TRUE(AddFontFile(path));
    settings.FontName = "Laboratory Sans";
    for (const std::int32_t height : {16, 50}) {
        settings.GlyphHeight = height;
        MGlyphRenderer renderer(nullptr);
        ASSERT_TRUE(renderer.ready);
        EXPECT_EQ(renderer.fontHeight, height * (ReferenceBottom(height) - ReferenceTop(height) + 1));
        PlainRenderer plain(ToSystem(path), height, ReferenceTop(height), ReferenceBottom(height));
        for (const char16_t character : {u'A', u'-', u'\'', u'I', u'g'}) {
            SCOPED_TRACE(testing::Message() << height << " " << int{character});
            const auto glyph = renderer.RenderGlyph(character);
            ExpectSame(glyph.get(), plain.Render(character));
            EXPECT_TRUE(character != u'A' || glyph->Width * 2 > renderer.canvasWidth);
        }
    }
    settings.GlyphHeight = 1024;
    MGlyphRenderer renderer(nullptr);
    EXPECT_TRUE(renderer.ready);
    EXPECT_EQ(renderer.RenderGlyph(u'A'), nullptr) << "no font has this size";
}

TEST_F(GlyphRenderer, RunFillsSlotsAndTakesMetricsFromA) {
    MColourFont font(nullptr);
    settings.Selected.fill(0);
    settings.Selected[32] = 1;
    EXPECT_FALSE(font.GenerateSelectedCharacters()) << "the space is no character to render";
    settings.Selected['H'] = 1;
    EXPECT_TRUE(font.GenerateSelectedCharacters());
    EXPECT_EQ(font.CapHeight + font.Baseline, 0) << "no other letter is measured";
    EXPECT_EQ(Headless::record.progressPercents.back(), 100) << "of those that are selected";

    settings.Selected.fill(1);
    font.Glyphs[4] = std::make_unique<MGlyph>(0xA0, 5, 5, 0, 0, true);
    EXPECT_TRUE(font.GenerateSelectedCharacters());
    // All but the no-break space and, where the font draws nothing for it, the soft hyphen.
    EXPECT_GE(font.GlyphCount(), 188);
    EXPECT_EQ(font.GetGlyph(0xA0), nullptr) << "its old glyph is gone too";
    ASSERT_TRUE(font.GetGlyph(u'A'));
    const MRows rows = RowsOf(*font.GetGlyph(u'A'));
    EXPECT_EQ(font.Baseline, font.GetGlyph(u'A')->Height - rows.end);
    EXPECT_EQ(font.CapHeight, rows.Count());
    EXPECT_GT(font.CapHeight, 40);
    EXPECT_TRUE(Headless::record.progressTexts.back().Equals(u"Creating characters..."));

    // Metrics that are known stay; unknown ones are measured again.
    settings.GlyphHeight = 50;
    settings.Selected.fill(0);
    settings.Selected['A'] = 1;
    const std::int32_t capHeight = font.CapHeight;
    font.GenerateSelectedCharacters();
    EXPECT_EQ(font.GetGlyph(u'A')->Height, 50);
    EXPECT_EQ(font.CapHeight, capHeight);
    font.Baseline = 0;
    font.GenerateSelectedCharacters();
    EXPECT_LT(font.CapHeight, capHeight);
}

TEST_F(GlyphRenderer, FullTableAndUnreadyRendererChangeNothing) {
    MColourFont font(nullptr);
    for (std::size_t i = 0; i < MColourFont::SlotCount; ++i)
        font.Glyphs[i] = std::make_unique<MGlyph>(static_cast<std::uint32_t>(1000 + i), 1, 1, 0, 0, false);
    EXPECT_TRUE(font.GenerateSelectedCharacters());
    EXPECT_EQ(font.GetGlyph(u'A'), nullptr);
    EXPECT_EQ(font.CapHeight, 0);

    settings.GlyphHeight = 0;
    Headless::Reset();
    EXPECT_TRUE(font.GenerateSelectedCharacters());
    EXPECT_TRUE(Headless::record.progressTexts.empty());
}
