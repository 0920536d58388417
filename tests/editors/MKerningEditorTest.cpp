#include "editors/MKerningEditor.h"

#include "EditorTest.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace {

constexpr Desktop::Rect list{616, 8, 690, 508};
constexpr Desktop::Rect leftField{690, 8, 740, 30};
constexpr MColour green{0, 255, 0};
constexpr MColour blue{0, 0, 255};
constexpr MColour black{0, 0, 0};

class MKerningEditorTest : public EditorTest {
protected:
    MKerningEditorTest() { settings.BackgroundColour = green; }

    static void Place(MKerningEditor& editor) {
        editor.Window = AnyWindow();
        editor.Area = MKerningEditor::AreaBeside(list, leftField);
    }

    static std::string Fields(const MKerningEditor& editor) {
        return Narrow(editor.Left + "|" + editor.Right + "|" + editor.Amount);
    }
};

MString LineOf(const MKerningPair& pair) {
    MString text = "X    X";
    text.SetChar(0, static_cast<char16_t>(pair.Left));
    text.SetChar(5, static_cast<char16_t>(pair.Right));
    return text;
}

// Against a list box that looks through all its lines before it takes a new one.
TEST_F(MKerningEditorTest, LinesAreThoseOfAListThatTakesNoTextTwice) {
    std::mt19937 random(3);
    Pairs pairs;
    std::vector<MString> plain;
    for (int i = 0; i < 600; ++i) {
        // Few characters, some of them beyond 16 bits, 0x10000 showing as none at all.
        const auto character = [&] {
            return static_cast<std::uint32_t>(33 + random() % 12 + (random() % 4 == 0 ? 65503 : 0));
        };
        pairs.push_back({character(), character(), 0});
        const MString text = LineOf(pairs.back());
        if (std::ranges::find(plain, text) == plain.end()) plain.push_back(text);
    }
    MKerningLines lines;
    const MKerningPair forgotten{'A', 'B', 1};
    lines.Fill({&forgotten, 1});
    lines.Fill(pairs);
    ASSERT_EQ(lines.Count(), static_cast<std::int32_t>(plain.size()));
    for (std::int32_t i = 0; i < lines.Count(); ++i)
        EXPECT_EQ(lines.Text(i), plain[static_cast<std::size_t>(i)]);
    for (const MKerningPair& pair : pairs)
        EXPECT_EQ(lines.Text(lines.Find(pair.Left, pair.Right)), LineOf(pair));
    EXPECT_EQ(lines.Find('A', 'B'), -1);
    EXPECT_TRUE(lines.Text(-1).IsEmpty() && lines.Text(lines.Count()).IsEmpty());
}

TEST_F(MKerningEditorTest, OpensOnTheFirstPair) {
    font.SetKerning('T', 'o', -7);
    font.SetKerning('A', 'V', 0);
    MKerningEditor editor(font);
    EXPECT_EQ(Narrow(editor.Lines.Text(0)), "T    o");
    EXPECT_EQ(Fields(editor), "T|o|-7");
    EXPECT_EQ(editor.Position, 0);
    editor.Amount = "";
    editor.SelectionChanged(1);
    EXPECT_EQ(Fields(editor), "A|V|"); // 0 into an empty field writes nothing
    editor.SelectionChanged(2);
    EXPECT_EQ(editor.Position, -1);
    EXPECT_EQ(Fields(editor), "A|V|");
    font.ClearKerning();
    const MKerningEditor empty(font);
    EXPECT_EQ(empty.Position, -1);
    EXPECT_EQ(Fields(empty), "||");
}

// The right glyph stands by the left one's height and spacing before, its own are never looked at.
TEST_F(MKerningEditorTest, TheLeftGlyphPlacesBoth) {
    constexpr Desktop::Rect area{8, 8, 608, 508}; // half its size is (300, 250)
    const struct {
        float scale;
        std::int32_t before, after, amount, leftX, rightX, y;
    } cases[] = {
        {8, 3, 2, 0, 124, 324, 50},
        {8, 3, 2, -7, 148, 300, 50}, // half of -7 is -3
        {8, 3, 2, 7, 100, 348, 50},
        {0.6F, -3, 1, 1, 287, 298, 235}, // each step is truncated by itself
        {1, Least, Least, Least, Least, Least, 225},
    };
    for (const auto& c : cases) {
        const MGlyph glyph('A', 20, 50, c.before, c.after, false);
        const MPairPreview p = MKerningEditor::LayOutPair(area, c.scale, glyph, c.amount);
        EXPECT_EQ(std::tuple(p.LeftX, p.RightX, p.Y), std::tuple(c.leftX, c.rightX, c.y))
            << c.scale << ", " << c.amount;
    }
}

