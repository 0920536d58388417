#include "platform/text/MSystemFonts.h"

#include "foundation/MFolders.h"
#include "foundation/MNumbers.h"
#include "foundation/MString.h"
#include "platform/text/MColourTable.h"
#include "platform/text/MFontCheck.h"
#include "platform/text/MFontPattern.h"
#include "platform/text/MOpenFace.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <string_view>

namespace {

struct Release {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};
using Pattern = std::unique_ptr<FcPattern, Release>;
using FontSet = std::unique_ptr<FcFontSet, Release>;

constexpr std::array sets{FcSetSystem, FcSetApplication};

const FcChar8* ToFc(const std::string& text) {
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

std::string_view FromFc(const FcChar8* text) {
    return reinterpret_cast<const char*>(text);
}

template<typename Action>
void ForEachFace(Action action) {
    FcConfig* const config = FcConfigGetCurrent();
    for (const FcSetName name : sets) {
        const FcFontSet* const set = FcConfigGetFonts(config, name);
        for (int i = 0; set && i < set->nfont; ++i)
            action(set->fonts[i]);
    }
}

std::optional<std::string_view> GetString(const FcPattern* pattern, const char* object, int n) {
    FcChar8* text = nullptr;
    if (FcPatternGetString(pattern, object, n, &text) != FcResultMatch) return std::nullopt;
    return FromFc(text);
}

bool GetFlag(const FcPattern* pattern, const char* object) {
    FcBool flag = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &flag) == FcResultMatch && flag == FcTrue;
}

// As OpenType counts.
std::int32_t WeightOf(const FcPattern* pattern) {
    double weight = FC_WEIGHT_REGULAR;
    FcPatternGetDouble(pattern, FC_WEIGHT, 0, &weight);
    return ToInteger(FcWeightToOpenTypeDouble(weight) + 0.5);
}

// The names that are written in English or in no language told; of a face that has none such, its first.
std::vector<std::string_view> FamilyNames(const FcPattern* pattern) {
    std::vector<std::string_view> names;
    for (int n = 0; const auto name = GetString(pattern, FC_FAMILY, n); ++n) {
        const auto language = GetString(pattern, FC_FAMILYLANG, n);
        if (!language || language->starts_with("en") || *language == "und") names.push_back(*name);
    }
    if (names.empty()) {
        if (const auto first = GetString(pattern, FC_FAMILY, 0)) names.push_back(*first);
    }
    return names;
}

// The faces that bear the name, in the letter case given if there are such, else in any.
FontSet FacesOfFamily(const std::string& family) {
    FontSet exact(FcFontSetCreate());
    FontSet anyCase(FcFontSetCreate());
    ForEachFace([&](FcPattern* face) {
        bool same = false;
        bool similar = false;
        for (int n = 0; const auto name = GetString(face, FC_FAMILY, n); ++n) {
            same = same || *name == family;
            similar = similar ||
                      FcStrCmpIgnoreCase(reinterpret_cast<const FcChar8*>(name->data()), ToFc(family)) == 0;
        }
        for (FcFontSet* set : {same ? exact.get() : nullptr, similar ? anyCase.get() : nullptr}) {
            if (!set) continue;
            FcPatternReference(face);
            if (!FcFontSetAdd(set, face)) FcPatternDestroy(face);
        }
    });
    return exact->nfont > 0 ? std::move(exact) : std::move(anyCase);
}

Pattern Wish(const std::string& family, std::int32_t weight, bool italic) {
    Pattern pattern(FcPatternCreate());
    FcPatternAddString(pattern.get(), FC_FAMILY, ToFc(family));
    FcPatternAddDouble(pattern.get(), FC_WEIGHT, FcWeightFromOpenTypeDouble(weight));
    FcPatternAddInteger(pattern.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    return pattern;
}

std::uint32_t fontsVersion = 0;

} // namespace

std::optional<MFontMatch> ToMatch(const FcPattern* pattern) {
    const auto file = GetString(pattern, FC_FILE, 0);
    if (!file) return std::nullopt;
    MFontMatch match;
    match.file = *file;
    match.family = GetString(pattern, FC_FAMILY, 0).value_or(std::string_view());
    match.weight = WeightOf(pattern);
    FcPatternGetInteger(pattern, FC_INDEX, 0, &match.index);
    match.variations = GetString(pattern, FC_FONT_VARIATIONS, 0).value_or(std::string_view());
    match.embolden = GetFlag(pattern, FC_EMBOLDEN);
    FcMatrix* matrix = nullptr;
    if (FcPatternGetMatrix(pattern, FC_MATRIX, 0, &matrix) == FcResultMatch)
        match.matrix = {matrix->xx, matrix->xy, matrix->yx, matrix->yy};
    // The rules for bitmaps scale them to the size asked, which is done here for each size anyway.
    FcBool outline = FcTrue;
    FcPatternGetBool(pattern, FC_OUTLINE, 0, &outline);
    if (const double size = match.matrix[3]; !outline && size > 0)
        for (double& number : match.matrix)
            number /= size;
    return match;
}

std::uint32_t FontsVersion() {
    return fontsVersion;
}

namespace {

std::vector<MString> ColourForms(const FcPattern* pattern) {
    std::vector<MString> forms;
    const auto match = ToMatch(pattern);
    if (!match) return forms;
    const MOpenFace face(*match);
    const auto colr = face.Table("COLR");
    const MColourTable table(colr, {});
    if (table.graphs) forms.emplace_back("COLR v1");
    if (table.layers) forms.emplace_back("COLR v0");
    if (face.HasTable("SVG ")) forms.emplace_back("SVG");
    if (face.HasTable("sbix")) forms.emplace_back("sbix");
    if (face.HasTable("CBDT")) forms.emplace_back("CBDT");
    return forms;
}

} // namespace

std::vector<MSystemFace> ListSystemFaces() {
    std::vector<MSystemFace> faces;
    ForEachFace([&](const FcPattern* pattern) {
        // A variable face as a whole has a range of weights; its named instances stand beside it in the list.
        if (!GetFlag(pattern, FC_SCALABLE) || GetFlag(pattern, FC_VARIABLE)) return;
        MSystemFace face;
        face.weight = WeightOf(pattern);
        int slant = FC_SLANT_ROMAN;
        FcPatternGetInteger(pattern, FC_SLANT, 0, &slant);
        face.italic = slant > FC_SLANT_ROMAN;
        if (GetFlag(pattern, FC_COLOR)) face.colourForms = ColourForms(pattern);
        face.style = FromSystem(GetString(pattern, FC_STYLE, 0).value_or(std::string_view()));
        for (const std::string_view name : FamilyNames(pattern)) {
            face.family = FromSystem(name);
            faces.push_back(face);
        }
    });
    return faces;
}

bool AddFontFile(const MString& path, std::string* reason) {
    if (reason) *reason = "it is no font that can be read";
    const auto file = FindExisting(path);
    if (!file || !std::filesystem::is_regular_file(*file)) return false;
    const std::string name = file->string();
    if (const std::string why = WhyUnsafe(name); !why.empty()) {
        if (reason) *reason = why;
        return false;
    }
    // fontconfig itself accepts any file, also one without a face.
    const FontSet found(FcFontSetCreate());
    if (!FcFileScan(found.get(), nullptr, nullptr, nullptr, ToFc(name), FcTrue) || found->nfont == 0)
        return false;
    ++fontsVersion;
    return FcConfigAppFontAddFile(FcConfigGetCurrent(), ToFc(name)) == FcTrue;
}

bool IsFamilyInstalled(const MString& family) {
    return !family.IsEmpty() && FacesOfFamily(ToSystem(family))->nfont > 0;
}

std::optional<MFontMatch> MatchFont(const MString& family, std::int32_t weight, bool italic) {
    FcConfig* const config = FcConfigGetCurrent();
    const std::string name = ToSystem(family);
    const FontSet own = FacesOfFamily(name);
    Clamp(weight, 0, 1000);
    if (weight == 0) weight = 400;
    const bool heaviest = own->nfont == 0 && name == "Arial Black";
    const Pattern wish = Wish(name, heaviest ? 900 : weight, italic);
    if (heaviest) FcPatternAddString(wish.get(), FC_FAMILY, ToFc("sans-serif"));
    FcConfigSubstitute(config, wish.get(), FcMatchPattern);
    FcDefaultSubstitute(wish.get());

    FcResult result = FcResultNoMatch;
    Pattern found;
    if (own->nfont > 0) {
        // Only the family's own faces stand for choice, so that no rule of the system can lead away from it.
        FcFontSet* set = own.get();
        found.reset(FcFontSetMatch(config, &set, 1, wish.get(), &result));
    } else {
        found.reset(FcFontMatch(config, wish.get(), &result));
    }
    return found ? ToMatch(found.get()) : std::nullopt;
}
