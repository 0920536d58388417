#include "formats/game/MGameEngines.h"

#include <algorithm>

namespace {

void AppendTo(std::string& list, std::string_view word) {
    if (!list.empty()) list += ", ";
    list += word;
}

std::string Pages(const MGameEngine& engine) {
    if (engine.MostPages == 1) return "one";
    return engine.MostPages == 256 ? "several" : "up to " + std::to_string(engine.MostPages);
}

} // namespace

const MGameEngine* EngineNamed(std::string_view name) {
    const auto found = std::ranges::find(gameEngines, name, &MGameEngine::Name);
    return found == gameEngines.end() ? nullptr : &*found;
}

std::string EngineNames() {
    std::string names;
    for (const MGameEngine& engine : gameEngines)
        AppendTo(names, engine.Name);
    return names;
}

std::string FormNames(const MGameEngine& engine) {
    std::string names;
    for (const MBmFormat& format : BmFormats()) {
        if (engine.Forms.Has(format.Form)) AppendTo(names, format.Name);
    }
    return names;
}

std::string EngineTable() {
    std::string table =
        "| Engine | `--fnt-for` | Forms, the first one first | Pages | To know |\n|---|---|---|---|---|\n";
    for (const MGameEngine& engine : gameEngines) {
        std::string forms(FormatOf(engine.First).Name);
        for (const MBmFormat& format : BmFormats()) {
            if (engine.Forms.Has(format.Form) && format.Form != engine.First) AppendTo(forms, format.Name);
        }
        table += "| " + std::string(engine.Title) + " | `" + std::string(engine.Name) + "` | " + forms + " | " +
                 Pages(engine) + " | " + std::string(engine.Note) + " |\n";
    }
    return table;
}
