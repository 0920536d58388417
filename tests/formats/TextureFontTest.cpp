#include "formats/FontFile.h"
#include "formats/MTextFile.h"
#include "foundation/MMemory.h"
#include "imaging/Pictures.h"

#include <string>

namespace {

class TextureFontTest : public FontFileTest {
protected:
    void MakeFont(char16_t first, char16_t last) {
        font.Clear();
        for (char16_t c = first; c <= last; ++c) {
            MGlyph& glyph = AddGlyph(font, c, 1 + c % 23, 20);
            FillWithNoise(glyph.Picture, c);
            glyph.SpacingBefore = c % 7 - 3;
            glyph.SpacingAfter = c % 5 - 2;
        }
        settings.GlyphHeight = 20;
        font.Baseline = 4;
        font.CapHeight = 13;
        font.SpaceWidth = 9;
        ASSERT_TRUE(font.Repack());
    }

    // A texture font of these records over the grid.
    MString WriteFont(std::string_view records, const char* header = "Showmarquee TextureFont 1.0\r\n") {
        SaveGrid("f.png");
        return folder.Write("f.sm", header + std::string(records));
    }
};

TEST_F(TextureFontTest, EveryByte) {
    MakeFont(u'A', u'A');
    AddGlyph(font, u'"', 3, 20);
    AddGlyph(font, u'\u20AC', 0, 5);
    ASSERT_TRUE(font.Repack());
    font.SetKerning('A', 'A', -2);
    font.SetKerning('A', '"', 0);
    font.SetKerning('"', 0x20AC, 7);
    const MString path = folder.File("two words.dat");
    ASSERT_TRUE(font.Save(path));
    EXPECT_FALSE(FileExists(path));
    const std::string expected = "Showmarquee TextureFont 1.0\r\n"
                                 "FSZ\t20\t4\t13\r\n"
                                 "TEX\t\"" +
                                 Narrow(folder.File("two words.png")) +
                                 "\"\t128\t128\r\n"
                                 "CHA\tA\t16\t16\t20\t20\t-1\t-2\r\n"
                                 "CHA\t&#34;\t52\t16\t3\t20\t1\t2\r\n"
                                 "CHA\t@\t0\t0\t0\t5\t1\t2\r\n"
                                 "SPA\t9\r\n"
                                 "KER\tA\tA\t-2\r\n"
                                 "KER\t&#34;\t@\t7\r\n";
    const std::string euro = ReplaceAll(Utf16(expected), std::string_view("@\0", 2), "\xAC\x20");
    EXPECT_EQ(folder.Read("two words.sm"), "\xFF\xFE" + euro);
    EXPECT_TRUE(font.Save(folder.File("no/f.sm"))) << "even where nothing can be written";
}

TEST_F(TextureFontTest, EveryCharacterComesBack) {
    MakeFont(33, 255);
    font.RemoveGlyph(u'#');
    for (const char16_t c : {u'\u0100', char16_t{0xD800}, u'\uFFFF'})
        font.SetKerning('<', c, -5);
    font.SetKerning('"', '<', -6);
    FillWithNoise(AddGlyph(font, u'\u20AC', 5, 20).Picture, 5);
    ASSERT_TRUE(font.Repack());
    ASSERT_TRUE(font.Save(folder.File("f.sm")));
    MColourFont loaded(nullptr);
    settings.GlyphHeight = 0;
    ASSERT_TRUE(loaded.Load(folder.File("f.sm")));
    ExpectSameGlyphs(font, loaded);
    EXPECT_EQ(std::tuple(settings.GlyphHeight, loaded.Baseline, loaded.CapHeight, loaded.SpaceWidth),
              std::tuple(20, 4, 13, 9));
    font.SortKerningByAmount();
    EXPECT_EQ(PairsOf(font), PairsOf(loaded));
}

TEST_F(TextureFontTest, ThePictureIsSoughtInThreePlaces) {
    MakeFont(u'A', u'B');
    std::filesystem::create_directories(folder.path / "Fonts");
    std::filesystem::create_directories(folder.path / "Textures");
    ASSERT_TRUE(font.Save(folder.File("Fonts/f.sm")));
    const auto load = [&] {
        MColourFont loaded(AnyWindow());
        return loaded.Load(folder.File("Fonts/f.sm")) && loaded.GlyphCount() == 2;
    };
    EXPECT_TRUE(load());
    std::filesystem::rename(folder.path / "Fonts/f.png", folder.path / "Textures/F.PNG");
    EXPECT_TRUE(load());
    std::filesystem::rename(folder.path / "Textures/F.PNG", folder.path / "other.png");
    EXPECT_FALSE(load()); // asked, and cancelled
    Headless::script.files = {folder.File("other.png")};
    EXPECT_TRUE(load());
    EXPECT_EQ(Headless::record.fileDialogs.size(), 2U);
    Headless::script.files = {folder.File("Fonts/f.sm")}; // no picture at all
    EXPECT_FALSE(load());
    EXPECT_FALSE(font.Load(folder.File("missing.sm")));
    EXPECT_FALSE(font.Load(MString()));
}

TEST_F(TextureFontTest, APictureOfAnotherSizeScalesGlyphsAlone) {
    const MString path = WriteFont("FSZ\t9\t7\t5\r\nTEX\tx\t8\t2\r\n"
                                   "CHA\tA\t3\t1\t5\t1\t-3\t3\r\nSPA\t9\r\nKER\tA\tA\t-9\r\n");
    ASSERT_TRUE(font.Load(path));
    const MGlyph& glyph = *font.GetGlyph(u'A');
    EXPECT_EQ(NumbersOf(glyph), std::tuple(2, 2, -1, 1));
    EXPECT_EQ(glyph.GetPixel(0, 0), MColour(1, 2, 0));
    EXPECT_EQ(std::tuple(settings.GlyphHeight, font.Baseline, font.CapHeight, font.SpaceWidth),
              std::tuple(9, 7, 5, 9));
    EXPECT_EQ(font.FindKerning(u'A', 'A')->Amount, -9);
    const char* const record = "CHA\tA\t3\t2\t5\t2\t-3\t3\r\n";
    ASSERT_TRUE(font.Load(WriteFont(std::string("TEX\tx\t8\t4\r\n") + record)));
    EXPECT_EQ(NumbersOf(*font.GetGlyph(u'A')), std::tuple(2, 2, -1, 1)) << "in width alone";
    ASSERT_TRUE(font.Load(WriteFont(std::string("TEX\tx\t4\t2\r\n") + record)));
    EXPECT_EQ(NumbersOf(*font.GetGlyph(u'A')), std::tuple(5, 4, -3, 3)) << "in height alone";
}

TEST_F(TextureFontTest, APictureWithoutAlphaIsCutAlike) {
    const MString path = WriteFont("CHA\tA\t1\t2\t2\t2\t0\t0\r\n");
    SaveGrid("f.png", FormatRGB8);
    ASSERT_TRUE(font.Load(path));
    EXPECT_EQ(font.GetGlyph(u'A')->GetPixel(1, 1), MColour(2, 3, 0));
}

TEST_F(TextureFontTest, LenientWithRecords) {
    const MString path =
        WriteFont("cha\tX\t0\t0\t1\t1\t0\t0\r\n\r\nNEW\tY\r\n"
                  "CHA\tA\t-1\t2\t6\t3\t0\t0\r\n" // wraps around on every side
                  "CHA\tB\r\n"
                  "CHA\tC\t0\t0\t2\t2\t0\t0\r\n"
                  "CHA\tC\t3\t3\t1\t1\t4\t5\r\n"
                  "CHA\t\"\"\t0\t0\t1\t1\t0\t0\r\n"
                  "KER\t\"\"\tA\t3\r\nKER\t\" \"\tA\t3\r\nKER\tA\r\nKER\tA\tC\t1\r\nKER\tA\tC\t-1\r\n",
                  "Showmarquee \t TextureFont\n");
    ASSERT_TRUE(font.Load(path));
    EXPECT_EQ(font.GlyphCount(), 4);
    for (std::int32_t y = 0; y < 3; ++y) {
        for (std::int32_t x = 0; x < 6; ++x) {
            EXPECT_EQ(font.GetGlyph(u'A')->GetPixel(x, y), MColour(static_cast<std::uint8_t>((x + 3) % 4),
                                                                   static_cast<std::uint8_t>((y + 2) % 4), 0));
        }
    }
    EXPECT_FALSE(font.GetGlyph(u'B')->Picture.IsValid());
    EXPECT_EQ(font.GetGlyph(u'C')->SpacingAfter, 5);
    EXPECT_NE(font.GetGlyph(u'?'), nullptr); // what an empty character reads as
    EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'C', -1}, {'A', '?', 0}, {'?', 'A', 3}}));
}

