#include "formats/LetterCubes.h"

#include "formats/FontFile.h"
#include "foundation/MFolders.h"
#include "imaging/Pictures.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::string> Cubes(const std::vector<MString>& names) {
    const MLetterCubes result(names);
    std::vector<std::string> texts;
    for (const auto& cube : result.cubes)
        texts.emplace_back(cube.begin(), cube.end());
    return texts;
}

TEST(LetterCubes, NamesFromAList) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"", {}},
        {"Mary\r\nJohn", {"Mary", "John"}},
        {"\r\n\nAnn Lee \n\n\nBo\r", {"AnnLee", "Bo", ""}}, // the last line break leaves an empty name
        {" ", {""}},
    };
    for (const auto& [list, names] : cases) {
        std::vector<std::string> read;
        for (const MString& name : MLetterCubes::ReadNames(list))
            read.push_back(Narrow(name));
        EXPECT_EQ(read, names) << list;
    }
}

TEST(LetterCubes, AssignsAndFillsInTurn) {
    using Expected = std::vector<std::string>;
    // Spare faces turn through the letters that no name uses, from "B" on.
    EXPECT_EQ(Cubes({"ANNA", "BOB"}), (Expected{"ABCDEF", "ABGHIJ", "NOKLMP", "NQRSTU"}));
    EXPECT_EQ(Cubes({"ABCDEF"}), (Expected{"AGHIJK", "BLMNOP", "CQRSTU", "DVWXYZ", "EGHIJK", "FLMNOP"}));
    // One "A" of the second name takes both cubes that bear it, so the other one opens a third.
    EXPECT_EQ(MLetterCubes({"AA", "AA"}).cubes.size(), 3U);
    EXPECT_EQ(Cubes({"1-"}), (Expected{"-BCDEF", "1GHIJK"})); // no letters of the turn
    EXPECT_TRUE(Cubes({""}).empty());
}

TEST(LetterCubes, WithAllLettersInUseTheTurnIsUnbroken) {
    const auto cubes = Cubes({"ABCDEFGHIJKLMNOPQRSTUVWXYZ"});
    ASSERT_EQ(cubes.size(), 26U);
    EXPECT_EQ(cubes[0] + cubes[5], "ABCDEFFABCDE"); // ... Z, then A
    EXPECT_EQ(Cubes({MString(std::u16string_view(std::u16string(150, u'A')))}).size(), 100U) << "at most";
}

class LetterCubesExportTest : public FontFileTest {
protected:
    LetterCubesExportTest() {
        settings.LetterCubesNames = "Bo";
        settings.BackgroundColour = MColour(200, 100, 51);
        for (char16_t c = u'A'; c <= u'Z'; ++c)
            FillWithNoise(AddGlyph(font, c, 20 + c % 7, 31).Picture, c);
    }

