// Picture files beside the bare libraries: the same picture of 4096 by 4096 pixels, loaded and saved by path,
// with the libraries' default settings. Read the ratio off one run: the bare row stands below ours.
#include "foundation/MFolders.h"
#include "imaging/MPicture.h"
#include "imaging/codecs/MDds.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

// clang-format off
#include <jpeglib.h>
#include <gif_lib.h>
#include <libheif/heif.h>
#include <png.h>
#include <squish.h>
#include <tiffio.h>
// clang-format on

namespace {

constexpr std::uint32_t side = 4096;

std::string PathTo(const std::string& name) {
    const auto folder = std::filesystem::temp_directory_path() / "lettrino-bench";
    std::filesystem::create_directories(folder);
    return folder / name;
}

MString TextPath(const std::string& name) {
    return MString(PathTo(name).c_str());
}

// Soft waves with a little noise: what photographs are to a codec, more or less. Opaque, so that saving doesn't
// bleed.
const MPicture& Picture(MPixelFormat format) {
    static MPicture pictures[10];
    MPicture& picture = pictures[format];
    if (picture.IsValid()) return picture;
    picture = MPicture(side, side, format);
    std::uint32_t noise = 1;
    for (std::int32_t y = 0; y < static_cast<std::int32_t>(side); ++y) {
        for (std::int32_t x = 0; x < static_cast<std::int32_t>(side); ++x) {
            noise = noise * 1664525 + 1013904223;
            const auto wave = [&](float step) {
                const float value =
                    128 + 90 * std::sin(step * static_cast<float>(x)) * std::cos(step * static_cast<float>(y));
                return static_cast<std::uint8_t>(value + static_cast<float>(noise >> 29));
            };
            picture.SetPixel(x, y, MColour(wave(0.003F), wave(0.011F), wave(0.02F)));
        }
    }
    return picture;
}

void Save(benchmark::State& state, const std::string& name, MPixelFormat format) {
    MPicture picture = Picture(format);
    for (auto _ : state) {
        if (!picture.Save(TextPath(name))) state.SkipWithError("not saved");
    }
}

void Load(benchmark::State& state, const std::string& name, MPixelFormat format) {
    MPicture picture = Picture(format);
    if (!std::filesystem::exists(PathTo(name))) picture.Save(TextPath(name));
    for (auto _ : state) {
        MPicture loaded(TextPath(name));
        if (!loaded.IsValid()) state.SkipWithError("not loaded");
        loaded.Free();
    }
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
File Open(const std::string& name, const char* mode) {
    return {std::fopen(PathTo(name).c_str(), mode), std::fclose};
}

using Block = std::unique_ptr<std::uint8_t[]>;
Block NewBlock(std::size_t size) {
    return Block(new std::uint8_t[size]);
}

void ReadPng(const std::string& name, MPixelFormat) {
    const File file = Open(name, "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_read_info(png, info);
    png_set_bgr(png);
    png_read_update_info(png, info);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    const Block block = NewBlock(rowBytes * side);
    for (std::size_t y = 0; y < side; ++y)
        png_read_row(png, block.get() + y * rowBytes, nullptr);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
}

void WritePng(const std::string& name, MPixelFormat format) {
    const File file = Open(name, "wb");
    const MPicture& picture = Picture(format);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_set_IHDR(png, info, side, side, format == FormatRGBA16 ? 16 : 8, PNG_COLOR_TYPE_RGB_ALPHA,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (format == FormatRGBA16) {
        png_set_swap(png);
    } else {
        png_set_bgr(png);
    }
    for (std::size_t y = 0; y < side; ++y)
        png_write_row(png, picture.Pixels + y * picture.Stride);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
}

void ReadJpeg(const std::string& name, MPixelFormat) {
    const File file = Open(name, "rb");
    jpeg_error_mgr errors{};
    jpeg_decompress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file.get());
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    const Block block = NewBlock(std::size_t{side} * side * 3);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = block.get() + std::size_t{jpeg.output_scanline} * side * 3;
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
}

void WriteJpeg(const std::string& name, MPixelFormat format) {
    const File file = Open(name, "wb");
    const MPicture& picture = Picture(format);
    jpeg_error_mgr errors{};
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file.get());
    jpeg.image_width = jpeg.image_height = side;
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < side) {
        JSAMPROW row = picture.Pixels + std::size_t{jpeg.next_scanline} * picture.Stride;
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
}

void ReadTiff(const std::string& name, MPixelFormat) {
    TIFF* const tiff = TIFFOpen(PathTo(name).c_str(), "r");
    const auto rowBytes = static_cast<std::size_t>(TIFFScanlineSize(tiff));
    const Block block = NewBlock(rowBytes * side);
    for (std::uint32_t y = 0; y < side; ++y)
        TIFFReadScanline(tiff, block.get() + y * rowBytes, y, 0);
    TIFFClose(tiff);
}

void WriteTiff(const std::string& name, MPixelFormat format) {
    const MPicture& picture = Picture(format);
    const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
    TIFF* const tiff = TIFFOpen(PathTo(name).c_str(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, side);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, side);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, format == FormatRGBA16 ? 16 : 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    for (std::uint32_t y = 0; y < side; ++y) {
        TIFFWriteScanline(tiff, picture.Pixels + std::size_t{y} * picture.Stride, y, 0);
    }
    TIFFClose(tiff);
}

void ReadGif(const std::string& name, MPixelFormat) {
    int error = 0;
    GifFileType* const gif = DGifOpenFileName(PathTo(name).c_str(), &error);
    DGifSlurp(gif);
    DGifCloseFile(gif, &error);
}

void WriteGif(const std::string& name, MPixelFormat format) {
    const MPicture& picture = Picture(format);
    const std::size_t count = std::size_t{side} * side;
    const Block planes = NewBlock(count * 4);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t c = 0; c < 3; ++c)
            planes[c * count + i] = picture.Pixels[i * 3 + 2 - c];
    }
    int size = 256;
    std::vector<GifColorType> colours(256);
    GifQuantizeBuffer(side, side, &size, planes.get(), planes.get() + count, planes.get() + 2 * count,
                      planes.get() + 3 * count, colours.data());
    ColorMapObject* const map = GifMakeMapObject(256, colours.data());
    int error = 0;
    GifFileType* const gif = EGifOpenFileName(PathTo(name).c_str(), false, &error);
    EGifPutScreenDesc(gif, side, side, 8, 0, map);
    EGifPutImageDesc(gif, 0, 0, side, side, false, nullptr);
    for (std::size_t y = 0; y < side; ++y)
        EGifPutLine(gif, planes.get() + 3 * count + y * side, side);
    EGifCloseFile(gif, &error);
    GifFreeMapObject(map);
}

