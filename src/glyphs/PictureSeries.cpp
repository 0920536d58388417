#include "glyphs/PictureSeries.h"

#include "document/MSettings.h"
#include "foundation/MFolders.h"
#include "foundation/Product.h"

#include <algorithm>

namespace {

constexpr std::int32_t firstCode = 33;
constexpr std::int32_t lastCode = 65535;

MString BareName(const MString& path) {
    MString name = FileNameOf(path);
    name.KeepBefore(".");
    return name;
}

std::u16string_view DigitsAtEnd(std::u16string_view name) {
    const auto isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
    const auto start = std::find_if_not(name.rbegin(), name.rend(), isDigit).base();
    return name.substr(static_cast<std::size_t>(start - name.begin()));
}

} // namespace

bool CharacterFromFileName(const MString& path, MString& character) {
    const MString name = BareName(path);
    if (name.IsEmpty()) return false;
    const std::u16string_view digits = DigitsAtEnd(name.View());
    char16_t unit = name.GetChar(name.length - 1);
    if (name.length > 1 && digits.size() >= 2) {
        const std::int32_t code = MString(digits).ToInt();
        if (code < firstCode || code > lastCode) return false;
        unit = static_cast<char16_t>(code);
    }
    character = MString(std::u16string_view(&unit, 1));
    return true;
}

bool NextSuccessivePicture(MString& path, char16_t& character) {
    const MString name = BareName(path);
    if (name.IsEmpty() || character == lastCode) return false;
    const auto next = static_cast<char16_t>(character + 1);
    MString nextName = name;
    if (name.EndsWith(character)) {
        nextName.SetChar(name.length - 1, next);
    } else {
        const std::u16string_view digits = DigitsAtEnd(name.View());
        if (digits.empty() || MString(digits).ToInt() != character) return false;
        nextName.Truncate(name.length - static_cast<std::int32_t>(digits.size()));
        nextName += MString(next);
    }
    path = JoinPath(FolderOf(path), nextName + "." + ExtensionOf(path));
    character = next;
    return FileExists(path);
}

std::vector<MString> AddSuccessivePictures(MColourFont& font, MString path, char16_t character) {
    std::vector<MString> leftOut;
    while (NextSuccessivePicture(path, character)) {
        if (!font.AddPictureGlyph(character, path, Settings->SpacingBefore, Settings->SpacingAfter,
                                  Settings->Trim))
            leftOut.push_back(path);
    }
    return leftOut;
}

bool AddPicture(MColourFont& font, bool isNew, char16_t character, const MPicture& picture) {
    if (isNew) Settings->GlyphHeight = static_cast<std::int32_t>(picture.Height);
    return font.AddPictureGlyph(character, picture, Settings->SpacingBefore, Settings->SpacingAfter,
                                Settings->Trim);
}

void AddChosenPictures(MColourFont& font, bool isNew) {
    const MString& path = Settings->Path(MPathKind::GlyphPicture);
    const auto character = static_cast<char16_t>(Settings->Char);
    if (MPicture picture(path); picture.IsValid()) {
        AddPicture(font, isNew, character, picture);
        picture.Free();
    }
    const auto answer =
        Desktop::ShowMessage(font.Owner, "Would you like to add all successive pictures as well?", ProductName,
                             Desktop::Buttons::YesNo, Desktop::Icon::Question);
    if (answer == Desktop::Answer::Yes) AddSuccessivePictures(font, path, character);
    font.SortGlyphs();
    font.Repack();
}
