// A painting of the character grid, 700 by 600 pixels: from scratch, and after one mark changed, which happens
// at each step of a drag over the grid. The seam does without a display, so what it takes to bring the pixels
// to the screen is not in these numbers but for one copy.
#include "document/MSettings.h"
#include "editors/MCharacterGrid.h"
#include "platform/headless/Headless.h"
#include "platform/text/MSystemFonts.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string>

namespace {

struct Face {
    const char* family;
    const char* file; // from the packages of the tests in a browser; null for an installed font
};

// An ordinary font; bitmaps, layers, and gradients with transparency.
constexpr std::array faces{
    Face{"Liberation Sans", nullptr},
    Face{"Noto Color Emoji", nullptr},
    Face{"Bungee Tint", FONTSOURCE "bungee-tint/files/bungee-tint-latin-400-normal.woff2"},
    Face{"Kalnia Glaze Thin", FONTSOURCE "kalnia-glaze/files/kalnia-glaze-latin-400-normal.woff2"},
};

Desktop::WindowHandle AnyWindow() {
    static char window;
    return reinterpret_cast<Desktop::WindowHandle>(&window);
}

void PaintGrid(benchmark::State& state, bool whole) {
    const auto& [family, file] = faces[static_cast<std::size_t>(state.range(0))];
    static MSettings settings;
    settings.FontName = family;
    settings.ColourFont = state.range(1) != 0;
    Settings = &settings;
    if (!IsFamilyInstalled(family) && (!file || !AddFontFile(file))) {
        state.SkipWithError("the font is not there; run npm ci in tests/web");
        return;
    }
    state.SetLabel(std::string(family) + (settings.ColourFont ? " in colour" : " plain"));
    MCharacterGrid grid;
    grid.Area = {10, 10, 710, 610};
    bool wanted = false;
    grid.Paint(AnyWindow());
    for ([[maybe_unused]] auto _ : state) {
        if (whole) grid.Release();
        MCharacterGrid::Mark(77, wanted = !wanted);
        grid.Paint(AnyWindow());
        Headless::record.paintings.clear();
    }
    Settings = nullptr;
}

void PaintWhole(benchmark::State& state) {
    PaintGrid(state, true);
}

void PaintOneChange(benchmark::State& state) {
    PaintGrid(state, false);
}

BENCHMARK(PaintWhole)->ArgsProduct({{0, 1, 2, 3}, {0, 1}})->Unit(benchmark::kMillisecond);
BENCHMARK(PaintOneChange)->ArgsProduct({{0, 1, 2, 3}, {0, 1}})->Unit(benchmark::kMillisecond);

} // namespace
