// The plain way beside libpng: what it writes libpng reads, what it reads is what libpng reads, and it takes no
// file that libpng refuses.
#include "imaging/codecs/MPlainPng.h"

#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

namespace {

// Blocks on clear ground, with soft edges.
OwnedPicture Letters(std::uint32_t width, std::uint32_t height, MPixelFormat format) {
    OwnedPicture picture = BlankPicture(width, height, format);
    for (const auto& [x, y] : PlacesOf(picture)) {
        const bool ink = (x / 13 + y / 17) % 3 == 0;
        const auto soft = static_cast<std::uint8_t>(x % 13 * 19);
        if (ink) picture.SetPixel(x, y, MColour(200, 30, static_cast<std::uint8_t>(y / 40), soft));
    }
    return picture;
}

Bytes Chunk(const std::string& name, const Bytes& data) {
    Bytes chunk;
    Append(chunk, {{static_cast<std::uint32_t>(data.size()), 4}});
    Append(chunk, Bytes(name.begin(), name.end()));
    Append(chunk, data);
    Append(chunk, {{static_cast<std::uint32_t>(crc32_z(0, chunk.data() + 4, chunk.size() - 4)), 4}});
    return chunk;
}

Bytes Packed(const Bytes& rows) {
    uLongf size = compressBound(rows.size());
    Bytes packed(size);
    EXPECT_EQ(compress(packed.data(), &size, rows.data(), rows.size()), Z_OK);
    packed.resize(size);
    return packed;
}

Bytes Assembled(std::uint32_t width, std::uint32_t height, std::uint8_t colourType,
                const std::vector<Bytes>& chunks) {
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Bytes header;
    Append(header, {{width, 4}, {height, 4}, {8, 1}, {colourType, 1}, {0, 3}});
    Append(file, Chunk("IHDR", header));
    for (const Bytes& chunk : chunks)
        Append(file, chunk);
    Append(file, Chunk("IEND", {}));
    return file;
}

// Noise in every row, each with the next of `filters`.
Bytes Rows(std::uint32_t width, std::uint32_t height, std::size_t channels, const Bytes& filters) {
    Random random(5);
    Bytes rows;
    for (std::uint32_t y = 0; y < height; ++y) {
        rows.push_back(filters[y % filters.size()]);
        for (std::size_t i = 0; i < width * channels; ++i)
            rows.push_back(static_cast<std::uint8_t>(random() >> 20));
    }
    return rows;
}

// The picture, invalid if the file isn't taken.
OwnedPicture ByLibpng(const Bytes& file) {
    MPicture picture;
    if (!DecodePngByLibpng(file, picture)) picture.Free();
    return {picture};
}

bool IsPlain(const Bytes& file) {
    MPicture picture;
    const bool plain = DecodePlainPng(file, picture);
    picture.Free();
    return plain;
}

} // namespace

TEST(PlainPng, LibpngReadsWhatIsWritten) {
    for (const MPixelFormat format : {FormatR8, FormatRGB8, FormatRGBA8}) {
        for (const auto& [width, height] : {std::pair(400U, 300U), {1U, 70000U}, {70000U, 1U}, {255U, 301U}}) {
            const OwnedPicture picture = Letters(width, height, format);
            MByteSink sink;
            ASSERT_TRUE(EncodePlainPng(picture, sink).value_or(false)) << width << " x " << height;
            const Bytes file(sink.Bytes().begin(), sink.Bytes().end());
            EXPECT_TRUE(SamePicture(ByLibpng(file), picture)) << "format " << format << ", " << width;
            EXPECT_TRUE(IsPlain(file) && SamePicture(Decoded("PNG", file), picture));
        }
    }
    MByteSink sink;
    EXPECT_FALSE(EncodePlainPng(RandomPicture(300, 300, FormatRGBA8, 1, 1), sink)) << "like a photograph";
    EXPECT_FALSE(EncodePlainPng(Letters(300, 300, FormatRGBA16), sink));
    EXPECT_EQ(sink.Size(), 0U);
}

