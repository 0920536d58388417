#include "editors/MGlyphEditor.h"

#include "EditorTest.h"

#include <tuple>

namespace {

constexpr Desktop::Rect list{630, 8, 675, 508};
constexpr Desktop::Rect group{690, 12, 940, 200};

class MGlyphEditorTest : public EditorTest {
protected:
    MGlyphEditorTest() {
        font.Baseline = 7;
        font.CapHeight = 30;
        font.SpaceWidth = 25;
        settings.BackgroundColour = {0, 255, 0};
    }

    // Glyphs A to the last one, 40 by 50, with spacings of 1 and 2, then 11 and 12, and so on.
    void AddUpTo(char16_t last) {
        for (char16_t c = u'A'; c <= last; ++c) {
            MGlyph& glyph = Add(c, 40, 50);
            glyph.SpacingBefore = (c - u'A') * 10 + 1;
            glyph.SpacingAfter = (c - u'A') * 10 + 2;
        }
    }

    static void Place(MGlyphEditor& editor) {
        editor.Window = AnyWindow();
        editor.Area = MGlyphEditor::AreaBeside(list, group);
    }
};

TEST_F(MGlyphEditorTest, DrawsTheGlyphAndTheGuidesInside) {
    AddUpTo(u'A');
    MGlyph& glyph = *font.GetGlyph(u'A');
    glyph.SpacingBefore = 3;
    glyph.SpacingAfter = -2;
    MGlyphEditor editor(font);
    Place(editor);
    editor.DrawPreview();
    ASSERT_EQ(Paintings(), 1U);
    EXPECT_EQ(Headless::record.paintings[0].width, 610);
    EXPECT_EQ(Headless::record.paintings[0].height, 500);
    // At scale 8 the glyph covers (153, 58) to (473, 458); a line lies on both sides of its place.
    const MColour blue{0, 0, 255};
    const MColour green{0, 255, 0};
    ExpectPainted({{9, 9, green},     {152, 100, green}, {153, 100, blue}, {300, 57, green},
                   {300, 58, blue},   {128, 100, {}},    {129, 100, {}},   {126, 100, green},
                   {456, 507, {}},    {457, 100, {}},    {459, 100, blue}, {472, 100, blue},
                   {473, 100, green}, {300, 401, {}},    {617, 402, {}},   {300, 162, {}},
                   {8, 161, {}},      {300, 165, blue},  {472, 457, blue}, {472, 458, green}});
    // Guides on the edge or outside are not drawn; their values stay.
    glyph.SpacingBefore = glyph.SpacingAfter = font.Baseline = Most;
    font.CapHeight = Least;
    editor.DrawPreview();
    const auto& pixels = Headless::record.paintings.back().pixels;
    for (std::size_t i = 2; i < pixels.size(); i += 4)
        ASSERT_EQ(pixels[i], 0);
}

TEST_F(MGlyphEditorTest, NothingIsDrawnWithoutRoomOrPicture) {
    AddUpTo(u'A');
    AddGlyph(font, u'0', 0, 50);
    MGlyphEditor editor(font);
    Place(editor);
    editor.Show(u'0');
    editor.Area.right = editor.Area.left + 100;
    editor.Show(u'A');
    editor.Mouse({50, 50}, true, false);
    EXPECT_EQ(Paintings(), 0U);
    EXPECT_EQ(font.GetGlyph(u'A')->SpacingBefore, 1);
}

TEST_F(MGlyphEditorTest, FieldsChangeTheGlyphAndTheFont) {
    AddUpTo(u'B');
    MGlyphEditor editor(font);
    Place(editor);
    const MGlyph& a = *font.GetGlyph(u'A');
    using Change = void (MGlyphEditor::*)(const MString&);
    const std::tuple<Change, const std::int32_t&, const char*, std::int32_t, std::size_t> cases[] = {
        {&MGlyphEditor::SpacingBeforeChanged, a.SpacingBefore, "-3", -3, 1},
        {&MGlyphEditor::SpacingBeforeChanged, a.SpacingBefore, "-03", -3, 0},           // unchanged
        {&MGlyphEditor::SpacingAfterChanged, a.SpacingAfter, "0000000000000012", 1, 1}, // 15 characters count
        {&MGlyphEditor::BaselineChanged, font.Baseline, "99999999999", Most, 1},
        {&MGlyphEditor::CapHeightChanged, font.CapHeight, "", 0, 1},
        {&MGlyphEditor::SpaceWidthChanged, font.SpaceWidth, "-40", -40, 0},
    };
    for (const auto& [change, value, text, expected, drawn] : cases) {
        const std::size_t before = Paintings();
        (editor.*change)(text);
        EXPECT_EQ(value, expected) << text;
        EXPECT_EQ(Paintings() - before, drawn) << text;
    }
    // What was typed stays as long as it reads as the value; an empty field is filled.
    editor.Show(u'A');
    EXPECT_EQ(Narrow(editor.SpacingBefore + " " + editor.SpacingAfter), "-03 0000000000000012");
    EXPECT_EQ(Narrow(editor.CapHeight + " " + editor.Baseline), "0 99999999999");
    editor.updating = false;
    editor.BaselineChanged("5");
    editor.CharacterChanged("B");
    editor.SelectionChanged(1);
    EXPECT_EQ(font.Baseline, Most);
    EXPECT_EQ(Narrow(editor.Character), "A");
}

TEST_F(MGlyphEditorTest, TypedCharactersSelectGlyphs) {
    AddUpTo(u'C');
    Add(u'?', 10, 50);
    MGlyphEditor editor(font);
    const std::tuple<const char16_t*, const char*, std::int32_t> cases[] = {
        {u"C", "67", 2}, {u"BB", "67", 2}, {u"", "67", 2}, {u"B", "66", 1}, {u"x", "66", 1}, {u"?", "63", 3},
    };
    for (const auto& [text, unicode, position] : cases) {
        editor.CharacterChanged(text);
        EXPECT_EQ(Narrow(editor.Unicode), unicode);
        EXPECT_EQ(editor.Position, position);
        EXPECT_EQ(editor.Character, MString(text));
    }
    // The numbers go to the glyph that the field names: none, the first of two, or "?" for an empty one.
    for (const auto& [text, spacing] : {std::pair(u"x", "77"), std::pair(u"BC", "78"), std::pair(u"", "79")}) {
        editor.CharacterChanged(text);
        editor.SpacingBeforeChanged(spacing);
    }
    std::vector<std::int32_t> spacings;
    for (const char16_t c : editor.Lines)
        spacings.push_back(font.GetGlyph(c)->SpacingBefore);
    EXPECT_EQ(spacings, (std::vector<std::int32_t>{1, 78, 21, 79}));
}

TEST_F(MGlyphEditorTest, TheMouseDragsInsideThePreviewOnly) {
    AddUpTo(u'A');
    MGlyphEditor editor(font);
    Place(editor);
    editor.Mouse({100, 418}, true, true);
    EXPECT_EQ(font.Baseline, 5) << "the right button decides";
    for (const MPoint edge : {MPoint{8, 300}, {618, 300}, {300, 8}, {300, 508}})
        editor.Mouse(edge, true, true);
    editor.Mouse({300, 300}, false, false);
    editor.CharacterChanged("x");
    editor.Mouse({300, 300}, true, false);
    EXPECT_EQ(Paintings(), 1U);
}

TEST_F(MGlyphEditorTest, DeletingKeepsThePositionBeforeTheLastTwo) {
    for (const auto& [position, next] : {std::pair(0, 0), {1, 1}, {2, 0}, {3, 0}, {4, 0}}) {
        font.Clear();
        AddUpTo(u'E');
        font.SetKerning('A' + position, 'A', 1);
        font.SetKerning('Z', 'Z', 2);
        MGlyphEditor editor(font);
        editor.SelectionChanged(position);
        editor.DeleteGlyph();
        EXPECT_EQ(editor.Lines.size(), 4U);
        EXPECT_EQ(editor.Position, next) << position;
        EXPECT_EQ(editor.Character.GetChar(0), editor.Lines[static_cast<std::size_t>(next)]);
        EXPECT_EQ(font.KerningCount(), 1);
    }
    MGlyphEditor editor(font);
    editor.CharacterChanged("");
    editor.DeleteGlyph(); // there is no "?"
    EXPECT_EQ(editor.Lines.size(), 4U);
    Add(u'?', 1, 50);
    editor.CharacterChanged("");
    editor.DeleteGlyph();
    EXPECT_EQ(font.GetGlyph(u'?'), nullptr);
    for (int i = 0; i < 4; ++i)
        editor.DeleteGlyph();
    EXPECT_EQ(editor.Position, -1);
}

TEST_F(MGlyphEditorTest, CancelRestoresByPosition) {
    AddUpTo(u'D');
    MGlyphEditor editor(font);
    editor.SelectionChanged(1);
    editor.SpacingBeforeChanged("99");
    editor.DeleteGlyph(); // B
    editor.BaselineChanged("1");
    editor.CapHeightChanged("2");
    editor.SpaceWidthChanged("3");
    editor.Cancel();
    EXPECT_EQ(std::tuple(font.Baseline, font.CapHeight, font.SpaceWidth), std::tuple(7, 30, 25));
    EXPECT_EQ(font.GetGlyph(u'B'), nullptr);
    EXPECT_EQ(font.GetGlyph(u'A')->SpacingBefore, 1);
    EXPECT_EQ(font.GetGlyph(u'C')->SpacingBefore, 11); // that of B, in whose place it moved
    EXPECT_EQ(font.GetGlyph(u'D')->SpacingAfter, 22);
}

} // namespace
