#include "shell/MergeSettings.h"

namespace {

template<typename Value>
void Merge(Value& ours, const Value& start, const Value& theirs) {
    if (ours == start) ours = theirs;
}

template<typename Value, std::size_t Count>
void Merge(std::array<Value, Count>& ours, const std::array<Value, Count>& start,
           const std::array<Value, Count>& theirs) {
    for (std::size_t i = 0; i < Count; ++i)
        Merge(ours[i], start[i], theirs[i]);
}

template<auto... Members>
void MergeMembers(MSettings& ours, const MSettings& start, const MSettings& theirs) {
    (Merge(ours.*Members, start.*Members, theirs.*Members), ...);
}

} // namespace

void MergeSettings(MSettings& ours, const MSettings& start, const MSettings& theirs) {
    // The family, its weight and its slant are one choice.
    if (ours.FontName.Equals(start.FontName) && ours.Weight == start.Weight && ours.Italic == start.Italic) {
        ours.FontName = theirs.FontName;
        ours.Weight = theirs.Weight;
        ours.Italic = theirs.Italic;
    }
    // So is the window's place; the file's goes with it.
    if (ours.WindowRect == start.WindowRect) {
        ours.WindowRect = theirs.WindowRect;
        ours.FileWindowRect = theirs.FileWindowRect;
    }
    using S = MSettings;
    MergeMembers<&S::BackgroundColour, &S::Colour, &S::GlyphHeight, &S::ColourFont, &S::Selected, &S::Paths,
                 &S::Char, &S::PaddingTop, &S::PaddingBottom, &S::SpacingBefore, &S::SpacingAfter, &S::Trim,
                 &S::LetterCubesNames, &S::KerningText, &S::KerningStrength, &S::GameFont, &S::Keys>(
        ours, start, theirs);
}
