#include "bombs/Bombs.h"
#include "formats/WebFont.h"
#include "foundation/MUtf8.h"

#include <sstream>

namespace bombs {

namespace {

const std::string header = "Showmarquee TextureFont 1.0\r\n";

std::string Glyphs(int width, int height) {
    std::ostringstream records;
    for (int code = 33; code < 256; ++code)
        records << "CHA\t" << static_cast<char>(code) << "\t" << code % 7 << "\t" << code % 5 << "\t" << width
                << "\t" << height << "\t0\t0\r\n";
    return records.str();
}

std::string Texture(int width, int height, int glyphWidth, int glyphHeight) {
    std::ostringstream text;
    text << header << "FSZ\t512\t100\t300\r\nTEX\tf.png\t" << width << "\t" << height << "\r\n"
         << Glyphs(glyphWidth, glyphHeight) << "SPA\t100\r\n";
    return text.str();
}

// Every pair once, then the same again.
std::string Pairs() {
    std::string text;
    for (int i = 0; text.size() < largestFile - 20'000; ++i) {
        const auto character = [](int number) { return std::string(1, static_cast<char>(33 + number % 223)); };
        text += "KER\t" + character(i / 223) + "\t" + character(i) + "\t" + std::to_string(-1 - i / 223 / 223) +
                "\r\n";
    }
    return text;
}

std::string Utf16(const std::string& text) {
    std::string units = "\xFF\xFE";
    for (const char c : text) {
        units += c;
        units += '\0';
    }
    return units;
}

} // namespace

std::string Photofont(int width, int height, const std::string& png, int behind) {
    std::ostringstream text;
    text << "<unicode_mapping>\n";
    for (int code = 33; code < behind; ++code)
        text << "<map id=\"g" << code << "\" unc=\"" << code << "\"/>\n";
    text
        << "</unicode_mapping>\n<kerning>\n<pair left=\"g33\" right=\"g34\" x=\"-3\"/>\n</kerning>\n<glyphs>\n";
    for (int code = 33; code < behind; ++code)
        text << "<glyph id=\"g" << code << "\">\n<shape embedded=\"I" << code
             << "\" />\n<bbox x=\"0\" y=\"0\" width=\"" << width << "\" height=\"" << height
             << "\"/>\n<base x=\"0\" y=\"" << height << "\"/>\n<delta x=\"9\" y=\"0\"/>\n</glyph>\n";
    text << "</glyphs>\n";
    const std::string data = Base64(png);
    std::string all = text.str();
    for (int code = 33; code < behind && all.size() + data.size() + 200 < largestFile; ++code)
        all += "<image id=\"I" + std::to_string(code) + "\">\nbase64\n\n" + data + "</image>\n";
    return all;
}

std::vector<Bomb> DocumentBombs() {
    std::vector<Bomb> all;
    const auto texture = [&](const char* name, std::string text, std::string png, bool sharp = false) {
        all.push_back(
            {".sm", name, "f.sm", std::move(text), "--open f.sm --info", {{"f.png", std::move(png)}}, sharp});
    };
    const std::string small = FlatPng(64, 64, 8, 6);
    texture("the largest picture, glyphs over all of it", Texture(8192, 8192, 540, 540),
            FlatPng(8192, 8192, 8, 6), true);
    texture("the largest picture in 16 bits", Texture(8192, 4096, 385, 385), FlatPng(8192, 4096, 16, 6), true);
    texture("the largest picture, interlaced", Texture(8192, 4096, 385, 385),
            FlatPng(8192, 4096, 8, 6, 0, true));
    texture("the largest picture, glyphs of one row", Texture(8192, 8192, 280'000, 1),
            FlatPng(8192, 8192, 8, 6));
    texture("glyphs that fill the packed picture badly", Texture(8192, 8192, 8200, 36),
            FlatPng(8192, 8192, 8, 6), true);
    texture("a picture of 16384 x 8192", Texture(16384, 8192, 700, 700), FlatPng(16384, 8192, 8, 6));
    texture("a small picture told to be smaller, so that its glyphs grow",
            header + "FSZ\t9\t1\t1\r\nTEX\tf.png\t1\t1\r\n" + Glyphs(60, 60), small, true);
    texture("claimed heights of billions", Texture(64, 64, 3, 2'000'000'000), small);
    texture("claimed widths of billions", Texture(64, 64, 2'000'000'000, 1), small);
    texture("glyphs of many pixels that it does not have", Texture(64, 64, 400, 400), small);
    texture("glyphs of many pixels, of a picture of one", Texture(1, 1, 400, 400), FlatPng(1, 1, 16, 6));
    texture("a megabyte of pairs", header + Glyphs(8, 8) + Pairs(), small);
    texture("a megabyte of glyphs", header + Repeated("", Glyphs(60, 60)), small);
    texture("a megabyte of empty lines", Repeated(header, "\n"), small);
    texture("a line of a megabyte", Repeated(header, "CHA\t\""), small);
    texture("a line of escapes", Repeated(header, "<br />"), small);
    texture("a megabyte of UTF-16", Utf16(Repeated(header, "CHA \"A\" ").substr(0, largestFile / 2 - 1000)),
            small);

    const std::string scriptHeader = ToSystem(ScriptHeader()) + "\r\n";
    const auto script = [&](const char* name, const std::string& text, std::string png) {
        all.push_back(
            {".js", name, "f.js", scriptHeader + text, "--open f.js --info", {{"f.png", std::move(png)}}});
    };
    std::string glyphs = "x['Glyph']=[";
    for (int code = 33; code < 256; ++code)
        glyphs += "[" + std::to_string(code) + ",0,0,540,540,0,0],";
    script("the largest picture, glyphs over all of it", "x['Resolution']=[8192,8192];\n" + glyphs + "];\n",
           FlatPng(8192, 8192, 8, 6));
    script("a megabyte of glyphs", Repeated("x['Resolution']=[9,9];\nx['Glyph']=[", "65,0,0,9,9,0,0,"), small);
    script("a megabyte of pairs", Repeated("x['Kerning']=[", "65,66,-7,"), small);
    script("a megabyte of separators", Repeated("x['Glyph']=[", "[];"), small);
    script("a megabyte of keys", Repeated("", "x['Glyph']=[65,0,0,9,9,0,0]\n"), small);

    const auto photofont = [&](const char* name, std::string text, bool sharp = false) {
        all.push_back({".phf", name, "f.phf", std::move(text), "--open f.phf --info", {}, sharp});
    };
    photofont("222 pictures of 8192 x 4096", Photofont(8192, 4096, FlatPng(8192, 4096, 1, 0)));
    photofont("222 pictures of 550 x 1000", Photofont(550, 1000, FlatPng(550, 1000, 8, 6)), true);
    photofont("222 small pictures in boxes of 4000 x 4000", Photofont(4000, 4000, FlatPng(60, 60, 8, 6)), true);
    photofont("as many pictures of 512 x 512 as it holds", Photofont(512, 512, FlatPng(512, 512, 1, 0), 2500),
              true);
    photofont("222 small pictures in boxes of 600 x 600", Photofont(600, 600, FlatPng(60, 60, 8, 6)));
    photofont("a megabyte of mappings", Repeated("<unicode_mapping>\n", "<map id=\"a\" unc=\"65\"/>\n"));
    photofont("a megabyte of glyphs",
              Repeated("<unicode_mapping>\n<map id=\"a\" unc=\"65\"/>\n</unicode_mapping>\n",
                       "<glyph id=\"a\">\n</glyph>\n"));
    photofont("a megabyte of data", Repeated("<image id=\"a\">\nbase64\n", "AAAAAAAA\n"));
    photofont("a line of a megabyte", Repeated("", "<glyph id=\"a\" "));

    const std::string cubes =
        "--family 'DejaVu Sans' --height 16 --select A-Z --generate --names names.txt --cubes c.png";
    const auto names = [&](const char* name, std::string text) {
        all.push_back({"names", name, "names.txt", std::move(text), cubes});
    };
    names("a megabyte of one letter", Repeated("", "a\n"));
    names("a name of a megabyte", Repeated("", "abcdefghij"));
    std::string words;
    for (int i = 0; words.size() < largestFile - 1000; words += '\n', ++i)
        for (int number = i; number > 0; number /= 26)
            words += static_cast<char>('a' + number % 26);
    names("a megabyte of different names", words);

    return all;
}

std::vector<Bomb> AllBombs() {
    std::vector<Bomb> all = PictureBombs();
    for (auto* const more : {DocumentBombs, GameBombs, FaceBombs, ColourBombs})
        for (Bomb& bomb : more())
            all.push_back(std::move(bomb));
    return all;
}

} // namespace bombs