TEST_F(TextureFontTest, HeadersThatAreWrong) {
    for (const char* header : {"", "Showmarquee\r\n", "showmarquee TextureFont\r\n",
                               "Showmarquee Texturefont 1.0\r\n", "\r\nShowmarquee TextureFont 1.0\r\n"})
        EXPECT_FALSE(font.Load(WriteFont("CHA\tA\t0\t0\t1\t1\t0\t0\r\n", header))) << header;
    EXPECT_TRUE(font.Load(WriteFont("")));
    EXPECT_EQ(font.GlyphCount(), 0);
}

TEST_F(TextureFontTest, HostileNumbers) {
    SetMemoryLimit(1 << 20);
    const MString path = WriteFont("TEX\tx\t0\t0\r\nCHA\tA\t1\t1\t1\t1\t1\t1\r\n" // infinite factors
                                   "TEX\tx\t4\t4\r\n"
                                   "CHA\tB\t-2147483648\t2147483647\t3\t3\t-2147483648\t2147483647\r\n"
                                   "CHA\tC\t0\t0\t2147483647\t2147483647\t0\t0\r\n"
                                   "CHA\tD\t0\t0\t-5\t9\t0\t0\r\n"
                                   "CHA\tE\t0\t0\t1000\t100\t0\t0\r\n"   // 400 kB of the half megabyte for all
                                   "CHA\tF\t0\t0\t1000\t100\t0\t0\r\n"); // no longer affordable
    ASSERT_TRUE(font.Load(path));
    EXPECT_FALSE(font.GetGlyph(u'A')->Picture.IsValid());
    EXPECT_EQ(font.GetGlyph(u'B')->GetPixel(0, 0), MColour(0, 3, 0));
    EXPECT_FALSE(font.GetGlyph(u'C')->Picture.IsValid());
    EXPECT_EQ(font.GetGlyph(u'C')->Width, 2147483647);
    EXPECT_TRUE(font.GetGlyph(u'E')->Picture.IsValid());
    EXPECT_FALSE(font.GetGlyph(u'F')->Picture.IsValid());
    EXPECT_FALSE(font.Repack());
    SetMemoryLimit(0);
}

