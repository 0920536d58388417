// Font files of pictures beside the work that can't be left out: the pictures' PNGs, and for WOFF2 Brotli over
// as many bytes at the same quality.

#include "document/MSettings.h"
#include "formats/webfont/MWebFontFile.h"
#include "imaging/codecs/MCodec.h"

#include <benchmark/benchmark.h>
#include <brotli/encode.h>

namespace {

class BenchFont {
public:
    MSettings settings;
    MColourFont font;

    explicit BenchFont(const benchmark::State& state) : font(Prepare(state)) {
        font.GenerateSelectedCharacters();
        font.GenerateKerning();
    }
    BenchFont(const BenchFont&) = delete;
    BenchFont& operator=(const BenchFont&) = delete;
    ~BenchFont() { Settings = nullptr; }

    MFontDescription Description() const { return DescribeFont(font, settings.GlyphHeight); }

private:
    Desktop::WindowHandle Prepare(const benchmark::State& state) {
        Settings = &settings;
        settings.FontName = "DejaVu Sans";
        settings.Weight = 700;
        settings.GlyphHeight = static_cast<std::int32_t>(state.range(0));
        settings.Selected.fill(1);
        return nullptr;
    }
};

std::vector<std::uint8_t> Build(const BenchFont& bench, MWebFontForm form) {
    const MFontDescription description = bench.Description();
    return BuildWebFont(PlanWebFont(description, "Bench"), form).Bytes;
}

// The pictures as the file has them, each written once.
void WritePngs(const MWebFont& font) {
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        if (glyph.Picture.IsEmpty()) continue;
        MPicture view = glyph.Source->Glyph->Picture;
        view.Pixels = view.PixelAddress(glyph.Picture.Left, glyph.Picture.Top);
        view.Width = static_cast<std::uint32_t>(glyph.Picture.Width);
        view.Height = static_cast<std::uint32_t>(glyph.Picture.Height);
        MByteSink sink;
        EncodePng(view, sink);
        benchmark::DoNotOptimize(sink.Bytes().data());
    }
}

void FontTrueType(benchmark::State& state) {
    const BenchFont bench(state);
    std::size_t size = 0;
    for (auto _ : state)
        size = Build(bench, MWebFontForm::TrueType).size();
    state.counters["bytes"] = static_cast<double>(size);
}

void FontTrueTypeBound(benchmark::State& state) {
    const BenchFont bench(state);
    const MFontDescription description = bench.Description();
    const MWebFont plan = PlanWebFont(description, "Bench");
    for (auto _ : state)
        WritePngs(plan);
}

void FontWoff2(benchmark::State& state) {
    const BenchFont bench(state);
    std::size_t size = 0;
    for (auto _ : state)
        size = PackAsWoff2(Build(bench, MWebFontForm::Woff2)).size();
    state.counters["bytes"] = static_cast<double>(size);
}

void FontWoff2Bound(benchmark::State& state) {
    const BenchFont bench(state);
    const MFontDescription description = bench.Description();
    const MWebFont plan = PlanWebFont(description, "Bench");
    const std::vector<std::uint8_t> font = Build(bench, MWebFontForm::Woff2);
    const int quality = font.size() > 2 << 20 ? 9 : BROTLI_MAX_QUALITY;
    std::vector<std::uint8_t> packed(BrotliEncoderMaxCompressedSize(font.size()));
    for (auto _ : state) {
        WritePngs(plan);
        std::size_t size = packed.size();
        BrotliEncoderCompress(quality, BROTLI_DEFAULT_WINDOW, BROTLI_MODE_FONT, font.size(), font.data(), &size,
                              packed.data());
    }
}

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->ArgName("height")->Unit(benchmark::kMillisecond);
    for (const int height : {64, 256, 1024})
        bench->Arg(height);
}

} // namespace

BENCHMARK(FontTrueType)->Apply(Sizes);
BENCHMARK(FontTrueTypeBound)->Apply(Sizes);
BENCHMARK(FontWoff2)->Apply(Sizes);
BENCHMARK(FontWoff2Bound)->Apply(Sizes);
