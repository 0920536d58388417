// How well sheets of letters are cut: made from installed faces, plain, slanted, heavy, outlined and with
// shadows, on three grounds, level and turned. Prints a table in Markdown and every letter that came out wrong;
// docs/sheets.md holds the result. With a folder as its argument it leaves the sheets and reports there.

#include "foundation/MUtf8.h"
#include "glyphs/SheetCutter.h"
#include "glyphs/SheetMaker.h"
#include "platform/text/MSystemFonts.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace {

using Effect = SheetLook::Effect;
using Ground = SheetLook::Ground;

struct Face {
    const char* name;
    const char* family;
    std::int32_t weight;
    bool italic;
    Effect effect;
    bool seen = true; // while the rules were made
};

constexpr Face faces[] = {
    {"DejaVu Sans", "DejaVu Sans", 400, false, Effect::Plain},
    {"Liberation Serif", "Liberation Serif", 400, false, Effect::Plain},
    {"Liberation Mono", "Liberation Mono", 400, false, Effect::Plain},
    {"Liberation Serif italic", "Liberation Serif", 400, true, Effect::Plain},
    {"DejaVu Serif italic", "DejaVu Serif", 400, true, Effect::Plain},
    {"DejaVu Sans, heaviest", "DejaVu Sans", 900, false, Effect::Plain},
    {"Liberation Sans bold, outlined", "Liberation Sans", 700, false, Effect::Outlined},
    {"DejaVu Serif bold, shadow", "DejaVu Serif", 700, false, Effect::Shadow},
    {"C059", "C059", 400, false, Effect::Plain, false},
    {"P052 italic", "P052", 400, true, Effect::Plain, false},
    {"URW Gothic", "URW Gothic", 400, false, Effect::Plain, false},
    {"Nimbus Sans Narrow bold", "Nimbus Sans Narrow", 700, false, Effect::Plain, false},
    {"URW Bookman bold italic", "URW Bookman", 700, true, Effect::Plain, false},
    {"Nimbus Mono PS", "Nimbus Mono PS", 400, false, Effect::Plain, false},
    {"Nimbus Roman, outlined", "Nimbus Roman", 400, false, Effect::Outlined, false},
    {"C059 bold, shadow", "C059", 700, false, Effect::Shadow, false},
};
constexpr double angles[] = {0, 1.2, -2};
constexpr std::pair<const char*, Ground> grounds[] = {
    {"transparent", Ground::Transparent}, {"white", Ground::White}, {"paper", Ground::Paper}};

struct Score {
    std::size_t letters = 0;
    std::size_t right = 0;
    std::size_t bases = 0; // within a pixel
};

bool IsRight(const MSheetBox& box, const MadeLetter& letter, double degrees) {
    if (box.character != letter.character) return false;
    const double angle = std::abs(degrees) * 3.14159265 / 180;
    const double slack = 3.5 + (letter.width + letter.height) * std::sin(angle);
    return std::abs((box.box.left + box.box.right) / 2.0 - letter.x) <= slack &&
           std::abs((box.box.top + box.box.bottom) / 2.0 - letter.y) <= slack &&
           std::abs(box.box.Width() - letter.width) <= slack &&
           std::abs(box.box.Height() - letter.height) <= slack;
}

Score Measure(const MadeSheet& made, const MSheet& sheet, double degrees, const std::string& name) {
    Score score{made.letters.size(), 0, 0};
    if (!sheet.problem.empty()) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), sheet.problem.c_str());
        return score;
    }
    for (std::size_t i = 0; i < made.letters.size(); ++i) {
        const MSheetBox& box = sheet.boxes[i];
        const MadeLetter& letter = made.letters[i];
        const double off = sheet.lines[box.line].Base(letter.x) - letter.base;
        const bool right = IsRight(box, letter, degrees);
        const bool base = std::abs(off) <= 1;
        score.right += right ? 1 : 0;
        score.bases += base ? 1 : 0;
        if (!right || !base)
            std::fprintf(
                stderr, "%s: %s%s%s, base line off by %.1f\n", name.c_str(),
                ToSystem(MString(std::u16string_view(&letter.character, 1))).c_str(), right ? "" : " wrong",
                right ? "" : (" as " + ToSystem(MString(std::u16string_view(&box.character, 1)))).c_str(), off);
    }
    return score;
}

void PrintAll(const Score& total) {
    std::printf("| **all** | | | %zu of %zu | %zu of %zu |\n", total.right, total.letters, total.bases,
                total.letters);
}

} // namespace

int main(int argc, char** argv) {
    std::printf(
        "| face | transparent | white | uneven paper | base line within a pixel |\n|---|---|---|---|---|\n");
    Score total;
    bool seen = true;
    for (const Face& face : faces) {
        if (seen && !face.seen) {
            PrintAll(total);
            total = {};
        }
        seen = face.seen;
        if (!IsFamilyInstalled(face.family)) {
            std::fprintf(stderr, "%s is not installed\n", face.family);
            continue;
        }
        Score of[3];
        Score all;
        for (std::size_t g = 0; g < 3; ++g) {
            for (const double degrees : angles) {
                SheetLook look;
                look.family = face.family;
                look.weight = face.weight;
                look.italic = face.italic;
                look.effect = face.effect;
                look.ground = grounds[g].second;
                look.degrees = degrees;
                MadeSheet made(look);
                const MSheet sheet = FindSheetLetters(made.picture, made.text, {});
                const std::string name = std::string(face.name) + " on " + grounds[g].first + ", " +
                                         std::to_string(degrees).substr(0, 4);
                const Score score = Measure(made, sheet, degrees, name);
                of[g].letters += score.letters;
                of[g].right += score.right;
                all.letters += score.letters;
                all.right += score.right;
                all.bases += score.bases;
                if (argc < 2) continue;
                MPicture report = DrawSheetReport(sheet, made.picture);
                report.Save(FromSystem(std::string(argv[1]) + "/" + name + " report.png"));
                made.picture.Save(FromSystem(std::string(argv[1]) + "/" + name + ".png"));
                report.Free();
            }
        }
        std::printf("| %s", face.name);
        for (const Score& score : of)
            std::printf(" | %zu of %zu", score.right, score.letters);
        std::printf(" | %zu of %zu |\n", all.bases, all.letters);
        total.letters += all.letters;
        total.right += all.right;
        total.bases += all.bases;
    }
    PrintAll(total);
    return 0;
}
