#include "bombs/Bombs.h"

#include <glib.h>
#include <zlib.h>

#include <algorithm>
#include <memory>
#include <random>

namespace bombs {

std::string Little(std::initializer_list<std::pair<std::uint64_t, int>> fields) {
    std::string bytes;
    for (const auto& [value, size] : fields)
        for (int i = 0; i < size; ++i)
            bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
    return bytes;
}

std::size_t NumberAt(const std::string& bytes, std::size_t place, std::size_t size) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
    return value;
}

std::string Repeated(std::string_view start, std::string_view part, std::string_view end) {
    std::string text(start);
    while (text.size() + part.size() + end.size() < largestFile - 1000)
        text += part;
    return text.append(end);
}

std::string PackedRun(std::uint64_t count, char byte) {
    z_stream stream{};
    deflateInit(&stream, 9);
    const std::string piece(1 << 20, byte);
    std::string packed;
    std::string out(1 << 16, '\0');
    while (true) {
        const std::uint64_t now = std::min<std::uint64_t>(count, piece.size());
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(piece.data()));
        stream.avail_in = static_cast<uInt>(now);
        count -= now;
        do {
            stream.next_out = reinterpret_cast<Bytef*>(out.data());
            stream.avail_out = static_cast<uInt>(out.size());
            deflate(&stream, count == 0 ? Z_FINISH : Z_NO_FLUSH);
            packed.append(out, 0, out.size() - stream.avail_out);
        } while (stream.avail_out == 0);
        if (count == 0) break;
    }
    deflateEnd(&stream);
    return packed;
}

std::string Gzip(const std::string& text) {
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

std::string Base64(const std::string& bytes) {
    const std::unique_ptr<gchar, decltype(&g_free)> text(
        g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()), g_free);
    return std::string(text.get()) + "\n";
}

std::string Noise(std::size_t count) {
    std::mt19937 random(1);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random() % 255 + 1);
    return bytes;
}

std::string PngChunk(const char* type, const std::string& bytes) {
    const std::string body = type + bytes;
    const uLong sum = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    return fonts::Bytes().U32(std::ssize(bytes)).Add(body).U32(static_cast<std::int64_t>(sum));
}

std::string FlatPng(std::uint32_t width, std::uint32_t height, int depth, int colourType, std::size_t total,
                    bool interlaced) {
    const std::uint64_t channels = colourType == 6 ? 4 : 1;
    const auto bytesOf = [&](std::uint64_t w, std::uint64_t h) {
        return w == 0 ? 0 : h * (1 + (w * channels * static_cast<std::uint64_t>(depth) + 7) / 8);
    };
    std::uint64_t count = bytesOf(width, height);
    if (interlaced) { // Adam7 (ISO/IEC 15948, 8.2)
        constexpr std::uint32_t passes[7][4] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                                {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
        count = 0;
        for (const auto& [x, y, dx, dy] : passes)
            count += bytesOf((width - x + dx - 1) / dx, (height - y + dy - 1) / dy);
    }
    std::string png = "\x89PNG\r\n\x1A\n";
    png += PngChunk(
        "IHDR", fonts::Bytes().U32(width).U32(height).U8(depth).U8(colourType).U16(0).U8(interlaced ? 1 : 0));
    const std::string end = PngChunk("IDAT", PackedRun(count)) + PngChunk("IEND", "");
    if (total > png.size() + end.size() + 12)
        png += PngChunk("prVt", Noise(total - png.size() - end.size() - 12));
    return png + end;
}

} // namespace bombs
