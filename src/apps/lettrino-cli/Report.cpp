#include "apps/lettrino-cli/Report.h"

#include "foundation/MString.h"
#include "glyphs/MFontList.h"
#include "platform/text/MSystemFonts.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <map>
#include <string>
#include <tuple>

namespace {

using Json = nlohmann::ordered_json;

void Print(const Json& json) {
    std::puts(json.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
}

StepResult PrintInfo(Run& run, MColourFont& font) {
    Json glyphs = Json::array();
    for (const auto& slot : font.Glyphs) {
        if (!slot) continue;
        glyphs.push_back({{"code", slot->Character},
                          {"x", slot->X},
                          {"y", slot->Y},
                          {"width", slot->Width},
                          {"height", slot->Height},
                          {"before", slot->SpacingBefore},
                          {"after", slot->SpacingAfter}});
    }
    Json kerning = Json::array();
    for (const MKerningPair& pair : font.Kerning) {
        kerning.push_back({{"left", pair.Left}, {"right", pair.Right}, {"amount", pair.Amount}});
    }
    Print({{"glyphHeight", run.choices.settings.GlyphHeight},
           {"baseline", font.Baseline},
           {"capHeight", font.CapHeight},
           {"spaceWidth", font.SpaceWidth},
           {"picture", {{"width", font.PictureWidth}, {"height", font.PictureHeight}}},
           {"glyphs", std::move(glyphs)},
           {"kerning", std::move(kerning)}});
    return {};
}

using FaceKey = std::tuple<std::string, std::int32_t, bool>;

// The forms in which each face has colour glyphs.
std::map<FaceKey, Json> ColourForms() {
    std::map<FaceKey, Json> forms;
    for (const MSystemFace& face : ListSystemFaces()) {
        Json& known = forms[{ToSystem(face.family), face.weight, face.italic}];
        if (!known.is_null() && !known.empty()) continue;
        known = Json::array();
        for (const MString& form : face.colourForms)
            known.push_back(ToSystem(form));
    }
    return forms;
}

StepResult PrintFonts(Run&) {
    MFontList list;
    list.Enumerate();
    std::map<FaceKey, Json> forms = ColourForms();
    Json faces = Json::array();
    for (std::int32_t i = 0; i < list.count; ++i) {
        const MFontFace& face = *list.Face(i);
        faces.push_back({{"family", ToSystem(face.family)},
                         {"weight", face.weight},
                         {"italic", face.italic},
                         {"style", ToSystem(FaceStyleName(face))},
                         {"colour", forms[{ToSystem(face.family), face.weight, face.italic}]}});
    }
    Print(faces);
    return {};
}

} // namespace

std::optional<StepAction> PrepareInfo(StepArguments) {
    return OnFont(PrintInfo);
}

std::optional<StepAction> PrepareFontList(StepArguments) {
    return PrintFonts;
}
