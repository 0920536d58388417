// Kerning by the white that the eye sees between two letters. GenerateKerning lets ink touch in its closest
// row, which suits titles of cut-out shapes; this is for running text.
//
// Between two glyphs stands, in each row, the white w = behind(left) + before(right) (MInkProfile.h), at most
// 0.45 em, since what lies deeper in a shape no longer counts as space between letters. Near edges weigh more
// than far ones:
//
//     F(g) = mean over the rows of 1 / (w + g + 0.02 em)^2
//
// is how dense a pair is when it is moved by g. Each pair is moved to the density of upright and round letters
// as they stand in the font (H I N E O U, n o h u i m): their side bearings were drawn to be right. The rows
// are those from the capitals' top to the base line; between two small letters, from the small letters' top.
// For marks, figures and other characters the density wanted is the one that they have beside those letters.
//
// Designers close a part of that distance only, leave small ones, and hardly kern a capital behind a small
// letter, which no running text has. So the amount is strength * g + slack where that is negative, and none
// elsewhere, with a strength and a slack for each kind of pair. These were fitted to the kerning of 13 faces
// (docs/kerning.md has them, and what came of it for 12 others), or are to the user's own model pairs. Em is
// the capitals' height divided by 0.7.
#pragma once

#include "document/MColourFont.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

struct MOpticalOptions {
    float strength = 1;   // multiplies every amount
    bool figures = false; // kerns figures with one another, which gives up their equal widths
};

class MOpticalKerning {
public:
    enum class State { Ready, NoInk, NoControlLetters };
    State state = State::NoInk;

    // Measures all pairs of the font's glyphs, and keeps nothing of the font.
    explicit MOpticalKerning(const MColourFont& font);

    // The pairs whose amount is not 0, by the order of the slots. `models` are pairs that the user has fixed,
    // amounts of 0 among them: the rest follows them by least squares, and they themselves stand in the result
    // as they are. None unless the state is Ready, but the models.
    std::vector<MKerningPair> Pairs(const MOpticalOptions& options, std::span<const MKerningPair> models) const;

    // How far the pair stands from the density of the control letters, in pixels; positive where it is too
    // loose. 0 for pairs that are not measured.
    float Looseness(char16_t left, char16_t right) const;

private:
    // Of a pair, by the cases of its letters.
    enum Kind : std::uint8_t { Capitals, CapitalSmall, SmallCapital, Smalls, Marks, Figures, Unkerned };
    struct Fit {
        float strength;
        float slack; // in em
    };
    using Fits = std::array<Fit, Unkerned>;

    std::vector<char16_t> characters;
    std::vector<float> distances; // in em, by left and right; negative where the pair is too loose
    float em = 0;                 // pixels

    static const Fits designers;

    class Target;
    static Kind KindOf(char16_t left, char16_t right);
    std::size_t IndexOf(char16_t character) const; // characters.size() if it is not measured
    Fits FitTo(std::span<const MKerningPair> models) const;
};
