#include "editors/MAddSheet.h"

#include "document/ChooseFile.h"
#include "editors/FieldText.h"
#include "foundation/MFolders.h"
#include "glyphs/sheet/SheetPhoto.h"
#include "imaging/MPixelBudget.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

constexpr float gripSize = 5;    // pixels of an ordinary screen, on both sides of an edge
constexpr float meantToDrag = 4; // from this way on a press is no mere click
constexpr std::int32_t largestCell = 4096;

MString Quoted(char16_t character) {
    return "\"" + CharacterText(character) + "\"";
}

MString Count(std::size_t count, const char* one, const char* more) {
    return MString(static_cast<std::int32_t>(count)) + (count == 1 ? one : more);
}

// A clause as the core tells it, as a sentence.
MString Sentence(const std::string& clause) {
    MString text = FromSystem(clause);
    text.SetChar(0, ToUpperUnit(text.GetChar(0)));
    return text + ".";
}

Desktop::Rect Between(MPoint a, MPoint b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + 1, std::max(a.y, b.y) + 1};
}

bool IsIncluded(const MSheetBox& box) {
    return !box.leftOut && box.character != 0;
}

} // namespace

MAddSheet::MAddSheet() : Path(Settings->Path(MPathKind::PictureSheet)) {
    if (FileExists(Path)) Load(CurrentFont ? CurrentFont->Owner : nullptr);
}

MAddSheet::~MAddSheet() {
    Forget();
}

void MAddSheet::Forget() {
    picture.Free();
    shown.Free();
    shownPart = {};
}

bool MAddSheet::Browse() {
    const MString chosen = ChooseFile(Window, MPathKind::PictureSheet);
    if (chosen.IsEmpty()) return false;
    Path = chosen;
    Load(Window);
    return true;
}

void MAddSheet::PathChanged(const MString& path) {
    if (path.Equals(Path)) return;
    Path = path;
    Load(Window);
}

void MAddSheet::TextChanged(const MString& text) {
    if (text.Equals(Text)) return;
    Text = text;
    // Half a megapixel takes some 40 ms, and keys that wait longer are felt.
    constexpr std::uint64_t slow = std::uint64_t{1} << 19;
    if (Editor.Edited || std::uint64_t{picture.Width} * picture.Height >= slow) {
        Editor.UseText(Text);
        unsearched = true;
    } else {
        Find(Window);
    }
}

void MAddSheet::TextDone() {
    if (unsearched && !Editor.Edited) Find(Window);
}

void MAddSheet::ChoicesChanged() {
    Find(Window);
}

void MAddSheet::Load(Desktop::WindowHandle progressOwner) {
    Forget();
    unread = MString();
    RestorePixelBudget(); // each choice counts alone
    if (FileExists(Path)) {
        MPicture read = ReadSheetPicture(Path);
        picture = read.Format == FormatRGBA8
                      ? read
                      : MPicture(read, read.Width, read.Height, FormatRGBA8, false, false);
        if (picture.Pixels != read.Pixels) read.Free();
        const MString refusal = TakePixelRefusal();
        if (!picture.IsValid())
            unread = refusal.IsEmpty() ? "This file is no picture that can be read."
                                       : "The picture was not read: " + refusal;
    } else if (!Path.IsEmpty()) {
        unread = "There is no such file.";
    }
    Lens.ShowAll(Area, static_cast<std::int32_t>(picture.Width), static_cast<std::int32_t>(picture.Height));
    Find(progressOwner);
}

void MAddSheet::Find(Desktop::WindowHandle progressOwner) {
    drag = Drag::Nothing;
    unsearched = false;
    if (!picture.IsValid()) return Editor.Use({});
    MSheetWishes wishes{Ground, GroundColour, std::nullopt, progressOwner};
    const MSheetGrid grid{FieldNumber(CellWidth), FieldNumber(CellHeight)};
    if (std::min(grid.width, grid.height) > 0 && std::max(grid.width, grid.height) <= largestCell)
        wishes.grid = grid;
    MSheet sheet = FindSheetLetters(picture, Text, wishes);
    // A text that no font can have, as one with a character twice, hides no box.
    if (sheet.boxes.empty() && !Text.IsEmpty()) {
        sheet = FindSheetLetters(picture, {}, wishes);
        if (!sheet.boxes.empty()) NameSheetBoxes(sheet, Text);
    }
    Editor.Use(std::move(sheet));
}

