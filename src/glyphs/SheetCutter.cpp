#include "glyphs/SheetCutter.h"

#include "foundation/MUtf8.h"
#include "glyphs/sheet/SheetBoxes.h"
#include "glyphs/sheet/SheetCuts.h"
#include "glyphs/sheet/SheetGrid.h"
#include "glyphs/sheet/SheetPieces.h"
#include "glyphs/sheet/WorkingPicture.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>

namespace {

constexpr std::array<std::int32_t, 5> harderThresholds{48, 80, 112, 144, 176};

void TakeText(MSheet& sheet, const MString& text) {
    std::u16string kept;
    sheet.textLines = {0};
    for (const char16_t unit : text.View()) {
        if (unit == u'\n' && sheet.textLines.back() > 0) sheet.textLines.push_back(0);
        if (unit < FirstCharacter || unit == 0xA0 || unit == 0xFEFF) continue;
        kept.push_back(unit);
        ++sheet.textLines.back();
    }
    if (sheet.textLines.back() == 0) sheet.textLines.pop_back();
    sheet.text = MString(kept);
}

// A text in which a font can be made, or the reason why it is none.
std::string WhyNotText(const MSheet& sheet) {
    std::set<char16_t> seen;
    for (const char16_t unit : sheet.text.View()) {
        if (unit >= 0xD800 && unit <= 0xDFFF)
            return "the text has a character beyond U+FFFF, which fonts can't have";
        if (!seen.insert(unit).second)
            return "the text has the character '" + ToSystem(MString(std::u16string_view(&unit, 1))) + "' (" +
                   CodePointText(unit) + ") twice";
    }
    if (seen.size() > MColourFont::SlotCount) return "the text has more characters than the 223 of a font";
    return {};
}

// How far the ink of a letter is from the ground: the middle of all that are no small ones.
std::uint8_t UsualStrength(const MSheet& sheet, double height) {
    std::vector<std::uint8_t> strengths;
    for (const MSheetPiece& piece : sheet.pieces)
        if (piece.box.Height() > 0.5 * height) strengths.push_back(piece.strongest);
    if (strengths.empty()) return 0;
    const auto middle = strengths.begin() + static_cast<std::ptrdiff_t>(strengths.size() / 2);
    std::ranges::nth_element(strengths, middle);
    return *middle;
}

// Puts aside what is too small to be a part of a letter, and small pieces that are too faint: what JPEG leaves
// around strokes.
void DropSpecks(MSheet& sheet) {
    const double height = SheetLetterHeight(sheet.pieces);
    const double least = std::max(2.0, 0.045 * height);
    const int faint = UsualStrength(sheet, height) / 5;
    const auto isPart = [&](const MSheetPiece& piece) {
        if (piece.strongest < faint && piece.box.Height() < 0.5 * height) return false;
        return std::max(piece.box.Width(), piece.box.Height()) >= least &&
               static_cast<double>(piece.area) >= std::max(3.0, 0.0015 * height * height);
    };
    const auto specks = std::stable_partition(sheet.pieces.begin(), sheet.pieces.end(), isPart);
    sheet.specks.assign(std::move_iterator(specks), std::move_iterator(sheet.pieces.end()));
    sheet.pieces.erase(specks, sheet.pieces.end());
}

void FindLetters(MSheet& sheet) {
    const double height = SheetLetterHeight(sheet.pieces);
    const auto lines = FindSheetLines(sheet.pieces, height);
    sheet.lines.clear();
    for (const MSheetLineOfPieces& line : lines)
        sheet.lines.push_back(line.line);
    MakeSheetBoxes(sheet, lines, height);
}

// Letters that touch: the widest pieces are looked at again, with less and less ink, until there are enough.
void SplitTouching(MSheet& sheet, const MPicture& picture) {
    const auto wanted = static_cast<std::size_t>(sheet.text.length);
    std::vector<std::uint32_t> widest(sheet.pieces.size());
    std::iota(widest.begin(), widest.end(), 0U);
    std::ranges::sort(widest, std::ranges::greater{},
                      [&](std::uint32_t i) { return sheet.pieces[i].box.Width(); });
    for (const std::uint32_t place : widest) {
        if (sheet.boxes.size() >= wanted) return;
        const MSheetPiece piece = sheet.pieces[place];
        if (piece.box.Width() < 0.5 * sheet.capHeight) return;
        for (const std::int32_t threshold : harderThresholds) {
            if (threshold <= sheet.ground.threshold) continue;
            auto parts = SplitSheetPiece(picture, sheet.ground, piece, threshold);
            if (parts.size() < 2) continue;
            const std::size_t before = sheet.boxes.size();
            MSheet trial = sheet;
            trial.pieces[place] = parts[0];
            trial.pieces.insert(trial.pieces.end(), parts.begin() + 1, parts.end());
            FindLetters(trial);
            if (trial.boxes.size() <= before || trial.boxes.size() > wanted) continue;
            sheet = std::move(trial);
            break;
        }
    }
}

Desktop::Rect OnSheet(const MSheet& sheet, const Desktop::Rect& edges) {
    return {std::max(edges.left, 0), std::max(edges.top, 0), std::min(edges.right, sheet.width),
            std::min(edges.bottom, sheet.height)};
}

void Remeasure(MSheet& sheet, MSheetBox& box) {
    box.box = {};
    for (const std::uint32_t piece : box.pieces)
        box.box = Around(box.box, sheet.pieces[piece].box);
}

} // namespace

