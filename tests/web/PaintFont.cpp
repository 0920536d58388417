// Writes the font that shows every paint of COLR version 1:
//
//     paint_font OUT.ttf
//
// Prints the names of its characters, from U+0100 on, as a JSON list.
#include "platform_text/PaintFont.h"

#include <cstdio>
#include <fstream>

int main(int count, char** arguments) {
    if (count != 2) return 2;
    const fonts::PaintFont paints;
    const std::string bytes = paints.font.Build();
    std::ofstream out(arguments[1], std::ios::binary);
    out << bytes;
    std::printf("[");
    for (std::size_t i = 0; i < paints.names.size(); ++i)
        std::printf("%s\"%s\"", i > 0 ? ", " : "", paints.names[i].c_str());
    std::printf("]\n");
    return out.flush() ? 0 : 1;
}
