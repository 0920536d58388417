// Draws characters of a font in colour, each in a square cell of one row after another, for comparison with a
// browser:
//
//     colour_sheet FONTFILE FAMILY SIZE CELL OUT.png CODE...
//
// SIZE is the em in pixels, CELL the side of a cell, 16 to a row; codes are decimal. The background is grey,
// the text white. Prints where the pen stands in each cell, as JSON: {"x": .., "y": ..}.
#include "foundation/MString.h"
#include "glyphs/MDirect2DSurface.h"
#include "platform/text/MOpenFace.h"
#include "platform/text/MSystemFonts.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int count, char** arguments) {
    if (count < 7) return 2;
    const MString file = FromSystem(arguments[1]);
    const MString family = FromSystem(arguments[2]);
    const int size = std::atoi(arguments[3]);
    const int cell = std::atoi(arguments[4]);
    if (!AddFontFile(file) || !IsFamilyInstalled(family)) {
        std::fprintf(stderr, "%s is not a font of the family %s\n", arguments[1], arguments[2]);
        return 1;
    }
    std::vector<char16_t> codes;
    for (int i = 6; i < count; ++i)
        codes.push_back(static_cast<char16_t>(std::atoi(arguments[i])));

    const auto rows = static_cast<std::int32_t>((codes.size() + 15) / 16);
    MSurfaceBitmap bitmap(16 * cell, rows * cell);
    MDirect2DSurface surface(bitmap);
    if (!surface.Begin()) return 1;
    surface.Clear(MColour(128, 128, 128));
    const int margin = cell / 6;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const auto left = static_cast<std::int32_t>(i % 16) * cell;
        const auto top = static_cast<std::int32_t>(i / 16) * cell;
        surface.PushClip({left, top, left + cell, top + cell});
        surface.DrawText({left + margin, top + margin, left + cell, top + cell},
                         MString(std::u16string_view(&codes[i], 1)), family, static_cast<float>(size), 400,
                         false, MColour(255, 255, 255), -1, -1, true, false, false, false);
        surface.PopClip();
    }
    surface.End();
    MPicture picture = bitmap.ToPicture();
    const bool saved = picture.Save(FromSystem(arguments[5]));
    picture.Free();

    const MOpenFace face(*MatchFont(family, 400, false));
    const int ascent = (2 * size * face.cellAscent + face.unitsPerEm) / (2 * face.unitsPerEm);
    std::printf("{\"x\": %d, \"y\": %d}\n", margin, margin + ascent);
    return saved ? 0 : 1;
}
