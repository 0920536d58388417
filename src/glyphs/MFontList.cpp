#include "glyphs/MFontList.h"

#include "platform/text/MSystemFonts.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>

std::unique_ptr<MFontList> FontList;

const MFontList& InstalledFonts() {
    if (!FontList) {
        FontList = std::make_unique<MFontList>();
        FontList->Enumerate();
    }
    return *FontList;
}

namespace {

bool Before(const MFontFace& first, const MFontFace& second) {
    if (const int order = first.family.CompareNoCase(second.family); order != 0) return order < 0;
    if (first.weight != second.weight) return first.weight < second.weight;
    if (first.italic != second.italic) return second.italic;
    // Names that differ only in case are two families; their order decides nothing but brings equal faces
    // together.
    return first.family.Compare(second.family) < 0;
}

bool Same(const MFontFace& first, const MFontFace& second) {
    return first.weight == second.weight && first.italic == second.italic && first.family.Equals(second.family);
}

} // namespace

void MFontList::Enumerate() {
    std::vector<MFontFace> found;
    for (MSystemFace& face : ListSystemFaces())
        found.push_back({std::move(face.family), face.weight, face.italic});
    Assign(std::move(found));
}

void MFontList::Assign(std::vector<MFontFace> found) {
    std::erase_if(found, [](const MFontFace& face) { return face.family.IsEmpty(); });
    std::ranges::sort(found, Before);
    found.erase(std::unique(found.begin(), found.end(), Same), found.end());

    count = capacity = static_cast<std::int32_t>(found.size());
    faces = found.empty() ? nullptr : std::make_unique<MFontFace[]>(found.size());
    std::ranges::move(found, faces.get());
}

const MFontFace* MFontList::Face(std::int32_t index) const {
    return index >= 0 && index < count ? &faces[static_cast<std::size_t>(index)] : nullptr;
}

bool MFontList::ClosestFace(const MString& family, std::int32_t& weight, bool& italic, std::int32_t& index,
                            std::int32_t& indexInFamily) const {
    index = -1;
    indexInFamily = -1;
    std::int64_t best = 0;
    std::int32_t seen = 0; // of the family
    for (std::int32_t i = 0; i < count; ++i) {
        const MFontFace& face = *Face(i);
        if (!face.family.Equals(family)) continue;
        const std::int64_t distance =
            std::abs(std::int64_t{face.weight} - weight) + (face.italic != italic ? 1 : 0);
        if (index < 0 || distance < best) {
            best = distance;
            index = i;
            indexInFamily = seen;
        }
        ++seen;
    }
    if (index < 0) return false;
    weight = Face(index)->weight;
    italic = Face(index)->italic;
    return true;
}

MString FaceStyleName(const MFontFace& face) {
    struct Name {
        std::int32_t last; // the heaviest weight of this name
        const char* name;
    };
    static constexpr std::array names{
        Name{0, "Normal"},      Name{150, "Thin"},   Name{250, "Extra light"},
        Name{350, "Light"},     Name{450, "Normal"}, Name{550, "Medium"},
        Name{650, "Semi bold"}, Name{750, "Bold"},   Name{850, "Extra bold"},
    };
    const auto* const found =
        std::ranges::find_if(names, [&](const Name& name) { return face.weight <= name.last; });
    const MString weight = found == names.end() ? "Black" : found->name;
    return face.italic ? weight + " Italic" : weight;
}
