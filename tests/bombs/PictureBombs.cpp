#include "bombs/Bombs.h"
#include "imaging/MPixelBudget.h"
#include "imaging/codecs/MByteStreams.h"
#include "imaging/codecs/MCodec.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

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
    std::string png = FlatPng(64, 64, 8, 6);
    const std::size_t end = png.size() - 12;
    std::string chunks;
    for (int i = 0; i < 80'000; ++i)
        chunks += PngChunk("IDAT", "");
    return png.insert(end, chunks);
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
    std::vector<jpeg_scan_info> script;
    if (colours) {
        script = {{3, {0, 1, 2, 0}, 0, 0, 0, 0}, {1, {2, 0, 0, 0}, 1, 63, 0, 0}};
    } else {
        script = {{1, {0, 0, 0, 0}, 0, 0, 0, 0}, {1, {0, 0, 0, 0}, 1, 63, 0, 0}};
    }
    jpeg.scan_info = script.data();
    jpeg.num_scans = static_cast<int>(script.size());
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

struct TiffField {
    int tag;
    int type; // 3: 16 bits, 4: 32 bits
    std::uint32_t count;
    std::uint32_t value;
};

std::string TiffDirectory(const std::vector<TiffField>& fields, std::uint32_t next) {
    std::string bytes = Little({{fields.size(), 2}});
    for (const TiffField& f : fields)
        bytes += Little({{static_cast<std::uint64_t>(f.tag), 2},
                         {static_cast<std::uint64_t>(f.type), 2},
                         {f.count, 4},
                         {f.value, 4}});
    return bytes + Little({{next, 4}});
}

} // namespace

std::string Tiff(std::uint32_t width, std::uint32_t height, int compression, int photometric, int bits,
                 int samples, const std::string& data, std::size_t padding, std::uint32_t tile) {
    const auto at = static_cast<std::uint32_t>(8 + padding);
    std::vector<TiffField> fields = {{256, 4, 1, width},
                                     {257, 4, 1, height},
                                     {258, 3, 1, static_cast<std::uint32_t>(bits)},
                                     {259, 3, 1, static_cast<std::uint32_t>(compression)},
                                     {262, 3, 1, static_cast<std::uint32_t>(photometric)}};
    const auto size = static_cast<std::uint32_t>(data.size());
    if (tile == 0) fields.push_back({273, 4, 1, at});
    fields.push_back({277, 3, 1, static_cast<std::uint32_t>(samples)});
    if (tile == 0) {
        fields.push_back({278, 4, 1, height});
        fields.push_back({279, 4, 1, size});
    } else {
        for (const TiffField& f :
             {TiffField{322, 4, 1, tile}, {323, 4, 1, tile}, {324, 4, 1, at}, {325, 4, 1, size}})
            fields.push_back(f);
    }
    if (samples == 4) fields.push_back({338, 3, 1, 2});
    const std::string start = "II*" + std::string(1, '\0') + Little({{at + data.size() + data.size() % 2, 4}});
    return start + Noise(padding) + data + std::string(data.size() % 2, '\0') + TiffDirectory(fields, 0);
}

