#include "apps/lettrino-cli/Report.h"

#include "foundation/MUtf8.h"
#include "glyphs/MFontList.h"

#include <cstdio>
#include <string>

#include <nlohmann/json.hpp>

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
    Print({{"glyphHeight", run.settings.GlyphHeight},
           {"baseline", font.Baseline},
           {"capHeight", font.CapHeight},
           {"spaceWidth", font.SpaceWidth},
           {"picture", {{"width", font.PictureWidth}, {"height", font.PictureHeight}}},
           {"glyphs", std::move(glyphs)},
           {"kerning", std::move(kerning)}});
    return {};
}

StepResult PrintFonts(Run&) {
    MFontList list;
    list.Enumerate();
    Json faces = Json::array();
    for (std::int32_t i = 0; i < list.count; ++i) {
        const MFontFace& face = *list.Face(i);
        faces.push_back({{"family", ToSystem(face.family)},
                         {"weight", face.weight},
                         {"italic", face.italic != 0},
                         {"style", ToSystem(FaceStyleName(face))}});
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
