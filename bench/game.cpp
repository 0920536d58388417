// Fonts for games: the packing beside one plain pass of the library's packer, the whole export beside the
// writing of its picture.

#include "document/MSettings.h"
#include "formats/game/MGameFontExport.h"
#include "foundation/MFolders.h"

#include <benchmark/benchmark.h>

#define STBRP_STATIC
#define STB_RECT_PACK_IMPLEMENTATION
#include <stb_rect_pack.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::array families{"DejaVu Sans", "Liberation Serif"};

// All characters of a family, kerned.
class BenchFont {
public:
    MSettings settings;
    MColourFont font;
    MFontDescription description;

    explicit BenchFont(const benchmark::State& state) : font(Prepare(state)) {
        font.GenerateSelectedCharacters();
        font.GenerateKerning();
        description = DescribeFont(font, settings.GlyphHeight);
    }
    BenchFont(const BenchFont&) = delete;
    BenchFont& operator=(const BenchFont&) = delete;
    ~BenchFont() { Settings = nullptr; }

    std::vector<MAtlasBox> Boxes() const {
        std::vector<MAtlasBox> boxes;
        for (const MGlyphDescription& glyph : description.Glyphs)
            boxes.push_back({glyph.Ink.Width, glyph.Ink.Height, 0, 0, 0});
        return boxes;
    }

private:
    Desktop::WindowHandle Prepare(const benchmark::State& state) {
        Settings = &settings;
        settings.FontName = families[static_cast<std::size_t>(state.range(0))];
        settings.Weight = state.range(0) == 0 ? 700 : 400;
        settings.GlyphHeight = static_cast<std::int32_t>(state.range(1));
        settings.Selected.fill(1);
        return nullptr;
    }
};

void TellFill(benchmark::State& state, const BenchFont& bench, std::int64_t width, std::int64_t height) {
    std::int64_t ink = 0;
    for (const MAtlasBox& box : bench.Boxes())
        ink += std::int64_t{box.Width} * box.Height;
    state.counters["fill%"] = 100.0 * static_cast<double>(ink) / static_cast<double>(width * height);
    state.counters["glyphs"] = bench.font.GlyphCount();
}

void GamePacking(benchmark::State& state) {
    const BenchFont bench(state);
    const MAtlasOptions options{MPageSize::Free, 1, 4096};
    std::optional<MAtlasPages> pages;
    for (auto _ : state) {
        std::vector<MAtlasBox> boxes = bench.Boxes();
        pages = PackBoxes(boxes, options);
    }
    TellFill(state, bench, pages->Width, pages->Height);
}

// One pass over a strip as wide as the side of a square of the boxes' area.
void GamePackingBare(benchmark::State& state) {
    const BenchFont bench(state);
    std::int64_t area = 0;
    for (const MAtlasBox& box : bench.Boxes())
        area += std::int64_t{box.Width + 1} * (box.Height + 1);
    const int width = static_cast<int>(std::sqrt(static_cast<double>(area)) * 1.05);
    int bottom = 0;
    std::vector<stbrp_node> nodes(static_cast<std::size_t>(width));
    for (auto _ : state) {
        std::vector<stbrp_rect> rects;
        for (const MAtlasBox& box : bench.Boxes())
            rects.push_back({0, box.Width + 1, box.Height + 1, 0, 0, 0});
        stbrp_context context;
        stbrp_init_target(&context, width, 4096, nodes.data(), width);
        stbrp_pack_rects(&context, rects.data(), static_cast<int>(rects.size()));
        for (const stbrp_rect& rect : rects)
            bottom = std::max(bottom, rect.y + rect.h);
    }
    TellFill(state, bench, width + 1, bottom + 1);
}

MString Target(const char* name) {
    const fs::path folder = fs::temp_directory_path() / "lettrino-bench";
    fs::create_directories(folder);
    return FromSystemPath(folder / name);
}

void GameExport(benchmark::State& state) {
    const BenchFont bench(state);
    for (auto _ : state) {
        const MFontDescription description = DescribeFont(bench.font, bench.settings.GlyphHeight);
        const MGameFontPlan plan = PlanGameFont(description, MGameFontOptions{}, "game");
        if (!WriteGameFont(plan, Target("game.fnt"), nullptr).empty()) state.SkipWithError("not written");
    }
    state.counters["pairs"] = static_cast<double>(bench.description.Pairs.size());
}

void GameExportBound(benchmark::State& state) {
    const BenchFont bench(state);
    const MGameFontPlan plan = PlanGameFont(bench.description, MGameFontOptions{}, "game");
    WriteGameFont(plan, Target("game.fnt"), nullptr);
    MPicture page(Target("game_0.png"));
    for (auto _ : state)
        page.Save(Target("bound.png"));
    page.Free();
}

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"family", "height"})->Unit(benchmark::kMillisecond);
    for (const int family : {0, 1}) {
        for (const int height : {64, 256})
            bench->Args({family, height});
    }
}

} // namespace

BENCHMARK(GamePacking)->Apply(Sizes);
BENCHMARK(GamePackingBare)->Apply(Sizes);
BENCHMARK(GameExport)->Apply(Sizes);
BENCHMARK(GameExportBound)->Apply(Sizes);
