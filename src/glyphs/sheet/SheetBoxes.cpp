#include "glyphs/sheet/SheetBoxes.h"

#include "glyphs/sheet/SheetPieces.h"
#include "glyphs/sheet/SheetShapes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Parts of the narrower one that stand above or below the other.
constexpr double surely = 0.45;      // one letter
constexpr double perhaps = 0.05;     // open to doubt
constexpr std::size_t mostParts = 4; // side by side in one letter

// Pieces that are one letter for sure.
struct Atom {
    Desktop::Rect box;
    std::vector<std::uint32_t> pieces;
    std::uint32_t line;
};

double Shared(const Desktop::Rect& a, const Desktop::Rect& b) {
    const std::int32_t shared = std::min(a.right, b.right) - std::max(a.left, b.left);
    return static_cast<double>(shared) / std::max(1, std::min(a.Width(), b.Width()));
}

bool Holds(const Desktop::Rect& outer, const Desktop::Rect& inner) {
    return outer.left <= inner.left && outer.right >= inner.right && outer.top <= inner.top &&
           outer.bottom >= inner.bottom;
}

std::vector<Atom> AtomsOf(const MSheet& sheet, const MSheetLineOfPieces& line, std::uint32_t number) {
    std::vector<Atom> atoms;
    for (const std::uint32_t piece : line.pieces)
        atoms.push_back({sheet.pieces[piece].box, {piece}, number});
    for (bool changed = true; changed;) {
        changed = false;
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            for (std::size_t j = i + 1; j < atoms.size();) {
                Atom& a = atoms[i];
                const Atom& b = atoms[j];
                // Two tall ones side by side that reach over each other are slanted letters.
                const std::int32_t beside =
                    std::min(a.box.bottom, b.box.bottom) - std::max(a.box.top, b.box.top);
                const bool level =
                    beside > 0.6 * std::min(a.box.Height(), b.box.Height()) &&
                    std::min(a.box.Height(), b.box.Height()) > 0.6 * std::max(a.box.Height(), b.box.Height());
                const double shared = Shared(a.box, b.box);
                if (!Holds(a.box, b.box) && !Holds(b.box, a.box) &&
                    (shared < surely || (level && shared < 0.7))) {
                    ++j;
                    continue;
                }
                a.box = Around(a.box, b.box);
                a.pieces.insert(a.pieces.end(), b.pieces.begin(), b.pieces.end());
                atoms.erase(atoms.begin() + static_cast<std::ptrdiff_t>(j));
                changed = true;
                j = i + 1;
            }
        }
    }
    std::ranges::sort(atoms, {}, [](const Atom& atom) { return atom.box.left + atom.box.right; });
    return atoms;
}

// What joining two neighbours costs, and what leaving them apart does; the lesser one is the proposal.
struct Link {
    double join = std::numeric_limits<double>::infinity();
    double apart = 0;
    bool onlyParts = false; // to be joined only for a character of parts side by side
};

Link LinkOf(const MSheet& sheet, const Atom& a, const Atom& b, double height) {
    if (a.line != b.line) return {};
    const double shared = Shared(a.box, b.box);
    const double base = sheet.lines[a.line].Base((a.box.left + b.box.right) / 2.0);
    const auto small = [&](const Desktop::Rect& box) { return box.Height() < 0.5 * height; };
    const bool alike = std::abs(a.box.Height() - b.box.Height()) <= std::max(2.0, 0.25 * a.box.Height()) &&
                       std::abs(a.box.top - b.box.top) <= std::max(2.0, 0.1 * height) &&
                       std::abs(a.box.Width() - b.box.Width()) <= std::max(2.0, 0.35 * a.box.Width());
    const double gap = b.box.left - a.box.right;
    const bool upright = a.box.Height() > a.box.Width();
    const bool high = base - std::max(a.box.bottom, b.box.bottom) > 0.35 * height;
    if (small(a.box) && small(b.box) && alike && upright && high &&
        gap <= std::max(1.9 * std::max(a.box.Width(), b.box.Width()), 0.16 * height))
        return {std::max(0.0, 0.3 * gap / height), 0.25, false}; // the strokes of a double quote
    if (shared >= perhaps) {
        // A part far smaller than its neighbour is more likely to belong to it.
        const bool part =
            std::min(a.box.Height(), b.box.Height()) < 0.7 * std::max(a.box.Height(), b.box.Height());
        return {std::max(0.02, (surely - shared) * (part ? 0.5 : 1)), shared * (part ? 0.9 : 0.3), false};
    }
    if (gap <= 0.35 * height) return {0.1 + std::max(0.0, gap / height), 0, true};
    return {};
}

void Add(MSheet& sheet, const std::vector<Atom>& atoms, std::size_t first, std::size_t end) {
    MSheetBox box;
    box.line = atoms[first].line;
    for (std::size_t i = first; i < end; ++i) {
        box.box = Around(box.box, atoms[i].box);
        box.pieces.insert(box.pieces.end(), atoms[i].pieces.begin(), atoms[i].pieces.end());
    }
    sheet.boxes.push_back(std::move(box));
}

