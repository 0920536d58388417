// Which letters stand on which cubes, so that every name of a list can be laid out with them.
#pragma once

#include "foundation/MString.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

class MLetterCubes {
public:
    static constexpr std::size_t Most = 100; // further letters are dropped
    using Cube = std::array<char16_t, 6>;    // by face; 0 for an empty one

    std::vector<MString> names; // as they are spelt with cubes: capitals in rising order
    std::vector<Cube> cubes;

    // A list of names, one to a line; blanks inside a line are dropped, and so are empty lines, but for one
    // after the last line break. None for an empty list.
    static std::vector<MString> ReadNames(const MString& list);

    // Takes the names in order, and of each its letters in order: a free cube with the letter, else the first
    // free one with an empty face, else a new cube. Faces left over take the capitals that no name uses, in
    // turn.
    explicit MLetterCubes(std::vector<MString> upperCaseNames);

    // The capitals "A" to "Z" that no name uses.
    std::vector<char16_t> UnusedCapitals() const;

private:
    void Assign(const MString& name);
    void FillEmptyFaces();
};
