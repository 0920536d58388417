#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>
#include <png.h>

#include <vector>

namespace {

void Append(png_structp png, png_bytep bytes, std::size_t count) {
    auto& file = *static_cast<Bytes*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}

struct Form {
    int bitDepth;
    int colourType;
    bool keyed = false; // with a tRNS chunk
    bool interlaced = false;
};

int Channels(int colourType) {
    return colourType == PNG_COLOR_TYPE_RGB          ? 3
           : colourType == PNG_COLOR_TYPE_RGB_ALPHA  ? 4
           : colourType == PNG_COLOR_TYPE_GRAY_ALPHA ? 2
                                                     : 1;
}

constexpr std::size_t side = 4;

// A PNG of 4 by 4 pixels as libpng alone makes it. Sample i has the value i * 37, cut to the depth; a palette
// holds (i, 2 i, 3 i), a key makes sample 0 transparent.
Bytes BarePng(const Form& form) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, Append, nullptr);
    png_set_IHDR(png, info, side, side, form.bitDepth, form.colourType,
                 form.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (form.colourType == PNG_COLOR_TYPE_PALETTE) {
        png_color palette[256];
        for (int i = 0; i < 256; ++i) {
            palette[i] = {static_cast<png_byte>(i), static_cast<png_byte>(2 * i), static_cast<png_byte>(3 * i)};
        }
        png_set_PLTE(png, info, palette, 1 << form.bitDepth);
    }
    if (form.keyed) {
        const png_byte alpha = 7;
        const png_color_16 key{0, 0, 37, 74, 0};
        png_set_tRNS(png, info, &alpha, 1, &key);
    }
    png_write_info(png, info);
    png_set_packing(png);
    if (form.bitDepth == 16) png_set_swap(png);
    Bytes image;
    const std::size_t samples = side * side * static_cast<std::size_t>(Channels(form.colourType));
    for (std::size_t i = 0; i < samples; ++i) {
        const std::size_t value = i * 37 & ((std::size_t{1} << form.bitDepth) - 1);
        image.push_back(static_cast<std::uint8_t>(value & 255));
        if (form.bitDepth == 16) image.push_back(static_cast<std::uint8_t>(value >> 8 | 0x40));
    }
    png_bytep rows[side];
    for (std::size_t y = 0; y < side; ++y)
        rows[y] = image.data() + y * image.size() / side;
    png_write_image(png, rows);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

} // namespace

TEST(PngCodec, KeepsTheDepthOfTheFile) {
    constexpr int gray = PNG_COLOR_TYPE_GRAY, rgb = PNG_COLOR_TYPE_RGB, rgba = PNG_COLOR_TYPE_RGB_ALPHA,
                  grayAlpha = PNG_COLOR_TYPE_GRAY_ALPHA, palette = PNG_COLOR_TYPE_PALETTE;
    struct Row {
        Form form;
        MPixelFormat format;
        MColour first, second; // the two leftmost pixels of the top row
    };
    const Row rows[] = {
        {{8, gray}, 1, {0, 0, 0}, {37, 37, 37}},
        {{16, gray}, 2, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {{8, rgb}, 4, {0, 37, 74}, {111, 148, 185}},
        {{16, rgb}, 5, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {{8, rgba}, 7, {0, 37, 74, 111}, {148, 185, 222, 3}},
        {{16, rgba}, 8, {0x40, 0x40, 0x40, 0x40}, {0x40, 0x40, 0x40, 0x41}},
        {{8, rgba, false, true}, 7, {0, 37, 74, 111}, {148, 185, 222, 3}},
        {{8, grayAlpha}, 7, {0, 0, 0, 37}, {74, 74, 74, 111}},
        {{16, gray, true}, 8, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {{16, grayAlpha}, 8, {0x40, 0x40, 0x40, 0x40}, {0x40, 0x40, 0x40, 0x40}},
        {{1, gray}, 7, {0, 0, 0}, {255, 255, 255}},
        {{2, gray}, 7, {0, 0, 0}, {85, 85, 85}},
        {{4, gray}, 7, {0, 0, 0}, {85, 85, 85}},
        {{8, gray, true}, 7, {0, 0, 0, 0}, {37, 37, 37}},
        {{4, gray, true}, 7, {0, 0, 0, 0}, {85, 85, 85}},
        {{8, rgb, true}, 7, {0, 37, 74, 0}, {111, 148, 185}},
        {{16, rgb, true}, 8, {0x40, 0x40, 0x40}, {0x40, 0x40, 0x40}},
        {{1, palette}, 7, {0, 0, 0}, {1, 2, 3}},
        {{4, palette}, 7, {0, 0, 0}, {5, 10, 15}},
        {{8, palette}, 7, {0, 0, 0}, {37, 74, 111}},
        {{8, palette, true}, 7, {0, 0, 0, 7}, {37, 74, 111}},
    };
    for (const Row& row : rows) {
        const OwnedPicture picture = Decoded("PNG", BarePng(row.form));
        const auto name = testing::PrintToString(std::pair(row.form.bitDepth, row.form.colourType));
        ASSERT_TRUE(picture.IsValid()) << name;
        EXPECT_EQ(picture.Format, row.format) << name;
        EXPECT_EQ(picture.GetPixel(0, 0), row.first) << name;
        EXPECT_EQ(picture.GetPixel(1, 0), row.second) << name;
        EXPECT_EQ(picture.FrameCount, 1);
    }
    EXPECT_EQ(Decoded("PNG", BarePng({16, rgba})).GetPixel16(0, 0),
              (MColour16{0x4000, 0x4025, 0x404A, 0x406F}));
    EXPECT_EQ(Decoded("PNG", BarePng({16, grayAlpha})).GetPixel16(1, 0),
              (MColour16{0x404A, 0x404A, 0x404A, 0x406F}));
}

TEST(PngCodec, TrailingBytesDoNotMatterButAMissingEndDoes) {
    Bytes file = BarePng({8, PNG_COLOR_TYPE_RGB});
    file.push_back(0);
    EXPECT_TRUE(Decoded("PNG", file).IsValid());
    file.resize(file.size() - 2);
    EXPECT_FALSE(Decoded("PNG", file).IsValid());
}
