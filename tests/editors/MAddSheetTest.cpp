// What of putting a sheet right by hand needs no window: where boxes lead to, what is taken back, and the lens.

#include "editors/MPictureLens.h"
#include "editors/MSheetEditor.h"
#include "glyphs/SheetCutter.h"
#include "imaging/Pictures.h"

#include <gtest/gtest.h>

namespace {

// Two lines of blocks, 20 wide and high: three above, two below, the last one under the third; each with a slit
// a little right of its middle.
OwnedPicture Drawn() {
    OwnedPicture picture = FilledPicture(200, 100, MColour(255, 255, 255));
    for (const auto& [left, top] : {std::pair(10, 10), {60, 10}, {110, 10}, {10, 60}, {115, 60}})
        for (std::int32_t place = 0; place < 400; ++place)
            if (place < 20 || place % 20 != 13)
                picture.SetPixel(left + place % 20, top + place / 20, MColour(0, 0, 0));
    return picture;
}

MSheet Blocks() {
    return FindSheetLetters(Drawn(), "", {});
}

std::u16string Names(const MSheetEditor& editor) {
    std::u16string names;
    for (const MSheetBox& box : editor.Sheet.boxes)
        names += box.leftOut ? u'/' : box.character ? box.character : u'.';
    return names;
}

TEST(MSheetEditor, GoesToTheNearestBox) {
    MSheetEditor editor;
    editor.Use(Blocks());
    const struct {
        void (*go)(MSheetEditor&);
        std::int32_t to;
    } steps[] = {
        {[](MSheetEditor& e) { e.Step(-1); }, 0},      {[](MSheetEditor& e) { e.StepLine(-1); }, 0},
        {[](MSheetEditor& e) { e.Select(1); }, 1},     {[](MSheetEditor& e) { e.StepLine(1); }, 3},
        {[](MSheetEditor& e) { e.Step(9); }, 4},       {[](MSheetEditor& e) { e.StepLine(-1); }, 2},
        {[](MSheetEditor& e) { e.StepToDoubt(); }, 3}, {[](MSheetEditor& e) { e.Step(1), e.StepToDoubt(); }, 0},
    };
    for (const auto& [go, to] : steps) {
        go(editor);
        EXPECT_EQ(editor.Selected, to);
    }
    editor.Select(4);
    editor.Type(u'x');
    editor.StepToDoubt();
    EXPECT_EQ(editor.Selected, 0) << "behind the last box";
}

TEST(MSheetEditor, NamesFollowTheTextUntilOneIsTypedAndAllCanBeTakenBack) {
    MSheetEditor editor;
    MSheet sheet = Blocks();
    NameSheetBoxes(sheet, "ABCD");
    editor.Use(sheet);
    EXPECT_NE(editor.Sheet.problem, "");
    editor.Select(1);
    editor.Join(2);
    EXPECT_EQ(Names(editor), u"ABCD") << "there are as many boxes as characters now";
    EXPECT_EQ(editor.Sheet.problem, "");
    editor.Select(0);
    editor.Type(u'x');
    editor.LeaveOut();
    EXPECT_EQ(Names(editor), u"x/CD");
    editor.Select(2);
    editor.BeginCut();
    EXPECT_EQ(editor.Cut, 10 + 13) << "where the least ink is";
    editor.CutHere(Drawn());
    EXPECT_EQ(Names(editor), u"x/C.D");
    EXPECT_EQ(editor.Sheet.boxes[2].box, (Desktop::Rect{10, 60, 23, 80}));
    for (const char16_t* const names : {u"x/CD", u"xBCD", u"ABCD"}) {
        editor.Undo();
        EXPECT_EQ(Names(editor), names);
    }
    editor.Undo();
    EXPECT_EQ(editor.Sheet.boxes.size(), 5U);
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_EQ(editor.Sheet.pieces.size(), 5U);
    editor.Step(9);
    for (const char16_t letter : {u'y', u'z'})
        editor.Type(letter);
    EXPECT_EQ(Names(editor).back(), u'y') << "a letter too many names nothing";
    editor.Untype();
    EXPECT_EQ(Names(editor).back(), u'.');
}

TEST(MPictureLens, KeepsWhatIsUnderThePointerAndShowsWhatIsSelected) {
    MPictureLens lens;
    lens.ShowAll({100, 50, 500, 350}, 1600, 600);
    EXPECT_EQ(lens.Scale(), 0.25);
    EXPECT_EQ(lens.ToDialog({0, 0, 1600, 600}), (Desktop::Rect{100, 125, 500, 275})) << "in the middle";
    const MPoint pointer{180, 200};
    const MPoint before = lens.ToPicture(pointer);
    lens.Zoom(3, pointer);
    EXPECT_EQ(lens.Scale(), 2);
    EXPECT_NEAR(lens.ToPicture(pointer).x, before.x, 1);
    EXPECT_NEAR(lens.ToPicture(pointer).y, before.y, 1);
    const Desktop::Rect far{1500, 500, 1580, 590};
    lens.Reveal(far);
    const Desktop::Rect place = lens.ToDialog(far);
    EXPECT_TRUE(place.left >= 100 && place.right <= 500 && place.top >= 50 && place.bottom <= 350);
    lens.Scroll(100000, 100000);
    EXPECT_EQ(lens.Visible(), (Desktop::Rect{1400, 450, 1600, 600}));
    lens.Zoom(-100, pointer);
    EXPECT_TRUE(lens.IsWhole());
    lens.ShowAll({0, 0, 400, 300}, 30, 20);
    EXPECT_EQ(lens.Scale(), 8) << "small ones by whole numbers, up to 8";
    lens.ShowAll({0, 0, 400, 300}, 0, 0);
    lens.Zoom(1, {1, 1});
    EXPECT_TRUE(lens.Visible().IsEmpty());
}

} // namespace
