#include "bombs/Bombs.h"

#include <sstream>

namespace bombs {

namespace {

std::string Head(int lineHeight, int width, int height, int pages) {
    std::ostringstream text;
    text << "info face=\"Built\" size=16\ncommon lineHeight=" << lineHeight << " base=12 scaleW=" << width
         << " scaleH=" << height << " pages=" << pages << " packed=0\n";
    for (int page = 0; page < pages; ++page)
        text << "page id=" << page << " file=\"f.png\"\n";
    return text.str();
}

std::string Characters(int side, int advance, int pages) {
    std::ostringstream text;
    for (int code = 33; code < 256; ++code)
        text << "char id=" << code << " x=0 y=0 width=" << side << " height=" << side
             << " xoffset=0 yoffset=0 xadvance=" << advance << " page=" << code % pages << " chnl=15\n";
    return text.str();
}

} // namespace

std::vector<Bomb> GameBombs() {
    std::vector<Bomb> all;
    const auto add = [&](const char* name, std::string text, std::string png, bool sharp = false) {
        all.push_back({".fnt",
                       name,
                       "f.fnt",
                       std::move(text),
                       "--open f.fnt --info",
                       {{"f.png", std::move(png)}},
                       sharp});
    };
    const std::string small = FlatPng(64, 64, 8, 6);
    add("the largest picture, glyphs over all of it", Head(380, 8192, 4096, 1) + Characters(380, 380, 1),
        FlatPng(8192, 4096, 8, 6));
    add("223 pages, all of them the largest picture", Head(16, 8192, 4096, 223) + Characters(16, 16, 223),
        FlatPng(8192, 4096, 8, 6, 990'000), true);
    add("223 pages of 512 x 512", Head(512, 512, 512, 223) + Characters(512, 512, 223),
        FlatPng(512, 512, 8, 6));
    add("a line of 16384 rows", Head(16384, 64, 64, 1) + Characters(64, 64, 1), small);
    add("empty characters, wide and high", Head(16384, 64, 64, 1) + Characters(0, 400, 1), small, true);
    add("cells of all pixels that they may have", Head(540, 8192, 4096, 1) + Characters(540, 540, 1),
        FlatPng(8192, 4096, 8, 6), true);
    const std::string font = Head(64, 64, 64, 1) + Characters(8, 8, 1);
    add("a megabyte of pairs", Repeated(font, "kerning first=65 second=66 amount=-1\n"), small);
    add("a megabyte of characters", Repeated(font, "char id=65 width=8 height=8 page=0\n"), small);
    add("a megabyte of pages", Repeated(font, "page id=1 file=\"f.png\"\n"), small);
    add("a line of a megabyte", Repeated(font + "char ", "id=65 "), small);
    add("XML in a megabyte of levels", Repeated("<font>", "<a>"), small);
    add("XML of a megabyte of attributes", Repeated("<font><char ", "id='1' ", "/></font>"), small);
    add("XML of a megabyte of entities", Repeated("<font><char id='", "&#65;", "'/></font>"), small);
    add("JSON in a megabyte of levels", Repeated("{\"pages\":", "["), small);
    add("JSON of a megabyte of objects", Repeated("{\"chars\":[{}", ",{}", "]}"), small, true);
    const std::string pairs = "\5" + Little({{40, 4}, {65, 4}, {66, 4}, {0xFFFF, 2}}) + std::string(30, '\0');
    add("binary, of many lists of pairs", Repeated("BMF\3", pairs), small);
    return all;
}

} // namespace bombs