void ReadHeif(const std::string& name, MPixelFormat) {
    heif_context* const context = heif_context_alloc();
    heif_context_read_from_file(context, PathTo(name).c_str(), nullptr);
    heif_image_handle* handle = nullptr;
    heif_context_get_primary_image_handle(context, &handle);
    heif_image* image = nullptr;
    heif_decode_image(handle, &image, heif_colorspace_RGB, heif_chroma_interleaved_RGB, nullptr);
    heif_image_release(image);
    heif_image_handle_release(handle);
    heif_context_free(context);
}

void WriteHeif(const std::string& name, MPixelFormat format) {
    const MPicture& picture = Picture(format);
    heif_context* const context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder);
    heif_image* image = nullptr;
    heif_image_create(side, side, heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image);
    heif_image_add_plane(image, heif_channel_interleaved, side, side, 8);
    int stride = 0;
    std::uint8_t* const plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    for (std::size_t y = 0; y < side; ++y) {
        std::copy_n(picture.Pixels + y * picture.Stride, picture.Stride,
                    plane + y * static_cast<std::size_t>(stride));
    }
    heif_context_encode_image(context, image, encoder, nullptr, nullptr);
    heif_context_write_to_file(context, PathTo(name).c_str());
    heif_image_release(image);
    heif_encoder_release(encoder);
    heif_context_free(context);
}

// No library holds BMP files; the bound is the bytes of the file themselves.
void ReadBytes(const std::string& name, MPixelFormat) {
    const File file = Open(name, "rb");
    const std::size_t size = std::filesystem::file_size(PathTo(name));
    const Block block = NewBlock(size);
    if (std::fread(block.get(), 1, size, file.get()) != size) std::abort();
}

void WriteBytes(const std::string& name, MPixelFormat format) {
    const File file = Open(name, "wb");
    const MPicture& picture = Picture(format);
    if (std::fwrite(picture.Pixels, picture.Stride, side, file.get()) != side) std::abort();
}

// DDS: the blocks alone, from memory, by libsquish; for BC7 those of BC3.
std::vector<std::uint8_t> NoiseBlocks() {
    std::vector<std::uint8_t> blocks(std::size_t{side} * side);
    std::uint32_t noise = 1;
    for (auto& byte : blocks) {
        noise = noise * 1664525 + 1013904223;
        byte = static_cast<std::uint8_t>(noise >> 24);
    }
    return blocks;
}

