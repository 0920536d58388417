#include "TemporaryFolder.h"
#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <array>
#include <bit>
#include <limits>

namespace {

constexpr std::uint32_t side = 20; // not a multiple of the tile's 16

struct Kind {
    const char* what;
    std::uint16_t bits, samples, photometric;
    MPixelFormat format;
    std::uint16_t sampleFormat = SAMPLEFORMAT_UINT;
    std::uint16_t extra = EXTRASAMPLE_UNASSALPHA;
    std::uint16_t compression = COMPRESSION_NONE;
    bool separate = false, tiled = false;
    const char* mode = "w";
    int pages = 1;
    std::vector<float> flood = {}; // the channels of every pixel, of 32 bits; none for the values below
};

// Sample values: the byte of a channel grows with x, y and the channel; 16-bit samples have it as their upper
// byte.
std::uint8_t ByteAt(std::uint32_t x, std::uint32_t y, std::uint32_t channel) {
    return static_cast<std::uint8_t>(x * 5 + y * 7 + channel * 11 + 20);
}

void PutSample(const Kind& kind, Bytes& row, std::uint32_t x, std::uint32_t y, std::uint32_t channel) {
    const std::uint8_t byte = x < side && y < side ? ByteAt(x, y, channel) : std::uint8_t{0};
    if (kind.bits == 8) {
        row.push_back(byte);
        return;
    }
    const auto put = [&](const auto& sample) {
        const auto bytes = std::bit_cast<std::array<std::uint8_t, sizeof sample>>(sample);
        row.insert(row.end(), bytes.begin(), bytes.end());
    };
    const float unit = kind.flood.empty() ? static_cast<float>(byte) / 255.0F : kind.flood[channel];
    if (kind.bits == 32) {
        put(unit);
    } else {
        put(kind.sampleFormat == SAMPLEFORMAT_IEEEFP ? Imath::half(unit).bits()
                                                     : static_cast<std::uint16_t>(byte << 8 | 0x5A));
    }
}

Bytes Piece(const Kind& kind, std::uint32_t left, std::uint32_t top, std::uint32_t width, std::uint32_t height,
            int plane) {
    Bytes bytes;
    for (std::uint32_t y = top; y < top + height; ++y) {
        for (std::uint32_t x = left; x < left + width; ++x) {
            for (std::uint32_t c = 0; c < kind.samples; ++c) {
                if (plane < 0 || static_cast<std::uint32_t>(plane) == c) PutSample(kind, bytes, x, y, c);
            }
        }
    }
    return bytes;
}

// As libtiff alone makes it.
Bytes BareTiff(const Kind& kind) {
    const TemporaryFolder folder;
    TIFF* const tiff = TIFFOpen(ToSystemPath(folder.File("bare.tif")).c_str(), kind.mode);
    for (int page = 0; page < kind.pages; ++page) {
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, side);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, side);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind.samples);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind.sampleFormat);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, kind.compression);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, kind.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
        if (kind.tiled) {
            TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
            TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
        } else {
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 6);
        }
        const std::uint16_t extra = kind.extra;
        if (kind.samples % 2 == 0 || extra == EXTRASAMPLE_ASSOCALPHA)
            TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
        std::vector<std::uint16_t> map;
        for (std::uint32_t i = 0; i < 256; ++i)
            map.push_back(static_cast<std::uint16_t>(i * 257));
        if (kind.photometric == PHOTOMETRIC_PALETTE)
            TIFFSetField(tiff, TIFFTAG_COLORMAP, map.data(), map.data(), map.data());
        for (int plane = kind.separate ? 0 : -1; plane < (kind.separate ? kind.samples : 0); ++plane) {
            const auto sample = static_cast<std::uint16_t>(std::max(plane, 0));
            if (kind.tiled) {
                for (std::uint32_t y = 0; y < side; y += 16) {
                    for (std::uint32_t x = 0; x < side; x += 16) {
                        Bytes tile = Piece(kind, x, y, 16, 16, plane);
                        TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, sample), tile.data(),
                                             static_cast<tmsize_t>(tile.size()));
                    }
                }
            } else {
                for (std::uint32_t y = 0; y < side; y += 6) {
                    Bytes strip = Piece(kind, 0, y, side, std::min(6U, side - y), plane);
                    TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, y, sample), strip.data(),
                                          static_cast<tmsize_t>(strip.size()));
                }
            }
        }
        TIFFWriteDirectory(tiff);
    }
    TIFFClose(tiff);
    const std::string bytes = folder.Read("bare.tif");
    return {bytes.begin(), bytes.end()};
}

} // namespace

