// The preview of the largest picture that a font is packed into: shrinking it once, which shall take at most
// half a second, painting it again, and painting while the window is resized. The bound is one pass over the
// picture's pixels.

#include "shell/Preview.h"

#include "document/MSettings.h"
#include "platform/headless/Headless.h"
#include "shell/CurrentFont.h"
#include "shell/Program.h"
#include "shell/Shell.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>

namespace {

constexpr std::uint32_t largest = 16384;

MColourFont& LargeFont() {
    static MSettings settings;
    Settings = &settings;
    if (CurrentFont) return *CurrentFont;
    MainWindow = Desktop::OpenMainWindow({}, {});
    Headless::script.client = {0, 0, 1600, 900};
    MColourFont& font = CurrentOrNewFont();
    font.Repack();
    font.Picture.Free();
    font.Picture = MPicture(largest, largest, FormatRGBA8);
    for (std::uint32_t y = 0; y < largest; ++y)
        std::memset(font.Picture.Pixels + std::size_t{font.Picture.Stride} * y, static_cast<int>(y * 7 % 256),
                    font.Picture.Stride);
    return font;
}

void ShrinkAndPaintBound(benchmark::State& state) {
    const MPicture& picture = LargeFont().Picture;
    const std::size_t words = std::size_t{picture.Stride} * picture.Height / 8;
    for (auto _ : state) {
        std::uint64_t sum = 0;
        const auto* const first = reinterpret_cast<const std::uint64_t*>(picture.Pixels);
        for (std::size_t i = 0; i < words; ++i)
            sum += first[i];
        benchmark::DoNotOptimize(sum);
    }
}

void ShrinkAndPaint(benchmark::State& state) {
    const MColourFont& font = LargeFont();
    for (auto _ : state) {
        ForgetPreview();
        font.Draw();
        Headless::record = {};
    }
}

void PaintAgain(benchmark::State& state) {
    LargeFont().Draw();
    for (auto _ : state) {
        PaintMainWindow();
        Headless::record = {};
    }
}

void PaintWhileResized(benchmark::State& state) {
    Headless::script.client = {0, 0, 1600, 900};
    LargeFont().Draw();
    Headless::script.client = {0, 0, 1500, 850};
    for (auto _ : state) {
        DrawPreviewQuickly();
        Headless::record = {};
    }
    Headless::script.client = {0, 0, 1600, 900};
}

BENCHMARK(ShrinkAndPaintBound)->Unit(benchmark::kMillisecond);
BENCHMARK(ShrinkAndPaint)->Unit(benchmark::kMillisecond);
BENCHMARK(PaintAgain)->Unit(benchmark::kMillisecond);
BENCHMARK(PaintWhileResized)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
