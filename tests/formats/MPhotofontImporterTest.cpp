#include "formats/MPhotofontImporter.h"

#include "formats/Base64.h"
#include "formats/FontFile.h"

#include <glib.h>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

struct Glyph {
    std::string id;
    int code;
    int width, height; // of the picture
    int boxWidth, boxHeight;
    int baseX, baseY, deltaX;
};

class PhotofontTest : public FontFileTest {
protected:
    MPixelFormat format = FormatRGBA8; // of the pictures

    PhotofontTest() { settings.Path(MPathKind::Temporary) = FromSystemPath(folder.path); }

    // A picture with ink in columns 2 to width - 3 of all rows, each row its own red, as base64 in 76 columns.
    std::string Payload(int width, int height) const {
        MPicture picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), format);
        picture.Fill(MColour(0, 0, 0, 0));
        for (int y = 0; y < height; ++y) {
            for (int x = 2; x < width - 2; ++x)
                picture.SetPixel(x, y, {static_cast<std::uint8_t>(y), 0, 0, 255});
        }
        EXPECT_TRUE(picture.Save(folder.File("payload.png")));
        picture.Free();
        const std::string bytes = folder.Read("payload.png");
        gchar* const encoded = g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size());
        std::string lines = std::string(encoded) + "\n";
        g_free(encoded);
        for (std::size_t at = 76; at < lines.size(); at += 77)
            lines.insert(at, 1, '\n');
        return lines;
    }

    std::string File(const std::vector<Glyph>& glyphs, const std::string& pairs = "") const {
        std::ostringstream map;
        std::ostringstream all;
        for (const Glyph& g : glyphs) {
            map << "\t\t<map id=\"" << g.id << "\" unc=\"" << g.code << "\"/>\n";
            all << "\t<glyph id=\"" << g.id << "\">\n\t\t<image id=\"v0\" type=\"photo\">\n\t\t<shape"
                << (g.width > 0 ? " embedded=\"IMG_" + g.id + "\" />\n" : ">\n")
                << "\t\t<ppm int=\"48\"/>\n\t\t<bbox x=\"0\" y=\"0\" width=\"" << g.boxWidth << "\" height=\""
                << g.boxHeight << "\"/>\n\t\t<base x=\"" << g.baseX << "\" y=\"" << g.baseY
                << "\"/>\n\t\t<delta x=\"" << g.deltaX << "\" y=\"0\"/>\n\t\t</image>\n\t</glyph>\n";
        }
        std::string text = "<?xml version=\"1.0\"?>\n<PhF version=\"1.0\">\n<header>\n</header>\n<globals>\n"
                           "\t<unicode_mapping type=\"x\">\n" +
                           map.str() + "\t</unicode_mapping>\n\t<kerning type=\"p\">\n" + pairs +
                           "\t</kerning>\n</globals>\n<glyphs>\n" + all.str() + "</glyphs>\n<data>\n<photo>\n";
        for (const Glyph& g : glyphs) {
            if (g.width > 0) {
                text += "<image id=\"IMG_" + g.id +
                        "\">\nContent-type: image/png\nContent-transfer-encoding: base64\n\n" +
                        Payload(g.width, g.height) + "</image>\n";
            }
        }
        return text + "</photo>\n</data>\n</PhF>\n";
    }

    bool Import(const std::string& text) {
        const bool imported = MPhotofontImporter(AnyWindow()).Import(folder.Write("f.phf", text), &font);
        EXPECT_FALSE(FileExists(folder.File("temp.png")));
        return imported;
    }

    std::string Codes() const {
        std::string codes;
        for (const auto& slot : font.Glyphs) {
            if (slot) codes += std::to_string(slot->Character) + " ";
        }
        return codes;
    }
};

const std::vector<Glyph> sample = {{"A", 65, 12, 20, 12, 20, 1, 15, 13},
                                   {"g", 103, 10, 16, 10, 16, 0, 10, 11},
                                   {"space", 32, 0, 0, 0, 0, 0, 0, 9}};

