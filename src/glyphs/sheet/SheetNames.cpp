#include "foundation/MUtf8.h"
#include "glyphs/sheet/SheetBoxes.h"
#include "glyphs/sheet/SheetShapes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double doubted = 0.4; // from this unlikeness on

std::vector<std::uint32_t> Wanted(const MSheet& sheet) {
    std::vector<std::uint32_t> wanted;
    for (std::uint32_t i = 0; i < sheet.boxes.size(); ++i)
        if (!sheet.boxes[i].leftOut) wanted.push_back(i);
    return wanted;
}

std::string Quoted(char16_t character) {
    return "'" + ToSystem(MString(std::u16string_view(&character, 1))) + "'";
}

std::string Count(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// Each box against each character, with boxes and characters that stay alone; gives the names and tells the
// first place where one does.
void Align(MSheet& sheet, const std::vector<std::uint32_t>& wanted) {
    const std::u16string_view text = sheet.text.View();
    constexpr double alone = 0.45;
    const std::size_t across = text.size() + 1;
    std::vector<double> cost((wanted.size() + 1) * across);
    const auto at = [&](std::size_t i, std::size_t c) -> double& { return cost[i * across + c]; };
    const auto unlike = [&](std::size_t i, std::size_t c) {
        const MSheetBox& box = sheet.boxes[wanted[i]];
        return SheetUnlikeness(sheet, box.box, box.line, text[c]);
    };
    // From the end, so that the walk from the start meets the first doubt first.
    for (std::size_t i = wanted.size() + 1; i-- > 0;) {
        for (std::size_t c = across; c-- > 0;) {
            double best = i == wanted.size() && c + 1 == across ? 0 : std::numeric_limits<double>::infinity();
            if (i < wanted.size()) best = std::min(best, at(i + 1, c) + alone);
            if (c + 1 < across) best = std::min(best, at(i, c + 1) + alone);
            if (i < wanted.size() && c + 1 < across) best = std::min(best, at(i + 1, c + 1) + unlike(i, c));
            at(i, c) = best;
        }
    }
    std::string where;
    for (std::size_t i = 0, c = 0; i < wanted.size() || c < text.size();) {
        const bool both = i < wanted.size() && c < text.size();
        if (both && at(i, c) >= at(i + 1, c + 1) + unlike(i, c) - 1e-9) {
            sheet.boxes[wanted[i++]].character = text[c++];
            continue;
        }
        const bool extra = i < wanted.size() && at(i, c) >= at(i + 1, c) + alone - 1e-9;
        const std::size_t place = std::min(i, wanted.size() - 1);
        MSheetBox& box = sheet.boxes[wanted[place]];
        box.doubtful = true;
        if (where.empty()) {
            sheet.doubtAt = static_cast<std::int32_t>(wanted[place]);
            where = "the doubt begins in line " + std::to_string(box.line + 1) + " at " +
                    std::to_string(box.box.left) + "," + std::to_string(box.box.top) + ", ";
            if (extra) {
                where += c < text.size() ? "before " + Quoted(text[c]) : "after the last character";
            } else {
                where += "where " + Quoted(text[c]) + " should be";
            }
        }
        ++(extra ? i : c);
    }
    sheet.problem += "; " + where;
}

// Lines of the text whose number of characters isn't that of the sheet's line.
void TellLines(MSheet& sheet, const std::vector<std::uint32_t>& wanted) {
    if (sheet.textLines.size() != sheet.lines.size() || sheet.lines.size() < 2) return;
    std::vector<std::size_t> found(sheet.lines.size());
    for (const std::uint32_t i : wanted)
        ++found[sheet.boxes[i].line];
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (found[i] == sheet.textLines[i]) continue;
        sheet.problem += "; line " + std::to_string(i + 1) + " has " + Count(found[i], "letter") + " for " +
                         Count(sheet.textLines[i], "character");
        return;
    }
}

using Chooses = bool (*)(char16_t);

// Where a box touches the ground: the middle of its ink in the last row that has some.
MSheetPoint FootOf(const MSheet& sheet, const MSheetBox& box) {
    double sum = 0;
    double count = 0;
    std::int32_t last = -1;
    const auto use = [&](const MSheetRun& run) {
        const std::int32_t left = std::max(run.left, box.box.left);
        const std::int32_t right = std::min(run.right, box.box.right);
        if (left >= right || run.y >= box.box.bottom || run.y < std::max(last, box.box.top)) return;
        if (run.y > last) sum = count = 0;
        last = run.y;
        sum += (right - left) * (left + right) / 2.0;
        count += right - left;
    };
    const auto useAll = [&](const MSheetPiece& piece) { std::ranges::for_each(piece.runs, use); };
    for (const std::uint32_t piece : box.pieces)
        useAll(sheet.pieces[piece]);
    // Drawn on the sheet: who else has ink there hardly matters for its last row.
    if (box.pieces.empty()) std::ranges::for_each(sheet.pieces, useAll);
    if (count == 0) return {(box.box.left + box.box.right) / 2.0, static_cast<double>(box.box.bottom)};
    return {sum / count, last + 1.0};
}

