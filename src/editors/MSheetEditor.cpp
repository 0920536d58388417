#include "editors/MSheetEditor.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::size_t longestHistory = 500;

std::int32_t MiddleX(const Desktop::Rect& box) {
    return box.left + box.Width() / 2;
}

bool Holds(const Desktop::Rect& box, std::int32_t x, std::int32_t y) {
    return x >= box.left && x < box.right && y >= box.top && y < box.bottom;
}

} // namespace

void MSheetEditor::Use(MSheet sheet) {
    Sheet = std::move(sheet);
    history.clear();
    Edited = typed = false;
    Cut = -1;
    Selected = Sheet.boxes.empty() ? -1 : std::max(Sheet.doubtAt, 0);
}

void MSheetEditor::UseText(const MString& text) {
    if (typed) Remember();
    typed = false;
    NameSheetBoxes(Sheet, text);
    if (Sheet.doubtAt >= 0) Select(Sheet.doubtAt);
}

const MSheetBox* MSheetEditor::SelectedBox() const {
    const auto place = static_cast<std::size_t>(Selected);
    return Selected >= 0 && place < Sheet.boxes.size() ? &Sheet.boxes[place] : nullptr;
}

std::int32_t MSheetEditor::BoxAt(std::int32_t x, std::int32_t y) const {
    if (const MSheetBox* const box = SelectedBox(); box && Holds(box->box, x, y)) return Selected;
    const auto found =
        std::ranges::find_if(Sheet.boxes, [&](const MSheetBox& box) { return Holds(box.box, x, y); });
    return found == Sheet.boxes.end() ? -1 : static_cast<std::int32_t>(found - Sheet.boxes.begin());
}

void MSheetEditor::Select(std::int32_t box) {
    if (Sheet.boxes.empty()) return;
    Selected = std::clamp(box, 0, static_cast<std::int32_t>(Sheet.boxes.size()) - 1);
    Cut = -1;
}

void MSheetEditor::Step(std::int32_t boxes) {
    Select(Selected + boxes);
}

void MSheetEditor::StepLine(std::int32_t lines) {
    const MSheetBox* const from = SelectedBox();
    if (!from) return Select(Selected);
    const std::int32_t line = static_cast<std::int32_t>(from->line) + lines;
    const std::int32_t middle = MiddleX(from->box);
    std::int32_t nearest = -1;
    std::int32_t shortest = 0;
    for (std::size_t i = 0; i < Sheet.boxes.size(); ++i) {
        if (static_cast<std::int32_t>(Sheet.boxes[i].line) != line) continue;
        const std::int32_t way = std::abs(MiddleX(Sheet.boxes[i].box) - middle);
        if (nearest >= 0 && way >= shortest) continue;
        nearest = static_cast<std::int32_t>(i);
        shortest = way;
    }
    if (nearest >= 0) Select(nearest);
}

void MSheetEditor::StepToDoubt() {
    const auto count = static_cast<std::int32_t>(Sheet.boxes.size());
    // Behind the last box it begins anew.
    const std::int32_t from = SelectedBox() ? Selected : -1;
    for (std::int32_t i = 1; i <= count; ++i) {
        const std::int32_t place = (from + i) % count;
        const MSheetBox& box = Sheet.boxes[static_cast<std::size_t>(place)];
        if (box.leftOut || (!box.doubtful && box.character != 0 && place != Sheet.doubtAt)) continue;
        return Select(place);
    }
}

void MSheetEditor::Type(char16_t character) {
    if (!SelectedBox()) return;
    Remember();
    typed = true;
    MSheetBox& box = Sheet.boxes[static_cast<std::size_t>(Selected)];
    box.character = character;
    box.doubtful = box.leftOut = false;
    ForgetProblem();
    MeasureSheetLetters(Sheet);
    do {
        ++Selected;
    } while (SelectedBox() && SelectedBox()->leftOut);
    Cut = -1;
}

void MSheetEditor::Untype() {
    if (Sheet.boxes.empty()) return;
    Remember();
    typed = true;
    const MSheetBox* const box = SelectedBox();
    if (!box || box->character == 0 || box->leftOut) {
        do {
            Step(-1);
        } while (Selected > 0 && SelectedBox()->leftOut);
    }
    Sheet.boxes[static_cast<std::size_t>(Selected)].character = 0;
    ForgetProblem();
}

