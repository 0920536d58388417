#include "imaging/codecs/MPlainPng.h"

#include "foundation/MMemory.h"
#include "imaging/MPixelBudget.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace {

constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t chunkFrame = 12; // length, name, checksum

// Random changes never get past a checksum.
#if defined(FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION)
constexpr bool checksumsAreIgnored = true;
#else
constexpr bool checksumsAreIgnored = false;
#endif

struct FreeCompressor {
    void operator()(libdeflate_compressor* object) const { libdeflate_free_compressor(object); }
};
struct FreeDecompressor {
    void operator()(libdeflate_decompressor* object) const { libdeflate_free_decompressor(object); }
};
using Block = std::unique_ptr<std::uint8_t[]>;

void PutBig(std::uint8_t* target, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        *target++ = static_cast<std::uint8_t>(value >> shift);
}

std::uint32_t Big(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
           bytes[3];
}

// Our pixels have blue first, a file's red. The same in both directions. `to` may lie before `from` and overlap
// it.
template<std::size_t Channels>
void SwapRow(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    if constexpr (Channels == 1) {
        std::memmove(to, from, pixels);
    } else {
        for (std::size_t i = 0; i < pixels; ++i, from += Channels, to += Channels) {
            const std::uint8_t red = from[0];
            const std::uint8_t green = from[1];
            const std::uint8_t blue = from[2];
            if constexpr (Channels == 4) to[3] = from[3];
            to[0] = blue;
            to[1] = green;
            to[2] = red;
        }
    }
}

void SwapRow(std::size_t channels, const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    switch (channels) {
    case 1: return SwapRow<1>(from, to, pixels);
    case 3: return SwapRow<3>(from, to, pixels);
    default: return SwapRow<4>(from, to, pixels);
    }
}

enum Filter : std::uint8_t { None, Sub, Up, Average, Paeth }; // 9.2

// --- writing ---

// Rows of a picture as a PNG has them, each with one filter.
class FilteredRows {
public:
    FilteredRows(const MPicture& source, std::size_t channelCount)
        : picture(source), channels(channelCount), length(source.Width * channelCount) {}

    std::size_t BytesEach() const { return length + 1; }
    // False without memory.
    bool Prepare() {
        rows.reset(MGetMemory(length * 2));
        return rows != nullptr;
    }
    // `count` rows from `first` on.
    void Write(std::size_t first, std::size_t count, Filter filter, std::uint8_t* target) {
        std::uint8_t* above = rows.get();
        std::uint8_t* row = rows.get() + length;
        if (first == 0) {
            std::fill_n(above, length, std::uint8_t{0});
        } else {
            Take(first - 1, above);
        }
        for (std::size_t y = first; y < first + count; ++y, target += length) {
            Take(y, row);
            *target++ = filter;
            if (filter == None) {
                std::memcpy(target, row, length);
            } else {
                for (std::size_t i = 0; i < length; ++i)
                    target[i] = static_cast<std::uint8_t>(row[i] - above[i]);
            }
            std::swap(above, row);
        }
    }

private:
    const MPicture& picture;
    const std::size_t channels;
    const std::size_t length;
    Block rows; // the one above and the current one

    void Take(std::size_t y, std::uint8_t* row) const {
        SwapRow(channels, picture.Pixels + y * picture.Stride, row, picture.Width);
    }
};

struct Choice {
    Filter filter = None;
    bool shrinks = false;
};

