#include "editors/LetterCubeNames.h"

#include "document/MSettings.h"

#include <string>

void StoreLetterCubeNames(const MString& text) {
    constexpr std::size_t longest = 1000;
    std::u16string names;
    for (const char16_t unit : text.View()) {
        if (unit == u'\n') names += u'\r';
        names += unit;
    }
    Settings->LetterCubesNames = MString(std::u16string_view(names).substr(0, longest));
}
