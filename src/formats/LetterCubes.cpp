#include "formats/LetterCubes.h"

#include <algorithm>

namespace {

constexpr std::size_t capitals = 26;

bool IsCapital(char16_t unit) {
    return unit >= u'A' && unit <= u'Z';
}

std::array<bool, capitals> UsedCapitals(std::span<const MString> names) {
    std::array<bool, capitals> used{};
    for (const MString& name : names) {
        for (const char16_t letter : name.View()) {
            if (IsCapital(letter)) used[letter - u'A'] = true;
        }
    }
    return used;
}

} // namespace

std::vector<MString> MLetterCubes::ReadNames(const MString& list) {
    if (list.IsEmpty()) return {};
    std::vector<MString> names(1);
    for (const char16_t unit : list.View()) {
        if (unit == u' ') continue;
        if (unit != u'\r' && unit != u'\n') {
            names.back() += unit;
        } else if (!names.back().IsEmpty()) {
            names.emplace_back();
        }
    }
    return names;
}

MLetterCubes::MLetterCubes(std::vector<MString> upperCaseNames) : names(std::move(upperCaseNames)) {
    for (MString& name : names) {
        if (!name.IsEmpty()) std::sort(name.chars, name.chars + name.length);
        Assign(name);
    }
    FillEmptyFaces();
}

void MLetterCubes::Assign(const MString& name) {
    std::array<bool, Most> taken{};
    for (const char16_t letter : name.View()) {
        // Every free cube that bears the letter is taken, not just one: a second occurrence of the letter then
        // finds none of them, and there may be more cubes than a minimum would be.
        bool found = false;
        for (std::size_t i = 0; i < cubes.size(); ++i) {
            if (taken[i] || std::ranges::find(cubes[i], letter) == cubes[i].end()) continue;
            taken[i] = found = true;
        }
        for (std::size_t i = 0; i < cubes.size() && !found; ++i) {
            const auto empty = std::ranges::find(cubes[i], u'\0');
            if (taken[i] || empty == cubes[i].end()) continue;
            *empty = letter;
            taken[i] = found = true;
        }
        if (found || cubes.size() == Most) continue;
        taken[cubes.size()] = true;
        cubes.push_back({letter});
    }
}

// The turn goes on across all faces and begins at "B". With all capitals in use, 27 steps lead to the next one.
void MLetterCubes::FillEmptyFaces() {
    const auto used = UsedCapitals(names);
    std::size_t turn = 0;
    for (Cube& cube : cubes) {
        for (char16_t& face : cube) {
            if (face != 0) continue;
            for (std::size_t step = 0; step <= capitals; ++step) {
                turn = (turn + 1) % capitals;
                if (!used[turn]) break;
            }
            face = static_cast<char16_t>(u'A' + turn);
        }
    }
}

std::vector<char16_t> MLetterCubes::UnusedCapitals() const {
    const auto used = UsedCapitals(names);
    std::vector<char16_t> unused;
    for (std::size_t i = 0; i < capitals; ++i) {
        if (!used[i]) unused.push_back(static_cast<char16_t>(u'A' + i));
    }
    return unused;
}
