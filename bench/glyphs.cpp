// A whole run over 223 characters, beside the bare library calls that bound it: FreeType loading and rendering
// the same outlines at twice the size. Each side opens and sizes its font once per run: the run through the
// font mapper, measuring included, and the bare loop from the file. The bare calls leave nothing behind, while
// a run leaves the glyphs' pixels, 285 MB at height 1024: so a second bound writes as many bytes of fresh
// memory besides.
#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "glyphs/MGlyphRenderer.h"
#include "platform/text/MSystemFonts.h"

#include <benchmark/benchmark.h>
#include <ft2build.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H

namespace {

constexpr const char* family = "Liberation Sans";

MSettings& UseSettings(std::int32_t height) {
    static MSettings settings;
    settings.FontName = family;
    settings.GlyphHeight = height;
    std::fill(settings.Selected.begin(), settings.Selected.end(), std::uint8_t{1});
    Settings = &settings;
    return settings;
}

// How many bytes each glyph's picture has.
std::vector<std::size_t> PictureSizes() {
    MColourFont font(nullptr);
    font.GenerateSelectedCharacters();
    std::vector<std::size_t> sizes;
    for (const auto& glyph : font.Glyphs) {
        if (glyph) sizes.push_back(std::size_t{glyph->Picture.Stride} * glyph->Picture.Height);
    }
    return sizes;
}

void WriteFreshBlocks(const std::vector<std::size_t>& sizes) {
    std::vector<std::unique_ptr<std::uint8_t[]>> blocks;
    for (const std::size_t size : sizes) {
        blocks.emplace_back(new std::uint8_t[size]);
        std::memset(blocks.back().get(), 1, size);
        benchmark::DoNotOptimize(blocks.back().get());
    }
}

template<bool withResult>
void BareFreeType(benchmark::State& state) {
    UseSettings(static_cast<std::int32_t>(state.range(0)));
    const std::int32_t cell = MGlyphRenderer(nullptr).fontHeight * 2;
    const std::string file = MatchFont(family, 400, false)->file;
    const std::vector<std::size_t> sizes = withResult ? PictureSizes() : std::vector<std::size_t>();
    FT_Library library = nullptr;
    FT_Init_FreeType(&library);
    for ([[maybe_unused]] auto _ : state) {
        FT_Face face = nullptr;
        FT_New_Face(library, file.c_str(), 0, &face);
        const auto* const os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
        FT_Set_Char_Size(
            face, 0, FT_Long{cell} * 64 * face->units_per_EM / (os2->usWinAscent + os2->usWinDescent), 72, 72);
        for (FT_ULong code = 33; code < 256; ++code) {
            FT_Load_Char(face, code, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
            FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL);
            benchmark::DoNotOptimize(face->glyph->bitmap.buffer);
        }
        FT_Done_Face(face);
        WriteFreshBlocks(sizes);
    }
    FT_Done_FreeType(library);
}

void GenerateSelectedCharacters(benchmark::State& state) {
    UseSettings(static_cast<std::int32_t>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        MColourFont font(nullptr);
        font.GenerateSelectedCharacters();
        benchmark::DoNotOptimize(font.Glyphs.data());
    }
}

BENCHMARK(BareFreeType<false>)
    ->Name("GenerateSelectedCharactersBare")
    ->Arg(100)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BareFreeType<true>)
    ->Name("GenerateSelectedCharactersBound")
    ->Arg(100)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(GenerateSelectedCharacters)->Arg(100)->Arg(512)->Arg(1024)->Unit(benchmark::kMillisecond);

} // namespace
