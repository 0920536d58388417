#include "bombs/Bombs.h"
#include "imaging/MPixelBudget.h"
#include "imaging/codecs/MByteStreams.h"
#include "imaging/codecs/MCodec.h"

#include <gif_lib.h>

#include <algorithm>
#include <cmath>
#include <memory>

// The second of these needs the first.
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

namespace bombs {

namespace {

using fonts::Bytes;

constexpr std::size_t padded = 1'000'000; // bytes of a file that is made as large as it may be

// The side of the largest square that is unpacked of less than a megabyte, and of one whose pixels count twice.
const auto large = static_cast<std::uint32_t>(std::sqrt(static_cast<double>(SparePixels)));
const auto deep = static_cast<std::uint32_t>(std::sqrt(static_cast<double>(SparePixels) / 2));

std::string PngOfManyChunks() {
    const std::string png = FlatPng(64, 64, 8, 6);
    const std::size_t end = png.size() - 12;
    return Repeated(png.substr(0, end), PngChunk("IDAT", ""), png.substr(end));
}

std::string PngOfLargeText() {
    std::string png = FlatPng(64, 64, 8, 6);
    const std::string packed = PackedRun(std::uint64_t{450} << 20);
    const std::string text = std::string("Comment\0\0", 9) + packed;
    png.insert(33, PngChunk("zTXt", text) +
                       PngChunk("iCCP", std::string("Profile\0\0", 9) + packed.substr(0, 300'000)));
    return png;
}

// A flat progressive picture whose last scan, which refines nothing, is repeated.
std::string Jpeg(std::uint32_t width, std::uint32_t height, bool colours, int scans) {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &bytes, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = colours ? 3 : 1;
    jpeg.in_color_space = colours ? JCS_RGB : JCS_GRAYSCALE;
    jpeg_set_defaults(&jpeg);
    for (int i = 0; i < jpeg.num_components; ++i)
        jpeg.comp_info[i].h_samp_factor = jpeg.comp_info[i].v_samp_factor = 1;
    const jpeg_scan_info script[] = {{colours ? 3 : 1, {0, 1, 2, 0}, 0, 0, 0, 0},
                                     {1, {colours ? 2 : 0}, 1, 63, 0, 0}};
    jpeg.scan_info = script;
    jpeg.num_scans = 2;
    jpeg_start_compress(&jpeg, TRUE);
    std::vector<unsigned char> row(std::size_t{width} * 3, 128);
    JSAMPROW rows = row.data();
    while (jpeg.next_scanline < jpeg.image_height)
        jpeg_write_scanlines(&jpeg, &rows, 1);
    jpeg_finish_compress(&jpeg);
    std::string file(reinterpret_cast<const char*>(bytes), size);
    jpeg_destroy_compress(&jpeg);
    std::free(bytes);
    file.resize(file.size() - 2); // the end of the image
    const std::string scan = file.substr(file.rfind("\xFF\xDA"));
    while (scans-- > 0 && file.size() + scan.size() + 2 < largestFile)
        file += scan;
    return file + "\xFF\xD9";
}

// Where the first directory lies, if nothing is in front of it.
const std::string tiffStart("II*\0\x08\0\0\0", 8);

// Numbers of 32 bits each.
struct TiffField {
    std::uint64_t tag;
    std::uint64_t value;
    std::uint64_t count = 1;
};

std::string TiffDirectory(std::vector<TiffField> fields, std::size_t next) {
    std::ranges::sort(fields, {}, &TiffField::tag);
    std::string bytes = Little({{fields.size(), 2}});
    for (const auto& [tag, value, count] : fields)
        bytes += Little({{tag, 2}, {4, 2}, {count, 4}, {value, 4}});
    return bytes + Little({{next, 4}});
}

std::string TiffOfManyDirectories() {
    const std::vector<TiffField> fields = {{256, 1}, {257, 1}, {262, 1}, {273, 8}, {279, 1}};
    std::string file = tiffStart;
    while (file.size() < largestFile - 1000)
        file += TiffDirectory(fields, file.size() + 2 + fields.size() * 12 + 4);
    return file + TiffDirectory(fields, 0);
}

std::string TiffOfManyStrips() {
    constexpr std::uint64_t strips = 120'000;
    constexpr std::uint64_t places = 8 + 2 + 8 * 12 + 4;
    std::string file = tiffStart + TiffDirectory({{256, 1},
                                                  {257, strips},
                                                  {258, 8},
                                                  {259, 5},
                                                  {262, 1},
                                                  {273, places, strips},
                                                  {278, 1},
                                                  {279, places + strips * 4, strips}},
                                                 0);
    for (const std::uint64_t number : {8U, 4U}) // each begins there, and is that long
        for (std::uint64_t i = 0; i < strips; ++i)
            file += Little({{number, 4}});
    return file;
}

// Flat frames of this size, of which 10,000 rows are there at most. What is no picture makes the file larger.
std::string Gif(int width, int height, int frames, std::size_t padding = 0) {
    std::string file;
    int error = 0;
    const auto write = [](GifFileType* gif, const GifByteType* bytes, int count) {
        static_cast<std::string*>(gif->UserData)
            ->append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
        return count;
    };
    GifFileType* const gif = EGifOpen(&file, write, &error);
    const std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)> colours(GifMakeMapObject(2, nullptr),
                                                                               GifFreeMapObject);
    EGifPutScreenDesc(gif, width, height, 1, 0, colours.get());
    std::vector<GifByteType> row(static_cast<std::size_t>(width));
    for (int frame = 0; frame < frames; ++frame) {
        EGifPutImageDesc(gif, 0, 0, width, height, false, nullptr);
        for (int y = 0; y < std::min(height, 10'000); ++y)
            EGifPutLine(gif, row.data(), width);
    }
    EGifPutComment(gif, Noise(padding).c_str());
    EGifCloseFile(gif, &error);
    return file;
}

std::string Box(const char* type, const std::string& content) {
    return Bytes().U32(std::ssize(content) + 8).Add(type).Add(content);
}

// A grid that is made of one tile of 512 x 512 pixels over and over (ISO/IEC 23008-12, 6.6.2.3).
std::string HeifGrid(int columns, int rows, std::size_t padding) {
    MPicture flat(512, 512, FormatRGB8);
    flat.Fill(MColour(90, 120, 200));
    MByteSink sink;
    const bool encoded = EncodeHeif(flat, sink) && sink.Finish();
    flat.Free();
    if (!encoded) return {};
    const std::string tile(sink.Bytes().begin(), sink.Bytes().end());
    const auto boxAt = [&](const char* type) {
        const std::size_t at = tile.find(type) - 4;
        return tile.substr(at, NumberAt(tile, at, 4));
    };
    const std::string coded = boxAt("mdat").substr(8);
    const Bytes grid = Bytes().U8(0).U8(1).U8(rows - 1).U8(columns - 1).U32(columns * 512).U32(rows * 512);
    Bytes reference;
    reference.U16(1).U16(columns * rows);
    for (int i = 0; i < columns * rows; ++i)
        reference.U16(2);
    const auto entry = [](int item, const char* type) {
        return Box("infe", Bytes().U32(0x02000000).U16s({item, 0}).Add(type).U8(0));
    };
    const auto extent = [](int width, int height) {
        return Box("ispe", Bytes().U32(0).U32(width).U32(height));
    };
    const std::string properties =
        Box("ipco", boxAt("hvcC") + extent(512, 512) + extent(columns * 512, rows * 512)) +
        Box("ipma", Bytes().U32(0).U32(2).U16(1).U8(1).U8(3).U16(2).U8(2).U8(0x81).U8(2));
    const auto meta = [&](std::int64_t codedAt) {
        Bytes places = Bytes().U32(0x01000000).U16s({0x4400, 2});
        places.U16s({1, 1, 0, 1}).U32(0).U32(std::ssize(grid));
        places.U16s({2, 0, 0, 1}).U32(codedAt).U32(std::ssize(coded));
        const std::string entries = Bytes().U32(0).U16(2).Add(entry(1, "grid")).Add(entry(2, "hvc1"));
        return Box("meta", std::string(4, '\0') +
                               Box("hdlr", Bytes().U32(0).U32(0).Add("pict") + std::string(13, '\0')) +
                               Box("pitm", Bytes().U32(0).U16(1)) + Box("iloc", places) + Box("iinf", entries) +
                               Box("iref", Bytes().U32(0).Add(Box("dimg", reference))) +
                               Box("iprp", properties) + Box("idat", grid));
    };
    const std::string type = Box("ftyp", Bytes("heic").U32(0).Add("mif1heic"));
    const std::int64_t codedAt = std::ssize(type) + std::ssize(meta(0)) + 8;
    return type + meta(codedAt) + Box("mdat", coded) + Box("free", Noise(padding));
}

// Eight bits a pixel, in runs of 255, or skipped altogether.
std::string Bmp(std::uint32_t width, std::uint32_t height, std::size_t padding) {
    std::string file =
        "BM" +
        Little({{0, 4}, {0, 4}, {54 + 1024, 4}, {40, 4}, {width, 4}, {height, 4}, {1, 2}, {8, 2}, {1, 4}});
    file += Little({{0, 4}, {0, 4}, {0, 4}, {256, 4}, {0, 4}}) + std::string(1024, '\x40');
    for (std::size_t y = 0; y < height && file.size() + 600 < padding; ++y) {
        for (std::uint32_t x = 0; x < width; x += 255)
            file += Little({{std::min(255U, width - x), 1}, {7, 1}});
        file += Little({{0, 2}});
    }
    return file + std::string(padding - file.size(), '\0');
}

// A palette of one colour, and a byte for each pixel.
std::string Tga(std::uint32_t width, std::uint32_t height, std::size_t size) {
    const std::string header = Little(
        {{0, 1}, {1, 1}, {1, 1}, {0, 2}, {1, 2}, {24, 1}, {0, 4}, {width, 2}, {height, 2}, {8, 1}, {0, 1}});
    return header + std::string(size - header.size(), '\0');
}

} // namespace

std::string Tiff(std::uint32_t width, std::uint32_t height, std::uint32_t compression,
                 std::uint32_t photometric, std::uint32_t bits, std::uint32_t samples, const std::string& data,
                 std::size_t padding, std::uint32_t tile) {
    const std::size_t at = 8 + padding;
    std::vector<TiffField> fields = {{256, width},       {257, height},      {258, bits},
                                     {259, compression}, {262, photometric}, {277, samples}};
    if (tile == 0) {
        fields.insert(fields.end(), {{273, at}, {278, height}, {279, data.size()}});
    } else {
        fields.insert(fields.end(), {{322, tile}, {323, tile}, {324, at}, {325, data.size()}});
    }
    if (samples == 4) fields.push_back({338, 2});
    const std::string even(data.size() % 2, '\0');
    return tiffStart.substr(0, 4) + Little({{at + data.size() + even.size(), 4}}) + Noise(padding) + data +
           even + TiffDirectory(fields, 0);
}

std::string Dds(std::uint32_t width, std::uint32_t height, const char* fourCc, std::uint32_t dxgi,
                const std::string& data) {
    std::string file =
        "DDS " + Little({{124, 4}, {0x1007, 4}, {height, 4}, {width, 4}, {0, 4}, {0, 4}, {1, 4}});
    file += std::string(44, '\0') + Little({{32, 4}, {4, 4}}) + fourCc + std::string(20, '\0') +
            Little({{0x1000, 4}}) + std::string(16, '\0');
    if (dxgi != 0) file += Little({{dxgi, 4}, {3, 4}, {0, 4}, {1, 4}, {0, 4}});
    return file + data;
}

std::vector<Bomb> PictureBombs() {
    std::vector<Bomb> all;
    const auto add = [&](const char* reader, const char* name, const std::string& file, std::string bytes,
                         bool sharp = false) {
        all.push_back({reader, name, file, std::move(bytes), "--picture A=" + file + " --info", {}, sharp});
    };
    add("PNG", "20000 x 20000 in a few kB", "f.png", FlatPng(20000, 20000, 1, 0));
    add("PNG", "8 bits, the most that is read", "f.png", FlatPng(large, large, 8, 6, padded), true);
    add("PNG", "16 bits, the most that is read", "f.png", FlatPng(deep, deep, 16, 6, padded), true);
    add("PNG", "interlaced, the most that is read", "f.png", FlatPng(deep, deep, 8, 6, padded, true));
    add("PNG", "one pixel high", "f.png", FlatPng(SparePixels, 1, 8, 6, padded));
    add("PNG", "one pixel wide", "f.png", FlatPng(1, SparePixels, 8, 6, padded));
    add("PNG", "as many empty chunks as it holds", "f.png", PngOfManyChunks());
    add("PNG", "text and profile of 450 MB", "f.png", PngOfLargeText());

    add("JPEG", "16,000 scans", "f.jpg", Jpeg(3000, 3000, false, 16000), true);
    add("JPEG", "100 scans of the most that is read, grey", "f.jpg", Jpeg(large, large, false, 97));
    add("JPEG", "100 scans of the most that is read, colours", "f.jpg", Jpeg(large, large, true, 97), true);

    add("TIFF", "deflated, 16 bits, the most that is read", "f.tif",
        Tiff(deep, deep, 8, 2, 16, 4, PackedRun(std::uint64_t{deep} * deep * 8), 800'000), true);
    add("TIFF", "a palette, rendered", "f.tif",
        Tiff(large, large, 8, 1, 4, 1, PackedRun(std::uint64_t{large} * (large + 1) / 2), 900'000));
    add("TIFF", "fax of nothing", "f.tif",
        Tiff(large, large, 4, 0, 1, 1, std::string(20'000, '\xFF'), 970'000));
    add("TIFF", "one tile of 60000 x 60000", "f.tif",
        Tiff(64, 64, 8, 1, 8, 1, PackedRun(100'000'000), 0, 60000));
    add("TIFF", "as many directories as it holds", "f.tif", TiffOfManyDirectories());
    add("TIFF", "120,000 strips", "f.tif", TiffOfManyStrips());

    add("GIF", "the most that is read", "f.gif",
        Gif(static_cast<int>(large), static_cast<int>(large), 1, 920'000));
    add("GIF", "65535 x 65535", "f.gif", Gif(65535, 65535, 1));
    add("GIF", "as many frames as it holds", "f.gif", Gif(1, 1, 65'000));

    add("HEIF", "a grid of one tile, 8192 x 4096", "f.heic", HeifGrid(16, 8, padded));
    add("HEIF", "a grid of one tile, the most that is read", "f.heic", HeifGrid(8, 8, padded), true);
    add("HEIF", "a grid of 65536 x 65536", "f.heic", HeifGrid(128, 128, padded - 40'000), true);

    add("BMP", "runs, the most that is read", "f.bmp", Bmp(large, large, padded));
    add("BMP", "rows that are left out", "f.bmp", Bmp(30000, 30000, padded));
    add("TGA", "a byte for each pixel", "f.tga", Tga(1000, 999, padded));
    add("TGA", "32767 x 32767", "f.tga", Tga(32767, 32767, padded));
    add("DDS", "BC1", "f.dds", Dds(1400, 1400, "DXT1", 0, Noise(980'000)));
    add("DDS", "BC7", "f.dds", Dds(980, 980, "DX10", 98, Noise(980 * 980)));
    add("DDS", "4 GiB of pixels", "f.dds", Dds(65532, 65532, "DXT1", 0, Noise(980'000)));
    return all;
}

} // namespace bombs
