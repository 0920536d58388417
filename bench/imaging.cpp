// Picture operations beside their plain forms, and saving beside the bare library, on 4096 by 4096 pixels of
// format 7. Read the ratio off one run: the plain or bare row stands below ours.
#include "foundation/MFile.h"
#include "imaging/PlainForms.h"

#include <benchmark/benchmark.h>
#include <png.h>

#include <filesystem>
#include <memory>

namespace {

constexpr std::uint32_t side = 4096;

// Discs on nothing, as in a packed font picture: colour gradients inside, soft edges, wide gaps.
MPicture Discs(std::uint32_t pitch, std::uint32_t radius) {
    MPicture picture(side, side, FormatRGBA8);
    for (std::uint32_t y = 0; y < side; ++y) {
        auto* pixel = reinterpret_cast<MColour*>(picture.Pixels + std::size_t{y} * picture.Stride);
        for (std::uint32_t x = 0; x < side; ++x) {
            const float dx = static_cast<float>(x % pitch) - static_cast<float>(pitch) / 2;
            const float dy = static_cast<float>(y % pitch) - static_cast<float>(pitch) / 2;
            const float coverage = static_cast<float>(radius) - std::sqrt(dx * dx + dy * dy);
            const auto alpha = static_cast<std::uint8_t>(std::clamp(coverage, 0.0F, 1.0F) * 255.0F);
            const MColour colour(static_cast<std::uint8_t>(x % pitch), static_cast<std::uint8_t>(y % pitch),
                                 static_cast<std::uint8_t>(x / pitch * 37), alpha);
            pixel[x] = alpha == 0 ? MColour(0, 0, 0, 0) : colour;
        }
    }
    return picture;
}

// Pixels of their own for each run, since bleeding changes them.
MPicture DeepCopy(const MPicture& picture) {
    MPicture copy(picture.Width, picture.Height, picture.Format);
    copy.CopyPixels(picture);
    return copy;
}

const MPicture& Sparse() {
    static const MPicture picture = Discs(256, 90);
    return picture;
}

const MPicture& Dense() {
    static const MPicture picture = Discs(64, 31);
    return picture;
}

void Resample(benchmark::State& state) {
    const auto size = static_cast<std::uint32_t>(state.range(0));
    for (auto _ : state)
        MPicture(Sparse(), size, size, FormatRGBA8, true, false).Free();
}
void ResamplePlain(benchmark::State& state) {
    const auto size = static_cast<std::uint32_t>(state.range(0));
    for (auto _ : state) {
        MPicture target(size, size, FormatRGBA8);
        plain::Resample(Sparse(), target);
        target.Free();
    }
}
BENCHMARK(Resample)->Arg(2048)->Arg(2900)->Arg(1000)->Arg(256)->Arg(8192)->Unit(benchmark::kMillisecond);
BENCHMARK(ResamplePlain)->Arg(2048)->Arg(2900)->Arg(1000)->Arg(256)->Arg(8192)->Unit(benchmark::kMillisecond);

template<void (*Bleed)(MPicture&), const MPicture& (*Source)()>
void BleedBench(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        MPicture picture = DeepCopy(Source());
        state.ResumeTiming();
        Bleed(picture);
        state.PauseTiming();
        picture.Free();
        state.ResumeTiming();
    }
}
void BleedOurs(MPicture& picture) {
    picture.BleedColours();
}
BENCHMARK(BleedBench<BleedOurs, Sparse>)->Name("BleedColours/sparse")->Unit(benchmark::kMillisecond);
BENCHMARK(BleedBench<plain::BleedColours, Sparse>)
    ->Name("BleedColoursPlain/sparse")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BleedBench<BleedOurs, Dense>)->Name("BleedColours/dense")->Unit(benchmark::kMillisecond);
BENCHMARK(BleedBench<plain::BleedColours, Dense>)
    ->Name("BleedColoursPlain/dense")
    ->Unit(benchmark::kMillisecond);

void Margins(benchmark::State& state) {
    for (auto _ : state) {
        std::uint32_t top, right, bottom, left;
        Sparse().GetMargins(top, right, bottom, left);
        benchmark::DoNotOptimize(top + right + bottom + left);
    }
}
BENCHMARK(Margins)->Unit(benchmark::kMicrosecond);

MString BenchFile(const char* name) {
    return MString((std::filesystem::temp_directory_path() / name).c_str());
}

void SavePng(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        MPicture picture = DeepCopy(Sparse());
        state.ResumeTiming();
        picture.Save(BenchFile("lettrino-bench.png"));
        state.PauseTiming();
        picture.Free();
        state.ResumeTiming();
    }
}
BENCHMARK(SavePng)->Unit(benchmark::kMillisecond);

// The same pixels, bled before the clock starts.
void SavePngBare(benchmark::State& state) {
    MPicture picture = DeepCopy(Sparse());
    picture.BleedColours();
    const std::string path = std::filesystem::temp_directory_path() / "lettrino-bench-bare.png";
    for (auto _ : state) {
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, file);
        png_set_IHDR(png, info, side, side, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        png_set_bgr(png);
        for (std::size_t y = 0; y < side; ++y)
            png_write_row(png, picture.Pixels + y * picture.Stride);
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
    }
    picture.Free();
}
BENCHMARK(SavePngBare)->Unit(benchmark::kMillisecond);

} // namespace
