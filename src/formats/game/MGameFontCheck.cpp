#include "formats/game/MGameFontCheck.h"

#include "foundation/MUtf8.h"

#include <algorithm>
#include <array>

const MGameRule ruleOnePage{"pages", "the engine reads one page alone", false,
                            "allow larger pages, or make the glyphs smaller"};
const MGameRule ruleManyPages{"pages-several", "some engines read one page alone", false,
                              "allow larger pages, or name the engine"};

namespace {

constexpr MGameRule pairMissing{"pair-missing", "a pair names a character that the font lacks", true,
                                "the pair is left out"};
constexpr MGameRule kerningByte{"kerning-byte", "the engine keeps kerning as a signed byte", true,
                                "the amount is written as the nearest one that fits"};
constexpr MGameRule kerningIgnored{"kerning-ignored", "the engine takes no notice of kerning", false,
                                   "set important words as pictures, or make do without it"};
constexpr MGameRule spaceMissing{"space-missing", "the space has no width, so words run together", false,
                                 "give it one in the glyph editor"};
constexpr MGameRule codeUnusable{"code-unusable", "no text holds this code by itself", false,
                                 "remove the glyph"};
constexpr MGameRule cellUnequal{"cell-unequal", "the glyph's cell isn't as high as the line", true,
                                "its upper edge is that of the line, as Lettrino sets it"};
constexpr MGameRule inkOutside{"ink-outside", "the ink reaches below the line, into the next one", false,
                               "make the glyph height larger"};
constexpr MGameRule advanceNegative{"advance-negative", "the engine takes an advance below 0 for the width",
                                    false, "make its spacings larger"};
constexpr MGameRule inkEdge{"ink-edge",
                            "the ink touches its cell's edge, where filtering shows what lies beside", true,
                            "clear pixels, or its own edge repeated, keep other glyphs away"};
constexpr MGameRule inkEdgeOpen{"ink-edge", "filtering shows the neighbour of what touches its cell's edge",
                                false, "choose a gap of at least 1"};
constexpr MGameRule pageEdge{"page-edge", "glyphs lie at the page's edge, where filtering shows the other side",
                             false, "choose a gap of at least 1"};
constexpr MGameRule basePlace{"base", "the engine draws text too low by what lies below the baseline", true,
                              "the base is written as the line's height"};
constexpr MGameRule formUnread{"form", "the engine doesn't read this form", false, "choose one that it reads"};
constexpr MGameRule formOfOldGodot{"form-godot-3", "Godot 3 reads the text form alone", false,
                                   "choose it, if Godot 3 shall read the font"};
constexpr MGameRule namePage{"name-page", "readers split such a page name, or take it for a number", true,
                             "the page gets another name"};
constexpr MGameRule nameFace{"name-face", "readers split such a face name, or take it for a number", true,
                             "the face gets another name"};

// The bytes of UTF-8 behind the first one of a character.
bool Continues(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

bool IsPlain(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.';
}

bool TouchesCell(const MGlyphDescription& glyph) {
    const MInkBox& ink = glyph.Ink;
    return !ink.IsEmpty() && (ink.Left == 0 || ink.Top == 0 || ink.Left + ink.Width >= glyph.Width ||
                              ink.Top + ink.Height >= glyph.Glyph->Height);
}

// Halves of surrogate pairs, and what controls a text instead of standing in it.
bool IsUnusable(char16_t character) {
    return (character >= 0xD800 && character < 0xE000) || character < 32;
}

class Checking {
public:
    std::vector<MGameFinding> findings;

    void Add(const MGameRule& rule, std::vector<std::uint32_t> characters, std::string detail = {}) {
        findings.push_back({&rule, std::move(characters), std::move(detail)});
    }

    // The glyphs that a test holds for.
    template<typename Test>
    void Glyphs(const MGameRule& rule, const MFontDescription& font, Test test) {
        for (const MGlyphDescription& glyph : font.Glyphs) {
            if (glyph.Glyph && test(glyph)) Add(rule, {glyph.Character});
        }
    }
};

void CheckPairs(Checking& checking, const MFontDescription& font, const MGameEngine& engine) {
    for (const MKerningPair& pair : font.LostPairs)
        checking.Add(pairMissing, {pair.Left, pair.Right}, std::to_string(pair.Amount));
    if (engine.IgnoresKerning && !font.Pairs.empty())
        checking.Add(kerningIgnored, {}, std::to_string(font.Pairs.size()) + " pairs");
    if (!engine.KerningIsByte) return;
    for (const MKerningPair& pair : font.Pairs) {
        if (pair.Amount < -128 || pair.Amount > 127)
            checking.Add(kerningByte, {pair.Left, pair.Right}, std::to_string(pair.Amount));
    }
}

void CheckGlyphs(Checking& checking, const MFontDescription& font, const MGameFontCase& wanted) {
    checking.Glyphs(codeUnusable, font, [](const auto& glyph) { return IsUnusable(glyph.Character); });
    checking.Glyphs(cellUnequal, font, [&](const auto& glyph) { return glyph.Glyph->Height != font.Height; });
    checking.Glyphs(inkOutside, font, [&](const auto& glyph) {
        return !glyph.Ink.IsEmpty() && glyph.Ink.Top + glyph.Ink.Height > font.Height;
    });
    if (wanted.Engine->NegativeAdvanceFails)
        checking.Glyphs(advanceNegative, font, [](const auto& glyph) { return glyph.Advance < 0; });
    const bool apart = wanted.Gap > 0 || wanted.Bleed > 0;
    checking.Glyphs(apart ? inkEdge : inkEdgeOpen, font, TouchesCell);
    if (!apart) checking.Add(pageEdge, {});
}

} // namespace

std::string SafeGameName(std::string_view name) {
    constexpr std::size_t longest = 64; // readers were seen that take no line over 255 bytes
    std::string safe;
    for (const char c : name) {
        if (!Continues(c)) safe += IsPlain(c) ? c : '_';
    }
    if (safe.empty()) return "font";
    const bool looksLikeNumber =
        safe.starts_with("Infinity") ||
        !((safe[0] >= 'A' && safe[0] <= 'Z') || (safe[0] >= 'a' && safe[0] <= 'z') || safe[0] == '_');
    if (looksLikeNumber) safe.insert(safe.begin(), '_');
    safe.resize(std::min(safe.size(), longest));
    return safe;
}

std::vector<MGameFinding> CheckFont(const MFontDescription& font, const MGameFontCase& wanted) {
    Checking checking;
    const MGameEngine& engine = *wanted.Engine;
    if (!engine.Forms.Has(wanted.Form)) checking.Add(formUnread, {}, "it reads " + FormNames(engine));
    if (engine.Name == "godot" && wanted.Form == MBmForm::Binary) checking.Add(formOfOldGodot, {});
    if (engine.BaseIsHeight && font.Baseline != 0)
        checking.Add(basePlace, {}, std::to_string(font.Baseline) + " rows");
    if (const std::string safe = SafeGameName(wanted.Name); !wanted.Name.empty() && safe != wanted.Name) {
        checking.Add(namePage, {}, safe);
        checking.Add(nameFace, {}, safe);
    }
    const MGlyphDescription* const space = font.Find(U' ');
    if (!space || space->Advance < 1) checking.Add(spaceMissing, {U' '});
    CheckPairs(checking, font, engine);
    CheckGlyphs(checking, font, wanted);
    return std::move(checking.findings);
}

std::vector<std::string> FindingLines(const std::vector<MGameFinding>& findings) {
    constexpr int shown = 3;
    std::vector<std::string> lines;
    for (auto first = findings.begin(); first != findings.end();) {
        const MGameRule& rule = *first->Rule;
        const auto end = std::find_if(first, findings.end(), [&](const auto& f) { return f.Rule != &rule; });
        std::string examples;
        for (auto at = first; at != end && at - first < shown; ++at) {
            std::string example;
            for (const std::uint32_t character : at->Characters)
                example += (example.empty() ? "" : " ") + CodePointText(character);
            if (!at->Detail.empty()) example += (example.empty() ? "" : " ") + at->Detail;
            if (!example.empty()) examples += (examples.empty() ? "" : ", ") + example;
        }
        if (end - first > shown) examples += ", and " + std::to_string(end - first - shown) + " more";
        lines.push_back(std::string(rule.Name) + ": " + std::string(rule.Problem) +
                        (examples.empty() ? "" : " (" + examples + ")") +
                        (rule.Repaired ? "; repaired: " : "; to do: ") + std::string(rule.Action));
        first = end;
    }
    return lines;
}
