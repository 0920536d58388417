#include "glyphs/KernFromFont.h"

#include "DocumentFixture.h"
#include "glyphs/MGlyphRenderer.h"
#include "glyphs/Pixels.h"

#include <hb.h>

#include <array>
#include <cmath>
#include <map>

namespace {

using KernFromFontTest = DocumentTest;

// The file's own kerning, set by HarfBuzz on its own reader of fonts, as text with the feature and without.
class Shaper {
public:
    explicit Shaper(const char* file) {
        hb_blob_t* const blob = hb_blob_create_from_file(file);
        hb_face_t* const face = hb_face_create(blob, 0);
        font = hb_font_create(face);
        unitsPerEm = hb_face_get_upem(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
    }
    Shaper(const Shaper&) = delete;
    Shaper& operator=(const Shaper&) = delete;
    ~Shaper() { hb_font_destroy(font); }

    double Kerning(char16_t left, char16_t right) const {
        return (Width(left, right, "kern") - Width(left, right, "-kern")) / unitsPerEm;
    }

private:
    hb_font_t* font = nullptr;
    double unitsPerEm = 1;

    double Width(char16_t left, char16_t right, const char* kerning) const {
        std::array<hb_feature_t, 3> features{};
        for (std::size_t i = 0; const char* name : {kerning, "-liga", "-calt"})
            hb_feature_from_string(name, -1, &features[i++]);
        const std::uint16_t text[] = {left, right};
        hb_buffer_t* const buffer = hb_buffer_create();
        hb_buffer_add_utf16(buffer, text, 2, 0, 2);
        hb_buffer_guess_segment_properties(buffer);
        hb_shape(font, buffer, features.data(), features.size());
        unsigned count = 0;
        const auto* const positions = hb_buffer_get_glyph_positions(buffer, &count);
        double width = 0;
        for (unsigned i = 0; i < count; ++i)
            width += positions[i].x_advance;
        hb_buffer_destroy(buffer);
        return width;
    }
};

} // namespace

TEST_F(KernFromFontTest, EqualsTheAdvancesOfAShaperAtEveryHeight) {
    const std::pair<const char*, const char*> faces[] = {
        {"DejaVu Sans", "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"},
        {"DejaVu Serif", "/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf"},
        {"Liberation Serif", "/usr/share/fonts/truetype/liberation/LiberationSerif-Regular.ttf"}};
    for (const auto& [family, file] : faces) {
        const Shaper shaper(file);
        for (const std::int32_t height : {24, 100, 300}) {
            settings.FontName = family;
            settings.GlyphHeight = height;
            MColourFont font(nullptr);
            // The glyphs' own pictures do not matter, only which characters there are.
            for (char16_t c = 33; c <= 255; ++c)
                AddGlyph(font, c, 1, 1);
            ASSERT_EQ(KernFromFont(font), KernFromFontResult::Kerned);
            std::map<std::pair<std::uint32_t, std::uint32_t>, std::int32_t> amounts;
            for (const MKerningPair& pair : font.Kerning)
                amounts[{pair.Left, pair.Right}] = pair.Amount;
            // An em in pixels by the advance of a wide letter, as it is rendered.
            const double em = MGlyphRenderer(nullptr).EmPixels();
            std::size_t kerned = 0;
            for (char16_t l = 33; l <= 255; ++l) {
                for (char16_t r = 33; r <= 255; ++r) {
                    const double exact = shaper.Kerning(l, r) * em;
                    const std::int32_t amount = amounts.contains({l, r}) ? amounts.at({l, r}) : 0;
                    ASSERT_LE(std::abs(amount - exact), 0.5 + 1e-9) << height << " " << int{l} << " " << int{r};
                    kerned += amount != 0;
                }
            }
            EXPECT_EQ(kerned, amounts.size());
            EXPECT_GT(kerned, 50U) << family << " " << height;
        }
    }
}

TEST_F(KernFromFontTest, TheEmIsThatOfTheRenderedGlyphs) {
    settings.FontName = "DejaVu Sans";
    settings.GlyphHeight = 400;
    settings.Selected.fill(0);
    settings.Selected[u'H'] = 1;
    MColourFont font(nullptr);
    ASSERT_TRUE(font.GenerateSelectedCharacters());
    // In the face's outline it is 1493 of 2048 units high.
    EXPECT_NEAR(MGlyphRenderer(nullptr).EmPixels() * 1493 / 2048, RowsOf(*font.GetGlyph(u'H')).Count(), 1.5);
}

TEST_F(KernFromFontTest, AFaceWithoutKerningChangesNothing) {
    settings.FontName = "DejaVu Sans Mono";
    settings.GlyphHeight = 100;
    MColourFont font(nullptr);
    AddGlyph(font, u'A', 1, 1);
    AddGlyph(font, u'V', 1, 1);
    font.SetKerning(u'A', u'V', -3);
    EXPECT_EQ(KernFromFont(font), KernFromFontResult::NoKerning);
    EXPECT_EQ(font.KerningCount(), 1);
}
