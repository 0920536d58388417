// What every form keeps of every format, over awkward sizes; and what becomes of damaged files of every form.
#include "DebugLines.h"
#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <array>

namespace {

// What comes back for formats 1 to 9, and the largest difference of a channel on a scale of bytes. Floats pass
// through other steps on the way to bytes, hence the 1.
constexpr std::tuple<const char*, std::array<MPixelFormat, 9>, int> forms[] = {
    {"PNG", {1, 2, 2, 4, 5, 5, 7, 8, 8}, 1},   {"BMP", {7, 7, 7, 4, 4, 4, 7, 7, 7}, 0},
    {"JPEG", {1, 1, 1, 4, 4, 4, 4, 4, 4}, 10}, {"HEIF", {4, 4, 4, 4, 4, 4, 7, 7, 7}, 14},
    {"DDS", {7, 8, 9, 7, 8, 9, 7, 8, 9}, 14},
};

constexpr std::pair<std::uint32_t, std::uint32_t> awkwardSizes[] = {{1, 1}, {7, 1}, {1, 9}, {5, 6}, {301, 301}};

int LargestDifference(const MPicture& a, const MPicture& b) {
    int largest = 0;
    for (const auto& [x, y] : PlacesOf(a))
        largest = std::max(largest, Difference(a.GetPixel(x, y), b.GetPixel(x, y)));
    return largest;
}

} // namespace

TEST(EveryForm, ComesBackInItsFormatAndSize) {
    for (const auto& [form, loadedAs, tolerance] : forms) {
        for (MPixelFormat format = 1; format <= 9; ++format) {
            for (const auto& [width, height] : awkwardSizes) {
                const OwnedPicture picture = SmoothPicture(width, height, format);
                const OwnedPicture loaded = Decoded(form, Encoded(form, picture));
                SCOPED_TRACE(testing::Message() << form << format << ", " << width << " x " << height);
                ASSERT_EQ(loaded.Format, loadedAs[static_cast<std::size_t>(format - 1)]);
                ASSERT_EQ(std::pair(loaded.Width, loaded.Height), std::pair(width, height));
                EXPECT_LE(LargestDifference(picture, loaded), tolerance);
                EXPECT_EQ(std::pair(loaded.FrameCount, loaded.FrameDelay), std::pair(1, 0));
            }
        }
    }
}

TEST(EveryForm, KeepsEveryBitOfTheFormatsThatItHolds) {
    const std::pair<const char*, std::vector<MPixelFormat>> held[] = {
        {"PNG", {1, 2, 4, 5, 7, 8}}, {"TIFF", {1, 2, 3, 4, 5, 6, 7, 8, 9}}, {"BMP", {4, 7}}, {"DDS", {8, 9}}};
    for (const auto& [name, formats] : held) {
        for (const MPixelFormat format : formats) {
            for (const auto& [width, height] : awkwardSizes) {
                const OwnedPicture picture = RandomPicture(width, height, format, 21);
                EXPECT_TRUE(SamePicture(Decoded(name, Encoded(name, picture)), picture))
                    << name << ", format " << format << ", " << width << " x " << height;
            }
        }
    }
}

TEST(EveryForm, KeepsAlphaWhereThereIsOne) {
    OwnedPicture picture = BlankPicture(64, 64, FormatRGBA8);
    for (const auto& [x, y] : PlacesOf(picture))
        picture.SetPixel(x, y, MColour(60, 90, 70, static_cast<std::uint8_t>(x * 4)));
    EXPECT_LE(LargestDifference(picture, Decoded("HEIF", Encoded("HEIF", picture))), 20);
    const OwnedPicture dds = Decoded("DDS", Encoded("DDS", picture));
    for (std::int32_t x = 0; x < 64; ++x) // of an alpha, BC1 keeps which side of a half it is on
        EXPECT_EQ(dds.GetPixel(x, 5).a, x * 4 < 128 ? 0 : 255) << x;
}

TEST(EveryForm, SizesThatItCanNotHold) {
    for (const auto& [name, width] : {std::pair("JPEG", 65501U), {"GIF", 65536U}, {"HEIF", 65536U}})
        EXPECT_TRUE(Encoded(name, BlankPicture(width, 1, FormatR8)).empty()) << name;
}

namespace {

Bytes Sample(const MCodec& codec) {
    if (codec.encode) return Encoded(codec.name, SmoothPicture(31, 17, FormatRGBA8));
    Bytes tga(18 + 31 * 17 * 4, 0x60); // the only form that is not written
    const std::uint8_t header[18] = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 31, 0, 17, 0, 32, 0};
    std::ranges::copy(header, tga.begin());
    return tga;
}

void MendPngHeader(Bytes& png) {
    Bytes sum;
    Append(sum, {{static_cast<std::uint32_t>(crc32(0, png.data() + 12, 17)), 4}});
    std::ranges::copy(sum, png.begin() + 29);
}

} // namespace