std::vector<MSheetPoint> Feet(const MSheet& sheet, std::uint32_t line, Chooses chooses) {
    std::vector<MSheetPoint> points;
    for (const MSheetBox& box : sheet.boxes)
        if (box.line == line && !box.leftOut && chooses(box.character)) points.push_back(FootOf(sheet, box));
    return points;
}

double Spread(const std::vector<MSheetPoint>& points) {
    const auto [first, last] = std::ranges::minmax(points, {}, &MSheetPoint::x);
    return last.x - first.x;
}

void MeasureLines(MSheet& sheet) {
    constexpr std::size_t enough = 6;
    constexpr double wandering = 0.012; // a slope that differs so from the others is the line's own
    const double near = std::max(1.5, 0.04 * sheet.capHeight);
    const Chooses standing = [](char16_t character) {
        const MSheetShape shape = ShapeOfCharacter(character);
        return shape.known && shape.bottom == 0;
    };
    std::vector<std::vector<MSheetPoint>> feet;
    std::vector<std::optional<MSheetLine>> own(sheet.lines.size());
    double slope = 0;
    double weight = 0;
    for (std::uint32_t i = 0; i < sheet.lines.size(); ++i) {
        feet.push_back(Feet(sheet, i, StandsFlat));
        if (feet.back().size() >= enough) {
            own[i] = FitSheetLine(feet.back(), near, std::nullopt);
            // Long lines tell a slope far better than short ones.
            const double trust =
                static_cast<double>(feet.back().size()) * Spread(feet.back()) * Spread(feet.back());
            slope += own[i]->slope * trust;
            weight += trust;
        }
        if (feet.back().empty()) feet.back() = Feet(sheet, i, standing);
    }
    for (std::size_t i = 0; i < sheet.lines.size(); ++i) {
        if (feet[i].empty()) continue;
        const double all = weight > 0 ? slope / weight : sheet.lines[i].slope;
        const bool wanders = own[i] && std::abs(own[i]->slope - all) > wandering;
        sheet.lines[i] = wanders ? *own[i] : FitSheetLine(feet[i], near, all);
        // The corner of a turned foot ends somewhere within its last row.
        if (sheet.lines[i].slope != 0) sheet.lines[i].baseline -= 0.5;
    }
}

double MedianHeight(const MSheet& sheet, Chooses chooses) {
    std::vector<double> heights;
    for (const MSheetBox& box : sheet.boxes) {
        if (box.leftOut || !chooses(box.character)) continue;
        const double base = sheet.lines[box.line].Base((box.box.left + box.box.right) / 2.0);
        heights.push_back(base - box.box.top);
    }
    if (heights.empty()) return 0;
    const auto middle = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() / 2);
    std::ranges::nth_element(heights, middle);
    return *middle;
}

} // namespace

void MeasureSheetLetters(MSheet& sheet) {
    MeasureLines(sheet);
    const std::array<Chooses, 3> choices{[](char16_t c) { return c == u'A'; }, IsFlatCapital,
                                         [](char16_t c) { return c == u'l' || c == u'h' || c == u'k'; }};
    for (const Chooses chooses : choices) {
        const double height = MedianHeight(sheet, chooses);
        if (height < 1) continue;
        sheet.capHeight = height;
        break;
    }
    for (MSheetLine& line : sheet.lines)
        line.capHeight = sheet.capHeight;
}

void NameBoxes(MSheet& sheet) {
    sheet.problem.clear();
    sheet.doubtAt = -1;
    for (MSheetBox& box : sheet.boxes) {
        box.character = 0;
        box.doubtful = false;
    }
    if (sheet.text.IsEmpty()) return;
    const std::vector<std::uint32_t> wanted = Wanted(sheet);
    const std::u16string_view text = sheet.text.View();
    if (wanted.size() != text.size()) {
        sheet.problem = Count(wanted.size(), "letter") + (wanted.size() == 1 ? " was" : " were") +
                        " found on the sheet, but the text has " + Count(text.size(), "character");
        if (wanted.empty() || wanted.size() > 4 * text.size() + 64) return;
        TellLines(sheet, wanted);
        Align(sheet, wanted);
        return;
    }
    for (std::size_t i = 0; i < text.size(); ++i)
        sheet.boxes[wanted[i]].character = text[i];
    MeasureSheetLetters(sheet);
    for (MSheetBox& box : sheet.boxes) {
        if (box.leftOut) continue;
        box.doubtful = SheetUnlikeness(sheet, box.box, box.line, box.character) > doubted;
    }
}
