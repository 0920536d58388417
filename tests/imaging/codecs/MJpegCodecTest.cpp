#include "imaging/codecs/Coding.h"

#include <gtest/gtest.h>

#include <array>

TEST(JpegCodec, FormatsByKind) {
    struct Row {
        const char* file;
        MPixelFormat format;
        MColour colour;
    };
    for (const Row& row : {Row{"grey", FormatR8, {77, 77, 77}}, Row{"colour", FormatRGB8, {200, 100, 50}},
                           Row{"progressive", FormatRGB8, {200, 100, 50}},
                           Row{"inks-of-adobe", FormatRGBA8, {100, 50, 25}}, // stored inverted
                           Row{"plain-inks", FormatRGBA8, {100, 50, 25}}}) {
        const OwnedPicture picture = Decoded("JPEG", DataFile(std::string("jpeg/") + row.file + ".jpg"));
        ASSERT_TRUE(picture.IsValid()) << row.file;
        EXPECT_EQ(picture.Format, row.format) << row.file;
        EXPECT_LE(Difference(picture.GetPixel(7, 9), row.colour), 2) << row.file;
    }
}

TEST(JpegCodec, EndlessScansAreRefused) {
    const Bytes file = DataFile("jpeg/progressive-grey.jpg");
    // The last scan, repeated; it refines nothing, but each costs a walk over the picture.
    const std::array<std::uint8_t, 2> mark = {0xFF, 0xDA};
    const auto last = std::find_end(file.begin(), file.end(), mark.begin(), mark.end());
    const auto repeated = [&](int count) {
        Bytes longer(file.begin(), last);
        for (int i = 0; i <= count; ++i)
            Append(longer, Bytes(last, file.end() - 2));
        Append(longer, Bytes{0xFF, 0xD9});
        return longer;
    };
    EXPECT_TRUE(Decoded("JPEG", repeated(20)).IsValid());
    EXPECT_FALSE(Decoded("JPEG", repeated(200)).IsValid());
}
