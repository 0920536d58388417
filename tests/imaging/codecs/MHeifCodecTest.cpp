#include "foundation/MDebug.h"
#include "imaging/codecs/Coding.h"
#include "imaging/codecs/MHevcSize.h"

#include <gtest/gtest.h>
#include <libheif/heif.h>

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
    static int refusals;
    refusals = 0;
    SetDebugSink(
        [](std::u16string_view message) { refusals += message.find(u"larger than") != message.npos ? 1 : 0; });
    EXPECT_FALSE(Decoded("HEIF", file).IsValid());
    SetDebugSink(nullptr);
    EXPECT_EQ(refusals, 1);
}
