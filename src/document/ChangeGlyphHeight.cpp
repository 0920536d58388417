#include "document/ChangeGlyphHeight.h"

#include "document/MSettings.h"
#include "foundation/MNumbers.h"
#include "foundation/Product.h"

#include <cmath>

namespace {

MString Question(std::int32_t newHeight, std::int32_t normalised) {
    return "For most fonts the cap height is about 70% of the font size.\n\n"
           "To normalize your font with a font size of " +
           MString(newHeight) + " you should use a glyph height of " + MString(normalised) +
           ".\n\nWould you like to normalize your font?";
}

} // namespace

std::int32_t NormalisedGlyphHeight(std::int32_t capHeight, std::int32_t oldHeight, std::int32_t newHeight) {
    const float ratio = static_cast<float>(capHeight) / static_cast<float>(oldHeight);
    const double height = newHeight * 0.7 / static_cast<double>(ratio);
    return ToInteger(std::round(static_cast<float>(height)));
}

bool ChangeGlyphHeight(MColourFont& font, std::int32_t oldHeight) {
    if (oldHeight < 1) return false;
    std::int32_t& height = Settings->GlyphHeight;
    if (font.CapHeight >= 1) {
        const std::int32_t normalised = NormalisedGlyphHeight(font.CapHeight, oldHeight, height);
        switch (Desktop::ShowMessage(font.Owner, Question(height, normalised), ProductName,
                                     Desktop::Buttons::YesNoCancel, Desktop::Icon::None)) {
        case Desktop::Answer::Yes: height = normalised; break;
        case Desktop::Answer::No: break;
        case Desktop::Answer::Cancel:
        case Desktop::Answer::Ok: height = oldHeight; return false;
        }
    }
    if (height == oldHeight) return false;
    font.Scale(static_cast<float>(height) / static_cast<float>(oldHeight));
    font.Repack();
    return true;
}
