#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

#include <array>

namespace {

// What data/tiff holds.
std::uint8_t ByteAt(std::int32_t x, std::int32_t y, int channel) {
    return static_cast<std::uint8_t>(x * 5 + y * 7 + channel * 11 + 20);
}
std::uint16_t WordAt(std::int32_t x, std::int32_t y, int channel) {
    return static_cast<std::uint16_t>(ByteAt(x, y, channel) << 8 | 0x5A);
}

OwnedPicture DecodedFile(const std::string& name, std::int32_t frame = 0) {
    return Decoded("TIFF", DataFile("tiff/" + name), frame);
}

} // namespace

TEST(TiffCodec, KeepsTheDepthOfTheFile) {
    int files = 0;
    for (const std::string& name : DataFiles("tiff")) {
        // As in "16-bit-RGB.35.tif": three samples become format 5.
        const std::size_t kind = name.find('.') + 1;
        if (name.substr(kind) == "tif") continue;
        ++files;
        const int samples = name[kind] - '0';
        const std::int32_t pages = name.starts_with("several-pages") ? 3 : 1;
        const bool floats = name.starts_with("32") || name.starts_with("binary16");
        const OwnedPicture picture = DecodedFile(name, pages - 1);
        ASSERT_EQ(picture.Format, name[kind + 1] - '0') << name;
        for (const auto& [x, y] : {std::array{0, 0}, {19, 0}, {3, 17}, {17, 19}}) {
            const bool grey = samples < 3;
            const auto alpha = samples % 2 == 0 ? ByteAt(x, y, samples - 1) : std::uint8_t{255};
            const MColour told(ByteAt(x, y, 0), ByteAt(x, y, grey ? 0 : 1), ByteAt(x, y, grey ? 0 : 2), alpha);
            EXPECT_LE(Difference(picture.GetPixel(x, y), told), floats ? 1 : 0) << name << x << ", " << y;
        }
        const bool words = ChannelClass(picture.Format) == 2;
        EXPECT_TRUE(!words || picture.GetPixel16(3, 4).r == WordAt(3, 4, 0)) << name;
        EXPECT_EQ(std::pair(picture.FrameCount, picture.FrameDelay), std::pair(pages, pages > 1 ? 100 : 0))
            << name;
    }
    EXPECT_EQ(files, 32);
    EXPECT_EQ(DecodedFile("white-is-0.tif").GetPixel(2, 3).r, 255 - ByteAt(2, 3, 0));
    EXPECT_EQ(DecodedFile("white-is-0-with-alpha.tif").GetPixel16(2, 3).g, 65535 - WordAt(2, 3, 0));
    EXPECT_FALSE(DecodedFile("white-is-0.tif", 1).IsValid());
    EXPECT_EQ(DecodedFile("premultiplied.tif").GetPixel(4, 5),
              Unpremultiplied(MColour(ByteAt(4, 5, 0), ByteAt(4, 5, 1), ByteAt(4, 5, 2), ByteAt(4, 5, 3))));
    EXPECT_EQ(DecodedFile("premultiplied-grey.tif").GetPixel16(4, 5).g,
              static_cast<std::uint16_t>(WordAt(4, 5, 0) * 65535.0 / WordAt(4, 5, 1)));
}

TEST(TiffCodec, FloatsAreBytesFromZeroToOne) {
    const auto grey = [](std::uint8_t value, std::uint8_t alpha) {
        return MColour(value, value, value, alpha);
    };
    const std::pair<const char*, std::vector<MColour>> cases[] = {
        // (0.5, 0.25), (1, 1), (1.5, 2), (1e30, infinity), (-0.5, -1e30), no numbers
        {"floats-straight.tif",
         {grey(127, 63), grey(255, 255), grey(255, 255), grey(255, 255), grey(0, 0), grey(0, 0)}},
        // (0.25, 0.5), (0.5, 0.25), (0.5, 0), (0.5, no number)
        {"floats-premultiplied.tif", {grey(127, 127), grey(255, 63), grey(0, 0), grey(0, 0)}},
        // (0.5, 0.25)
        {"floats-unspecified.tif", {grey(127, 255)}},
    };
    for (const auto& [file, pixels] : cases) {
        const OwnedPicture picture = DecodedFile(file);
        ASSERT_EQ(picture.Width, pixels.size()) << file;
        for (std::size_t x = 0; x < pixels.size(); ++x)
            EXPECT_EQ(picture.GetPixel(static_cast<std::int32_t>(x), 0), pixels[x]) << file << ", pixel " << x;
    }
}

namespace {

// One row of 16-bit samples, four to a pixel, as TIFF 6.0 has it: the header, the samples, the directory.
Bytes WordTiff(std::uint32_t photometric, const std::vector<std::uint32_t>& words, bool premultiplied) {
    const auto width = static_cast<std::uint32_t>(words.size() / 4);
    const auto size = static_cast<std::uint32_t>(words.size() * 2);
    Bytes file;
    Append(file, {{0x4D4D002A, 4}, {8 + size + 8, 4}});
    for (const std::uint32_t word : words)
        Append(file, {{word, 2}});
    const std::uint32_t entries = premultiplied ? 10 : 9;
    Append(file, {{16, 2}, {16, 2}, {16, 2}, {16, 2}, {entries, 2}}); // the bits of each sample first
    const std::array<std::uint32_t, 4> fields[] = {
        {256, 4, 1, width}, {257, 4, 1, 1}, {258, 3, 4, 8 + size}, {259, 3, 1, 1},    {262, 3, 1, photometric},
        {273, 4, 1, 8},     {277, 3, 1, 4}, {278, 4, 1, 1},        {279, 4, 1, size}, {338, 3, 1, 1}};
    for (const auto& [tag, kind, count, value] : std::span(fields).first(entries))
        Append(file, {{tag, 2}, {kind, 2}, {count, 4}, {kind == 3 && count == 1 ? value << 16 : value, 4}});
    Append(file, {{0, 4}});
    return file;
}

} // namespace

TEST(TiffCodec, WordsOfPremultipliedColoursAndInksKeepTheirDepth) {
    const OwnedPicture colours =
        Decoded("TIFF", WordTiff(2, {1000, 20000, 300, 40000, 7, 7, 7, 0, 5, 6, 7, 65535}, true));
    ASSERT_EQ(colours.Format, FormatRGBA16);
    EXPECT_EQ(colours.GetPixel16(0, 0), (MColour16{1638, 32767, 491, 40000})) << "times 65535 / 40000";
    EXPECT_EQ(colours.GetPixel16(1, 0), (MColour16{0, 0, 0, 0}));
    EXPECT_EQ(colours.GetPixel16(2, 0), (MColour16{5, 6, 7, 65535}));

    const OwnedPicture inks =
        Decoded("TIFF", WordTiff(5, {0, 65535, 32768, 0, 0, 1000, 0, 32768, 9, 9, 9, 65535}, false));
    ASSERT_EQ(inks.Format, FormatRGB16);
    EXPECT_EQ(inks.GetPixel16(0, 0), (MColour16{65535, 0, 32767, 65535}));
    EXPECT_EQ(inks.GetPixel16(1, 0), (MColour16{32767, 32267, 32767, 65535}));
    EXPECT_EQ(inks.GetPixel16(2, 0), (MColour16{0, 0, 0, 65535}));
}
