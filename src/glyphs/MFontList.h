// The installed font faces, from which the user picks a family and a style. Made once; fonts that are installed
// while the program runs are not seen.
#pragma once

#include "foundation/MString.h"

#include <cstdint>
#include <memory>
#include <vector>

struct MFontFace {
    MString family;
    std::int32_t weight = 0;
    bool italic = false;
};

class MFontList {
public:
    std::int32_t count = 0;
    std::int32_t capacity = 0;
    // No two have the same family, weight and slant. In ascending order by family without regard to the case of
    // letters, then weight, then upright before italic.
    std::unique_ptr<MFontFace[]> faces;

    // Replaces the list by the faces of this machine. Stays empty if there are none.
    void Enumerate();
    // Replaces the list by these faces, without duplicates and without faces that have no family, and sorts it.
    void Assign(std::vector<MFontFace> found);

    const MFontFace* Face(std::int32_t index) const; // null outside the list
    // The face of this family (exact name) that is nearest in weight, where the other slant counts as much as
    // one unit of weight; of equally near ones the first. Sets weight and slant to its own, and the indexes to
    // its place in the list and among the faces of its family. False, the indexes -1 and the rest left alone,
    // if the family has no face.
    bool ClosestFace(const MString& family, std::int32_t& weight, bool& italic, std::int32_t& index,
                     std::int32_t& indexInFamily) const;
};

// "Semi bold Italic" and the like: the name of the weight, and whether it is italic.
MString FaceStyleName(const MFontFace& face);

// The one list, made when it is first asked for and kept until the program ends, which resets it; null until
// then.
extern std::unique_ptr<MFontList> FontList;
const MFontList& InstalledFonts();
