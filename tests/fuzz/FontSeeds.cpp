#include "TemporaryFolder.h"
#include "bombs/Bombs.h"
#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/MTextFile.h"
#include "fuzz/Seeds.h"
#include "platform_text/PaintFont.h"

#include <cstdlib>

namespace {

using fonts::Bytes;

class Folder {
public:
    Folder(const std::filesystem::path& root, const char* target) : path(root / target) {
        std::filesystem::create_directories(path);
    }
    void Add(const std::string& bytes) {
        std::ofstream(path / std::to_string(count++), std::ios::binary) << bytes;
    }

private:
    std::filesystem::path path;
    int count = 0;
};

std::string BehindFirstLine(const std::string& text) {
    const std::size_t end = text.find('\n');
    return end == std::string::npos ? text : text.substr(end + 1);
}

// Our own texture font and script, without the header that the target puts in front.
void AddOwnFonts(const std::filesystem::path& root) {
    const TemporaryFolder folder;
    MSettings settings;
    Settings = &settings;
    settings.GlyphHeight = 9;
    MColourFont font(nullptr);
    for (const char16_t character : {u'A', u'"', u'\u20AC', u'v'}) {
        MPicture picture(5, 9, FormatRGBA8);
        picture.Fill(MColour(1, 2, 3, 255));
        font.AddPictureGlyph(character, picture, 1, -1, false);
        picture.Free();
    }
    font.SetKerning('A', 'v', -2);
    font.Repack();
    font.Save(folder.File("own.sm"));
    font.ExportHtml(folder.File("own.html"), true);
    const std::string text = ToSystem(MTextFile::ReadWholeFile(folder.File("own.sm")));
    Folder textures(root, "fuzz_font_sm");
    for (const char encoding : {'\0', '\1', '\2', '\3'})
        textures.Add(BehindFirstLine(text) + encoding);
    textures.Add(
        "TEX\t\"a b\"\t32\t16\r\nCHA\tA\t1\t1\t9\t9\t-1\t2\r\nCHA\t\"&#34;\"\t60\t30\t9\t9\t0\t0\r\n\3");
    Folder(root, "fuzz_font_js").Add(BehindFirstLine(folder.Read("own.js")));
    Folder(root, "fuzz_font_js")
        .Add("\r\nx['GlyphHeight']=[9];\nx['Baseline']=[1];\nx['CapHeight']=[3];\nx['SpaceWidth']=[5];\n"
             "x['Resolution']=[32,16];\nx['Glyph']=[[65,1,2,3,4,-1,1],[66,0,0,9,9,0,0]];\nx['Kerning']=[[65,66,"
             "-2]];\n");
    std::ofstream(root / "fuzz_font_js" / "own", std::ios::binary) << BehindFirstLine(folder.Read("own.js"));
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    Settings = nullptr;
    Folder(root, "fuzz_settings")
        .Add("FontName\t\"DejaVu "
             "Sans\"\r\nWeight\t700\r\nItalic\tY\r\nColour\t1\t2\t3\r\nGlyphHeight\t99\r\nChar\t65\r\n"
             "Padding\t1\t2\t3\t4\r\nPath1\t/tmp\r\nS65\tY\r\nWindowRect\t1\t2\t900\t700\r\nKeys\ta\tb\r\n"
             "OpticalKerning\tHam\t90\r\nGameFont\tpixi\txml\t2\tpot\t1024\t3\r\n");
}

void AddPhotofonts(const std::filesystem::path& root) {
    Folder photofonts(root, "fuzz_font_phf");
    for (const bombs::Bomb& bomb : bombs::DocumentBombs())
        if (bomb.reader == ".phf") photofonts.Add(bomb.bytes.substr(0, 4000));
    photofonts.Add(
        "<unicode_mapping>\n<map id=\"a\" unc=\"65\"/>\n<map id=\"b\" "
        "unc=\"66\"/>\n</unicode_mapping>\n<kerning>\n"
        "<pair left=\"a\" right=\"b\" x=\"-3\"/>\n</kerning>\n<glyphs>\n<glyph id=\"a\">\n"
        "<shape embedded=\"i\" />\n<bbox x=\"0\" y=\"0\" width=\"4\" height=\"4\"/>\n<base x=\"0\" y=\"3\"/>\n"
        "<delta x=\"5\" y=\"0\"/>\n</glyph>\n</glyphs>\n<image id=\"i\">\nbase64\n\n" +
        bombs::Base64(bombs::FlatPng(4, 4, 8, 6)) + "</image>\n");
}

void AddFaces(const std::filesystem::path& root) {
    Folder faces(root, "fuzz_face");
    fonts::PaintFont paints;
    paints.font.family = "Built Sans";
    faces.Add(paints.font.Build());
    for (fonts::Font font : bombs::OddFaces())
        for (const bool sixteenth : {false, true}) {
            std::string bytes = font.Build();
            if (sixteenth) bytes.resize((bytes.size() + 15) / 16 * 16);
            faces.Add(bytes);
        }
    for (const std::string& font : bombs::SmallFaces())
        faces.Add(font);
    const std::string colr = paints.font.tables.at("COLR");
    const std::string cpal = paints.font.tables.at("CPAL");
    Folder(root, "fuzz_colr").Add(Bytes().U16(static_cast<std::int64_t>(colr.size())).Add(colr).Add(cpal));
    // Each of its glyphs alone as the first, which the target paints.
    std::filesystem::create_directories(root / "fuzz_colr");
    int number = 1;
    for (const std::string& one : paints.alone)
        std::ofstream(root / "fuzz_colr" / std::to_string(number++), std::ios::binary)
            << Bytes().U16(static_cast<std::int64_t>(one.size())).Add(one).Add(cpal);
    const std::string document =
        "<svg xmlns='http://www.w3.org/2000/svg'><g id='glyph1' fill='var(--color0, red)'/></svg>";
    const std::string svg = fonts::SvgTable(document, 1, 1);
    Folder(root, "fuzz_svg").Add(Bytes().U16(static_cast<std::int64_t>(svg.size())).Add(svg).Add(cpal));
    const std::string packed = fonts::SvgTable(bombs::Gzip(document), 1, 3);
    std::ofstream(root / "fuzz_svg" / "packed", std::ios::binary)
        << Bytes().U16(static_cast<std::int64_t>(packed.size())).Add(packed).Add(cpal);
    Folder(root, "fuzz_cutter")
        .Add(std::string("\x20\x10\x06\x01\0\0\0\x3F\0\0\x80\x3F"
                         "A\0\1\0\0\0\1\0\0\0\x18\0\0\0\x09\0\0\0\x09\0\0\0\0",
                         36));
}

} // namespace

void WriteFontSeeds(const std::filesystem::path& root) {
    std::filesystem::create_directories(root / "fuzz_picture_DDS");
    std::ofstream(root / "fuzz_picture_DDS" / "BC7", std::ios::binary)
        << bombs::Dds(32, 32, "DX10", 98, bombs::Noise(32 * 32));
    std::filesystem::create_directories(root / "fuzz_picture_TIFF");
    std::ofstream(root / "fuzz_picture_TIFF" / "inks", std::ios::binary)
        << bombs::Tiff(4, 4, 1, 5, 16, 4, bombs::Noise(4 * 4 * 8));
    // More than is read.
    std::ofstream(root / "fuzz_sniff" / "large", std::ios::binary) << bombs::FlatPng(9000, 9000, 1, 0);
    AddOwnFonts(root);
    AddPhotofonts(root);
    AddFaces(root);
}
