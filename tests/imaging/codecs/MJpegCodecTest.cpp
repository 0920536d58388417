#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>
#include <jpeglib.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

// 16 by 16 pixels of one colour as libjpeg alone makes them.
Bytes BareJpeg(J_COLOR_SPACE space, std::vector<std::uint8_t> colour, bool progressive = false,
               bool adobe = true) {
    jpeg_error_mgr errors{};
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = jpeg.image_height = 16;
    jpeg.input_components = static_cast<int>(colour.size());
    jpeg.in_color_space = space;
    jpeg_set_defaults(&jpeg);
    jpeg.write_Adobe_marker = adobe && jpeg.write_Adobe_marker;
    jpeg_set_quality(&jpeg, 100, TRUE);
    if (progressive) jpeg_simple_progression(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    Bytes row;
    for (int x = 0; x < 16; ++x)
        row.insert(row.end(), colour.begin(), colour.end());
    JSAMPROW rowPointer = row.data();
    for (int y = 0; y < 16; ++y)
        jpeg_write_scanlines(&jpeg, &rowPointer, 1);
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    Bytes file(memory, memory + size);
    std::free(memory);
    return file;
}

} // namespace

TEST(JpegCodec, FormatsByKind) {
    struct Row {
        const char* what;
        Bytes file;
        MPixelFormat format;
        MColour colour;
    };
    const Row rows[] = {
        {"grey", BareJpeg(JCS_GRAYSCALE, {77}), FormatR8, {77, 77, 77}},
        {"colour", BareJpeg(JCS_RGB, {200, 100, 50}), FormatRGB8, {200, 100, 50}},
        {"progressive", BareJpeg(JCS_RGB, {200, 100, 50}, true), FormatRGB8, {200, 100, 50}},
        {"inks of Adobe", BareJpeg(JCS_CMYK, {200, 100, 50, 128}), FormatRGBA8, {100, 50, 25}},
        {"plain inks", BareJpeg(JCS_CMYK, {55, 155, 205, 127}, false, false), FormatRGBA8, {100, 50, 25}},
    };
    for (const Row& row : rows) {
        const OwnedPicture picture = Decoded("JPEG", row.file);
        ASSERT_TRUE(picture.IsValid()) << row.what;
        EXPECT_EQ(picture.Format, row.format) << row.what;
        const MColour colour = picture.GetPixel(7, 9);
        EXPECT_NEAR(colour.r, row.colour.r, 2) << row.what;
        EXPECT_NEAR(colour.g, row.colour.g, 2) << row.what;
        EXPECT_NEAR(colour.b, row.colour.b, 2) << row.what;
        EXPECT_EQ(colour.a, 255) << row.what;
    }
}

TEST(JpegCodec, EndlessScansAreRefused) {
    Bytes file = BareJpeg(JCS_GRAYSCALE, {77}, true);
    // The last scan, repeated; it refines nothing, but each costs a walk over the picture.
    const std::array<std::uint8_t, 2> mark = {0xFF, 0xDA};
    const auto last = std::find_end(file.begin(), file.end(), mark.begin(), mark.end());
    const Bytes scan(last, file.end() - 2);
    const auto repeated = [&](int count) {
        Bytes longer(file.begin(), file.end() - 2);
        for (int i = 0; i < count; ++i)
            longer.insert(longer.end(), scan.begin(), scan.end());
        longer.insert(longer.end(), {0xFF, 0xD9});
        return longer;
    };
    EXPECT_TRUE(Decoded("JPEG", repeated(20)).IsValid());
    EXPECT_FALSE(Decoded("JPEG", repeated(200)).IsValid());
}

TEST(JpegCodec, SizesThatItCanNotHold) {
    const OwnedPicture wide = BlankPicture(65501, 1, FormatR8);
    EXPECT_TRUE(Encoded("JPEG", wide).empty());
}