std::int32_t MAddSheet::Scaled(float size) const {
    return std::max(1, static_cast<std::int32_t>(std::lround(size * Density)));
}

MSheetGrip MAddSheet::GripAt(MPoint point) const {
    const MSheetBox* const box = Editor.SelectedBox();
    if (!box || Lens.Scale() <= 0) return {};
    const Desktop::Rect place = Lens.ToDialog(box->box);
    const std::int32_t reach = Scaled(gripSize);
    if (point.x < place.left - reach || point.x > place.right + reach || point.y < place.top - reach ||
        point.y > place.bottom + reach)
        return {};
    // Of a box that is hardly larger than its edges' reach the middle third stays for all of it.
    const std::int32_t across = std::min(reach, place.Width() / 3);
    const std::int32_t down = std::min(reach, place.Height() / 3);
    MSheetGrip found{point.x < place.left + across, point.y < place.top + down, point.x >= place.right - across,
                     point.y >= place.bottom - down, false};
    found.inside = !found.left && !found.top && !found.right && !found.bottom;
    return found;
}

void MAddSheet::Pressed(MPoint point, bool join) {
    drag = Drag::Nothing;
    dragged = false;
    pressed = point;
    const MPoint at = Lens.ToPicture(point);
    const std::int32_t box = Editor.BoxAt(at.x, at.y);
    if (join) return Editor.Join(box);
    if (Editor.Cut >= 0 && box == Editor.Selected) {
        drag = Drag::Cut;
        return Editor.MoveCut(at.x);
    }
    grip = GripAt(point);
    // Another box that reaches under an edge's grip is meant itself.
    const bool other = box >= 0 && box != Editor.Selected;
    const bool edge = !other && (grip.left || grip.top || grip.right || grip.bottom);
    if (!edge && box < 0) {
        drag = Drag::NewBox;
        return;
    }
    if (!edge) {
        Editor.Select(box);
        grip = {.left = false, .top = false, .right = false, .bottom = false, .inside = true};
    }
    if (const MSheetBox* const held = Editor.SelectedBox()) {
        drag = Drag::Box;
        before = held->box;
    }
}

void MAddSheet::Dragged(MPoint point) {
    const MPoint from = Lens.ToPicture(pressed);
    const MPoint to = Lens.ToPicture(point);
    if (drag == Drag::Cut) return Editor.MoveCut(to.x);
    const std::int32_t way = std::max(std::abs(point.x - pressed.x), std::abs(point.y - pressed.y));
    if (drag == Drag::Nothing || (!dragged && way < Scaled(meantToDrag))) return;
    if (drag == Drag::NewBox) {
        if (dragged) return Editor.Move(Between(from, to), true);
        const std::size_t count = Editor.Sheet.boxes.size();
        Editor.Add(Between(from, to));
        if (Editor.Sheet.boxes.size() == count) drag = Drag::Nothing;
    } else {
        const MPoint by{to.x - from.x, to.y - from.y};
        Desktop::Rect edges = before;
        if (grip.left || grip.inside) edges.left += by.x;
        if (grip.right || grip.inside) edges.right += by.x;
        if (grip.top || grip.inside) edges.top += by.y;
        if (grip.bottom || grip.inside) edges.bottom += by.y;
        Editor.Move(edges, dragged);
    }
    dragged = true;
}

void MAddSheet::Nudge(std::int32_t x, std::int32_t y, bool edges) {
    const MSheetBox* const box = Editor.SelectedBox();
    if (!box || Lens.Scale() <= 0) return;
    const auto step = std::max(1, static_cast<std::int32_t>(std::lround(1 / Lens.Scale())));
    const MSheet& sheet = Editor.Sheet;
    Desktop::Rect place = box->box;
    // All of it stays on the sheet, which would cut it.
    const std::int32_t right = std::clamp(x * step, edges ? -step : -place.left, sheet.width - place.right);
    const std::int32_t down = std::clamp(y * step, edges ? -step : -place.top, sheet.height - place.bottom);
    place.right += right;
    place.bottom += down;
    if (!edges) {
        place.left += right;
        place.top += down;
    }
    Editor.Move(place, false);
}

