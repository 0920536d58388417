// What a font, or the files that it is exported as, breaks of the rules that an engine needs, and what the
// export does about it. Nothing is repaired without a finding.
#pragma once

#include "formats/MFontDescription.h"
#include "formats/game/MGameEngines.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct MGameRule {
    std::string_view Name;    // "pair-missing"
    std::string_view Problem; // a sentence without its full stop
    bool Repaired;            // by the export; otherwise it is the user's to do
    std::string_view Action;  // how it is repaired, or what to do
};

// One place where a rule is broken.
struct MGameFinding {
    const MGameRule* Rule;                 // never null; of static life
    std::vector<std::uint32_t> Characters; // one for a glyph, two for a pair, none for the font or a name
    std::string Detail;                    // what is there, or what it becomes; may be empty
};

// How an export is made, as far as rules depend on it.
struct MGameFontCase {
    const MGameEngine* Engine;
    MBmForm Form;
    std::int32_t Gap = 1;
    std::int32_t Bleed = 0;
    std::string Name; // of the files, without folder and extension; empty if it isn't known yet
};

// In the order of the rules, and of the glyphs and pairs within one. The pages have rules of their own, which
// only packing tells (see PlanGameFont).
std::vector<MGameFinding> CheckFont(const MFontDescription& font, const MGameFontCase& wanted);

// The page and face name of a font file of this name: letters, digits, "-", "_" and "." of ASCII, at most 64,
// and no start that readers which guess take for a number.
std::string SafeGameName(std::string_view name);

// The rules that packing and writing find broken.
extern const MGameRule ruleOnePage;
extern const MGameRule ruleManyPages;

// One line for each rule, with the first few glyphs or pairs: "kerning-byte: ... (U+0041 U+0056 -140, and 3
// more); repaired: ...".
std::vector<std::string> FindingLines(const std::vector<MGameFinding>& findings);
