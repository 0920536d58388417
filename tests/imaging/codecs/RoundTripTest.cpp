// What every form keeps of every format, over awkward sizes; and what becomes of damaged files of every form.
#include "foundation/MDebug.h"
#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

namespace {

struct Form {
    const char* name;
    std::array<MPixelFormat, 9> loadedAs; // what comes back for formats 1 to 9
    int tolerance;                        // largest difference of a channel, on a scale of bytes
};

// Floats pass through other steps on the way to bytes, hence the 1.
constexpr Form forms[] = {
    {"PNG", {1, 2, 2, 4, 5, 5, 7, 8, 8}, 1},   {"TIFF", {1, 2, 3, 4, 5, 6, 7, 8, 9}, 0},
    {"BMP", {7, 7, 7, 4, 4, 4, 7, 7, 7}, 0},   {"JPEG", {1, 1, 1, 4, 4, 4, 4, 4, 4}, 10},
    {"HEIF", {4, 4, 4, 4, 4, 4, 7, 7, 7}, 14}, {"DDS", {7, 8, 9, 7, 8, 9, 7, 8, 9}, 14},
};

constexpr std::pair<std::uint32_t, std::uint32_t> awkwardSizes[] = {{1, 1}, {7, 1}, {1, 9}, {5, 6}, {301, 301}};

// The largest difference of any channel of any pixel.
int Difference(const MPicture& a, const MPicture& b, bool alpha) {
    int largest = 0;
    for (std::int32_t y = 0; y < static_cast<std::int32_t>(a.Height); ++y) {
        for (std::int32_t x = 0; x < static_cast<std::int32_t>(a.Width); ++x) {
            const MColour first = a.GetPixel(x, y);
            const MColour second = b.GetPixel(x, y);
            largest = std::max({largest, std::abs(first.r - second.r), std::abs(first.g - second.g),
                                std::abs(first.b - second.b), alpha ? std::abs(first.a - second.a) : 0});
        }
    }
    return largest;
}

} // namespace