    // The net of one cube, pixel by pixel and line by line.
    MPicture PlainNet(const std::string& cube) const {
        const std::int32_t w = std::max(font.MaxGlyphWidth(), font.MaxGlyphHeight());
        const std::int32_t t = w / 10;
        const MColour ground = settings.BackgroundColour;
        MPicture net(static_cast<std::uint32_t>(4 * w + 3 * t), static_cast<std::uint32_t>(3 * w + 2 * t),
                     FormatRGB8);
        net.Fill(ground);
        const std::pair<std::int32_t, std::int32_t> cells[] = {
            {t, w + t}, {w + t, w + t}, {2 * w + t, w + t}, {3 * w + t, w + t}, {w + t, t}, {w + t, 2 * w + t}};
        for (std::size_t f = 0; f < 6; ++f) {
            const MGlyph& glyph = *font.GetGlyph(static_cast<char16_t>(cube[f]));
            for (std::int32_t i = 0; i < w; ++i) {
                for (std::int32_t j = 0; j < w; ++j) {
                    const std::int32_t x = i - (w - glyph.Width) / 2;
                    const std::int32_t y = j - (w - glyph.Height) / 2;
                    MColour source = ground;
                    if (x >= 0 && y >= 0 && x < glyph.Width && y < glyph.Height) source = glyph.GetPixel(x, y);
                    const auto a = static_cast<float>(source.a / 255.0);
                    const auto mix = [&](std::uint8_t s, std::uint8_t b) {
                        return static_cast<std::uint8_t>(static_cast<float>(s) * a +
                                                         static_cast<float>(b) * (1 - a));
                    };
                    net.SetPixel(
                        cells[f].first + i, cells[f].second + j,
                        MColour(mix(source.r, ground.r), mix(source.g, ground.g), mix(source.b, ground.b)));
                }
            }
        }
        // For a face of 31 pixels: the edges, then the flaps; half-way to black, truncated.
        const std::array<std::int32_t, 4> lines[] = {
            {3, 34, 3, 65},    {34, 3, 65, 3},     {34, 96, 65, 96},   {3, 34, 127, 34},   {3, 65, 127, 65},
            {34, 3, 34, 96},   {65, 3, 65, 96},    {96, 34, 96, 65},   {127, 34, 127, 65}, {3, 34, 6, 31},
            {6, 31, 31, 31},   {31, 31, 34, 34},   {3, 65, 6, 68},     {6, 68, 31, 68},    {31, 68, 34, 65},
            {65, 34, 68, 31},  {68, 31, 93, 31},   {93, 31, 96, 34},   {65, 65, 68, 68},   {68, 68, 93, 68},
            {93, 68, 96, 65},  {96, 34, 99, 31},   {99, 31, 124, 31},  {124, 31, 127, 34}, {96, 65, 99, 68},
            {99, 68, 124, 68}, {124, 68, 127, 65}, {127, 34, 130, 37}, {130, 37, 130, 62}, {127, 65, 130, 62}};
        for (const auto& [x0, y0, x1, y1] : lines)
            net.DrawLine(x0, y0, x1, y1, MColour(100, 50, 25));
        return net;
    }
};

TEST_F(LetterCubesExportTest, TheNetPixelForPixel) {
    ASSERT_TRUE(font.ExportLetterCubes(folder.File("cube.png")));
    // The turn of the spare letters goes on from cube to cube.
    for (const auto& [file, cube] : {std::pair("cube1.png", "BCDEFG"), std::pair("cube2.png", "OHIJKL")}) {
        EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.File(file))), OwnedPicture(PlainNet(cube))))
            << file;
    }
    EXPECT_FALSE(FileExists(folder.File("cube3.png")));
}

TEST_F(LetterCubesExportTest, StatisticsAreAskedAbout) {
    settings.LetterCubesNames = "Anna\r\nBo\r\n";
    AddGlyph(font, u'~', 40, 5); // in no name, but it is the largest
    Headless::script.answers = {Desktop::Answer::No};
    EXPECT_FALSE(font.ExportLetterCubes(folder.File("cube.png")));
    EXPECT_EQ(Narrow(Headless::record.messages.at(0).text),
              "Number of names:\t3\nShortest name:\t0 letters\nLongest name:\t4 letters\nRequired cubes:\t4\n"
              "Print resolution:\t172 x 128 pixels\n\nWould you like to create the cut-outs?");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

TEST_F(LetterCubesExportTest, Refusals) {
    const auto refused = [&](const char* names) {
        Headless::Reset();
        settings.LetterCubesNames = names;
        EXPECT_FALSE(font.ExportLetterCubes(folder.File("cube.png")));
        return Headless::record.messages.empty() ? "" : Narrow(Headless::record.messages[0].text);
    };
    EXPECT_EQ(refused(""), "");
    EXPECT_EQ(refused("Bo\nX1"), "I can't create letter cubes cut-outs because the name \"X1\" is using the "
                                 "letter 1, which is not present in this alphabet.");
    AddGlyph(font, u'1', 3, 31);
    settings.LetterCubesNames = "X1";
    EXPECT_TRUE(font.ExportLetterCubes(folder.File("cube.png")));
    font.RemoveGlyph(u'Q');
    EXPECT_EQ(refused("Bo"), "Make sure your font features all all upper case characters.");
}

} // namespace
