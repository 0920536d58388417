#include "DebugLines.h"
#include "imaging/codecs/Coding.h"
#include "imaging/codecs/MHeifReferences.h"
#include "imaging/codecs/MHevcSize.h"

#include <gtest/gtest.h>

namespace {

// How many lines with these words a file that must be refused puts on the debug channel.
std::ptrdiff_t Refusals(const Bytes& file, std::u16string_view words) {
    const DebugLines debug;
    EXPECT_FALSE(Decoded("HEIF", file).IsValid());
    return debug.Count(words);
}

} // namespace

TEST(HeifCodec, DeepFilesKeepTheirDepthAndEachPictureIsAFrame) {
    const Bytes file = DataFile("heif/three-10-bit-pictures.heic");
    const std::int32_t reds[] = {900, 100, 500}; // the primary one first
    for (std::int32_t frame = 0; frame < 3; ++frame) {
        const OwnedPicture picture = Decoded("HEIF", file, frame);
        ASSERT_EQ(picture.Format, FormatRGB16) << frame;
        const MColour16 pixel = picture.GetPixel16(5, 5);
        EXPECT_NEAR(pixel.r, reds[frame] << 6, 400) << frame;
        EXPECT_NEAR(pixel.g, 512 << 6, 400) << frame;
        EXPECT_NEAR(pixel.b, 300 << 6, 400) << frame;
        EXPECT_EQ(std::pair(picture.FrameCount, picture.FrameDelay), std::pair(3, 100));
    }
    EXPECT_FALSE(Decoded("HEIF", file, 3).IsValid());
}

TEST(HeifCodec, SizesAreReadOffTheCodedDataToo) {
    for (const auto& [width, height] : {std::pair(32U, 32U), std::pair(301U, 77U), std::pair(4096U, 16U)}) {
        const std::uint64_t coded =
            LargestHevcPicture(Encoded("HEIF", SmoothPicture(width, height, FormatRGB8))).Pixels();
        EXPECT_GE(coded, width * height);
        EXPECT_LE(coded, (width + 64) * (height + 64)) << "rounded up to whole blocks";
    }

    // A parameter set of 65535 by 65535 pixels: two bytes of header, 104 bits of profile, then codes for 0, 1,
    // 65535 and 65535, with a 3 behind every two zeros. The decoder would take its memory before anything tells
    // that there is no such picture.
    Bytes hostile = {0x42, 0x01, 0x00};
    hostile.resize(15, 0x40);
    Append(hostile, Bytes{0xA0, 0, 8, 0, 0, 3, 0, 4, 0, 0, 3, 0});
    EXPECT_EQ(LargestHevcPicture(hostile).Pixels(), 65535ULL * 65535);

    Bytes file = Encoded("HEIF", SmoothPicture(32, 32, FormatRGB8));
    Append(file, hostile);
    EXPECT_EQ(Refusals(file, u"larger than"), 1);
}

TEST(HeifCodec, PicturesMadeOfOneAnotherAreRefused) {
    // A type, and items of which the first one is made of the others.
    using Reference = std::pair<std::string, std::vector<std::uint32_t>>;
    const auto file = [](const std::vector<Reference>& references, int idBytes) {
        Bytes bytes = {0, 0, 0, 0, 'i', 'r', 'e', 'f', 0, 0, 0, 0}; // whatever size it says
        bytes[8] = idBytes == 2 ? 0 : 1;
        for (const auto& [type, items] : references) {
            Append(bytes,
                   {{10 + static_cast<std::uint32_t>(items.size()) * static_cast<std::uint32_t>(idBytes), 4}});
            bytes.insert(bytes.end(), type.begin(), type.end());
            Append(bytes, {{items[0], idBytes}, {static_cast<std::uint32_t>(items.size()) - 1, 2}});
            for (std::size_t i = 1; i < items.size(); ++i)
                Append(bytes, {{items[i], idBytes}});
        }
        return bytes;
    };
    std::vector<Reference> tripling, chain;
    for (std::uint32_t i = 1; i <= 20; ++i) {
        chain.push_back({"dimg", {i, i + 1}});
        if (i <= 15) tripling.push_back({"dimg", {i, i + 1, i + 1, i + 1}});
    }
    Reference largeGrid{"dimg", std::vector<std::uint32_t>(65001, 7)};
    largeGrid.second[0] = 1;
    const std::tuple<const char*, std::vector<Reference>, bool> cases[] = {
        {"none", {}, true},
        {"a grid with an alpha", {{"dimg", {1, 2, 3, 4, 5}}, {"auxl", {6, 1}}}, true},
        {"a large grid", {largeGrid}, true},
        {"made of itself", {{"dimg", {4, 4}}}, false},
        {"by way of others", {{"dimg", {1, 2}}, {"dimg", {2, 3}}, {"dimg", {3, 1}}}, false},
        {"an alpha that has itself as its alpha", {{"auxl", {2, 1}}, {"auxl", {1, 2}}}, false},
        {"an alpha that is made of its picture", {{"auxl", {2, 1}}, {"dimg", {2, 1}}}, false},
        {"three times the next one, and so on", tripling, false},
        {"twenty deep", chain, false},
        {"of a type that is not decoded", {{"cdsc", {4, 4}}}, true},
    };
    for (const auto& [what, references, ends] : cases) {
        EXPECT_EQ(ReferencesEnd(file(references, 2)), ends) << what;
        EXPECT_EQ(ReferencesEnd(file(references, 4)), ends) << what;
    }
    const Bytes whole = file(chain, 2);
    for (std::size_t size = 0; size < 40; ++size)
        EXPECT_TRUE(ReferencesEnd(std::span(whole).first(size))) << "cut off";
}

// Each box of references lies in all that stand before it, so that a walk through each would take 2 GB.
TEST(HeifCodec, ReferencesThatOverlapAreRefused) {
    Bytes bytes;
    for (std::uint32_t left = 20'000; left > 0; --left) {
        Append(bytes, Bytes{'i', 'r', 'e', 'f', 0, 0, 0, 0});
        Append(bytes, {{left * 20 - 8, 4}});
        Append(bytes, Bytes{'d', 'i', 'm', 'g', 0, 1, 0xFF, 0xFF});
    }
    EXPECT_FALSE(ReferencesEnd(bytes));
}

TEST(HeifCodec, SmallFilesDontTakeAllMemory) {
    for (const char* name : {"heif/made-of-itself.heic", "heif/grid-larger-than-told.heic"})
        EXPECT_FALSE(Decoded("HEIF", DataFile(name)).IsValid()) << name;
}

TEST(HeifCodec, TheBrandOfAnyCodingIsTakenButAv1IsNotDecoded) {
    Bytes file = Encoded("HEIF", SmoothPicture(32, 32, FormatRGB8));
    std::ranges::copy(std::string_view("mif1"), file.begin() + 8);
    EXPECT_EQ(CodecForContent(file), &CodecNamed("HEIF"));
    EXPECT_TRUE(Decoded("HEIF", file).IsValid());
    std::ranges::copy(std::string_view("avif"), file.begin() + 8);
    EXPECT_EQ(CodecForContent(file), nullptr);
    std::ranges::copy(std::string_view("heic"), file.begin() + 8);
    constexpr std::string_view name = "infe";
    const auto entry = std::search(file.begin(), file.end(), name.begin(), name.end());
    ASSERT_EQ(std::string(entry + 12, entry + 16), "hvc1");
    std::ranges::copy(std::string_view("av01"), entry + 12);
    EXPECT_EQ(Refusals(file, u"AV1"), 1);
}
