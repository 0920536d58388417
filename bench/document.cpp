// Packing and kerning, beside what bounds them.

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "document/OpticalKerning.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

constexpr MColour ink{200, 30, 30, 255};

// 223 glyphs with round ink, no two alike, like those of a font.
class Font {
public:
    MSettings settings;
    MColourFont font{(Settings = &settings, nullptr)};

    explicit Font(std::int32_t height) {
        for (char16_t c = 33; c <= 255; ++c) {
            const std::int32_t width = height * (40 + c % 50) / 100;
            auto glyph = std::make_unique<MGlyph>(c, width, height, 1, 1, false);
            const double squeeze = 0.30 + c % 17 * 0.01;
            for (std::int32_t y = 0; y < height; ++y) {
                const double v = (y - height * 0.5) / (height * squeeze);
                if (v * v >= 1) continue;
                const auto half = static_cast<std::int32_t>(width * 0.45 * std::sqrt(1 - v * v));
                for (std::int32_t x = width / 2 - half; x < width / 2 + half; ++x)
                    glyph->SetPixel(x, y, ink);
            }
            font.Glyphs[static_cast<std::size_t>(font.ClaimSlot(c))] = std::move(glyph);
        }
    }
    ~Font() { Settings = nullptr; }
};

// All pairs of 223 glyphs, measured and given their amounts.
void OpticalKerning(benchmark::State& state) {
    const Font f(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(MOpticalKerning(f.font).Pairs({}, {}));
}

// What each key in its dialog costs once the pairs are measured.
void OpticalKerningFollowsModels(benchmark::State& state) {
    const Font f(static_cast<std::int32_t>(state.range(0)));
    const MOpticalKerning optical(f.font);
    const std::vector<MKerningPair> models(20, {u'A', u'V', -5});
    for (auto _ : state)
        benchmark::DoNotOptimize(optical.Pairs({}, models));
}

void Repack(benchmark::State& state) {
    Font f(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state)
        f.font.Repack();
}

// The bound: fresh memory cleared once, and every glyph's bytes copied once.
void RepackBound(benchmark::State& state) {
    Font f(static_cast<std::int32_t>(state.range(0)));
    f.font.Repack();
    const std::size_t size = std::size_t{f.font.Picture.Stride} * f.font.Picture.Height;
    for (auto _ : state) {
        auto* const picture = new std::uint8_t[size];
        std::memset(picture, 0, size);
        std::size_t at = 0;
        for (const auto& glyph : f.font.Glyphs) {
            const std::size_t bytes = std::size_t{glyph->Picture.Stride} * glyph->Picture.Height;
            std::memcpy(picture + at, glyph->Picture.Pixels, bytes);
            at += bytes;
        }
        benchmark::DoNotOptimize(picture[size / 2]);
        benchmark::ClobberMemory();
        delete[] picture;
    }
}

void Kerning(benchmark::State& state) {
    Font f(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state) {
        f.font.GenerateKerning();
        f.font.SortKerningByAmount();
    }
    state.counters["pairs"] = f.font.KerningCount();
}

// The steps as they are told: a scan pixel by pixel for each pair, a list grown by one, a bubble sort.
void KerningPlain(benchmark::State& state) {
    Font f(static_cast<std::int32_t>(state.range(0)));
    MColourFont& font = f.font;
    std::vector<MKerningPair> fast;
    font.GenerateKerning();
    font.SortKerningByAmount();
    fast.assign(font.Kerning.begin(), font.Kerning.end());
    for (auto _ : state) {
        font.ClearKerning();
        for (const auto& l : font.Glyphs) {
            for (const auto& r : font.Glyphs) {
                std::int32_t smallest = 100000;
                for (std::int32_t y = 0; y < l->Height; ++y) {
                    std::int32_t gapL = -1;
                    std::int32_t gapR = -1;
                    for (std::int32_t x = l->Width - 1; x >= 0 && gapL < 0; --x) {
                        if (l->GetPixel(x, y).a != 0) gapL = l->Width - x - 1;
                    }
                    for (std::int32_t x = 0; x < r->Width && gapR < 0; ++x) {
                        if (r->GetPixel(x, y).a != 0) gapR = x;
                    }
                    if (gapL >= 0 && gapR >= 0) smallest = std::min(smallest, gapL + gapR);
                }
                if (smallest != 0 && smallest < 100000) font.SetKerning(l->Character, r->Character, -smallest);
            }
        }
        for (bool swapped = true; swapped;) {
            swapped = false;
            for (std::int32_t i = 0; i + 1 < font.Kerning.count; ++i) {
                if (font.Kerning.data[i].Amount <= font.Kerning.data[i + 1].Amount) continue;
                std::swap(font.Kerning.data[i], font.Kerning.data[i + 1]);
                swapped = true;
            }
        }
    }
    if (!std::ranges::equal(fast, font.Kerning)) state.SkipWithError("the two lists differ");
}

// A picture of 4096 x 4096 as a glyph of height 512: blocks of 6 x 6 points, 8 apart.
MPicture LargePicture() {
    MPicture picture(4096, 4096, FormatRGBA8);
    for (std::size_t i = 0; i < std::size_t{picture.Stride} * picture.Height; ++i) {
        picture.Pixels[i] = static_cast<std::uint8_t>(i * 2654435761U >> 13);
    }
    return picture;
}

void AddPicture(benchmark::State& state) {
    MSettings settings;
    Settings = &settings;
    settings.GlyphHeight = 512;
    MColourFont font(nullptr);
    MPicture picture = LargePicture();
    for (auto _ : state)
        font.AddPictureGlyph(u'x', picture, 0, 0, false);
    picture.Free();
    Settings = nullptr;
}

// One pass over the points that are needed.
void AddPictureBound(benchmark::State& state) {
    MPicture picture = LargePicture();
    for (auto _ : state) {
        std::uint32_t sums[4] = {};
        for (std::size_t y = 0; y < 4096; y += 8) {
            for (std::size_t j = 0; j < 6; ++j) {
                const std::uint8_t* const row = picture.Pixels + (y + j) * picture.Stride;
                for (std::size_t x = 0; x < 4096; x += 8) {
                    for (std::size_t i = 0; i < 6; ++i) {
                        for (std::size_t c = 0; c < 4; ++c)
                            sums[c] += row[(x + i) * 4 + c];
                    }
                }
            }
        }
        benchmark::DoNotOptimize(sums);
    }
    picture.Free();
}

} // namespace

BENCHMARK(Repack)->Arg(100)->Arg(512)->Unit(benchmark::kMillisecond);
BENCHMARK(RepackBound)->Arg(100)->Arg(512)->Unit(benchmark::kMillisecond);
BENCHMARK(Kerning)->Arg(512)->Unit(benchmark::kMillisecond);
BENCHMARK(KerningPlain)->Arg(512)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(AddPicture)->Unit(benchmark::kMillisecond);
BENCHMARK(AddPictureBound)->Unit(benchmark::kMillisecond);
BENCHMARK(OpticalKerning)->Arg(100)->Arg(512)->Unit(benchmark::kMillisecond);
BENCHMARK(OpticalKerningFollowsModels)->Arg(512)->Unit(benchmark::kMillisecond);
