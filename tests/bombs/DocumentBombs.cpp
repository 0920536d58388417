#include "bombs/Bombs.h"
#include "formats/WebFont.h"
#include "foundation/MUtf8.h"

#include <array>
#include <sstream>

namespace bombs {

namespace {

std::string Repeated(std::string_view text, std::size_t size) {
    std::string all;
    while (all.size() + text.size() < size)
        all += text;
    return all;
}

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
    for (int amount = 1; text.size() < largestFile - 20'000; ++amount) {
        for (int left = 33; left < 256; ++left) {
            for (int right = 33; right < 256 && text.size() < largestFile - 20'000; ++right) {
                text += "KER\t" + std::string(1, static_cast<char>(left)) + "\t" +
                        std::string(1, static_cast<char>(right)) + "\t" + std::to_string(-amount) + "\r\n";
            }
        }
    }
    return text;
}

// 222 glyphs with boxes of this size, each with the same picture.
std::string Photofont(int width, int height, const std::string& png) {
    std::ostringstream text;
    text << "<unicode_mapping>\n";
    for (int code = 33; code < 256; ++code)
        text << "<map id=\"g" << code << "\" unc=\"" << code << "\"/>\n";
    text << "</unicode_mapping>\n<glyphs>\n";
    for (int code = 33; code < 256; ++code)
        text << "<glyph id=\"g" << code << "\">\n<shape embedded=\"I" << code
             << "\" />\n<bbox x=\"0\" y=\"0\" width=\"" << width << "\" height=\"" << height
             << "\"/>\n<base x=\"0\" y=\"" << height << "\"/>\n<delta x=\"9\" y=\"0\"/>\n</glyph>\n";
    text << "</glyphs>\n";
    const std::string data = Base64(png);
    std::string all = text.str();
    for (int code = 33; code < 256 && all.size() + data.size() + 200 < largestFile; ++code)
        all += "<image id=\"I" + std::to_string(code) + "\">\nbase64\n\n" + data + "</image>\n";
    return all;
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

std::vector<Bomb> DocumentBombs() {
    std::vector<Bomb> all;
    const auto texture = [&](const char* name, std::string text, std::string png, bool sharp = false) {
        all.push_back({.reader = ".sm",
                       .name = name,
                       .file = "f.sm",
                       .bytes = std::move(text),
                       .steps = "--open f.sm --info",
                       .beside = {{"f.png", std::move(png)}},
                       .sharp = sharp});
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
    texture("a megabyte of glyphs", header + Repeated(Glyphs(60, 60), largestFile - 1000), small);
    texture("a megabyte of empty lines", header + Repeated("\n", largestFile - 1000), small);
    texture("a line of a megabyte", header + Repeated("CHA\t\"", largestFile - 1000), small);
    texture("a line of escapes", header + Repeated("<br />", largestFile - 1000), small);
    texture("a megabyte of UTF-16", Utf16(header + Repeated("CHA \"A\" ", largestFile / 2 - 1000)), small);

    const auto script = [&](const char* name, std::string text, std::string png) {
        all.push_back({.reader = ".js",
                       .name = name,
                       .file = "f.js",
                       .bytes = ToSystem(ScriptHeader()) + "\r\n" + std::move(text),
                       .steps = "--open f.js --info",
                       .beside = {{"f.png", std::move(png)}}});
    };
    std::string glyphs = "x['Glyph']=[";
    for (int code = 33; code < 256; ++code)
        glyphs += "[" + std::to_string(code) + ",0,0,540,540,0,0],";
    script("the largest picture, glyphs over all of it", "x['Resolution']=[8192,8192];\n" + glyphs + "];\n",
           FlatPng(8192, 8192, 8, 6));
    script("a megabyte of glyphs",
           "x['Resolution']=[9,9];\nx['Glyph']=[" + Repeated("65,0,0,9,9,0,0,", largestFile - 1000), small);
    script("a megabyte of pairs", "x['Kerning']=[" + Repeated("65,66,-7,", largestFile - 1000), small);
    script("a megabyte of separators", "x['Glyph']=[" + Repeated("[];", largestFile - 1000), small);
    script("a megabyte of keys", Repeated("x['Glyph']=[65,0,0,9,9,0,0]\n", largestFile - 1000), small);

    const auto photofont = [&](const char* name, std::string text, bool sharp = false) {
        all.push_back({.reader = ".phf",
                       .name = name,
                       .file = "f.phf",
                       .bytes = std::move(text),
                       .steps = "--open f.phf --info",
                       .sharp = sharp});
    };
    photofont("222 pictures of 8192 x 4096", Photofont(8192, 4096, FlatPng(8192, 4096, 1, 0)));
    photofont("222 pictures of 550 x 1000", Photofont(550, 1000, FlatPng(550, 1000, 8, 6)), true);
    photofont("222 small pictures in boxes of 4000 x 4000", Photofont(4000, 4000, FlatPng(60, 60, 8, 6)), true);
    std::string many = "<unicode_mapping>\n";
    std::string rest = "</unicode_mapping>\n";
    const std::string picture = Base64(FlatPng(512, 512, 1, 0));
    for (int code = 33; many.size() + rest.size() + picture.size() + 300 < largestFile; ++code) {
        const std::string id = std::to_string(code);
        many += "<map id=\"" + id + "\" unc=\"" + id + "\"/>\n";
        rest += "<glyph id=\"" + id + "\">\n<shape embedded=\"" + id +
                "\" />\n<bbox x=\"0\" y=\"0\" width=\"512\" height=\"512\"/>\n</glyph>\n<image id=\"" + id +
                "\">\nbase64\n\n" + picture + "</image>\n";
    }
    photofont("as many pictures of 512 x 512 as it holds", many + rest, true);
    photofont("222 small pictures in boxes of 600 x 600", Photofont(600, 600, FlatPng(60, 60, 8, 6)));
    photofont("a megabyte of mappings",
              "<unicode_mapping>\n" + Repeated("<map id=\"a\" unc=\"65\"/>\n", largestFile - 1000));
    photofont("a megabyte of glyphs", "<unicode_mapping>\n<map id=\"a\" unc=\"65\"/>\n</unicode_mapping>\n" +
                                          Repeated("<glyph id=\"a\">\n</glyph>\n", largestFile - 1000));
    photofont("a megabyte of data", "<image id=\"a\">\nbase64\n" + Repeated("AAAAAAAA\n", largestFile - 1000));
    photofont("a line of a megabyte", Repeated("<glyph id=\"a\" ", largestFile - 1000));

    const auto names = [&](const char* name, std::string text) {
        all.push_back(
            {.reader = "names",
             .name = name,
             .file = "names.txt",
             .bytes = std::move(text),
             .steps =
                 "--family 'DejaVu Sans' --height 16 --select a-z --generate --names names.txt --cubes c.png"});
    };
    names("a megabyte of one letter", Repeated("a\n", largestFile - 1000));
    names("a name of a megabyte", Repeated("abcdefghij", largestFile - 1000));
    std::string words;
    for (int i = 0; words.size() < largestFile - 1000; ++i) {
        for (int number = i; number > 0; number /= 26)
            words += static_cast<char>('a' + number % 26);
        words += '\n';
    }
    names("a megabyte of different names", words);

    const auto settings = [&](const char* name, std::string text) {
        all.push_back({.reader = "settings",
                       .name = name,
                       .file = "Lettrino.txt",
                       .bytes = std::move(text),
                       .steps = {}});
    };
    settings("a megabyte of lines", Repeated("S65\tY\n", largestFile - 1000));
    settings("a line of a megabyte", "Keys\t" + Repeated("\"a\" ", largestFile - 1000));
    settings("a path of a megabyte", "Path1\t" + Repeated("a/", largestFile - 1000));
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