TEST_F(PhotofontTest, PlacesGlyphsOnOneBaseline) {
    settings.PaddingTop = 5; // of earlier pictures
    ASSERT_TRUE(
        Import(File({sample[1], sample[0], sample[2]},
                    "<pair left=\"A\" right=\"g\" x=\"-5\"/>\n<pair left=\"g\" right=\"A\" x=\"0\"/>\n"
                    "<pair left=\"A\" right=\"none\" x=\"3\"/>\n<pair left=\"g\" right=\"g\" x=\"-8\"/>\n")));
    EXPECT_EQ(Codes(), "65 103 ");
    // 15 rows above the baseline and 6 below it; the baseline itself is measured anew by the "A", as by any
    // picture.
    EXPECT_EQ(std::tuple(settings.GlyphHeight, font.Baseline, font.SpaceWidth, settings.PaddingTop),
              std::tuple(21, 1, 9, 0));
    const MGlyph& a = *font.GetGlyph(u'A');
    const MGlyph& g = *font.GetGlyph(u'g');
    EXPECT_EQ(NumbersOf(a), std::tuple(8, 21, 1, 13 - 12 + 2 + 1));
    EXPECT_EQ(NumbersOf(g), std::tuple(6, 21, 2, 3));
    EXPECT_EQ(a.GetPixel(0, 14).r, 14);
    EXPECT_EQ(a.GetPixel(0, 20).a, 0);
    EXPECT_EQ(g.GetPixel(0, 4).a, 0);
    EXPECT_EQ(g.GetPixel(0, 14).r, 9);
    EXPECT_EQ(PairsOf(font), (Pairs{{'g', 'g', -8}, {'A', 'g', -5}})) << "both sorted, as the glyphs are";
    EXPECT_EQ(Headless::record.progressPercents.back(), 66);

    format = FormatRGB8;
    ASSERT_TRUE(Import(File(sample)));
    EXPECT_EQ(font.GetGlyph(u'g')->GetPixel(2, 14).r, 9) << "without alpha alike";

    format = FormatRGBA8;
    std::vector<Glyph> tall = sample;
    tall[2].baseY = 18; // rows that no picture reaches
    ASSERT_TRUE(Import(File(tall)));
    EXPECT_EQ(std::tuple(settings.GlyphHeight, font.GetGlyph(u'g')->Height), std::tuple(21, 21)) << "trimmed";
}

TEST_F(PhotofontTest, AnyEncodingLineEndAndAttributeOrder) {
    const std::string plain = File(sample);
    ASSERT_TRUE(Import(plain));
    const std::string codes = Codes();
    const std::string swapped = ReplaceAll(plain, "<map id=\"A\" unc=\"65\"/>", "<map unc=\"x41\" id=\"A\" />");
    const std::string utf16 = "\xFF\xFE" + Utf16(plain);
    for (const std::string& text : {ReplaceAll(plain, "\n", "\r\n"), "\xEF\xBB\xBF" + plain, utf16, swapped}) {
        ASSERT_TRUE(Import(text));
        EXPECT_EQ(Codes(), codes);
        EXPECT_EQ(font.GetGlyph(u'A')->Width, 8);
    }
}

TEST_F(PhotofontTest, MappingsThatMeet) {
    const std::string small = "<map id=\"x\" unc=\"97\">\n";
    const std::string capital = "<map id=\"x\" unc=\"65\">\n";
    const std::pair<std::string, int> cases[] = {
        {small + capital, 65},
        {capital + small, 65},
        {"<map id=\"x\" unc=\"98\">\n" + capital, 98},
        {small + "<map id=\"x\" unc=\"2147483647\">\n", 97}, // no sum of it fits
        {"<map id=\"x\" unc=\"31\">\n", 0},
        {"<map id=\"\" unc=\"65\">\n", 0},
        {"<map\nid=\"x\" unc=\"65\">\n", 0}, // split over two lines
    };
    for (const auto& [lines, unicode] : cases) {
        MPhotofontImporter importer(nullptr);
        EXPECT_TRUE(importer.Import(
            folder.Write("m.phf", "<unicode_mapping>\n" + lines + "</unicode_mapping>\n"), &font));
        EXPECT_EQ(importer.FindUnicode("x"), unicode) << lines;
    }
}

