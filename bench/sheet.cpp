// A sheet of 8000 x 8000 pixels, beside one plain pass over it, which makes a mask of the pixels that differ
// from white.
#include "glyphs/SheetCutter.h"
#include "glyphs/SheetMaker.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t side = 8000;

// The sheet of a face, over and over to the picture's width but for its text, which is once on it; the rest is
// ground.
const MPicture& Sheet(SheetLook::Ground ground, MString& text) {
    static std::array<MPicture, 3> sheets;
    static MString texts;
    MPicture& picture = sheets[static_cast<std::size_t>(ground)];
    if (!picture.IsValid()) {
        SheetLook look;
        look.ground = ground;
        look.height = 420;
        look.extraGap = 40;
        look.lines = {u"ABCDEFGHIJKLMN", u"OPQRSTUVWXYZ", u"abcdefghijklmnopqr", u"stuvwxyz0123456789",
                      u".,:;!?'\"()[]-+=/&%@#"};
        const MadeSheet made(look);
        texts = made.text;
        picture = MPicture(side, side, FormatRGBA8);
        for (std::uint32_t y = 0; y < side; ++y) {
            std::uint8_t* const to = picture.Pixels + std::size_t{y} * picture.Stride;
            const std::uint8_t* const row =
                made.picture.Pixels + std::size_t{std::min(y, made.picture.Height - 1)} * made.picture.Stride;
            for (std::uint32_t x = 0; x < side; ++x)
                std::memcpy(to + std::size_t{x} * 4, row + std::size_t{std::min(x, made.picture.Width - 1)} * 4,
                            4);
        }
    }
    text = texts;
    return picture;
}

void PlainPass(benchmark::State& state) {
    MString text;
    const MPicture& picture = Sheet(static_cast<SheetLook::Ground>(state.range(0)), text);
    std::vector<std::uint8_t> mask(std::size_t{side} * side);
    for ([[maybe_unused]] auto _ : state) {
        for (std::uint32_t y = 0; y < side; ++y) {
            const std::uint8_t* const row = picture.Pixels + std::size_t{y} * picture.Stride;
            for (std::size_t x = 0; x < side; ++x) {
                const int least = std::min({row[x * 4], row[x * 4 + 1], row[x * 4 + 2]});
                mask[y * std::size_t{side} + x] = least < 240 ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(mask.data());
    }
}

void Find(benchmark::State& state) {
    MString text;
    const MPicture& picture = Sheet(static_cast<SheetLook::Ground>(state.range(0)), text);
    for ([[maybe_unused]] auto _ : state) {
        const MSheet sheet = FindSheetLetters(picture, text, {});
        if (!sheet.problem.empty()) state.SkipWithError(sheet.problem.c_str());
    }
}

// With the glyphs, whose paper is taken away.
void Cut(benchmark::State& state) {
    MString text;
    const MPicture& picture = Sheet(static_cast<SheetLook::Ground>(state.range(0)), text);
    MSettings settings;
    Settings = &settings;
    for ([[maybe_unused]] auto _ : state) {
        const MSheet sheet = FindSheetLetters(picture, text, {});
        MColourFont font(nullptr);
        const std::string failure = AddSheetGlyphs(font, true, sheet, picture, {});
        if (!failure.empty()) state.SkipWithError(failure.c_str());
    }
    Settings = nullptr;
}

// 0: transparent, 1: white, 2: uneven paper with grain.
BENCHMARK(PlainPass)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(Find)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(Cut)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

} // namespace
