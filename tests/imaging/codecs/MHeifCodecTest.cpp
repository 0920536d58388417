#include "foundation/MDebug.h"
#include "imaging/codecs/Coding.h"
#include "imaging/codecs/MHeifReferences.h"
#include "imaging/codecs/MHevcSize.h"

#include <gtest/gtest.h>
#include <libheif/heif.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

heif_error Append(heif_context*, const void* bytes, std::size_t count, void* file) {
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    static_cast<Bytes*>(file)->insert(static_cast<Bytes*>(file)->end(), first, first + count);
    return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

// Pictures of one 10-bit colour as libheif alone makes them; the second of them is the primary one.
Bytes BareHeif(const std::vector<std::uint16_t>& reds) {
    heif_context* const context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder);
    if (!encoder) throw std::runtime_error("the system's libheif can't write HEVC");
    heif_encoder_set_lossless(encoder, 1);
    for (std::size_t i = 0; i < reds.size(); ++i) {
        heif_image* image = nullptr;
        heif_image_create(32, 32, heif_colorspace_RGB, heif_chroma_interleaved_RRGGBB_LE, &image);
        heif_image_add_plane(image, heif_channel_interleaved, 32, 32, 10);
        int stride = 0;
        std::uint8_t* const plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x) {
                const std::uint16_t pixel[3] = {reds[i], 512, 300};
                std::memcpy(plane + y * stride + x * 6, pixel, sizeof pixel);
            }
        }
        heif_image_handle* handle = nullptr;
        heif_context_encode_image(context, image, encoder, nullptr, &handle);
        if (i == 1) heif_context_set_primary_image(context, handle);
        heif_image_handle_release(handle);
        heif_image_release(image);
    }
    Bytes file;
    heif_writer writer{1, Append};
    heif_context_write(context, &writer, &file);
    heif_encoder_release(encoder);
    heif_context_free(context);
    return file;
}

std::u16string_view wanted;
int refusals;

// How many lines with these words a file that must be refused puts on the debug channel.
int Refusals(const Bytes& file, std::u16string_view words) {
    wanted = words;
    refusals = 0;
    SetDebugSink([](std::u16string_view message) { refusals += message.find(wanted) != message.npos ? 1 : 0; });
    EXPECT_FALSE(Decoded("HEIF", file).IsValid());
    SetDebugSink(nullptr);
    return refusals;
}

} // namespace

TEST(HeifCodec, DeepFilesKeepTheirDepth) {
    const OwnedPicture picture = Decoded("HEIF", BareHeif({1023}));
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.Format, FormatRGB16);
    EXPECT_NEAR(picture.GetPixel16(5, 5).r, 65535, 400);
    EXPECT_NEAR(picture.GetPixel16(5, 5).g, 512 << 6, 400);
    EXPECT_NEAR(picture.GetPixel16(5, 5).b, 300 << 6, 400);
}

TEST(HeifCodec, EachPictureIsAFrameThePrimaryFirst) {
    const Bytes file = BareHeif({100, 900, 500});
    const std::int32_t reds[] = {900, 100, 500};
    for (std::int32_t frame = 0; frame < 3; ++frame) {
        const OwnedPicture picture = Decoded("HEIF", file, frame);
        ASSERT_TRUE(picture.IsValid()) << frame;
        EXPECT_NEAR(picture.GetPixel16(5, 5).r, reds[frame] << 6, 400) << frame;
        EXPECT_EQ(picture.FrameCount, 3);
        EXPECT_EQ(picture.FrameDelay, 100);
    }
    EXPECT_FALSE(Decoded("HEIF", file, 3).IsValid());
}

TEST(HeifCodec, SizesAreReadOffTheCodedDataToo) {
    for (const auto& [width, height] : {std::pair(32U, 32U), std::pair(301U, 77U), std::pair(4096U, 16U)}) {
        const std::uint64_t coded =
            LargestHevcPicture(Encoded("HEIF", SmoothPicture(width, height, FormatRGB8)));
        EXPECT_GE(coded, width * height);
        EXPECT_LE(coded, (width + 64) * (height + 64)) << "rounded up to whole blocks";
    }
    EXPECT_EQ(LargestHevcPicture({}), 0U);

    // A parameter set of 65535 by 65535 pixels: two bytes of header, 104 bits of profile, then codes for 0, 1,
    // 65535 and 65535. The decoder would take its memory before anything tells that there is no such picture.
    Bytes hostile(15, 0x40);
    hostile[0] = 0x42;
    hostile[1] = 0x01;
    hostile[2] = 0;
    std::vector<bool> bits = {true, false, true, false};
    for (int i = 0; i < 2; ++i) {
        bits.insert(bits.end(), 16, false);
        bits.push_back(true);
        bits.insert(bits.end(), 16, false);
    }
    bits.resize(80);
    for (std::size_t i = 0; i < bits.size(); i += 8) {
        std::uint8_t byte = 0;
        for (std::size_t j = 0; j < 8; ++j)
            byte = static_cast<std::uint8_t>(byte << 1 | (bits[i + j] ? 1 : 0));
        if (hostile.size() >= 2 && hostile.back() == 0 && hostile[hostile.size() - 2] == 0 && byte <= 3)
            hostile.push_back(3);
        hostile.push_back(byte);
    }
    EXPECT_EQ(LargestHevcPicture(hostile), 65535ULL * 65535);

    Bytes file = Encoded("HEIF", SmoothPicture(32, 32, FormatRGB8));
    file.insert(file.end(), hostile.begin(), hostile.end());
    EXPECT_EQ(Refusals(file, u"larger than"), 1);
}

