#include "apps/lettrino-cli/PictureSteps.h"

#include "apps/lettrino-cli/Words.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"
#include "glyphs/PictureSeries.h"
#include "imaging/MPixelBudget.h"

#include <iterator>

namespace {

constexpr const char* unreadable = "it is no picture that can be read";
constexpr const char* noRoom = "the font has 223 glyphs already";

// The refusal of a picture for its size, where that was the reason.
std::string WhyNotRead() {
    const MString refusal = TakePixelRefusal();
    return refusal.IsEmpty() ? unreadable : ToSystem(refusal);
}

// The rest of a series. A letter that is left out is not a success, as the last good font would be lost.
StepResult AddRest(MColourFont& font, const MString& path, char16_t character) {
    const std::vector<MString> leftOut = AddSuccessivePictures(font, path, character);
    if (leftOut.empty()) return {};
    const std::string file = FindExisting(leftOut[0]).value_or(std::filesystem::path()).string();
    return StepFailure{file, font.GlyphCount() == std::ssize(font.Glyphs) ? noRoom : WhyNotRead()};
}

StepResult AddPictures(Run& run, const CharacterFile& wanted, bool series) {
    const MString path = FullPath(FromSystem(wanted.file)); // a series is walked in the file's folder
    if (!FileExists(path)) return StepFailure{wanted.file, "no such file"};
    const bool isNew = !run.font;
    MColourFont& font = run.FontOrNew();
    MPicture picture(path);
    if (!picture.IsValid()) return StepFailure{wanted.file, WhyNotRead()};
    const bool added = AddPicture(font, isNew, wanted.character, picture);
    picture.Free();
    if (!added) {
        const bool full = font.ClaimSlot(wanted.character) < 0;
        return StepFailure{wanted.file, full ? noRoom : "a padding is negative"};
    }
    if (series) {
        if (StepResult failure = AddRest(font, path, wanted.character)) return failure;
    }
    font.SortGlyphs();
    if (font.Repack()) return {};
    return StepFailure{wanted.file, "the glyphs don't fit a picture that memory can hold"};
}

std::optional<StepAction> Prepare(StepArguments arguments, bool series) {
    const auto wanted = ReadCharacterFile(arguments[0]);
    if (!wanted) return std::nullopt;
    return [wanted = *wanted, series](Run& run) { return AddPictures(run, wanted, series); };
}

} // namespace

std::optional<CharacterFile> ReadCharacterFile(const std::string& text) {
    const std::size_t sign = text.find('=', 1);
    if (sign == std::string::npos || sign + 1 == text.size()) return std::nullopt;
    const auto character = ReadCharacter(std::string_view(text).substr(0, sign));
    if (!character) return std::nullopt;
    return CharacterFile{*character, text.substr(sign + 1)};
}

std::optional<StepAction> PreparePicture(StepArguments arguments) {
    return Prepare(arguments, false);
}

std::optional<StepAction> PreparePictures(StepArguments arguments) {
    return Prepare(arguments, true);
}
