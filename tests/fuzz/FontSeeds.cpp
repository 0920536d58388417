#include "TemporaryFolder.h"
#include "bombs/Bombs.h"
#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/MTextFile.h"
#include "fuzz/Seeds.h"
#include "imaging/Pictures.h"
#include "platform_text/PaintFont.h"

#include <cstdlib>

namespace {

using fonts::Bytes;

std::string BehindFirstLine(const std::string& text) {
    const std::size_t end = text.find('\n');
    return end == std::string::npos ? text : text.substr(end + 1);
}

// Our own texture font and script, without the header that the target puts in front, and our settings.
void AddOwnFiles() {
    const TemporaryFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    MSettings settings;
    Settings = &settings;
    settings.GlyphHeight = 9;
    MColourFont font(nullptr);
    for (const char16_t character : {u'A', u'"', u'\u20AC', u'v'})
        font.AddPictureGlyph(character, FilledPicture(5, 9, MColour(1, 2, 3, 255)), 1, -1, false);
    font.SetKerning('A', 'v', -2);
    font.Repack();
    font.Save(folder.File("own.sm"));
    font.ExportHtml(folder.File("own.html"), true);
    const std::string text = ToSystem(MTextFile::ReadWholeFile(folder.File("own.sm")));
    for (const char encoding : {'\0', '\1', '\2', '\3'})
        AddSeed("font_sm", BehindFirstLine(text) + encoding);
    AddSeed("font_js", BehindFirstLine(folder.Read("own.js")));
    settings.Save();
    const std::string own = ToSystem(MTextFile::ReadWholeFile(MSettings::SettingsFilePath()));
    AddSeed("settings",
            own + "Keys\ta\tb\r\nOpticalKerning\tHam\t90\r\nGameFont\tpixi\txml\t2\tpot\t1024\t3\r\n");
    Settings = nullptr;
}

// One table with the palette behind it, as the targets of tables take them.
void AddTables(const char* target, const std::string& table, const std::string& palette) {
    AddSeed(target, Bytes().U16(std::ssize(table)).Add(table).Add(palette));
}

void AddFaces() {
    fonts::PaintFont paints;
    paints.font.family = "Built Sans";
    AddSeed("face", paints.font.Build());
    for (const fonts::Font& font : bombs::OddFaces()) {
        std::string bytes = font.Build();
        AddSeed("face", bytes);
        bytes.resize((bytes.size() + 15) / 16 * 16); // of which the target does more
        AddSeed("face", bytes);
    }
    for (const std::string& font : bombs::SmallFaces())
        AddSeed("face", font);
    const std::string cpal = paints.font.tables.at("CPAL");
    AddTables("colr", paints.font.tables.at("COLR"), cpal);
    // Each of its glyphs alone as the first, which the target paints.
    for (const std::string& one : paints.alone)
        AddTables("colr", one, cpal);
    const std::string document =
        "<svg xmlns='http://www.w3.org/2000/svg'><g id='glyph1' fill='var(--color0, red)'/></svg>";
    AddTables("svg", fonts::SvgTable({document}, 1, 1), cpal);
    AddTables("svg", fonts::SvgTable({bombs::Gzip(document)}, 1, 3), cpal);
    AddSeed("cutter", std::string("\x20\x10\x06\x01\0\0\0\x3F\0\0\x80\x3F"
                                  "A\0\1\0\0\0\1\0\0\0\x18\0\0\0\x09\0\0\0\x09\0\0\0\0",
                                  36));
}

} // namespace

void AddFontSeeds() {
    AddSeed("picture_DDS", bombs::Dds(32, 32, "DX10", 98, bombs::Noise(32 * 32)));
    AddSeed("picture_TIFF", bombs::Tiff(4, 4, 1, 5, 16, 4, bombs::Noise(4 * 4 * 8)));
    AddSeed("sniff", bombs::FlatPng(9000, 9000, 1, 0)); // more than is read
    AddOwnFiles();
    AddSeed("font_phf", bombs::Photofont(4, 4, bombs::FlatPng(4, 4, 8, 6), 35));
    AddFaces();
}
