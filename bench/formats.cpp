// Files that carry many pictures, beside the coding of the pictures alone.

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/MPhotofontImporter.h"
#include "foundation/MFolders.h"
#include "platform/headless/Headless.h"

#include <benchmark/benchmark.h>
#include <glib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;

const fs::path folder = fs::temp_directory_path() / "lettrino-bench";

MString Path(const std::string& name) {
    fs::create_directories(folder);
    return FromSystemPath(folder / name);
}

std::string Bytes(const std::string& name) {
    std::ifstream file(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// 223 pictures that hardly shrink, 20 MB of text in all.
void MakePhotofont() {
    std::mt19937 random(1);
    std::string text = "<unicode_mapping>\n";
    const auto number = [](int value) { return "\"" + std::to_string(value) + "\""; };
    for (int i = 33; i < 256; ++i)
        text += "<map id=" + number(i) + " unc=" + number(i) + "/>\n";
    text += "</unicode_mapping>\n";
    for (int i = 33; i < 256; ++i) {
        text += "<glyph id=" + number(i) + ">\n<shape embedded=" + number(i) +
                "/>\n<bbox x=\"0\" y=\"0\" width=\"130\" height=\"170\"/>\n"
                "<base x=\"0\" y=\"130\"/>\n<delta x=\"132\" y=\"0\"/>\n</glyph>\n";
    }
    text += "</glyphs>\n";
    MPicture picture(130, 170, FormatRGBA8);
    for (int i = 33; i < 256; ++i) {
        for (std::size_t at = 0; at < std::size_t{picture.Stride} * picture.Height; ++at) {
            picture.Pixels[at] = static_cast<std::uint8_t>(at % 4 == 3 ? 255 : random() & 0x7F);
        }
        picture.Save(Path(std::to_string(i) + ".png"));
        const std::string bytes = Bytes(std::to_string(i) + ".png");
        gchar* const base64 = g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size());
        const std::string data = base64;
        g_free(base64);
        text += "<image id=" + number(i) + ">\nContent-transfer-encoding: base64\n\n";
        for (std::size_t at = 0; at < data.size(); at += 76)
            text += data.substr(at, 76) + "\n";
        text += "</image>\n";
    }
    picture.Free();
    std::ofstream(folder / "large.phf", std::ios::binary) << text;
}

void PhotofontImport(benchmark::State& state) {
    MSettings settings;
    Settings = &settings;
    settings.Path(MPathKind::Temporary) = Path("");
    MakePhotofont();
    MColourFont font(nullptr);
    for (auto _ : state)
        MPhotofontImporter(nullptr).Import(Path("large.phf"), &font);
    state.counters["glyphs"] = font.GlyphCount();
    state.counters["MB"] = static_cast<double>(fs::file_size(folder / "large.phf")) / 1e6;
    Settings = nullptr;
}

void PhotofontImportBound(benchmark::State& state) {
    MakePhotofont();
    for (auto _ : state) {
        for (int i = 33; i < 256; ++i) {
            MPicture picture(Path(std::to_string(i) + ".png"));
            benchmark::DoNotOptimize(picture.Pixels);
            picture.Free();
        }
    }
}

void LetterCubes(benchmark::State& state) {
    MSettings settings;
    Settings = &settings;
    settings.GlyphHeight = 150;
    MColourFont font(nullptr);
    std::mt19937 random(2);
    for (char16_t c = u'A'; c <= u'Z'; ++c) {
        auto glyph = std::make_unique<MGlyph>(c, 140, 150, 0, 0, false);
        for (std::int32_t y = 20; y < 130; ++y) {
            for (std::int32_t x = 20; x < 120; ++x)
                glyph->SetPixel(x, y, {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 60, 200});
        }
        font.Glyphs[static_cast<std::size_t>(font.ClaimSlot(c))] = std::move(glyph);
    }
    settings.LetterCubesNames = MString();
    for (int n = 0; n < 100; ++n) {
        for (int i = 0; i < 9; ++i)
            settings.LetterCubesNames += static_cast<char16_t>(u'A' + random() % 26);
        settings.LetterCubesNames += '\n';
    }
    for (auto _ : state)
        font.ExportLetterCubes(Path("cube.png"));
    std::size_t cubes = 0;
    while (fs::exists(folder / ("cube" + std::to_string(cubes + 1) + ".png")))
        ++cubes;
    state.counters["cubes"] = static_cast<double>(cubes);
    Settings = nullptr;
}

void LetterCubesBound(benchmark::State& state) {
    std::vector<MPicture> nets;
    for (std::size_t i = 1; fs::exists(folder / ("cube" + std::to_string(i) + ".png")); ++i) {
        nets.emplace_back(Path("cube" + std::to_string(i) + ".png"));
    }
    for (auto _ : state) {
        for (MPicture& net : nets)
            net.Save(Path("bound.png"));
    }
    for (MPicture& net : nets)
        net.Free();
}

} // namespace

BENCHMARK(PhotofontImport)->Unit(benchmark::kMillisecond);
BENCHMARK(PhotofontImportBound)->Unit(benchmark::kMillisecond);
BENCHMARK(LetterCubes)->Unit(benchmark::kMillisecond);
BENCHMARK(LetterCubesBound)->Unit(benchmark::kMillisecond);