TEST(TiffCodec, KeepsTheDepthOfTheFile) {
    constexpr std::uint16_t black = PHOTOMETRIC_MINISBLACK, white = PHOTOMETRIC_MINISWHITE,
                            rgb = PHOTOMETRIC_RGB, floats = SAMPLEFORMAT_IEEEFP,
                            straight = EXTRASAMPLE_UNASSALPHA;
    const Kind kinds[] = {
        {"8-bit grey", 8, 1, black, 1},
        {"16-bit grey", 16, 1, black, 2},
        {"binary16 grey", 16, 1, black, 3, SAMPLEFORMAT_IEEEFP},
        {"8-bit RGB", 8, 3, rgb, 4},
        {"16-bit RGB", 16, 3, rgb, 5},
        {"binary16 RGB", 16, 3, rgb, 6, SAMPLEFORMAT_IEEEFP},
        {"8-bit RGBA", 8, 4, rgb, 7},
        {"16-bit RGBA", 16, 4, rgb, 8},
        {"binary16 RGBA", 16, 4, rgb, 9, SAMPLEFORMAT_IEEEFP},
        {"packed with LZW", 8, 3, rgb, 4, SAMPLEFORMAT_UINT, 0, COMPRESSION_LZW},
        {"deflated", 16, 4, rgb, 8, SAMPLEFORMAT_UINT, EXTRASAMPLE_UNASSALPHA, COMPRESSION_ADOBE_DEFLATE},
        {"in planes", 8, 3, rgb, 4, SAMPLEFORMAT_UINT, 0, COMPRESSION_NONE, true},
        {"16 bits in planes", 16, 4, rgb, 8, SAMPLEFORMAT_UINT, EXTRASAMPLE_UNASSALPHA, COMPRESSION_LZW, true},
        {"in tiles", 8, 4, rgb, 7, SAMPLEFORMAT_UINT, EXTRASAMPLE_UNASSALPHA, COMPRESSION_NONE, false, true},
        {"in tiles of planes", 16, 3, rgb, 5, SAMPLEFORMAT_UINT, 0, COMPRESSION_NONE, true, true},
        {"the other byte order", 16, 3, rgb, 5, SAMPLEFORMAT_UINT, 0, COMPRESSION_NONE, false, false, "wb"},
        {"64-bit offsets", 8, 1, black, 1, SAMPLEFORMAT_UINT, 0, COMPRESSION_NONE, false, false, "w8"},
        {"several pages", 8, 3, rgb, 4, SAMPLEFORMAT_UINT, 0, COMPRESSION_NONE, false, false, "w", 3},
        {"palette", 8, 1, PHOTOMETRIC_PALETTE, 7},
        {"8-bit grey with alpha", 8, 2, black, 7},
        {"16-bit grey with alpha", 16, 2, black, 8},
        {"the same in planes", 16, 2, black, 8, SAMPLEFORMAT_UINT, straight, COMPRESSION_LZW, true},
        {"binary16 grey with alpha", 16, 2, black, 7, floats},
        {"32-bit grey", 32, 1, black, 7, floats},
        {"32-bit grey with alpha", 32, 2, black, 7, floats},
        {"32-bit RGB", 32, 3, rgb, 7, floats},
        {"32-bit RGBA", 32, 4, rgb, 7, floats},
        {"32-bit RGB that claims an alpha", 32, 3, rgb, 7, floats, EXTRASAMPLE_ASSOCALPHA},
        {"32 bits deflated", 32, 4, rgb, 7, floats, straight, COMPRESSION_ADOBE_DEFLATE},
        {"32 bits in planes", 32, 3, rgb, 7, floats, 0, COMPRESSION_NONE, true},
        {"32 bits in tiles", 32, 4, rgb, 7, floats, straight, COMPRESSION_NONE, false, true},
        {"32 bits in the other byte order", 32, 3, rgb, 7, floats, 0, COMPRESSION_NONE, false, false, "wb"},
    };
    for (const Kind& kind : kinds) {
        const OwnedPicture picture = Decoded("TIFF", BareTiff(kind), kind.pages - 1);
        ASSERT_TRUE(picture.IsValid()) << kind.what;
        ASSERT_EQ(picture.Format, kind.format) << kind.what;
        for (const auto& [x, y] :
             {std::pair(0U, 0U), std::pair(19U, 0U), std::pair(3U, 17U), std::pair(17U, 19U)}) {
            const bool grey = kind.samples < 3;
            const MColour expected(ByteAt(x, y, 0), ByteAt(x, y, grey ? 0 : 1), ByteAt(x, y, grey ? 0 : 2),
                                   kind.samples == 4   ? ByteAt(x, y, 3)
                                   : kind.samples == 2 ? ByteAt(x, y, 1)
                                                       : std::uint8_t{255});
            const MColour colour = picture.GetPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
            const int tolerance = kind.sampleFormat == SAMPLEFORMAT_IEEEFP ? 1 : 0; // bytes that became floats
            EXPECT_NEAR(colour.r, expected.r, tolerance) << kind.what << " at " << x << ", " << y;
            EXPECT_NEAR(colour.g, expected.g, tolerance) << kind.what;
            EXPECT_NEAR(colour.b, expected.b, tolerance) << kind.what;
            EXPECT_NEAR(colour.a, expected.a, tolerance) << kind.what;
        }
        if (kind.bits == 16 && kind.sampleFormat == SAMPLEFORMAT_UINT) {
            EXPECT_EQ(picture.GetPixel16(3, 4).r, ByteAt(3, 4, 0) << 8 | 0x5A) << kind.what;
        }
        EXPECT_EQ(picture.FrameCount, kind.pages);
        EXPECT_EQ(picture.FrameDelay, kind.pages > 1 ? 100 : 0);
    }
    const Kind inverted{"white is 0", 8, 1, white, 1};
    EXPECT_EQ(Decoded("TIFF", BareTiff(inverted)).GetPixel(2, 3).r, 255 - ByteAt(2, 3, 0));
    EXPECT_FALSE(Decoded("TIFF", BareTiff(inverted), 1).IsValid());
    const Kind withAlpha{"white is 0, with alpha", 16, 2, white, 8};
    EXPECT_EQ(Decoded("TIFF", BareTiff(withAlpha)).GetPixel16(2, 3).g, 65535 - (ByteAt(2, 3, 0) << 8 | 0x5A));
}