// A picture of 4 x 4 pixels, of which the records make gigabytes.
TEST_F(TextureFontTest, ClaimsWithoutPixelsAreNotPacked) {
    std::string records = "TEX\tx\t4\t4\r\n";
    for (const char c : {'A', 'B', 'C', 'D', 'E', 'F', 'G'})
        records += std::string("CHA\t") + c + "\t0\t0\t16000\t4000\t0\t0\r\n";
    ASSERT_TRUE(font.Load(WriteFont(records)));
    EXPECT_FALSE(font.Repack());
}

TEST_F(TextureFontTest, SingleFiles) {
    EXPECT_FALSE(font.ExportSingleFiles(folder.File("any.png")));
    MakeFont(u'A', u'B');
    font.GetGlyph(u'B')->Picture.Fill(MColour(1, 2, 3));
    AddGlyph(font, u'\u20AC', 2, 2);
    AddGlyph(font, u'z', 0, 2);
    EXPECT_FALSE(font.ExportSingleFiles(MString()));
    EXPECT_TRUE(font.ExportSingleFiles(folder.File("any.png")));
    EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.File("C66.png"))), font.GetGlyph(u'B')->Picture));
    EXPECT_TRUE(FileExists(folder.File("C8364.png")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path), {}), 3)
        << "none without a picture";
    EXPECT_FALSE(font.ExportSingleFiles(folder.File("no/any.png")));
}

} // namespace