// By rows from all over the picture. Letters on clear ground shrink best by differences to the row above, or as
// they are; what does not shrink to a fifth is more of a photograph.
Choice ChooseFilter(FilteredRows& rows, std::size_t height, libdeflate_compressor* compressor) {
    constexpr std::size_t bands = 16;
    constexpr std::size_t sampleBytes = std::size_t{1} << 20;
    constexpr std::size_t worthwhile = 5;
    const std::size_t each = std::clamp<std::size_t>(sampleBytes / bands / rows.BytesEach(), 1, height);
    const std::size_t bandCount = std::min(bands, height / each);
    const std::size_t size = bandCount * each * rows.BytesEach();
    const Block sample(MGetMemory(size));
    const Block packed(MGetMemory(size));
    if (!sample || !packed) return {};
    Choice best;
    std::size_t smallest = size / worthwhile;
    for (const Filter filter : {Up, None}) {
        for (std::size_t band = 0; band < bandCount; ++band) {
            const std::size_t first = (height - each) * band / std::max<std::size_t>(bandCount - 1, 1);
            rows.Write(first, each, filter, sample.get() + band * each * rows.BytesEach());
        }
        const std::size_t came = libdeflate_zlib_compress(compressor, sample.get(), size, packed.get(), size);
        if (came == 0 || came >= smallest) continue;
        smallest = came;
        best = {filter, true};
    }
    return best;
}

bool WriteChunk(MByteSink& sink, std::string_view name, std::span<const std::uint8_t> data) {
    std::array<std::uint8_t, 8> head{};
    PutBig(head.data(), static_cast<std::uint32_t>(data.size()));
    std::ranges::copy(name, head.begin() + 4);
    std::array<std::uint8_t, 4> check{};
    std::uint32_t crc = libdeflate_crc32(0, head.data() + 4, 4);
    if (!data.empty()) crc = libdeflate_crc32(crc, data.data(), data.size()); // no pointer would begin it anew
    PutBig(check.data(), crc);
    return sink.Write(head.data(), head.size()) && (data.empty() || sink.Write(data.data(), data.size())) &&
           sink.Write(check.data(), check.size());
}

std::optional<std::size_t> PlainChannels(MPixelFormat format) {
    switch (format) {
    case FormatR8: return 1;
    case FormatRGB8: return 3;
    case FormatRGBA8: return 4;
    default: return std::nullopt;
    }
}

constexpr std::uint8_t ColourType(std::size_t channels) {
    return channels == 1 ? 0 : channels == 3 ? 2 : 6; // 11.2.2
}

// --- reading ---

struct PlainFile {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::size_t channels = 0;
    std::size_t packedBytes = 0; // in all data chunks
};

// What has no say in how the picture looks here. Any other chunk might.
bool IsHarmless(std::string_view name) {
    constexpr std::string_view known[] = {"tEXt", "zTXt", "iTXt", "tIME", "pHYs", "gAMA",
                                          "cHRM", "sRGB", "sBIT", "bKGD", "eXIf"};
    return std::ranges::find(known, name) != std::end(known);
}

std::optional<PlainFile> ReadHeader(std::span<const std::uint8_t> data) {
    if (data.size() != 13) return std::nullopt;
    PlainFile plain{Big(data.data()), Big(data.data() + 4), 0, 0};
    constexpr std::uint32_t most = 0x7FFFFFFF;
    if (plain.width == 0 || plain.width > most || plain.height == 0 || plain.height > most) return std::nullopt;
    if (data[8] != 8 || data[10] != 0 || data[11] != 0 || data[12] != 0) return std::nullopt;
    for (const std::size_t channels : {1U, 3U, 4U})
        if (data[9] == ColourType(channels)) plain.channels = channels;
    return plain.channels == 0 ? std::nullopt : std::optional(plain);
}

// Goes through the chunks and gives each data chunk to `take`. Nothing if the file is not plain, or not whole.
template<typename Take>
std::optional<PlainFile> ReadChunks(std::span<const std::uint8_t> file, const Take& take) {
    constexpr std::size_t longestHarmless = 1 << 20; // libpng refuses some that are much longer
    if (file.size() < signature.size() || !std::ranges::equal(signature, file.first(signature.size())))
        return std::nullopt;
    std::span<const std::uint8_t> rest = file.subspan(signature.size());
    std::optional<PlainFile> plain;
    bool dataEnded = false;
    while (rest.size() >= chunkFrame) {
        const std::size_t length = Big(rest.data());
        if (length > rest.size() - chunkFrame) return std::nullopt;
        const std::string_view name(reinterpret_cast<const char*>(rest.data() + 4), 4);
        const std::span<const std::uint8_t> data = rest.subspan(8, length);
        if (!checksumsAreIgnored &&
            libdeflate_crc32(0, rest.data() + 4, length + 4) != Big(rest.data() + 8 + length))
            return std::nullopt;
        rest = rest.subspan(chunkFrame + length);
        if (!plain) {
            if (name != "IHDR" || !(plain = ReadHeader(data))) return std::nullopt;
        } else if (name == "IDAT") {
            if (dataEnded || data.empty()) return std::nullopt;
            plain->packedBytes += data.size();
            take(data);
        } else if (name == "IEND") {
            return data.empty() && plain->packedBytes > 0 ? plain : std::nullopt;
        } else {
            if (!IsHarmless(name) || length > longestHarmless) return std::nullopt;
            dataEnded = plain->packedBytes > 0;
        }
    }
    return std::nullopt;
}