TEST(TiffCodec, FloatsAreBytesFromZeroToOne) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
    constexpr std::uint16_t none = EXTRASAMPLE_UNSPECIFIED, straight = EXTRASAMPLE_UNASSALPHA,
                            multiplied = EXTRASAMPLE_ASSOCALPHA;
    const struct {
        std::uint16_t extra;
        float grey, alpha;
        int shown, shownAlpha;
    } rows[] = {
        {straight, 0.5F, 0.25F, 127, 63},    {straight, 1, 1, 255, 255},
        {straight, 1.5F, 2, 255, 255},       {straight, 1e30F, infinity, 255, 255},
        {straight, -0.5F, -1e30F, 0, 0},     {straight, notANumber, notANumber, 0, 0},
        {multiplied, 0.25F, 0.5F, 127, 127}, {multiplied, 0.5F, 0.25F, 255, 63},
        {multiplied, 0.5F, 0, 0, 0},         {multiplied, 0.5F, notANumber, 0, 0},
        {none, 0.5F, 0.25F, 127, 255},
    };
    for (const auto& row : rows) {
        Kind kind{"of one colour", 32, 2, PHOTOMETRIC_MINISBLACK, 7, SAMPLEFORMAT_IEEEFP, row.extra};
        kind.flood = {row.grey, row.alpha};
        const OwnedPicture picture = Decoded("TIFF", BareTiff(kind));
        ASSERT_TRUE(picture.IsValid());
        const auto shown = static_cast<std::uint8_t>(row.shown);
        EXPECT_EQ(picture.GetPixel(2, 3),
                  MColour(shown, shown, shown, static_cast<std::uint8_t>(row.shownAlpha)))
            << row.grey << ", alpha " << row.alpha << " of kind " << row.extra;
    }
}

TEST(TiffCodec, PremultipliedColoursBecomeStraight) {
    Kind kind{"premultiplied", 8, 4, PHOTOMETRIC_RGB, 7, SAMPLEFORMAT_UINT, EXTRASAMPLE_ASSOCALPHA};
    const OwnedPicture picture = Decoded("TIFF", BareTiff(kind));
    ASSERT_TRUE(picture.IsValid());
    EXPECT_EQ(picture.Format, FormatRGBA8);
    const std::uint8_t alpha = ByteAt(4, 5, 3);
    EXPECT_EQ(picture.GetPixel(4, 5),
              Unpremultiplied(MColour(ByteAt(4, 5, 0), ByteAt(4, 5, 1), ByteAt(4, 5, 2), alpha)));

    kind.bits = 16;
    kind.samples = 2;
    kind.photometric = PHOTOMETRIC_MINISBLACK;
    const OwnedPicture grey = Decoded("TIFF", BareTiff(kind));
    ASSERT_EQ(grey.Format, FormatRGBA16);
    const MColour16 pixel = grey.GetPixel16(4, 5);
    EXPECT_EQ(pixel.a, ByteAt(4, 5, 1) << 8 | 0x5A);
    EXPECT_EQ(pixel.r, static_cast<int>((ByteAt(4, 5, 0) << 8 | 0x5A) * 65535.0 / pixel.a));
    EXPECT_EQ(pixel.b, pixel.r);
}