TEST(EveryForm, ComesBackInItsFormatAndSize) {
    for (const Form& form : forms) {
        for (MPixelFormat format = 1; format <= 9; ++format) {
            for (const auto& [width, height] : awkwardSizes) {
                const OwnedPicture picture = SmoothPicture(width, height, format);
                const OwnedPicture loaded = Decoded(form.name, Encoded(form.name, picture));
                const auto what = testing::Message()
                                  << form.name << ", format " << format << ", " << width << " x " << height;
                ASSERT_TRUE(loaded.IsValid()) << what;
                EXPECT_EQ(loaded.Format, form.loadedAs[static_cast<std::size_t>(format - 1)]) << what;
                ASSERT_EQ(loaded.Width, width) << what;
                ASSERT_EQ(loaded.Height, height) << what;
                EXPECT_LE(Difference(picture, loaded, true), form.tolerance) << what;
                EXPECT_EQ(loaded.FrameCount, 1) << what;
                EXPECT_EQ(loaded.FrameDelay, 0) << what;
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
    OwnedPicture picture = SmoothPicture(64, 64, FormatRGBA8);
    for (std::int32_t y = 0; y < 64; ++y) {
        for (std::int32_t x = 0; x < 64; ++x) {
            MColour colour = picture.GetPixel(x, y);
            colour.a = static_cast<std::uint8_t>(x * 4);
            picture.SetPixel(x, y, colour);
        }
    }
    const OwnedPicture heif = Decoded("HEIF", Encoded("HEIF", picture));
    EXPECT_LE(Difference(picture, heif, true), 20);
    const OwnedPicture dds = Decoded("DDS", Encoded("DDS", picture));
    for (std::int32_t x = 0; x < 64; ++x) {
        EXPECT_EQ(dds.GetPixel(x, 5).a, x * 4 < 128 ? 0 : 255)
            << "of an alpha, BC1 keeps which side of a half it is on";
    }
}

TEST(EveryForm, NothingReachesTheTerminal) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const MCodec& codec : Codecs()) {
        if (!codec.encode) continue;
        Bytes file = Encoded(codec.name, SmoothPicture(40, 40, FormatRGBA8));
        Decoded(codec.name, file);
        for (std::size_t i = file.size() / 3; i < file.size(); i += 7)
            file[i] ^= 0x55;
        Decoded(codec.name, file);
        Decoded(codec.name, std::span(file).first(file.size() / 2));
    }
#if !defined(__SANITIZE_ADDRESS__) // whose reports need the stream that is turned away otherwise
    const Bytes heif = Encoded("HEIF", SmoothPicture(40, 40, FormatRGBA8));
    const std::size_t most = std::min<std::size_t>(heif.size(), 800); // the boxes and the parameter sets
    for (std::size_t bit = 0; bit < most * 8; bit += 5) {
        Bytes flipped = heif;
        flipped[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
        Decoded("HEIF", flipped);
    }
#endif
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

namespace {

std::vector<std::u16string> messages;

Bytes Sample(const MCodec& codec) {
    if (codec.encode) return Encoded(codec.name, SmoothPicture(31, 17, FormatRGBA8));
    Bytes tga(18 + 31 * 17 * 4, 0x60); // the only form that is not written
    const std::uint8_t header[18] = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 31, 0, 17, 0, 32, 0};
    std::ranges::copy(header, tga.begin());
    return tga;
}

} // namespace

TEST(EveryForm, DamagedFiles) {
    for (const MCodec& codec : Codecs()) {
        const Bytes whole = Sample(codec);
        ASSERT_TRUE(Decoded(codec.name, whole).IsValid()) << codec.name;
        for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 97) {
            EXPECT_FALSE(Decoded(codec.name, std::span(whole).first(length)).IsValid())
                << codec.name << " cut to " << length;
        }
        Random random(20);
        for (int round = 0; round < 300; ++round) {
            Bytes flipped = whole;
            flipped[random() % flipped.size()] ^= static_cast<std::uint8_t>(1U << random() % 8);
            Decoded(codec.name, flipped); // a picture or none, but no crash
        }
        for (const MCodec& other : Codecs()) {
            if (&other != &codec) {
                EXPECT_FALSE(Decoded(other.name, whole).IsValid()) << codec.name << " read as " << other.name;
            }
        }
        EXPECT_FALSE(Decoded(codec.name, whole, codec.sniff ? 1 : -1).IsValid() && codec.sniff) << codec.name;
    }
}

// A header that promises 30000 by 30000 pixels is refused before anything is allocated for them: by the line
// that says so where memory has no limit, or, for forms without such a line, without a word of exhausted memory
// at a low limit.
TEST(EveryForm, EnormousByHeader) {
    struct Patch {
        const char* name;
        std::vector<std::size_t> offsets; // of width and height
        bool bigEndian;
        std::size_t bytes;
    };
    const Patch patches[] = {{"BMP", {18, 22}, false, 4},
                             {"DDS", {16, 12}, false, 4},
                             {"TGA", {12, 14}, false, 2},
                             {"GIF", {6, 8}, false, 2}};
    SetDebugSink([](std::u16string_view message) { messages.emplace_back(message); });
    const auto mentioned = [&](const char* name, const Bytes& file, std::size_t limit,
                               std::u16string_view words) {
        messages.clear();
        SetMemoryLimit(limit);
        EXPECT_FALSE(Decoded(name, file).IsValid()) << name;
        SetMemoryLimit(0);
        return std::ranges::any_of(messages,
                                   [&](const auto& message) { return message.find(words) != message.npos; });
    };
    const auto refused = [&](const char* name, const Bytes& file) {
        EXPECT_TRUE(mentioned(name, file, std::size_t{1} << 40, u"larger than the file could hold")) << name;
    };
    for (const Patch& patch : patches) {
        Bytes file = Sample(CodecNamed(patch.name));
        for (const std::size_t offset : patch.offsets) {
            for (std::size_t i = 0; i < patch.bytes; ++i)
                file[offset + i] = static_cast<std::uint8_t>(30000 >> (8 * i));
        }
        // In a GIF the size of the frame counts, which follows its mark.
        if (std::string_view(patch.name) == "GIF") {
            const auto frame = std::ranges::search(file, std::array<std::uint8_t, 5>{0x2C, 0, 0, 0, 0}).begin();
            for (const std::ptrdiff_t i : {5, 7}) {
                frame[i] = 30000 & 255;
                frame[i + 1] = 30000 >> 8;
            }
        }
        EXPECT_FALSE(mentioned(patch.name, file, 50'000'000, u"out of memory")) << patch.name;
    }
    Bytes jpeg = Sample(CodecNamed("JPEG"));
    const auto frame = std::ranges::search(jpeg, std::array<std::uint8_t, 2>{0xFF, 0xC0}).begin();
    for (const std::ptrdiff_t i : {5, 7}) {
        frame[i] = 30000 >> 8;
        frame[i + 1] = 30000 & 255;
    }
    refused("JPEG", jpeg);

    Bytes tiff = Sample(CodecNamed("TIFF"));
    const std::size_t directory = static_cast<std::size_t>(tiff[4] | tiff[5] << 8 | tiff[6] << 16);
    for (std::size_t entry = directory + 2; entry + 12 <= tiff.size(); entry += 12) {
        const int tag = tiff[entry] | tiff[entry + 1] << 8;
        if (tag != 256 && tag != 257) continue;
        tiff[entry + 8] = 30000 & 255;
        tiff[entry + 9] = 30000 >> 8;
    }
    refused("TIFF", tiff);

    Bytes heif = Sample(CodecNamed("HEIF"));
    for (auto at = heif.begin();; at += 4) { // each of them is the size of a picture or of its alpha
        at = std::search(at, heif.end(), "ispe", "ispe" + 4);
        if (at == heif.end()) break;
        for (const std::ptrdiff_t i : {8, 12}) {
            at[i + 2] = 30000 >> 8;
            at[i + 3] = 30000 & 255;
        }
    }
    refused("HEIF", heif);

    Bytes png = Sample(CodecNamed("PNG"));
    for (const std::ptrdiff_t i : {16, 20}) {
        png.begin()[i + 2] = 30000 >> 8;
        png.begin()[i + 3] = 30000 & 255;
    }
    std::uint32_t crc = 0xFFFFFFFF; // PNG specification, annex D
    for (std::size_t i = 12; i < 29; ++i) {
        crc ^= png[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xEDB88320U : crc >> 1;
    }
    for (std::size_t i = 0; i < 4; ++i)
        png[29 + i] = static_cast<std::uint8_t>(~crc >> (24 - 8 * i));
    refused("PNG", png);
    SetDebugSink(nullptr);
}