void Decompress(benchmark::State& state, MDdsFormat format) {
    MDdsImage image;
    image.format = format;
    image.width = image.height = side;
    const auto blocks = NoiseBlocks();
    image.pixels = NewBlock(blocks.size());
    std::ranges::copy(blocks, image.pixels.get());
    for (auto _ : state) {
        MDdsImage result;
        if (!DecompressDds(image, result)) state.SkipWithError("not decompressed");
    }
}

void DecompressBare(benchmark::State& state, int flag) {
    const auto blocks = NoiseBlocks();
    for (auto _ : state) {
        const Block rgba = NewBlock(std::size_t{side} * side * 4);
        squish::DecompressImage(rgba.get(), side, side, blocks.data(), flag);
    }
}

void WriteBc1(const std::string& name, MPixelFormat format) {
    const File file = Open(name, "wb");
    const Block blocks = NewBlock(std::size_t{side} * side / 2);
    squish::CompressImage(Picture(format).Pixels, side, side, blocks.get(),
                          squish::kDxt1 | squish::kSourceBGRA);
    std::fwrite(blocks.get(), 1, std::size_t{side} * side / 2, file.get());
}

void ReadBc1(const std::string& name, MPixelFormat) {
    const std::size_t size = std::size_t{side} * side / 2;
    const Block blocks = NewBlock(size);
    const File file = Open(name, "rb");
    if (std::fread(blocks.get(), 1, size, file.get()) != size) std::abort();
    const Block rgba = NewBlock(std::size_t{side} * side * 4);
    squish::DecompressImage(rgba.get(), side, side, blocks.get(), squish::kDxt1);
}

using Bare = void (*)(const std::string&, MPixelFormat);

void Register(const std::string& file, MPixelFormat format, Bare read, Bare write) {
    const auto unit = benchmark::kMillisecond;
    benchmark::RegisterBenchmark(("Save/" + file).c_str(), [=](auto& state) { Save(state, file, format); })
        ->Unit(unit)
        ->MeasureProcessCPUTime();
    benchmark::RegisterBenchmark(("SaveBare/" + file).c_str(),
                                 [=](auto& state) {
                                     Picture(format);
                                     for (auto _ : state)
                                         write("bare-" + file, format);
                                 })
        ->Unit(unit)
        ->MeasureProcessCPUTime();
    benchmark::RegisterBenchmark(("Load/" + file).c_str(), [=](auto& state) { Load(state, file, format); })
        ->Unit(unit)
        ->MeasureProcessCPUTime();
    benchmark::RegisterBenchmark(("LoadBare/" + file).c_str(),
                                 [=](auto& state) {
                                     for (auto _ : state)
                                         read(file, format);
                                 })
        ->Unit(unit)
        ->MeasureProcessCPUTime();
}

const bool registered = [] {
    Register("8.png", FormatRGBA8, ReadPng, WritePng);
    Register("16.png", FormatRGBA16, ReadPng, WritePng);
    Register("24.jpg", FormatRGB8, ReadJpeg, WriteJpeg);
    Register("8.tif", FormatRGBA8, ReadTiff, WriteTiff);
    Register("16.tif", FormatRGBA16, ReadTiff, WriteTiff);
    Register("24.gif", FormatRGB8, ReadGif, WriteGif);
    Register("24.bmp", FormatRGB8, ReadBytes, WriteBytes);
    Register("32.bmp", FormatRGBA8, ReadBytes, WriteBytes);
    Register("32.dds", FormatRGBA8, ReadBc1, WriteBc1);
    Register("24.heic", FormatRGB8, ReadHeif, WriteHeif);
    return true;
}();

BENCHMARK_CAPTURE(Decompress, BC1, MDdsFormat::Bc1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecompressBare, BC1, squish::kDxt1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Decompress, BC2, MDdsFormat::Bc2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecompressBare, BC2, squish::kDxt3)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Decompress, BC3, MDdsFormat::Bc3)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecompressBare, BC3, squish::kDxt5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Decompress, BC7, MDdsFormat::Bc7)->Unit(benchmark::kMillisecond);
// The library has no BC7: its form with as many bytes a block stands for it.
BENCHMARK_CAPTURE(DecompressBare, BC7, squish::kDxt5)->Unit(benchmark::kMillisecond);

} // namespace
