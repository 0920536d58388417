// A whole run over 223 characters in the font's own colours, beside what bounds it: Cairo filling the same
// outlines, in plain colours, on a surface of the same size. The bare loop has its face open, its glyphs chosen
// and its surface made beforehand; the run opens, measures and lays out anew each time. Real fonts come from
// the packages of the tests in a browser (tests/web).
#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "glyphs/MGlyphRenderer.h"
#include "platform/text/MColourTable.h"
#include "platform/text/MGlyphPath.h"
#include "platform/text/MSystemFonts.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <algorithm>
#include <string>

namespace {

struct ColourFace {
    const char* family;
    const char* file;
};

// Layers, linear gradients, gradients with transparency.
constexpr std::array faces{
    ColourFace{"Bungee Tint", "bungee-tint/files/bungee-tint-latin-400-normal.woff2"},
    ColourFace{"Foldit Thin", "foldit/files/foldit-latin-700-normal.woff2"},
    ColourFace{"Kalnia Glaze Thin", "kalnia-glaze/files/kalnia-glaze-latin-400-normal.woff2"},
};

bool Use(benchmark::State& state, const ColourFace& face) {
    static MSettings settings;
    settings.FontName = face.family;
    settings.ColourFont = true;
    settings.GlyphHeight = 100;
    std::fill(settings.Selected.begin(), settings.Selected.end(), std::uint8_t{1});
    Settings = &settings;
    if (!IsFamilyInstalled(face.family) &&
        !AddFontFile(MString((std::string(FONTSOURCE) + face.file).c_str()))) {
        state.SkipWithError("the font is not there; run npm ci in tests/web");
        return false;
    }
    state.SetLabel(face.family);
    return true;
}

// The outlines that a character's paints are made of; its own where it has none.
std::vector<std::uint32_t> OutlinesOf(const MOpenFace& face, const MColourTable& table, char16_t character) {
    const std::uint32_t glyph = face.GlyphIndex(character);
    std::vector<std::uint32_t> outlines;
    const auto tree = table.Read(static_cast<std::uint16_t>(glyph));
    if (!tree) return {glyph};
    for (const MPaint& paint : tree->paints)
        if (paint.kind == MPaintKind::Glyph) outlines.push_back(paint.glyph);
    return outlines;
}

void GenerateInColourBare(benchmark::State& state) {
    const ColourFace& wish = faces[static_cast<std::size_t>(state.range(0))];
    if (!Use(state, wish)) return;
    const MGlyphRenderer sizes(nullptr);
    const int em = static_cast<int>(200 * sizes.colourSizeFactor);
    const MOpenFace face(*MatchFont(wish.family, 400, false));
    const auto colr = face.Table("COLR");
    const auto cpal = face.Table("CPAL");
    const MColourTable table(colr, cpal);
    std::vector<std::vector<std::uint32_t>> characters;
    for (char16_t code = 33; code < 256; ++code)
        characters.push_back(OutlinesOf(face, table, code));

    cairo_surface_t* const image =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, sizes.canvasWidth, sizes.canvasHeight);
    cairo_t* const context = cairo_create(image);
    const double scale = static_cast<double>(em) / face.unitsPerEm;
    for ([[maybe_unused]] auto _ : state) {
        for (const auto& outlines : characters) {
            cairo_identity_matrix(context);
            cairo_translate(context, 10, 150);
            cairo_scale(context, scale, -scale);
            double red = 1;
            for (const std::uint32_t outline : outlines) {
                cairo_new_path(context);
                AddGlyphPath(context, face, outline, false);
                cairo_set_source_rgb(context, red, 0.5, 0.2);
                cairo_fill(context);
                red *= 0.8;
            }
        }
        benchmark::DoNotOptimize(cairo_image_surface_get_data(image));
    }
    cairo_destroy(context);
    cairo_surface_destroy(image);
}

void GenerateInColour(benchmark::State& state) {
    if (!Use(state, faces[static_cast<std::size_t>(state.range(0))])) return;
    for ([[maybe_unused]] auto _ : state) {
        MColourFont font(nullptr);
        font.GenerateSelectedCharacters();
        benchmark::DoNotOptimize(font.Glyphs.data());
    }
}

BENCHMARK(GenerateInColourBare)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(GenerateInColour)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

} // namespace
