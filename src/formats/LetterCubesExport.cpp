// Printable letter cubes: one picture for each cube, the net that folds to it, with a letter on each face.

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/ExportFiles.h"
#include "formats/LetterCubes.h"
#include "foundation/MDebug.h"
#include "foundation/MNumbers.h"
#include "foundation/Product.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <vector>

namespace {

MString Text(char16_t unit) {
    return MString(std::u16string_view(&unit, 1));
}

MString Text(std::size_t number) {
    return MString(static_cast<std::int32_t>(number));
}

void ShowError(const MColourFont& font, const MString& text) {
    Desktop::ShowMessage(font.Owner, text, ProductName, Desktop::Buttons::Ok, Desktop::Icon::Error);
}

// The sizes of a net, in pixels: a cross of six faces with flaps around it.
struct NetSize {
    std::int64_t edge;   // of a face
    std::int64_t margin; // around the cross; as wide as the flaps are high

    explicit NetSize(const MColourFont& font)
        : edge(std::max(font.MaxGlyphWidth(), font.MaxGlyphHeight())),
          margin(ToInteger(static_cast<double>(edge) * 0.1)) {}

    std::int64_t Width() const { return 4 * edge + 3 * margin; }
    std::int64_t Height() const { return 3 * edge + 2 * margin; }
};

struct Point {
    std::int64_t x;
    std::int64_t y;
};

class NetPainter {
public:
    NetPainter(const MColourFont& letters, MPicture& target, const NetSize& net)
        : font(letters), picture(target), w(net.edge), t(net.margin), background(Settings->BackgroundColour),
          line(MColour::Lerp(background, MColour(0, 0, 0), 0.5F)) {}

    void Paint(const MLetterCubes::Cube& cube) {
        picture.Fill(background);
        // A row of four faces, with one above and one below the second.
        const std::array<Point, 6> cells{{{t, w + t},
                                          {w + t, w + t},
                                          {2 * w + t, w + t},
                                          {3 * w + t, w + t},
                                          {w + t, t},
                                          {w + t, 2 * w + t}}};
        for (std::size_t face = 0; face < cube.size(); ++face)
            PaintFace(cube[face], cells[face]);
        PaintEdges();
        PaintFlaps();
    }

private:
    const MColourFont& font;
    MPicture& picture;
    std::int64_t w;
    std::int64_t t;
    MColour background;
    MColour line;

    static std::uint8_t Blend(std::uint8_t source, float alpha, std::uint8_t ground) {
        return static_cast<std::uint8_t>(
            ToInteger(static_cast<float>(source) * alpha + static_cast<float>(ground) * (1.0F - alpha)));
    }

    // The letter stands upright in the middle of its cell, whichever the face.
    void PaintFace(char16_t letter, const Point& cell) {
        const MGlyph* const glyph = font.GetGlyph(letter);
        if (!glyph || glyph->Width < 1 || glyph->Height < 1) return;
        const std::int64_t dx = (w - glyph->Width) / 2;
        const std::int64_t dy = (w - glyph->Height) / 2;
        for (std::int64_t j = 0; j < w; ++j) {
            std::uint8_t* pixel =
                picture.PixelAddress(static_cast<std::int32_t>(cell.x), static_cast<std::int32_t>(cell.y + j));
            for (std::int64_t i = 0; i < w; ++i, pixel += 3) {
                const std::int64_t x = i - dx;
                const std::int64_t y = j - dy;
                const bool inside = x >= 0 && x < glyph->Width && y >= 0 && y < glyph->Height;
                if (!inside) continue;
                const MColour colour =
                    Blended(glyph->GetPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)));
                pixel[0] = colour.b;
                pixel[1] = colour.g;
                pixel[2] = colour.r;
            }
        }
    }

    MColour Blended(const MColour& source) const {
        const auto alpha = static_cast<float>(source.a / 255.0);
        return {Blend(source.r, alpha, background.r), Blend(source.g, alpha, background.g),
                Blend(source.b, alpha, background.b)};
    }

    void Line(const Point& from, const Point& to) {
        picture.DrawLine(static_cast<std::int32_t>(from.x), static_cast<std::int32_t>(from.y),
                         static_cast<std::int32_t>(to.x), static_cast<std::int32_t>(to.y), line);
    }

    void PaintEdges() {
        const auto x = [&](std::int64_t n) { return (n - 1) * w + t; };
        const auto y = x;
        Line({x(1), y(2)}, {x(1), y(3)});
        Line({x(2), y(1)}, {x(3), y(1)});
        Line({x(2), y(4)}, {x(3), y(4)});
        Line({x(1), y(2)}, {x(5), y(2)});
        Line({x(1), y(3)}, {x(5), y(3)});
        Line({x(2), y(1)}, {x(2), y(4)});
        Line({x(3), y(1)}, {x(3), y(4)});
        Line({x(4), y(2)}, {x(4), y(3)});
        Line({x(5), y(2)}, {x(5), y(3)});
    }

    // Trapezoids as high as the margin, their outer edge drawn in by as much on each side: above and below the
    // three faces of the row that carry no other, and one at its right end.
    void PaintFlaps() {
        const std::int64_t y2 = w + t;
        const std::int64_t y3 = 2 * w + t;
        for (const std::int64_t k : {0, 2, 3}) {
            const std::int64_t x = 2 * t + k * w;
            const std::int64_t inner = x + w - 2 * t;
            for (const auto& [foot, top] : {std::pair(y2, w), std::pair(y3, 2 * w + 2 * t)}) {
                Line({x - t, foot}, {x, top});
                Line({x, top}, {inner, top});
                Line({inner, top}, {x + w - t, foot});
            }
        }
        const std::int64_t x5 = 4 * w + t;
        const std::int64_t outer = 4 * w + 2 * t;
        Line({x5, y2}, {outer, w + 2 * t});
        Line({outer, w + 2 * t}, {outer, 2 * w});
        Line({x5, y3}, {outer, 2 * w});
    }
};