TEST(PlainPng, EveryFilterIsUndoneAsByLibpng) {
    for (const auto& [colourType, channels] : {std::pair(0, 1U), {2, 3U}, {6, 4U}}) {
        for (const std::uint32_t width : {1U, 2U, 37U}) {
            const Bytes rows = Rows(width, 40, channels, {0, 1, 2, 3, 4, 4, 3, 2, 1, 2, 0, 3});
            const Bytes file =
                Assembled(width, 40, static_cast<std::uint8_t>(colourType), {Chunk("IDAT", Packed(rows))});
            EXPECT_TRUE(IsPlain(file));
            EXPECT_TRUE(SamePicture(Decoded("PNG", file), ByLibpng(file))) << channels << ", " << width;
        }
    }
}

// The plain way takes a file only if libpng would, and leaves it the rest.
TEST(PlainPng, DoubtsAreLeftToLibpng) {
    const Bytes rows = Rows(9, 12, 4, {2, 0});
    const Bytes packed = Packed(rows);
    const Bytes idat = Chunk("IDAT", packed);
    const Bytes begin = Chunk("IDAT", {packed.begin(), packed.begin() + 20});
    const Bytes end = Chunk("IDAT", {packed.begin() + 20, packed.end()});
    const Bytes text = Chunk("tEXt", {'a', 0, 'b'});
    Bytes badFilter = rows;
    badFilter[3 * 37] = 5;
    Bytes badCheck = packed;
    badCheck.back() ^= 1;
    Bytes more = packed;
    more.push_back(0);
    Bytes narrow = packed;
    narrow[0] = 0x18; // 512 bytes, more than all of it
    narrow[1] = 0x19;
    const Bytes key = Chunk("tRNS", {0, 1, 0, 2, 0, 3});
    const std::tuple<const char*, bool, Bytes> cases[] = {
        {"two data chunks and words", true, Assembled(9, 12, 6, {text, begin, end, text})},
        {"words between the data", false, Assembled(9, 12, 6, {begin, text, end})},
        {"an empty data chunk", false, Assembled(9, 12, 6, {begin, Chunk("IDAT", {}), end})},
        {"no data", false, Assembled(9, 12, 6, {text})},
        {"a filter that there is not", false, Assembled(9, 12, 6, {Chunk("IDAT", Packed(badFilter))})},
        {"a row too many", false, Assembled(9, 11, 6, {idat})},
        {"a row too few", false, Assembled(9, 13, 6, {idat})},
        {"a wrong checksum inside", false, Assembled(9, 12, 6, {Chunk("IDAT", badCheck)})},
        {"a byte behind the data", false, Assembled(9, 12, 6, {Chunk("IDAT", more)})},
        {"a smaller window", false, Assembled(9, 12, 6, {Chunk("IDAT", narrow)})},
        {"a transparent colour", false,
         Assembled(12, 12, 2, {key, Chunk("IDAT", Packed(Rows(12, 12, 3, {0})))})},
        {"a chunk that nobody knows", false, Assembled(9, 12, 6, {Chunk("ABCD", {1}), idat})},
        {"a second header", false, Assembled(9, 12, 6, {Chunk("IHDR", Bytes(13)), idat})},
        {"no width", false, Assembled(0, 12, 6, {idat})},
    };
    for (const auto& [what, plain, file] : cases) {
        EXPECT_EQ(IsPlain(file), plain) << what;
        const OwnedPicture ours = Decoded("PNG", file);
        const OwnedPicture theirs = ByLibpng(file);
        EXPECT_EQ(ours.IsValid(), theirs.IsValid()) << what;
        EXPECT_TRUE(!theirs.IsValid() || SamePicture(ours, theirs)) << what;
    }
    // Wherever a bit is wrong, and wherever the file ends.
    const Bytes whole = Assembled(9, 12, 6, {text, idat});
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Bytes damaged = whole;
        damaged[i] ^= 0x10;
        EXPECT_EQ(Decoded("PNG", damaged).IsValid(), ByLibpng(damaged).IsValid()) << "byte " << i;
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_EQ(Decoded("PNG", cut).IsValid(), ByLibpng(cut).IsValid()) << "cut at " << i;
    }
}