Desktop::Rect BoxOf(const std::vector<Atom>& atoms, std::size_t first, std::size_t end) {
    Desktop::Rect box;
    for (std::size_t i = first; i < end; ++i)
        box = Around(box, atoms[i].box);
    return box;
}

void BoxesByShape(MSheet& sheet, const std::vector<Atom>& atoms, const std::vector<Link>& links) {
    for (std::size_t i = 0; i < atoms.size();) {
        std::size_t end = i + 1;
        while (end < atoms.size() && !links[end].onlyParts && links[end].join < links[end].apart)
            ++end;
        Add(sheet, atoms, i, end);
        i = end;
    }
}

// The cheapest way to hand all atoms to all characters. False if there is none.
bool BoxesByText(MSheet& sheet, const std::vector<Atom>& atoms, const std::vector<Link>& links) {
    const std::u16string_view text = sheet.text.View();
    const std::size_t count = text.size();
    constexpr double never = std::numeric_limits<double>::infinity();
    if (count > atoms.size() || count * mostParts < atoms.size()) return false;
    std::vector<double> cost((atoms.size() + 1) * (count + 1), never);
    std::vector<std::uint8_t> taken(cost.size());
    const auto at = [&](std::size_t atom, std::size_t character) { return atom * (count + 1) + character; };
    cost[0] = 0;
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        for (std::size_t c = 0; c < std::min(count, i + 1); ++c) {
            const double before = cost[at(i, c)];
            if (before == never) continue;
            double joined = i > 0 ? links[i].apart : 0;
            for (std::size_t k = 1; k <= mostParts && i + k <= atoms.size(); ++k) {
                if (k > 1) {
                    const Link& link = links[i + k - 1];
                    if (link.onlyParts && !IsOfPartsSideBySide(text[c])) break;
                    joined += link.join;
                }
                if (joined == never) break;
                const double all =
                    before + joined + SheetUnlikeness(sheet, BoxOf(atoms, i, i + k), atoms[i].line, text[c]);
                double& best = cost[at(i + k, c + 1)];
                if (all >= best) continue;
                best = all;
                taken[at(i + k, c + 1)] = static_cast<std::uint8_t>(k);
            }
        }
    }
    if (cost[at(atoms.size(), count)] == never) return false;
    std::vector<std::size_t> starts;
    for (std::size_t i = atoms.size(), c = count; c > 0; --c) {
        i -= taken[at(i, c)];
        starts.push_back(i);
    }
    std::ranges::reverse(starts);
    starts.push_back(atoms.size());
    for (std::size_t c = 0; c < count; ++c)
        Add(sheet, atoms, starts[c], starts[c + 1]);
    return true;
}

} // namespace

double SheetUnlikeness(const MSheet& sheet, const Desktop::Rect& box, std::uint32_t line, char16_t character) {
    const MSheetShape shape = ShapeOfCharacter(character);
    if (!shape.known || sheet.capHeight <= 0) return 0;
    const double base = sheet.lines[line].Base((box.left + box.right) / 2.0);
    const double top = (base - box.top) / sheet.capHeight - double{shape.top};
    const double bottom = (base - box.bottom) / sheet.capHeight - double{shape.bottom};
    // Faces differ by some tenths.
    const auto beyond = [](double off) { return std::max(0.0, std::abs(off) - 0.12); };
    return std::min(1.0, beyond(top) + beyond(bottom));
}

void MakeSheetBoxes(MSheet& sheet, const std::vector<MSheetLineOfPieces>& lines, double letterHeight) {
    std::vector<Atom> atoms;
    for (std::uint32_t i = 0; i < lines.size(); ++i) {
        const auto more = AtomsOf(sheet, lines[i], i);
        atoms.insert(atoms.end(), more.begin(), more.end());
    }
    // Most letters that stand on the line and are no small ones are as high as the capitals.
    std::vector<double> heights;
    for (const Atom& atom : atoms) {
        const double base = sheet.lines[atom.line].Base((atom.box.left + atom.box.right) / 2.0);
        if (std::abs(base - atom.box.bottom) < 0.1 * letterHeight && atom.box.Height() > 0.5 * letterHeight)
            heights.push_back(base - atom.box.top);
    }
    sheet.capHeight = letterHeight;
    if (!heights.empty()) {
        const auto place = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() * 7 / 10);
        std::ranges::nth_element(heights, place);
        sheet.capHeight = *place;
    }
    std::vector<Link> links(atoms.size());
    for (std::size_t i = 1; i < atoms.size(); ++i)
        links[i] = LinkOf(sheet, atoms[i - 1], atoms[i], letterHeight);
    sheet.boxes.clear();
    if (sheet.text.IsEmpty() || !BoxesByText(sheet, atoms, links)) BoxesByShape(sheet, atoms, links);
}
