// The kerning that the designer of a face gave it, by HarfBuzz: the feature "kern" of the OpenType table GPOS,
// else the table kern.
#pragma once

#include "platform/text/MOpenFace.h"

#include <cstdint>
#include <map>
#include <memory>

struct hb_buffer_t;
struct hb_font_t;

class MFaceKerning {
public:
    // The face as the font mapper gives it for this wish; without one, no pair is kerned.
    MFaceKerning(const MString& family, std::int32_t weight, bool italic);
    MFaceKerning(const MFaceKerning&) = delete;
    MFaceKerning& operator=(const MFaceKerning&) = delete;
    ~MFaceKerning();

    // Of an em; 0 without a face.
    std::int32_t UnitsPerEm() const { return face ? face->unitsPerEm : 0; }
    bool Has(char16_t character) const;
    // What the advance between two characters differs from the sum of theirs when they are set as text from
    // left to right, without ligatures; in font units. 0 where the face lacks one of them.
    std::int32_t Amount(char16_t left, char16_t right);

private:
    std::unique_ptr<MOpenFace> face;
    hb_font_t* font = nullptr;
    hb_buffer_t* buffer = nullptr;
    std::map<char16_t, std::int32_t> alone; // advances of single characters

    std::int32_t Advance(std::u16string_view text);
    std::int32_t Alone(char16_t character);
};