int PaethPredictor(int left, int above, int corner) { // 9.4
    const int toLeft = std::abs(above - corner);
    const int toAbove = std::abs(left - corner);
    const int toCorner = std::abs(left + above - 2 * corner);
    if (toLeft <= toAbove && toLeft <= toCorner) return left;
    return toAbove <= toCorner ? above : corner;
}

// Undoes a row's filter in place. `above` is the row before it, or zeros. False for a filter that there is not.
template<std::size_t Channels>
bool Unfilter(std::uint8_t filter, std::uint8_t* row, const std::uint8_t* above, std::size_t length) {
    const auto add = [&](std::size_t i, int value) { row[i] = static_cast<std::uint8_t>(row[i] + value); };
    switch (filter) {
    case None: return true;
    case Sub:
        for (std::size_t i = Channels; i < length; ++i)
            add(i, row[i - Channels]);
        return true;
    case Up:
        for (std::size_t i = 0; i < length; ++i)
            add(i, above[i]);
        return true;
    case Average:
        for (std::size_t i = 0; i < Channels; ++i)
            add(i, above[i] / 2);
        for (std::size_t i = Channels; i < length; ++i)
            add(i, (row[i - Channels] + above[i]) / 2);
        return true;
    case Paeth:
        for (std::size_t i = 0; i < Channels; ++i)
            add(i, above[i]);
        for (std::size_t i = Channels; i < length; ++i)
            add(i, PaethPredictor(row[i - Channels], above[i], above[i - Channels]));
        return true;
    default: return false;
    }
}

bool Unfilter(std::size_t channels, std::uint8_t filter, std::uint8_t* row, const std::uint8_t* above,
              std::size_t length) {
    switch (channels) {
    case 1: return Unfilter<1>(filter, row, above, length);
    case 3: return Unfilter<3>(filter, row, above, length);
    default: return Unfilter<4>(filter, row, above, length);
    }
}

// All rows with their filters' bytes; false unless the data are exactly that. Streams for a smaller window are
// left to the library that minds it.
bool Unpack(std::span<const std::uint8_t> packed, std::uint8_t* rows, std::size_t size) {
    constexpr std::uint8_t deflateWithFullWindow = 0x78;
    if (packed.size() < 2 || packed[0] != deflateWithFullWindow) return false;
    const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decompressor(
        libdeflate_alloc_decompressor());
    if (!decompressor) return false;
    std::size_t used = 0;
    std::size_t came = 0;
    libdeflate_result result = LIBDEFLATE_SUCCESS;
    if (checksumsAreIgnored) {
        result = libdeflate_deflate_decompress_ex(decompressor.get(), packed.data() + 2, packed.size() - 2,
                                                  rows, size, &used, &came);
        used += 2 + 4;
    } else {
        result = libdeflate_zlib_decompress_ex(decompressor.get(), packed.data(), packed.size(), rows, size,
                                               &used, &came);
    }
    return result == LIBDEFLATE_SUCCESS && used == packed.size() && came == size;
}