void MAddSheet::NudgeCut(std::int32_t x) {
    Editor.MoveCut(Editor.Cut + x);
}

void MAddSheet::CutHere() {
    Editor.CutHere(picture);
}

void MAddSheet::Zoom(std::int32_t steps) {
    const MSheetBox* const box = Editor.SelectedBox();
    const Desktop::Rect place = box ? Lens.ToDialog(box->box) : Lens.Area;
    Lens.Zoom(steps, {place.left + place.Width() / 2, place.top + place.Height() / 2});
    Reveal();
}

void MAddSheet::Reveal() {
    if (const MSheetBox* const box = Editor.SelectedBox(); box && !Lens.IsWhole()) Lens.Reveal(box->box);
}

MString MAddSheet::BoxText() const {
    const MSheetBox* const box = Editor.SelectedBox();
    if (!box) return Editor.Sheet.boxes.empty() ? MString() : MString("After the last box");
    MString text = "Box " + MString(Editor.Selected + 1) + " of " +
                   MString(static_cast<std::int32_t>(Editor.Sheet.boxes.size())) + ": ";
    if (Editor.Cut >= 0)
        return text + "cut at column " + MString(Editor.Cut - box->box.left) +
               ". Left and right move the cut, Enter cuts, Escape leaves it.";
    text += box->leftOut          ? MString("left out")
            : box->character == 0 ? MString("no character")
                                  : Quoted(box->character);
    text += ", " + MString(box->box.Width()) + " x " + MString(box->box.Height()) + " pixels";
    return box->doubtful && !box->leftOut ? text + ", in doubt" : text;
}

MString MAddSheet::Trouble() const {
    if (Path.IsEmpty()) return "Choose a picture with letters on it, or drop one here.";
    if (!unread.IsEmpty()) return unread;
    const MSheet& sheet = Editor.Sheet;
    if (!sheet.problem.empty()) return Sentence(sheet.problem);
    std::set<char16_t> characters;
    for (const MSheetBox& box : sheet.boxes)
        if (IsIncluded(box) && !characters.insert(box.character).second)
            return "Two boxes are " + Quoted(box.character) + ". Name one anew, or leave it out.";
    if (characters.empty())
        return Count(sheet.boxes.size(), " letter was found. ", " letters were found. ") +
               "Type their characters above in their order, or select a letter and type what it is.";
    const auto others = std::ranges::count_if(
        characters, [](char16_t character) { return CurrentFont && !CurrentFont->GetGlyph(character); });
    if (CurrentFont && static_cast<std::size_t>(CurrentFont->GlyphCount() + others) > MColourFont::SlotCount)
        return "The font would have more than 223 glyphs.";
    return {};
}

MString MAddSheet::Notice() const {
    const MString trouble = Trouble();
    if (!trouble.IsEmpty()) return trouble;
    std::size_t named = 0, unnamed = 0, doubtful = 0, replaced = 0;
    for (const MSheetBox& box : Editor.Sheet.boxes) {
        if (box.leftOut) continue;
        ++(box.character != 0 ? named : unnamed);
        if (box.doubtful) ++doubtful;
        if (CurrentFont && box.character != 0 && CurrentFont->GetGlyph(box.character)) ++replaced;
    }
    MString text = Count(named, " letter becomes a glyph.", " letters become glyphs.");
    if (replaced > 0)
        text += " " + Count(replaced, " of them replaces a glyph", " of them replace glyphs") + " of the font.";
    if (unnamed > 0)
        text += " " + Count(unnamed, " box without a character becomes", " boxes without a character become") +
                " none.";
    if (doubtful > 0) text += " " + Count(doubtful, " is", " are") + " in doubt, in red.";
    return text;
}

bool MAddSheet::CanFinish() const {
    return Trouble().IsEmpty();
}

std::string MAddSheet::Finish() {
    if (!CurrentFont || !CanFinish()) return ToSystem(Trouble());
    const MSheetSpacing spacing{FieldNumber(SpacingBefore), FieldNumber(SpacingAfter), !KeepCells};
    const bool isNew = CurrentFont->GlyphCount() == 0;
    std::string reason = AddSheetGlyphs(*CurrentFont, isNew, Editor.Sheet, picture, spacing);
    if (reason.empty()) Settings->Path(MPathKind::PictureSheet) = Path;
    return reason;
}