MSheet FindSheetLetters(const MPicture& picture, const MString& text, const MSheetWishes& wishes) {
    MSheet sheet;
    TakeText(sheet, text);
    sheet.problem = WhyNotText(sheet);
    if (!sheet.problem.empty()) return sheet;
    if (!picture.IsValid()) {
        sheet.problem = "there is no picture";
        return sheet;
    }
    const WorkingPicture working(picture);
    if (!working.view.IsValid()) {
        sheet.problem = "there is not enough memory for the sheet";
        return sheet;
    }
    sheet.width = static_cast<std::int32_t>(picture.Width);
    sheet.height = static_cast<std::int32_t>(picture.Height);
    if (!FindSheetGround(working.view, wishes, sheet.ground, sheet.problem)) return sheet;
    auto pieces = FindSheetPieces(working.view, sheet.ground, wishes.owner);
    if (!pieces) {
        sheet.problem =
            "the sheet has too much ink that is apart: it is no sheet of letters, or its ground is another";
        return sheet;
    }
    sheet.pieces = std::move(*pieces);
    if (sheet.pieces.empty()) {
        sheet.problem = "the sheet is empty: nothing on it differs from its ground";
        return sheet;
    }
    if (wishes.grid) {
        if (UseSheetGrid(sheet, *wishes.grid)) {
            NameBoxes(sheet);
        } else {
            sheet.pieces.clear();
            sheet.problem = "far more cells of this size have ink than a font has letters";
        }
        return sheet;
    }
    DropSpecks(sheet);
    if (sheet.pieces.size() > MostSheetPieces || sheet.pieces.empty()) {
        sheet.problem = sheet.pieces.empty()
                            ? "the sheet has only specks"
                            : std::to_string(sheet.pieces.size()) +
                                  " pieces of ink were found, far more than the letters of a font have";
        if (!sheet.text.IsEmpty())
            sheet.problem += ", for " + std::to_string(sheet.text.length) + " characters";
        sheet.pieces.clear();
        return sheet;
    }
    FindLetters(sheet);
    const auto wanted = static_cast<std::size_t>(sheet.text.length);
    if (wanted > 0 && sheet.boxes.size() != wanted) {
        if (const auto grid = FindSheetGrid(sheet, SheetLetterHeight(sheet.pieces))) {
            UseSheetGrid(sheet, *grid);
        } else if (sheet.boxes.size() < wanted) {
            SplitTouching(sheet, working.view);
        }
    }
    NameBoxes(sheet);
    return sheet;
}