// Makes the rows of a file that lie in the picture's own block its pixels, each a byte before where it was for
// each row so far. The filters work on every channel alone, so the order of these can change first. False for a
// row with a filter that there is not.
bool TakeRows(std::size_t channels, MPicture& picture) {
    const std::size_t length = picture.Stride;
    const Block zeros(MGetMemory(length));
    if (!zeros) return false;
    std::fill_n(zeros.get(), length, std::uint8_t{0});
    const std::uint8_t* above = zeros.get();
    for (std::size_t y = 0; y < picture.Height; ++y) {
        const std::uint8_t* const from = picture.Pixels + y * (length + 1);
        std::uint8_t* const row = picture.Pixels + y * length;
        const std::uint8_t filter = *from;
        SwapRow(channels, from + 1, row, picture.Width);
        if (!Unfilter(channels, filter, row, above, length)) return false;
        above = row;
    }
    return true;
}

// A picture whose block has room for the file's rows, which are a byte longer each.
bool AllocateForRows(MPicture& picture, const PlainFile& plain, std::size_t size) {
    if (!IsWithinPixelLimit(plain.width, plain.height)) return false;
    picture.Pixels = MGetMemory(size);
    picture.Width = plain.width;
    picture.Height = plain.height;
    picture.Stride = static_cast<std::uint32_t>(plain.width * plain.channels);
    picture.Format = plain.channels == 1 ? FormatR8 : plain.channels == 3 ? FormatRGB8 : FormatRGBA8;
    return picture.IsValid();
}

} // namespace

std::optional<bool> EncodePlainPng(const MPicture& picture, MByteSink& sink) {
    constexpr std::uint64_t smallest = 1 << 16; // below, nobody waits
    constexpr int level = 6;                    // as small as the next ones here, and faster
    const auto channels = PlainChannels(picture.Format);
    if (!channels) return std::nullopt;
    FilteredRows rows(picture, *channels);
    const std::uint64_t size = std::uint64_t{rows.BytesEach()} * picture.Height;
    if (size < smallest || size > MostPlainBytes || !rows.Prepare()) return std::nullopt;
    const std::unique_ptr<libdeflate_compressor, FreeCompressor> compressor(libdeflate_alloc_compressor(level));
    if (!compressor) return std::nullopt;
    const Choice choice = ChooseFilter(rows, picture.Height, compressor.get());
    if (!choice.shrinks) return std::nullopt;

    Block filtered(MGetMemory(size));
    const std::size_t room = size / 3;
    const Block packed(MGetMemory(room));
    if (!filtered || !packed) return std::nullopt;
    rows.Write(0, picture.Height, choice.filter, filtered.get());
    const std::size_t came =
        libdeflate_zlib_compress(compressor.get(), filtered.get(), size, packed.get(), room);
    if (came == 0) return std::nullopt; // the sample promised too much
    filtered.reset();

    std::array<std::uint8_t, 13> header{};
    PutBig(header.data(), picture.Width);
    PutBig(header.data() + 4, picture.Height);
    header[8] = 8;
    header[9] = ColourType(*channels);
    return sink.Write(signature.data(), signature.size()) && WriteChunk(sink, "IHDR", header) &&
           WriteChunk(sink, "IDAT", {packed.get(), came}) && WriteChunk(sink, "IEND", {});
}

bool DecodePlainPng(std::span<const std::uint8_t> file, MPicture& picture) {
    const auto plain = ReadChunks(file, [](std::span<const std::uint8_t>) {});
    if (!plain) return false;
    const std::size_t length = std::size_t{plain->width} * plain->channels + 1;
    if (length > MostPlainBytes / plain->height) return false;
    const std::size_t size = length * plain->height;
    constexpr std::size_t bestDeflateRatio = 1032; // what promises more is a lie, which libpng's reader tells
    if (size / bestDeflateRatio >= file.size() || !IsAffordable(size)) return false;

    const Block packed(MGetMemory(plain->packedBytes));
    if (!packed) return false;
    std::size_t filled = 0;
    ReadChunks(file, [&](std::span<const std::uint8_t> data) {
        std::ranges::copy(data, packed.get() + filled);
        filled += data.size();
    });
    return AllocateForRows(picture, *plain, size) &&
           Unpack({packed.get(), plain->packedBytes}, picture.Pixels, size) &&
           TakeRows(plain->channels, picture);
}
