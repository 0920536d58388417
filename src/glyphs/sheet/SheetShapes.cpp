#include "glyphs/sheet/SheetShapes.h"

#include <string_view>

namespace {

struct Shapes {
    std::u16string_view characters;
    float top;
    float bottom;
};

// Rounded from faces of all kinds.
constexpr Shapes table[] = {
    {u"ABCDEFGHIKLMNOPRSTUVWXYZ", 1, 0},
    {u"JQ", 1, -0.1F},
    {u"0123456789", 1, 0},
    {u"bdfhikl!?#%&", 1.02F, 0},
    {u"t", 0.9F, 0},
    {u"aceomnrsuvwxz", 0.74F, 0},
    {u"gpqy", 0.74F, -0.3F},
    {u"j", 1, -0.3F},
    {u".", 0.17F, 0},
    {u",", 0.17F, -0.17F},
    {u":", 0.7F, 0},
    {u";", 0.7F, -0.17F},
    {u"-", 0.42F, 0.28F},
    {u"_", -0.15F, -0.3F},
    {u"=", 0.65F, 0.2F},
    {u"+<>", 0.75F, 0.02F},
    {u"~", 0.55F, 0.3F},
    {u"*", 1, 0.45F},
    {u"^", 1, 0.6F},
    {u"'\"\u2018\u2019\u201C\u201D`\u00B0", 1, 0.62F},
    {u"()[]{}|/\\$@\u00A7", 1.05F, -0.17F},
    {u"\u00C4\u00D6\u00DC\u00C0\u00C1\u00C2\u00C3\u00C8\u00C9\u00CA\u00CB", 1.28F, 0},
    {u"\u00E4\u00F6\u00FC\u00E0\u00E1\u00E2\u00E3\u00E8\u00E9\u00EA\u00EB\u00DF", 1.02F, 0},
};

} // namespace

MSheetShape ShapeOfCharacter(char16_t character) {
    for (const Shapes& shapes : table)
        if (shapes.characters.find(character) != std::u16string_view::npos)
            return {shapes.top, shapes.bottom, true};
    return {0, 0, false};
}

bool StandsFlat(char16_t character) {
    return std::u16string_view(u"ABDEFHIKLMNPRTXZfhiklmnrxz1247").find(character) != std::u16string_view::npos;
}

bool IsFlatCapital(char16_t character) {
    return std::u16string_view(u"BDEFHIKLMNPRTUVWXYZ").find(character) != std::u16string_view::npos;
}

bool IsOfPartsSideBySide(char16_t character) {
    constexpr std::u16string_view characters =
        u"\"%\u201C\u201D\u201E\u201F\u00AB\u00BB\u2026\u2025\u00BC\u00BD\u00BE\u2030\u00A8\u2033\u203C\u2116"
        u"\u042B\u044B\u04F8\u04F9"                         // yeru
        u"\u010F\u013D\u013E\u013F\u0140\u0149\u0165"       // with a caron, dot or apostrophe beside them
        u"\u0386\u0388\u0389\u038A\u038C\u038E\u038F"       // with a tonos before them
        u"\u0132\u0133\u01C4\u01C5\u01C6\u01C7\u01C8\u01C9" // two letters in one
        u"\u01CA\u01CB\u01CC\u01F1\u01F2\u01F3";
    const bool polytonic = character >= 0x1F00 && character <= 0x1FFF; // capitals have their marks before them
    return polytonic || characters.find(character) != characters.npos;
}