TEST(HeifCodec, PicturesMadeOfOneAnotherAreRefused) {
    struct Reference {
        std::string type;
        std::vector<std::uint32_t> items; // the first one is made of the others
    };
    const auto file = [](const std::vector<Reference>& references, int idBytes) {
        Bytes bytes;
        const auto number = [&](std::uint64_t value, int count) {
            for (int i = count - 1; i >= 0; --i)
                bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        };
        const auto text = [&](const std::string& value) {
            for (const char letter : value)
                number(static_cast<std::uint8_t>(letter), 1);
        };
        number(0, 4); // whatever size it says
        text("iref");
        number(idBytes == 2 ? 0 : 1, 1);
        number(0, 3);
        for (const auto& [type, items] : references) {
            number(8 + 2 + items.size() * static_cast<std::size_t>(idBytes), 4);
            text(type);
            number(items[0], idBytes);
            number(items.size() - 1, 2);
            for (std::size_t i = 1; i < items.size(); ++i)
                number(items[i], idBytes);
        }
        return bytes;
    };
    std::vector<Reference> doubling;
    std::vector<Reference> chain;
    for (std::uint32_t i = 1; i <= 20; ++i) {
        chain.push_back({"dimg", {i, i + 1}});
        if (i <= 15) doubling.push_back({"dimg", {i, i + 1, i + 1, i + 1}});
    }
    Reference largeGrid{"dimg", std::vector<std::uint32_t>(65001, 7)};
    largeGrid.items[0] = 1;
    const struct {
        const char* what;
        std::vector<Reference> references;
        bool ends;
    } cases[] = {
        {"none", {}, true},
        {"a grid with an alpha and a thumbnail",
         {{"dimg", {1, 2, 3, 4, 5}}, {"auxl", {6, 1}}, {"thmb", {7, 1}}},
         true},
        {"a large grid", {largeGrid}, true},
        {"made of itself", {{"dimg", {4, 4}}}, false},
        {"by way of others", {{"dimg", {1, 2}}, {"dimg", {2, 3}}, {"dimg", {3, 1}}}, false},
        {"an alpha that has itself as its alpha", {{"auxl", {2, 1}}, {"auxl", {1, 2}}}, false},
        {"three times the next one, and so on", doubling, false},
        {"twenty deep", chain, false},
        {"of a type that is not decoded", {{"cdsc", {4, 4}}}, true},
    };
    for (const auto& [what, references, ends] : cases) {
        EXPECT_EQ(ReferencesEnd(file(references, 2)), ends) << what;
        EXPECT_EQ(ReferencesEnd(file(references, 4)), ends) << what;
    }
    for (std::size_t size = 0; size < 40; ++size) {
        const Bytes whole = file(chain, 2);
        EXPECT_TRUE(ReferencesEnd(std::span(whole).first(size))) << "cut off";
    }
}

// Found by fuzzing: a kilobyte each, for which the decoder took all memory, or gigabytes.
TEST(HeifCodec, SmallFilesDontTakeAllMemory) {
    for (const char* name : {"made-of-itself.heic", "grid-larger-than-told.heic"}) {
        std::ifstream file(std::string(LETTRINO_TEST_DATA) + name, std::ios::binary);
        const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
        ASSERT_GT(bytes.size(), 800U) << name;
        EXPECT_FALSE(Decoded("HEIF", bytes).IsValid()) << name;
    }
}

TEST(HeifCodec, TheBrandOfAnyCodingIsTaken) {
    Bytes file = Encoded("HEIF", SmoothPicture(32, 32, FormatRGB8));
    std::ranges::copy(std::string_view("mif1"), file.begin() + 8);
    EXPECT_EQ(CodecForContent(file), &CodecNamed("HEIF"));
    EXPECT_TRUE(Decoded("HEIF", file).IsValid());
    std::ranges::copy(std::string_view("avif"), file.begin() + 8);
    EXPECT_EQ(CodecForContent(file), nullptr);
}

TEST(HeifCodec, Av1IsNotDecoded) {
    Bytes file = Encoded("HEIF", SmoothPicture(32, 32, FormatRGB8));
    constexpr std::string_view name = "infe";
    const auto entry = std::search(file.begin(), file.end(), name.begin(), name.end());
    ASSERT_EQ(std::string(entry + 12, entry + 16), "hvc1");
    std::ranges::copy(std::string_view("av01"), entry + 12);
    EXPECT_EQ(Refusals(file, u"AV1"), 1);
}