namespace {

std::string TiffOfManyDirectories() {
    std::string file("II*\0\x08\0\0\0", 8);
    const std::vector<TiffField> fields = {
        {256, 4, 1, 1}, {257, 4, 1, 1}, {262, 3, 1, 1}, {273, 4, 1, 8}, {279, 4, 1, 1}};
    const std::size_t unit = 2 + fields.size() * 12 + 4;
    const std::size_t count = (largestFile - 100) / unit;
    for (std::size_t i = 0; i < count; ++i)
        file += TiffDirectory(fields, i + 1 < count ? static_cast<std::uint32_t>(8 + (i + 1) * unit) : 0);
    return file;
}

std::string TiffOfManyStrips() {
    constexpr std::uint32_t strips = 120'000;
    std::string file("II*\0\x08\0\0\0", 8);
    const std::uint32_t offsets = 8 + 2 + 8 * 12 + 4;
    file += TiffDirectory({{256, 4, 1, 1},
                           {257, 4, 1, strips},
                           {258, 3, 1, 8},
                           {259, 3, 1, 5},
                           {262, 3, 1, 1},
                           {273, 4, strips, offsets},
                           {278, 4, 1, 1},
                           {279, 4, strips, offsets + strips * 4}},
                          0);
    for (std::uint32_t i = 0; i < strips; ++i)
        file += Little({{8, 4}});
    for (std::uint32_t i = 0; i < strips; ++i)
        file += Little({{4, 4}});
    return file;
}

// A flat picture: the codes of the LZW table in order of growth, each one longer than the last by a pixel.
std::string GifData(std::uint64_t pixels) {
    std::string packed;
    std::uint32_t bits = 0;
    int held = 0;
    const auto put = [&](std::uint32_t code, int width) {
        bits |= code << held;
        held += width;
        while (held >= 8) {
            packed.push_back(static_cast<char>(bits & 0xFF));
            bits >>= 8;
            held -= 8;
        }
    };
    constexpr std::uint32_t clear = 4;
    std::uint64_t done = 0;
    while (done < pixels) {
        put(clear, done == 0 ? 3 : 12);
        std::uint32_t next = clear + 2;
        int width = 3;
        put(0, width);
        ++done;
        for (std::uint64_t run = 2; next < 4095 && done < pixels; ++run) {
            put(next, width);
            done += run;
            ++next;
            if (next == 1U << width && width < 12) ++width;
        }
        if (next >= 4095) width = 12;
    }
    put(clear + 1, 12);
    put(0, 8);
    std::string blocks = "\x02";
    for (std::size_t at = 0; at < packed.size(); at += 255) {
        const std::string piece = packed.substr(at, 255);
        blocks += static_cast<char>(piece.size());
        blocks += piece;
    }
    return blocks + std::string(1, '\0');
}

std::string GifFrame(std::uint32_t width, std::uint32_t height, const std::string& data) {
    return "," + Little({{0, 4}, {width, 2}, {height, 2}, {0, 1}}) + data;
}

std::string Gif(std::uint32_t width, std::uint32_t height, const std::string& frames) {
    return "GIF89a" + Little({{width, 2}, {height, 2}, {0x80, 1}, {0, 2}}) + std::string(6, '\x7F') + frames +
           ";";
}

std::string GifOfManyFrames() {
    std::string frames;
    const std::string frame = GifFrame(1, 1, std::string("\x02\x02\x44\x01\0", 5));
    while (frames.size() + frame.size() < largestFile - 100)
        frames += frame;
    return Gif(1, 1, frames);
}

std::string Box(const char* type, const std::string& content) {
    return Bytes().U32(static_cast<std::int64_t>(content.size() + 8)).Add(type).Add(content);
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
        std::size_t size = 0;
        for (std::size_t i = 0; i < 4; ++i)
            size = size << 8 | static_cast<unsigned char>(tile[at + i]);
        return tile.substr(at, size);
    };
    const std::string coded = boxAt("mdat").substr(8);
    const Bytes grid = Bytes().U8(0).U8(1).U8(rows - 1).U8(columns - 1).U32(columns * 512).U32(rows * 512);
    Bytes reference;
    reference.U16(1).U16(columns * rows);
    for (int i = 0; i < columns * rows; ++i)
        reference.U16(2);
    const auto entry = [](int item, const char* type) {
        return Box("infe", Bytes().U32(0x02000000).U16(item).U16(0).Add(type).U8(0));
    };
    const auto extent = [](int width, int height) {
        return Box("ispe", Bytes().U32(0).U32(width).U32(height));
    };
    const std::string properties =
        Box("ipco", boxAt("hvcC") + extent(512, 512) + extent(columns * 512, rows * 512));
    const std::string associations =
        Box("ipma", Bytes().U32(0).U32(2).U16(1).U8(1).U8(3).U16(2).U8(2).U8(0x81).U8(2));
    const auto meta = [&](std::int64_t codedAt) {
        const std::string locations = Box("iloc", Bytes()
                                                      .U32(0x01000000)
                                                      .U16(0x4400)
                                                      .U16(2)
                                                      .U16(1)
                                                      .U16(1)
                                                      .U16(0)
                                                      .U16(1)
                                                      .U32(0)
                                                      .U32(static_cast<std::int64_t>(grid.size()))
                                                      .U16(2)
                                                      .U16(0)
                                                      .U16(0)
                                                      .U16(1)
                                                      .U32(codedAt)
                                                      .U32(static_cast<std::int64_t>(coded.size())));
        return Box("meta",
                   Bytes()
                       .U32(0)
                       .Add(Box("hdlr", Bytes().U32(0).U32(0).Add("pict").U32(0).U32(0).U32(0).U8(0)))
                       .Add(Box("pitm", Bytes().U32(0).U16(1)))
                       .Add(locations)
                       .Add(Box("iinf", Bytes().U32(0).U16(2).Add(entry(1, "grid")).Add(entry(2, "hvc1"))))
                       .Add(Box("iref", Bytes().U32(0).Add(Box("dimg", reference))))
                       .Add(Box("iprp", properties + associations))
                       .Add(Box("idat", grid)));
    };
    const std::string type = Box("ftyp", Bytes("heic").U32(0).Add("mif1heic"));
    const auto codedAt = static_cast<std::int64_t>(type.size() + meta(0).size() + 8);
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
    const auto add = [&](const char* reader, const char* name, std::string file, std::string bytes,
                         bool sharp = false) {
        all.push_back({.reader = reader,
                       .name = name,
                       .file = file,
                       .bytes = std::move(bytes),
                       .steps = "--picture A=" + file + " --info",
                       .sharp = sharp});
    };
    add("PNG", "20000 x 20000 in a few kB", "f.png", FlatPng(20000, 20000, 1, 0));
    add("PNG", "8 bits, the most that is read", "f.png", FlatPng(large, large, 8, 6, padded), true);
    add("PNG", "16 bits, the most that is read", "f.png", FlatPng(deep, deep, 16, 6, padded), true);
    add("PNG", "interlaced, the most that is read", "f.png", FlatPng(deep, deep, 8, 6, padded, true));
    add("PNG", "one pixel high", "f.png", FlatPng(SparePixels, 1, 8, 6, padded));
    add("PNG", "one pixel wide", "f.png", FlatPng(1, SparePixels, 8, 6, padded));
    add("PNG", "80,000 empty chunks", "f.png", PngOfManyChunks());
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

    const std::uint64_t pixels = std::uint64_t{large} * large;
    add("GIF", "the most that is read", "f.gif",
        Gif(
            large, large, GifFrame(large, large, GifData(pixels)) + "!\xFE" + [] {
                std::string comment;
                for (int i = 0; i < 3600; ++i)
                    comment += "\xFF" + Noise(255);
                return comment + std::string(1, '\0');
            }()));
    add("GIF", "65535 x 65535", "f.gif", Gif(65535, 65535, GifFrame(65535, 65535, GifData(1'000'000'000))));
    add("GIF", "as many frames as it holds", "f.gif", GifOfManyFrames());

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