// The names in capitals.
std::vector<MString> Names() {
    std::vector<MString> names = MLetterCubes::ReadNames(Settings->LetterCubesNames);
    for (MString& name : names)
        name.ToUpper();
    return names;
}

struct MissingLetter {
    MString name;
    char16_t letter;
};

std::optional<MissingLetter> FindMissingLetter(const MColourFont& font, const std::vector<MString>& names) {
    for (const MString& name : names) {
        for (const char16_t letter : name.View()) {
            if (!font.GetGlyph(letter)) return MissingLetter{name, letter};
        }
    }
    return std::nullopt;
}

bool HasAllCapitals(const MColourFont& font) {
    for (char16_t capital = u'A'; capital <= u'Z'; ++capital) {
        if (!font.GetGlyph(capital)) return false;
    }
    return true;
}

// A literal cut: a folder with a dot in its name ends the path there.
MString CubePath(MString path, std::size_t index) {
    path.KeepBefore(".");
    return path + Text(index + 1) + ".png";
}

void TellDebugger(const MLetterCubes& result) {
    for (std::size_t i = 0; i < result.names.size(); ++i) {
        DebugOutput((Text(i + 1) + " " + result.names[i] + "\n").View());
    }
    MString unused = "Not used: ";
    for (const char16_t letter : result.UnusedCapitals())
        unused += Text(letter) + " ";
    DebugOutput((unused + "\n").View());
    for (std::size_t i = 0; i < result.cubes.size(); ++i) {
        MString cube = Text(i + 1) + " ";
        for (const char16_t letter : result.cubes[i])
            cube += letter;
        DebugOutput((cube + "\n").View());
    }
}

MString Statistics(const MLetterCubes& result, const NetSize& net) {
    std::int32_t shortest = 1000;
    std::int32_t longest = 0;
    for (const MString& name : result.names) {
        shortest = std::min(shortest, name.length);
        longest = std::max(longest, name.length);
    }
    return "Number of names:\t" + Text(result.names.size()) + "\nShortest name:\t" + MString(shortest) +
           " letters\nLongest name:\t" + MString(longest) + " letters\nRequired cubes:\t" +
           Text(result.cubes.size()) + "\nPrint resolution:\t" +
           MString(static_cast<std::int32_t>(net.Width())) + " x " +
           MString(static_cast<std::int32_t>(net.Height())) + " pixels\n";
}

} // namespace

std::vector<MString> LetterCubePaths(const MColourFont& font, const MString& path) {
    const std::vector<MString> names = Names();
    std::vector<MString> paths;
    if (names.empty() || !HasAllCapitals(font) || FindMissingLetter(font, names)) return paths;
    const std::size_t count = MLetterCubes(names).cubes.size();
    for (std::size_t i = 0; i < count; ++i)
        paths.push_back(CubePath(path, i));
    return paths;
}

bool MColourFont::ExportLetterCubes(const MString& path, MWriteFailures* failures) {
    if (!HasAllCapitals(*this)) {
        ShowError(*this, "Make sure your font features all all upper case characters.");
        return false;
    }
    const std::vector<MString> names = Names();
    if (const auto missing = FindMissingLetter(*this, names)) {
        ShowError(*this, "I can't create letter cubes cut-outs because the name \"" + missing->name +
                             "\" is using the letter " + Text(missing->letter) +
                             ", which is not present in this alphabet.");
        return false;
    }
    if (names.empty()) return false;
    const MLetterCubes result(names);
    TellDebugger(result);

    const NetSize net(*this);
    const MString question = Statistics(result, net) + "\nWould you like to create the cut-outs?";
    if (Desktop::ShowMessage(Owner, question, ProductName, Desktop::Buttons::YesNo, Desktop::Icon::Question) !=
        Desktop::Answer::Yes) {
        return false;
    }
    if (net.Width() > std::numeric_limits<std::int32_t>::max()) return false;
    MPicture picture(static_cast<std::uint32_t>(net.Width()), static_cast<std::uint32_t>(net.Height()),
                     FormatRGB8);
    if (!picture.IsValid()) return false;
    NetPainter painter(*this, picture, net);
    std::vector<MSafeFile> files;
    for (std::size_t i = 0; i < result.cubes.size(); ++i) {
        painter.Paint(result.cubes[i]);
        files.push_back(picture.PrepareSave(CubePath(path, i), FormatNone, MLinks::StayInFolder));
    }
    picture.Free();
    PlaceAll(files, failures);
    return true;
}