TEST_F(MKerningEditorTest, DrawsThePair) {
    MGlyph& left = Add(u'L', 20, 50, blue);
    left.SpacingBefore = 3;
    left.SpacingAfter = 2;
    MGlyph& right = Add(u'R', 10, 25, black);
    right.SpacingBefore = right.SpacingAfter = 999;
    font.SetKerning('L', 'R', 0);
    font.SetKerning('x', 'L', 0);
    MKerningEditor editor(font);
    Place(editor);
    editor.Paint();
    ASSERT_EQ(Paintings(), 1U);
    // At scale 8 the left glyph covers (124, 50) to (284, 450), the right one (324, 50) to (404, 250).
    // The line stands at half the area's width, though the area begins at 8, and ends 8 above its bottom.
    ExpectPainted({{123, 50, green},
                   {124, 49, green},
                   {124, 50, blue},
                   {283, 449, blue},
                   {284, 449, green},
                   {323, 60, green},
                   {324, 50, black},
                   {403, 249, black},
                   {403, 250, green},
                   {404, 60, green},
                   {299, 8, {}},
                   {300, 499, {}},
                   {300, 507, green}});

    editor.SelectionChanged(1); // its left character has no glyph: nothing is drawn
    EXPECT_EQ(Paintings(), 1U);
    EXPECT_EQ(Fields(editor), "x|L|");
    editor.SelectionChanged(0);
    const MDirect2DSurface* const surface = editor.Surface.surface.get();
    editor.Paint();
    EXPECT_EQ(editor.Surface.surface.get(), surface); // held from paint to paint
    editor.Ok();
    EXPECT_EQ(editor.Surface.surface, nullptr);
}

TEST_F(MKerningEditorTest, HostileNumbersDrawToo) {
    MGlyph& left = Add(u'L', 20, 50);
    AddGlyph(font, u'N', 10, 10).Picture.Free();
    for (const auto& [number, right] : {std::pair(Least, u'L'), {Least, u'N'}, {Most, u'L'}, {Most, u'N'}}) {
        left.SpacingBefore = left.SpacingAfter = number;
        font.ClearKerning();
        font.SetKerning('L', right, number);
        MKerningEditor editor(font);
        Place(editor);
        editor.Paint();
        editor.MousePressed({9, 9});
        editor.MouseMoved({600, 9});
    }
    EXPECT_EQ(Paintings(), 4U);
}

TEST_F(MKerningEditorTest, WithoutAPairANoticeIsDrawnInWhite) {
    MKerningEditor editor(font);
    Place(editor);
    editor.Paint();
    ASSERT_EQ(Paintings(), 1U);
    const auto& painting = Headless::record.paintings.back();
    const Desktop::Rect white = InkOf(painting, [](const MColour& pixel) { return pixel.b > 200; });
    EXPECT_TRUE(white.left >= 192 && white.right <= 408 && white.top >= 232 && white.bottom <= 268)
        << "in the middle";
    EXPECT_GT(white.Width() * white.Height(), 500);
    settings.BackgroundColour = {255, 255, 255};
    editor.Paint();
    const auto& pixels = Headless::record.paintings.back().pixels;
    EXPECT_EQ(std::ranges::count(pixels, 255), static_cast<std::ptrdiff_t>(pixels.size()));
}

TEST_F(MKerningEditorTest, TypingMakesPairs) {
    font.SetKerning('A', 'B', -2);
    MKerningEditor editor(font);
    using Change = void (MKerningEditor::*)(const MString&);
    const std::tuple<Change, const char16_t*, const char*, int, int> cases[] = {
        {&MKerningEditor::LeftChanged, u"A", "A|B|-2", 0, 1},
        {&MKerningEditor::LeftChanged, u"xA", "x|B|0", 1, 2}, // the font has no "x"
        {&MKerningEditor::RightChanged, u"", "x|?|0", 2, 3},
        {&MKerningEditor::RightChanged, u" ", "x| |0", 2, 3}, // a blank takes no kerning
        {&MKerningEditor::AmountChanged, u"5", "x| |5", 2, 3},
        {&MKerningEditor::RightChanged, u"B", "x|B|0", 1, 3},
        {&MKerningEditor::AmountChanged, u"-", "x|B|-", 1, 3}, // stays, so that a number can follow
        {&MKerningEditor::AmountChanged, u"-8", "x|B|-8", 1, 3},
        {&MKerningEditor::AmountChanged, u"", "x|B|", 1, 3},
        {&MKerningEditor::LeftChanged, u"A", "A|B|-2", 0, 3},
        {&MKerningEditor::AmountChanged, u"-99999999999", "A|B|-99999999999", 0, 3},
    };
    for (const auto& [change, text, fields, position, count] : cases) {
        (editor.*change)(text);
        EXPECT_EQ(Fields(editor), fields);
        EXPECT_EQ(std::pair(editor.Position, editor.Lines.Count()), std::pair(position, count)) << fields;
    }
    EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'B', Least}, {'x', 'B', 0}, {'x', '?', 0}}));
    editor.updating = false;
    editor.LeftChanged("Q");
    editor.RightChanged("Q");
    editor.AmountChanged("1");
    editor.SelectionChanged(1);
    EXPECT_EQ(font.KerningCount(), 3);
    EXPECT_EQ(Narrow(editor.Left), "A");
}