TEST(EveryForm, DamagedFilesAreRefusedWithoutAWordOnTheTerminal) {
#if !defined(__SANITIZE_ADDRESS__) // whose reports need the stream that is turned away otherwise
    testing::internal::CaptureStderr();
#endif
    testing::internal::CaptureStdout();
    for (const MCodec& codec : Codecs()) {
        const Bytes whole = Sample(codec);
        ASSERT_TRUE(Decoded(codec.name, whole).IsValid()) << codec.name;
        for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 97)
            EXPECT_FALSE(Decoded(codec.name, std::span(whole).first(length)).IsValid()) << codec.name << length;
        Random random(20);
        for (std::size_t round = 0; round < 1600; ++round) { // boxes, parameter sets, headers; then anything
            Bytes flipped = whole;
            const std::size_t bit = round < 1300 ? round * 5 : random();
            flipped[bit / 8 % flipped.size()] ^= static_cast<std::uint8_t>(1U << bit % 8);
            Decoded(codec.name, flipped); // a picture or none, but no crash
        }
        for (const MCodec& other : Codecs())
            EXPECT_TRUE(&other == &codec || !Decoded(other.name, whole).IsValid()) << codec.name << other.name;
        EXPECT_FALSE(codec.sniff && Decoded(codec.name, whole, 1).IsValid()) << codec.name;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
#if !defined(__SANITIZE_ADDRESS__)
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
#endif
}

// The names tell why.
TEST(EveryForm, RefusesWhatItDoesNotRead) {
    const std::vector<std::string> names = DataFiles("refused");
    EXPECT_EQ(names.size(), 44U);
    for (const std::string& name : names) {
        const MCodec* const codec = CodecForExtension(MString(name.c_str()).GetExtension());
        ASSERT_NE(codec, nullptr) << name;
        EXPECT_FALSE(Decoded(codec->name, DataFile("refused/" + name)).IsValid()) << name;
    }
}

// A header that promises 30000 by 30000 pixels, or more than can be counted, is refused before anything is
// allocated for them: by the line that says so where memory has no limit, or, for forms without such a line,
// without a word of exhausted memory at a low limit.
TEST(EveryForm, EnormousByHeader) {
    const struct {
        const char* name;
        Bytes mark; // width and height stand at these offsets behind each of it; without one, from the start
        std::array<std::size_t, 2> offsets;
        std::size_t bytes;
        bool bigEndian, told;
        std::array<std::uint32_t, 2> size = {30000, 30000};
    } headers[] = {
        {"BMP", {}, {18, 22}, 4, false, false},
        {"DDS", {}, {16, 12}, 4, false, false},
        {"TGA", {}, {12, 14}, 2, false, false},
        {"GIF", {0x2C, 0, 0, 0, 0}, {5, 7}, 2, false, false}, // of the frame, whose size counts
        {"JPEG", {0xFF, 0xC0}, {5, 7}, 2, true, true},
        {"TIFF", {0, 1, 3, 0, 1, 0, 0, 0}, {8, 20}, 2, false, true}, // the entry of the width, and the next
        {"HEIF", {'i', 's', 'p', 'e'}, {8, 12}, 4, true, true},      // of the picture and of its alpha
        {"PNG", {'I', 'H', 'D', 'R'}, {4, 8}, 4, true, true},
        // Rows of 8 bytes a pixel and one more take 2 to the 64th bytes, and 4 more.
        {"PNG", {'I', 'H', 'D', 'R'}, {4, 8}, 4, true, true, {2087634008, 1104524548}},
    };
    for (const auto& header : headers) {
        const bool wide = header.size[0] != 30000;
        Bytes file =
            wide ? Encoded(header.name, SmoothPicture(31, 17, FormatRGBA16)) : Sample(CodecNamed(header.name));
        const auto after = [&](Bytes::iterator place) {
            return std::search(place, file.end(), header.mark.begin(), header.mark.end());
        };
        auto at = after(file.begin());
        ASSERT_NE(at, file.end()) << header.name;
        for (; at != file.end(); at = after(at + 1)) {
            for (std::size_t side = 0; side < 2; ++side) {
                for (std::size_t i = 0; i < header.bytes; ++i) {
                    const std::size_t place =
                        header.offsets[side] + (header.bigEndian ? header.bytes - 1 - i : i);
                    at[static_cast<std::ptrdiff_t>(place)] =
                        static_cast<std::uint8_t>(header.size[side] >> 8 * i);
                }
            }
            if (header.mark.empty()) break;
        }
        if (file[1] == 'P') MendPngHeader(file);
        const DebugLines debug;
        SetMemoryLimit(header.told ? std::size_t{1} << 40 : 50'000'000);
        EXPECT_FALSE(Decoded(header.name, file).IsValid()) << header.name;
        SetMemoryLimit(0);
        const std::u16string_view words = header.told ? u"larger than the file could hold" : u"out of memory";
        EXPECT_EQ(debug.Count(words) > 0, header.told) << header.name;
    }
}