void JoinSheetBoxes(MSheet& sheet, std::size_t box, std::size_t other) {
    if (box >= sheet.boxes.size() || other >= sheet.boxes.size() || box == other) return;
    MSheetBox& kept = sheet.boxes[std::min(box, other)];
    const MSheetBox gone = sheet.boxes[std::max(box, other)];
    kept.pieces.insert(kept.pieces.end(), gone.pieces.begin(), gone.pieces.end());
    kept.box = Around(kept.box, gone.box);
    kept.byHand = kept.byHand || gone.byHand;
    kept.doubtful = false;
    sheet.boxes.erase(sheet.boxes.begin() + static_cast<std::ptrdiff_t>(std::max(box, other)));
}

void SplitSheetBox(MSheet& sheet, std::size_t box, std::int32_t x, const MPicture& picture) {
    if (box >= sheet.boxes.size()) return;
    MSheetBox left = sheet.boxes[box];
    MSheetBox right = left;
    left.doubtful = false;
    right.doubtful = false;
    right.character = 0;
    const auto place = sheet.boxes.begin() + static_cast<std::ptrdiff_t>(box);
    if (left.byHand) {
        if (x <= left.box.left || x >= left.box.right) return;
        left.box.right = x;
        right.box.left = x;
        right.pieces.clear(); // what of them lies in it is its own all the same
        *place = left;
        sheet.boxes.insert(place + 1, right);
        return;
    }
    left.pieces.clear();
    right.pieces.clear();
    const WorkingPicture working(picture);
    if (!working.view.IsValid()) return;
    std::vector<MSheetPiece> pieces = sheet.pieces;
    for (const std::uint32_t piece : sheet.boxes[box].pieces) {
        MSheetSides sides = CutSheetPiece(working.view, sheet.ground, pieces[piece], x);
        const bool both = sides.left.area > 0 && sides.right.area > 0;
        if (sides.left.area > 0) left.pieces.push_back(piece);
        if (sides.right.area > 0)
            right.pieces.push_back(both ? static_cast<std::uint32_t>(pieces.size()) : piece);
        pieces[piece] = sides.left.area > 0 ? std::move(sides.left) : sides.right;
        if (both) pieces.push_back(std::move(sides.right));
    }
    if (left.pieces.empty() || right.pieces.empty()) return;
    sheet.pieces = std::move(pieces);
    Remeasure(sheet, left);
    Remeasure(sheet, right);
    *place = left;
    sheet.boxes.insert(place + 1, right);
}

void MoveSheetBox(MSheet& sheet, std::size_t box, const Desktop::Rect& edges) {
    const Desktop::Rect inside = OnSheet(sheet, edges);
    if (box >= sheet.boxes.size() || inside.IsEmpty()) return;
    sheet.boxes[box].box = inside;
    sheet.boxes[box].byHand = true;
}

std::optional<std::size_t> AddSheetBox(MSheet& sheet, const Desktop::Rect& edges) {
    const Desktop::Rect inside = OnSheet(sheet, edges);
    if (inside.IsEmpty() || sheet.lines.empty()) return std::nullopt;
    const double x = (inside.left + inside.right) / 2.0;
    const double y = (inside.top + inside.bottom) / 2.0;
    const auto nearest = std::ranges::min_element(sheet.lines, {}, [&](const MSheetLine& line) {
        return std::abs(y - line.Base(x) + line.capHeight / 2);
    });
    MSheetBox box;
    box.box = inside;
    box.line = static_cast<std::uint32_t>(nearest - sheet.lines.begin());
    box.byHand = true;
    const auto behind = std::ranges::find_if(sheet.boxes, [&](const MSheetBox& other) {
        return other.line > box.line || (other.line == box.line && other.box.left + other.box.right > 2 * x);
    });
    const auto place = static_cast<std::size_t>(behind - sheet.boxes.begin());
    sheet.boxes.insert(behind, box);
    return place;
}

void NameSheetBoxes(MSheet& sheet, const MString& text) {
    TakeText(sheet, text);
    const std::string reason = WhyNotText(sheet);
    NameBoxes(sheet);
    if (!reason.empty()) sheet.problem = reason;
}
