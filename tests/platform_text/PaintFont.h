// A font whose characters show every paint of COLR version 1, one each, from U+0100 on.
#pragma once

#include "platform_text/PaintBuilder.h"

namespace fonts {

struct PaintFont {
    Font font;
    std::vector<std::string> names; // of the characters, from U+0100 on
    std::vector<std::string> alone; // the table COLR of each of them as glyph 0

    PaintFont() {
        font.family = "Every Paint";
        const int box = font.Add({{Box(100, 0, 900, 800)}});
        const int circle = font.Add({{Circle(500, 400, 350)}});
        const int small = font.Add({{Box(300, 200, 600, 500)}});
        const int ring = font.Add({{Circle(420, 480, 300), Box(700, 50, 950, 300)}});
        tables.palette = {{230, 40, 40, 255},  {30, 160, 60, 255}, {40, 70, 220, 255},
                          {250, 210, 40, 255}, {20, 20, 20, 255},  {240, 240, 240, 128}};
        const int whole = font.Add({});
        tables.glyphs[whole] =
            Outline(circle, Linear({150, 50, 850, 750, 150, 750}, ColourLine(0, {{0, 2}, {1, 3}})));
        tables.layers = {Outline(box, Solid(2)), Outline(circle, Solid(3, 0.75)),
                         Outline(small, Solid(foreground))};

        Add("solid", Outline(box, Solid(0)));
        Add("transparent solid", Outline(circle, Solid(1, 0.4)));
        Add("transparent palette entry", Outline(circle, Solid(5, 0.5)));
        Add("foreground", Outline(ring, Solid(foreground, 0.6)));
        Add("layers", Layers(0, 3));
        Add("glyph in glyph", Outline(circle, Outline(ring, Solid(0))));
        Add("clipped layers", Outline(circle, Layers(0, 3)));
        Add("colour glyph", ColrGlyph(whole));
        Add("moved colour glyph", Transform(14, {}, {120, -60}, ColrGlyph(whole)));
        Add("clip box", Outline(box, Solid(2)), std::array{200, 100, 700, 650});

        const std::vector<Stop> three{{0, 0}, {0.3, 3}, {1, 2}};
        const std::vector<Stop> outside{{-0.5, 0}, {0.5, 3, 0.5}, {1.5, 2}};
        const std::vector<Stop> inside{{0.25, 0}, {0.6, 1}, {0.75, 2}};
        for (const int extend : {0, 1, 2}) {
            const std::string how = extend == 0 ? " pad" : extend == 1 ? " repeat" : " reflect";
            Add("linear" + how,
                Outline(box, Linear({300, 400, 600, 400, 300, 700}, ColourLine(extend, three))));
            Add("slanted linear" + how,
                Outline(box, Linear({300, 300, 500, 500, 350, 700}, ColourLine(extend, outside))));
            Add("inner linear" + how,
                Outline(box, Linear({200, 100, 800, 600, 800, -100}, ColourLine(extend, inside))));
            Add("radial" + how, Outline(box, Radial({500, 400, 50, 500, 400, 250}, ColourLine(extend, three))));
            Add("eccentric radial" + how,
                Outline(box, Radial({400, 350, 40, 520, 420, 260}, ColourLine(extend, inside))));
            Add("cone" + how, Outline(box, Radial({300, 300, 60, 700, 500, 180}, ColourLine(extend, three))));
            Add("shrinking radial" + how,
                Outline(box, Radial({500, 400, 260, 500, 400, 60}, ColourLine(extend, three))));
            Add("radial below 0" + how, Outline(box, Radial({500, 400, 100, 500, 400, 250},
                                                            ColourLine(extend, {{-1, 0}, {0, 3}, {1, 2}}))));
            Add("sweep" + how, Outline(box, Sweep(500, 400, 0, 360, ColourLine(extend, three))));
            Add("part sweep" + how, Outline(box, Sweep(500, 400, 60, 150, ColourLine(extend, three))));
            Add("backward sweep" + how, Outline(box, Sweep(450, 350, 200, 80, ColourLine(extend, inside))));
        }
        Add("one stop", Outline(box, Linear({300, 400, 600, 400, 300, 700}, ColourLine(0, {{0.5, 1}}))));
        Add("stops in any order", Outline(box, Linear({200, 0, 800, 0, 200, 800},
                                                      ColourLine(0, {{0.9, 0}, {0.1, 1}, {0.5, 3, 0.5}}))));
        const Bytes hardFirst = ColourLine(0, {{0.5, 0}, {0.5, 2}, {1, 2}});
        Add("hard first stop", Outline(box, Linear({300, 0, 700, 0, 300, 500}, hardFirst)));
        Add("hard first stop of a sweep", Outline(box, Sweep(500, 0, 180, 0, hardFirst)));
        Add("hard stops", Outline(box, Linear({200, 0, 800, 0, 200, 800},
                                              ColourLine(0, {{0, 0}, {0.5, 0}, {0.5, 2}, {1, 2}}))));
        Add("gradient everywhere in a glyph",
            Outline(circle,
                    Transform(24, {0.25}, {}, Linear({300, 400, 600, 400, 300, 700}, ColourLine(0, three)))));

        const Bytes shape = Outline(ring, Linear({150, 50, 850, 750, 150, 750}, ColourLine(0, three)));
        Add("affine", Affine({0.8, 0.2, -0.3, 0.7, 150, 100}, shape));
        Add("translate", Transform(14, {}, {100, 80}, shape));
        Add("variable translate", Transform(15, {}, {-80, 120}, shape));
        Add("scale", Transform(16, {0.5, 0.8}, {}, shape));
        Add("scale around", Transform(18, {0.5, 1.2}, {500, 400}, shape));
        Add("uniform scale", Transform(20, {0.6}, {}, shape));
        Add("uniform scale around", Transform(22, {0.6}, {500, 400}, shape));
        Add("rotate", Transform(24, {0.1}, {}, shape));
        Add("rotate around", Transform(26, {0.25}, {500, 400}, shape));
        Add("skew", Transform(28, {0.1, 0}, {}, shape));
        Add("skew both around", Transform(30, {-0.08, 0.06}, {500, 400}, shape));
        Add("variable skew around", Transform(31, {0.08, 0}, {500, 400}, shape));
        Add("mirror", Transform(18, {-1, 1}, {500, 0}, shape));

        const Bytes source = Outline(
            circle, Linear({150, 400, 850, 400, 150, 800}, ColourLine(0, {{0, 0, 0.2}, {0.5, 3}, {1, 2}})));
        const Bytes backdrop =
            Outline(ring, Linear({500, 0, 500, 800, 0, 0}, ColourLine(0, {{0, 1}, {0.5, 4}, {1, 0, 0.5}})));
        for (int mode = 0; mode < 28; ++mode)
            Add("composite " + std::to_string(mode), Composite(mode, source, backdrop));
        Add("composite in a glyph",
            Outline(box, Composite(5, source, Composite(23, backdrop, Outline(box, Solid(3))))));

        font.tables["COLR"] = tables.Colr();
        font.tables["CPAL"] = tables.Cpal();
    }

private:
    ColourTables tables;
    int firstCharacter = 6; // its glyph

    void Add(const std::string& name, const Bytes& paint) {
        // An outline of its own gives the glyph its width; the paints don't use it.
        const int glyph = font.Add({{Box(100, 0, 900, 800)}}, static_cast<char16_t>(0x100 + names.size()));
        tables.glyphs[glyph] = paint;
        names.push_back(name);
        ColourTables one = tables;
        std::erase_if(one.glyphs, [&](const auto& each) { return each.first >= firstCharacter; });
        one.glyphs[0] = paint;
        alone.push_back(one.Colr());
    }
    void Add(const std::string& name, const Bytes& paint, const std::array<int, 4>& box) {
        Add(name, paint);
        tables.boxes[static_cast<int>(font.glyphs.size()) - 1] = box;
    }
};

} // namespace fonts
