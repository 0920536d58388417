// How near the kerning of this program comes to that of the designers of faces, as a table in Markdown; see
// scripts/kerning-table. Each argument is "HALF:FAMILY" or "HALF:FAMILY=FILE"; the pairs are those of all
// capital and small letters. In thousandths of an em, mean of the absolute differences.

#include "document/MColourFont.h"
#include "document/MInkProfile.h"
#include "document/MSettings.h"
#include "document/OpticalKerning.h"
#include "foundation/MString.h"
#include "glyphs/MGlyphRenderer.h"
#include "platform/text/MFaceKerning.h"
#include "platform/text/MSystemFonts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::u16string_view letters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::int32_t height = 1024; // so that whole pixels are fine enough

using Amounts = std::vector<double>; // by left and right letter, in thousandths of an em

// Pairs that a user would fix first, chosen on the first half of the faces.
constexpr std::array<std::u16string_view, 10> modelPairs = {u"LY", u"DY", u"LT", u"Ka", u"Fo",
                                                            u"Ve", u"Xe", u"pY", u"xe", u"ov"};

Amounts AmountsOf(std::span<const MKerningPair> pairs, double em) {
    Amounts amounts(letters.size() * letters.size());
    for (const MKerningPair& pair : pairs) {
        const std::size_t left = letters.find(static_cast<char16_t>(pair.Left));
        const std::size_t right = letters.find(static_cast<char16_t>(pair.Right));
        if (left < letters.size() && right < letters.size())
            amounts[left * letters.size() + right] = pair.Amount * 1000 / em;
    }
    return amounts;
}

// The plainest rule by the white: half of the way to the mean density of upright and round letters, with one
// target for all pairs, the white at most 0.35 em deep, amounts below 14 left out.
Amounts PlainRule(const MColourFont& font, double em) {
    const auto far = static_cast<float>(height);
    std::map<char16_t, MInkProfile> profiles;
    for (const char16_t letter : letters) {
        MInkProfile profile(*font.GetGlyph(letter), far);
        profile.Smooth();
        profiles.emplace(letter, std::move(profile));
    }
    const MInkProfile capital = profiles.at(u'H');
    const MInkProfile small = profiles.at(u'x');
    const auto isSmall = [](char16_t letter) { return letter >= u'a'; };
    const auto density = [&](char16_t left, char16_t right, double moved) {
        const MInkProfile& zone = isSmall(left) && isSmall(right) ? small : capital;
        double sum = 0;
        for (std::int32_t row = zone.top; row < zone.bottom; ++row) {
            const auto at = static_cast<std::size_t>(row);
            const double white =
                (double{profiles.at(left).behind[at]} + double{profiles.at(right).before[at]}) / em;
            const double w = std::max(std::min(white, 0.35) + moved + 0.02, 1e-3);
            sum += 1 / (w * w);
        }
        return sum / (zone.bottom - zone.top);
    };
    double target = 0;
    int count = 0;
    for (const std::u16string_view controls : {u"HINEOU", u"nohuim"}) {
        for (const char16_t left : controls) {
            for (const char16_t right : controls) {
                target += density(left, right, 0);
                ++count;
            }
        }
    }
    target /= count;
    Amounts amounts;
    for (const char16_t left : letters) {
        for (const char16_t right : letters) {
            double low = -0.5, high = 0.5;
            for (int i = 0; i < 16; ++i) {
                const double middle = (low + high) / 2;
                (density(left, right, middle) > target ? low : high) = middle;
            }
            const double amount = low * 1000 / 2;
            amounts.push_back(amount <= -14 ? amount : 0);
        }
    }
    return amounts;
}

struct Errors {
    double all = 0;
    double kerned = 0; // over the pairs that the designers kerned
    std::size_t count = 0;
    std::size_t kernedCount = 0;

    void Add(const Amounts& ours, const Amounts& designers) {
        for (std::size_t i = 0; i < ours.size(); ++i) {
            const double error = std::abs(ours[i] - designers[i]);
            all += error;
            ++count;
            if (designers[i] == 0) continue;
            kerned += error;
            ++kernedCount;
        }
    }
    double All() const { return all / static_cast<double>(count); }
    double Kerned() const { return kernedCount ? kerned / static_cast<double>(kernedCount) : 0; }
};

constexpr std::array methods = {"none", "touching", "plain", "optical", "ten models"};
using Row = std::array<Errors, methods.size()>;

void Print(const std::string& name, const Row& row) {
    std::printf("| %s | %zu", name.c_str(), row[0].kernedCount);
    for (const Errors& errors : row)
        std::printf(" | %.1f / %.1f", errors.All(), errors.Kerned());
    std::printf(" |\n");
}

bool Measure(const std::string& family, Row& row, Row& total) {
    MSettings& settings = *Settings;
    settings.FontName = FromSystem(family);
    settings.GlyphHeight = height;
    MColourFont font(nullptr);
    font.GenerateSelectedCharacters();
    const MGlyphRenderer renderer(nullptr);
    MFaceKerning face(settings.FontName, settings.Weight, settings.Italic);
    if (!renderer.ready || face.UnitsPerEm() == 0) return false;
    const double em = renderer.EmPixels();
    Amounts designers;
    for (const char16_t left : letters) {
        for (const char16_t right : letters) {
            if (!font.GetGlyph(left)) return false;
            designers.push_back(face.Amount(left, right) * 1000.0 / face.UnitsPerEm());
        }
    }
    font.GenerateKerning();
    const MOpticalKerning optical(font);
    std::vector<MKerningPair> models;
    for (const std::u16string_view pair : modelPairs) {
        const double amount =
            designers[letters.find(pair[0]) * letters.size() + letters.find(pair[1])] / 1000 * em;
        models.push_back({pair[0], pair[1], static_cast<std::int32_t>(std::lround(amount))});
    }
    const Amounts results[] = {Amounts(designers.size()),
                               AmountsOf({font.Kerning.data, static_cast<std::size_t>(font.Kerning.count)}, em),
                               PlainRule(font, em), AmountsOf(optical.Pairs({}, {}), em),
                               AmountsOf(optical.Pairs({}, models), em)};
    for (std::size_t i = 0; i < methods.size(); ++i) {
        row[i].Add(results[i], designers);
        total[i].Add(results[i], designers);
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    MSettings settings;
    Settings = &settings;
    settings.Selected.fill(0);
    for (const char16_t letter : letters)
        settings.Selected[letter] = 1;
    std::map<std::string, Row> totals;
    std::string group;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const std::size_t colon = argument.find(':');
        const std::size_t sign = std::min(argument.find('='), argument.size());
        const std::string family = argument.substr(colon + 1, sign - colon - 1);
        if (sign < argument.size() && !AddFontFile(FromSystem(argument.substr(sign + 1)))) return 1;
        if (group != argument.substr(0, colon)) {
            group = argument.substr(0, colon);
            std::printf("\n| %s | pairs", group.c_str());
            for (const char* const method : methods)
                std::printf(" | %s", method);
            std::printf(" |\n|---|---|---|---|---|---|---|\n");
        }
        Row row;
        if (!Measure(family, row, totals[group])) {
            std::fprintf(stderr, "%s can't be measured\n", family.c_str());
            return 1;
        }
        Print(family, row);
        const bool last = i + 1 == argc || std::string(argv[i + 1]).rfind(group + ':', 0) != 0;
        if (last) Print("**all**", totals[group]);
    }
    return 0;
}