// A look-up cuts its left character to 16 bits, and would never find this pair.
TEST_F(MKerningEditorTest, ShowingAPairBeyond16BitsAddsNone) {
    font.SetKerning(0x10041, 'B', 4);
    font.SetKerning(0x41, 'B', 5);
    MKerningEditor editor(font);
    Place(editor);
    for (int i = 0; i < 3; ++i)
        editor.Paint();
    EXPECT_EQ(font.KerningCount(), 2);
    EXPECT_EQ(Fields(editor), "A|B|4");
    EXPECT_EQ(editor.Lines.Count(), 1);
}

TEST_F(MKerningEditorTest, DraggingMultipliesByTheScaleAndShowsNothing) {
    using Way = std::vector<std::int32_t>;
    // 400 pixels are free for the glyph: scales of 8 and of 0.5, truncated at every move.
    for (const auto& [size, way, amount] :
         {std::tuple(50, Way{98}, -16 - 5), {800, {101}, -4}, {800, {101, 102, 103}, -2}}) {
        font.Clear();
        Add(u'A', 1, size);
        font.SetKerning('A', 'B', 6);
        font.SetKerning('A', 'A', -5);
        MKerningEditor editor(font);
        Place(editor);
        editor.SelectionChanged(1);
        const std::size_t drawn = Paintings();
        editor.MousePressed({100, 100});
        for (const std::int32_t x : way)
            editor.MouseMoved({x, 400});
        EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'B', 6}, {'A', 'A', amount}})) << size;
        EXPECT_EQ(Paintings(), drawn);
        EXPECT_EQ(Fields(editor), "A|A|-5");
        // A place outside is neither a press nor a move.
        editor.MousePressed({8, 100});
        editor.MouseMoved({608, 100});
        EXPECT_EQ(editor.MouseX, way.back());
        editor.Paint();
        EXPECT_EQ(Narrow(editor.Amount), std::to_string(amount));
    }
}

TEST_F(MKerningEditorTest, GenerateAndClearShowNothing) {
    Add(u'A', 10, 1);
    MGlyph& glyph = Add(u'B', 10, 1);
    for (std::int32_t x = 0; x < 5; ++x)
        glyph.SetPixel(x, 0, {0, 0, 0, 0}); // a gap at the left
    font.SetKerning('A', 'B', 77);
    MKerningEditor editor(font);
    Place(editor);
    editor.Generate();
    EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'B', -5}, {'B', 'B', -5}}));
    EXPECT_EQ(Narrow(editor.Lines.Text(1)), "B    B");
    EXPECT_EQ(editor.Position, -1);
    editor.Clear();
    EXPECT_EQ(font.KerningCount() + editor.Lines.Count(), 0);
    EXPECT_EQ(Fields(editor), "A|B|77");
    EXPECT_EQ(Paintings(), 0U);
    editor.AmountChanged("5"); // the pair of the fields is there again, without an amount
    EXPECT_EQ(PairsOf(font), (Pairs{{'A', 'B', 0}}));
}

// Against one SetKerning after another, on pairs that no font should have, too.
TEST_F(MKerningEditorTest, CancelSetsTheOldPairsInTheirOrder) {
    std::mt19937 random(11);
    constexpr std::int32_t count = 300;
    ASSERT_TRUE(font.Kerning.Resize(count, false));
    for (MKerningPair& pair : font.Kerning) {
        const auto character = [&] {
            return static_cast<std::uint32_t>(30 + random() % 20 + (random() % 5 == 0 ? 0x10000 : 0));
        };
        pair = {character(), character(), static_cast<std::int32_t>(random())};
    }
    const Pairs old = PairsOf(font);
    MKerningEditor editor(font);
    Place(editor);
    editor.Clear();
    editor.LeftChanged("q");
    editor.RightChanged("q");
    ASSERT_GE(font.KerningCount(), 1); // goes again
    editor.Cancel();
    MColourFont plain(nullptr);
    for (const MKerningPair& pair : old)
        plain.SetKerning(static_cast<std::int32_t>(pair.Left), pair.Right, pair.Amount);
    EXPECT_EQ(PairsOf(font), PairsOf(plain));
    EXPECT_LT(font.KerningCount(), count);
    EXPECT_EQ(editor.Surface.surface, nullptr);
}

} // namespace
