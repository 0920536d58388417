// The PNG of a packed font beside libpng's, writing and reading, in memory. The label tells the bytes.

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "imaging/MPixelBudget.h"
#include "imaging/codecs/MCodec.h"
#include "imaging/codecs/MPlainPng.h"

#include <benchmark/benchmark.h>
#include <png.h>

#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

// A packed font of all characters; its pixels stay for the whole run. The first number is 1 for a colour font,
// the second the glyph height; 0 makes noise instead, which no font is like.
const MPicture& Atlas(const benchmark::State& state) {
    static std::map<std::pair<std::int64_t, std::int64_t>, MPicture> all;
    MPicture& picture = all[{state.range(0), state.range(1)}];
    if (picture.IsValid()) return picture;
    if (state.range(1) == 0) {
        picture = MPicture(2048, 2048, FormatRGBA8);
        std::uint32_t seed = 1;
        for (std::size_t i = 0; i < std::size_t{picture.Stride} * picture.Height; ++i) {
            seed = seed * 1664525 + 1013904223;
            picture.Pixels[i] = static_cast<std::uint8_t>((i / 64 + (seed >> 28)) & 0xFF);
        }
        return picture;
    }
    MSettings settings;
    Settings = &settings;
    settings.FontName = state.range(0) == 1 ? "Noto Color Emoji" : "DejaVu Serif";
    settings.ColourFont = state.range(0) == 1;
    settings.GlyphHeight = static_cast<std::int32_t>(state.range(1));
    settings.Selected.fill(1);
    {
        MColourFont font(nullptr);
        font.GenerateSelectedCharacters();
        font.Repack();
        picture = std::exchange(font.Picture, MPicture());
    }
    picture.BleedColours();
    Settings = nullptr;
    return picture;
}

std::vector<png_byte> PackedByLibpng(const MPicture& picture) {
    std::vector<png_byte> file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp writer, png_bytep bytes, std::size_t count) {
            auto& all = *static_cast<std::vector<png_byte>*>(png_get_io_ptr(writer));
            all.insert(all.end(), bytes, bytes + count);
        },
        nullptr);
    png_set_IHDR(png, info, picture.Width, picture.Height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_bgr(png);
    for (std::size_t y = 0; y < picture.Height; ++y)
        png_write_row(png, picture.Pixels + y * picture.Stride);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

void Write(benchmark::State& state) {
    const MPicture& picture = Atlas(state);
    std::size_t size = 0;
    for (auto _ : state) {
        MByteSink sink;
        if (!EncodePng(picture, sink)) state.SkipWithError("not written");
        size = sink.Bytes().size();
    }
    state.SetLabel(std::to_string(size) + " bytes");
}

void WriteBare(benchmark::State& state) {
    const MPicture& picture = Atlas(state);
    std::size_t size = 0;
    for (auto _ : state)
        size = PackedByLibpng(picture).size();
    state.SetLabel(std::to_string(size) + " bytes");
}

template<bool (*Decode)(std::span<const std::uint8_t>, MPicture&)>
void ReadBy(benchmark::State& state) {
    const std::vector<png_byte> file = PackedByLibpng(Atlas(state));
    for (auto _ : state) {
        RestorePixelBudget();
        MPicture picture;
        if (!Decode(file, picture)) state.SkipWithError("not read");
        benchmark::DoNotOptimize(picture.Pixels);
        picture.Free();
    }
}

bool DecodeOurs(std::span<const std::uint8_t> file, MPicture& picture) {
    const MFontPictureScope ofFont;
    MByteSource source(file);
    return DecodePng(source, 0, picture);
}

bool DecodeBare(std::span<const std::uint8_t> file, MPicture& picture) {
    const MFontPictureScope ofFont;
    return DecodePngByLibpng(file, picture);
}

void Read(benchmark::State& state) {
    ReadBy<DecodeOurs>(state);
}
void ReadBare(benchmark::State& state) {
    ReadBy<DecodeBare>(state);
}

void Sizes(benchmark::internal::Benchmark* each) {
    each->Unit(benchmark::kMillisecond)
        ->Args({0, 100})
        ->Args({0, 512})
        ->Args({1, 512})
        ->Args({0, 1024})
        ->Args({0, 0});
}

BENCHMARK(Write)->Apply(Sizes);
BENCHMARK(WriteBare)->Apply(Sizes);
BENCHMARK(Read)->Apply(Sizes);
BENCHMARK(ReadBare)->Apply(Sizes);

} // namespace
