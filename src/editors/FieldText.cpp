#include "editors/FieldText.h"

char16_t FieldCharacter(const MString& text) {
    return text.GetChar(0);
}

MString CharacterText(char16_t character) {
    return MString(std::u16string_view(&character, 1));
}

std::int32_t FieldNumber(const MString& text) {
    constexpr std::int32_t longest = 15;
    return ParseInt(MString(text.Chars(), 0, longest - 1).Chars());
}

void ShowNumber(MString& text, std::int32_t value) {
    if (FieldNumber(text) != value) text = MString(value);
}
