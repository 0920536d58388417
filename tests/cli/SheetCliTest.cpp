// A sheet of letters on the command line: made by it, cut by it.

#include "Cli.h"

namespace {

using testing::HasSubstr;
using SheetCli = Cli;

// A line of text, set by the program, is a sheet.
void MakeSheet(Cli& cli) {
    cli.Do("--family 'DejaVu Sans' --height 60 --colour 201040 --select A-Z,:,% --generate "
           "--background F0E8D8 --text 'A B C D E F G H I J K : L %' sheet.png");
    cli.folder.Write("letters.txt", "\xEF\xBB\xBF"
                                    "ABCDEFG\r\nHIJK:L%\r\n");
}

TEST_F(SheetCli, CutsAsItIsTold) {
    MakeSheet(*this);
    const nlohmann::json direct = Info("--family 'DejaVu Sans' --height 60 --select A-L --generate");
    for (const std::string text :
         {"--sheet-text ABCDEFGHIJK:L%", "--sheet-text @letters.txt",
          "--sheet-text @letters.txt --mark a --sheet-text x --sheet-ground alpha --back a",
          "--sheet-ground F0E8D8 --sheet-text 'A BCD EFGHIJK:L%'"}) {
        const nlohmann::json cut = Info(text + " --sheet-report report.png --sheet sheet.png");
        ASSERT_EQ(cut["glyphs"].size(), 14U);
        EXPECT_EQ(cut["capHeight"], direct["capHeight"]);
        EXPECT_EQ(cut["glyphs"][0]["code"], '%');
        EXPECT_TRUE(Has("report.png"));
        EXPECT_EQ(Picture("report.png").Width, Picture("sheet.png").Width);
    }
    // The report afterwards is the same one.
    const std::string before = folder.Read("report.png");
    Do("--sheet-text @letters.txt --sheet sheet.png --sheet-report after.png");
    EXPECT_EQ(folder.Read("after.png"), before);
    // An "A" is no full stop.
    Do("--sheet-text '.BCDEFGHIJK:L%' --sheet sheet.png");
    EXPECT_THAT(error, testing::EndsWith("may be cut or named wrongly: .\n"));
    const nlohmann::json selected =
        Info("--family 'DejaVu Sans' --height 40 --select-text letters.txt --generate");
    EXPECT_EQ(selected["glyphs"].size(), 14U);
    Do("--dry-run --select-text letters.txt --sheet-text @letters.txt --sheet-report r.png --sheet "
       "sheet.png");
    EXPECT_EQ(out, "reads  letters.txt\nwrites r.png\nreads  sheet.png\n");
    // In a recipe as well, where "@" and a file's first character are no trap.
    folder.Write("sub/letters.txt", "@BCDEFGHIJK:L%");
    folder.Write("sub/a.steps", "sheet-text @letters.txt\nsheet ../sheet.png\n");
    EXPECT_EQ(Info("--steps sub/a.steps")["glyphs"][2]["code"], '@') << error;
    folder.Write("sub/a.steps", "sheet-text @@BCDEFGHIJK:L%\nsheet ../sheet.png\n");
    EXPECT_EQ(Info("--steps sub/a.steps")["glyphs"][2]["code"], '@') << error;
}

// Rows and columns as a camera keeps them that was held so, and the block that tells it, in either order of
// bytes.
TEST_F(SheetCli, PhotosAreTurnedAsTheirCamerasWereHeld) {
    MakeSheet(*this);
    const OwnedPicture sheet = Picture("sheet.png");
    const auto width = static_cast<std::int32_t>(sheet.Width), height = static_cast<std::int32_t>(sheet.Height);
    for (const int held : {3, 5, 6, 8}) {
        const bool across = held >= 5;
        OwnedPicture kept{
            MPicture(across ? sheet.Height : sheet.Width, across ? sheet.Width : sheet.Height, FormatRGB8)};
        for (std::int32_t y = 0; y < height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) {
                const std::int32_t u = held == 3 ? width - 1 - x : held == 8 ? height - 1 - y : y;
                const std::int32_t v = held == 3 ? height - 1 - y : held == 6 ? width - 1 - x : x;
                kept.SetPixel(held == 6 ? y : u, v, sheet.GetPixel(x, y));
            }
        }
        ASSERT_TRUE(kept.Save(FromSystemPath(folder.path / "photo.jpg")));
        std::string bytes = folder.Read("photo.jpg");
        const bool lowestFirst = held != 6;
        std::string exif = lowestFirst ? std::string("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 18)
                                       : std::string("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01", 18);
        exif += lowestFirst ? std::string{char(held), 0, 0, 0} : std::string{0, char(held), 0, 0};
        bytes.insert(2, std::string("\xFF\xE1\0\x1E\x45xif\0\0", 10) + exif);
        folder.Write("photo.jpg", bytes);
        SCOPED_TRACE(held);
        EXPECT_EQ(Info("--sheet-text @letters.txt --sheet photo.jpg")["glyphs"].size(), 14U);
        EXPECT_EQ(error, "");
    }
}

TEST_F(SheetCli, FailuresAndWrongUsage) {
    MakeSheet(*this);
    ExpectFailures({
        {"--sheet-report r.png", 1, "r.png: no sheet was cut"},
        {"--sheet-text ABC --sheet-report r.png --sheet sheet.png --save f.sm", 1,
         "14 letters were found on the sheet, but the text has 3 characters"},
        {"--sheet-text @@x --sheet sheet.png", 1, "but the text has 2 characters"},
        {"--sheet-text @none.txt", 1, "--sheet-text: none.txt: "},
        {"--select-text none.txt", 1, "--select-text: none.txt: "},
        {"--sheet none.png", 1, "--sheet: none.png: no such file"},
        {"--sheet letters.txt", 1, "--sheet: letters.txt: it is no picture"},
        {"--sheet-grid 8", 2, "--sheet-grid"},
        {"--sheet-grid 0x8", 2, "--sheet-grid"},
        {"--sheet-ground blue", 2, "--sheet-ground"},
    });
    EXPECT_TRUE(Has("r.png")); // what helps most where it failed
    EXPECT_FALSE(Has("f.sm"));
}

} // namespace