void MSheetEditor::Join(std::int32_t other) {
    if (!SelectedBox() || other < 0 || other == Selected ||
        other >= static_cast<std::int32_t>(Sheet.boxes.size()))
        return;
    Remember();
    const std::int32_t kept = std::min(Selected, other);
    JoinSheetBoxes(Sheet, static_cast<std::size_t>(Selected), static_cast<std::size_t>(other));
    Select(kept);
    Rename();
}

void MSheetEditor::LeaveOut() {
    if (!SelectedBox()) return;
    Remember();
    bool& leftOut = Sheet.boxes[static_cast<std::size_t>(Selected)].leftOut;
    leftOut = !leftOut;
    Rename();
}

void MSheetEditor::Move(const Desktop::Rect& edges, bool goesOn) {
    if (!SelectedBox() || edges.Width() < 1 || edges.Height() < 1) return;
    if (!goesOn) Remember();
    MoveSheetBox(Sheet, static_cast<std::size_t>(Selected), edges);
    Edited = true;
}

void MSheetEditor::Add(const Desktop::Rect& edges) {
    Remember();
    const auto place = AddSheetBox(Sheet, edges);
    if (!place) {
        history.pop_back();
        return;
    }
    Select(static_cast<std::int32_t>(*place));
    Rename();
}

void MSheetEditor::BeginCut() {
    const MSheetBox* const box = SelectedBox();
    if (!box || box->box.Width() < 2) return;
    std::vector<std::int64_t> ink(static_cast<std::size_t>(box->box.Width()));
    for (const std::uint32_t piece : box->pieces) {
        for (const MSheetRun& run : Sheet.pieces[piece].runs) {
            for (std::int32_t x = std::max(run.left, box->box.left); x < std::min(run.right, box->box.right);
                 ++x)
                ++ink[static_cast<std::size_t>(x - box->box.left)];
        }
    }
    // The outer fifths are hardly ever meant.
    const std::int32_t margin = std::max(box->box.Width() / 5, 1);
    const std::int32_t middle = MiddleX(box->box);
    Cut = middle;
    const auto inkAt = [&](std::int32_t x) { return ink[static_cast<std::size_t>(x - box->box.left)]; };
    for (std::int32_t x = box->box.left + margin; x < box->box.right - margin; ++x) {
        if (inkAt(x) < inkAt(Cut) || (inkAt(x) == inkAt(Cut) && std::abs(x - middle) < std::abs(Cut - middle)))
            Cut = x;
    }
}

void MSheetEditor::MoveCut(std::int32_t column) {
    const MSheetBox* const box = SelectedBox();
    if (Cut < 0 || !box) return;
    Cut = std::clamp(column, box->box.left + 1, box->box.right - 1);
}

void MSheetEditor::CutHere(const MPicture& picture) {
    const std::int32_t column = std::exchange(Cut, -1);
    if (column < 0 || !SelectedBox()) return;
    Remember(true);
    const std::size_t before = Sheet.boxes.size();
    SplitSheetBox(Sheet, static_cast<std::size_t>(Selected), column, picture);
    if (Sheet.boxes.size() == before) {
        history.pop_back();
    } else {
        Rename();
    }
}

void MSheetEditor::Undo() {
    Cut = -1;
    if (history.empty()) return;
    State& state = history.back();
    Sheet.boxes = std::move(state.boxes);
    if (state.pieces) Sheet.pieces = std::move(*state.pieces);
    Sheet.lines = std::move(state.lines);
    Sheet.capHeight = state.capHeight;
    Sheet.problem = std::move(state.problem);
    Sheet.doubtAt = state.doubtAt;
    Selected = state.selected;
    typed = state.typed;
    history.pop_back();
    if (!typed) NameSheetBoxes(Sheet, MString(Sheet.text)); // which may be another by now
}

void MSheetEditor::Remember(bool pieces) {
    if (history.size() == longestHistory) history.erase(history.begin());
    history.push_back({Sheet.boxes, std::nullopt, Sheet.lines, Sheet.capHeight, Sheet.problem, Sheet.doubtAt,
                       Selected, typed});
    if (pieces) history.back().pieces = Sheet.pieces;
}

void MSheetEditor::ForgetProblem() {
    Sheet.problem.clear();
    Sheet.doubtAt = -1;
}

void MSheetEditor::Rename() {
    Edited = true;
    if (typed) {
        ForgetProblem();
    } else {
        NameSheetBoxes(Sheet, MString(Sheet.text));
    }
}