TEST_F(PhotofontTest, PicturesAreCutOrPaddedToTheirBox) {
    std::vector<Glyph> glyphs = sample;
    glyphs[0].boxWidth = 6;  // ink from column 2 on
    glyphs[1].boxWidth = 15; // five more columns, empty
    glyphs.push_back({"none", 116, 4, 16, 4, 16, 0, 10, 6});
    ASSERT_TRUE(Import(File(glyphs)));
    EXPECT_EQ(font.GetGlyph(u'A')->Width, 4);
    EXPECT_EQ(std::tuple(font.GetGlyph(u'g')->Width, font.GetGlyph(u'g')->SpacingAfter),
              std::tuple(6, 11 - 15 + 7));
    EXPECT_EQ(NumbersOf(*font.GetGlyph(u't')), std::tuple(4, 21, 0, 2)) << "without ink there is no margin";
}

TEST_F(PhotofontTest, ToldLosses) {
    const std::string whole = File(sample);
    const std::string imageA = "<image id=\"IMG_A\">\n";
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"an image that no glyph uses stops all after it", ReplaceAll(whole, imageA, "<image id=\"nobody\">\n"),
         ""},
        {"a blank makes a line no data", ReplaceAll(whole, "\niVBOR", "\n iVBOR"), ""},
        {"so that lines between are passed over", ReplaceAll(whole, "\niVBOR", "\na note\niVBOR"), "65 103 "},
        {"a picture of the space", File({{"space", 32, 6, 3, 6, 3, 0, 2, 9}}), ""},
        {"data on the line of the word base64", ReplaceAll(whole, "base64\n\niVBOR", "base64 iVBOR"), ""},
        {"no </glyphs>", ReplaceAll(whole, "</glyphs>\n", ""), ""},
        {"no base64", ReplaceAll(whole, "base64", "none"), ""},
        {"an id without a mapping", ReplaceAll(whole, "<map id=\"A\"", "<map id=\"B\""), ""},
        {"cut off in the second image", whole.substr(0, whole.rfind("</image>") - 10), "65 "},
        // Without an id it is the image of the glyph that names none, the space, up to the next end of an
        // image.
        {"a wrapper that looks like an image", ReplaceAll(whole, "<data>", "<images>"), "103 "},
        {"not base64 at all", ReplaceAll(whole, "iVBOR", "!!!!!"), ""},
    };
    for (const auto& [what, text, codes] : cases) {
        settings.PaddingTop = settings.SpacingAfter = 5;
        EXPECT_TRUE(Import(text)) << what;
        EXPECT_EQ(settings.PaddingTop + settings.SpacingAfter, 0) << what;
        EXPECT_EQ(Codes(), codes) << what;
    }
    EXPECT_FALSE(MPhotofontImporter(nullptr).Import(folder.File("missing.phf"), &font));
    EXPECT_FALSE(MPhotofontImporter(nullptr).Import(folder.File("f.phf"), nullptr));
}

TEST_F(PhotofontTest, HostileNumbersAndSizes) {
    SetMemoryLimit(1 << 22);
    std::vector<Glyph> glyphs = sample;
    glyphs[0].boxWidth = 2'000'000'000;
    ASSERT_TRUE(Import(File(glyphs)));
    EXPECT_EQ(Codes(), "103 ");
    for (const auto& [boxHeight, baseY] :
         {std::pair(2'000'000'000, 2'000'000'000), std::pair(-5, -7), std::pair(20, -2'000'000'000),
          std::pair(2'000'000'000, -2'000'000'000)}) {
        glyphs = sample;
        glyphs[1].boxHeight = boxHeight;
        glyphs[1].baseY = baseY;
        EXPECT_TRUE(Import(File(glyphs)));
    }
    SetMemoryLimit(0);
}

TEST(Base64, OddEnds) {
    EXPECT_FALSE(DecodeBase64(""));
    EXPECT_FALSE(DecodeBase64("A"));
    // A group that is cut off; "=" where it takes away and where it doesn't; what is no base64.
    for (const auto& [text, size] : {std::pair("QUJDRE", 3U), {"==", 0U}, {"QU==", 1U}, {"\x01\xFF**", 3U}})
        EXPECT_EQ(DecodeBase64(text)->size(), size) << text;
}

} // namespace
