#include "editors/MCharacterGrid.h"

#include "EditorTest.h"
#include "platform_text/FontFixture.h"
#include "platform_text/PaintFont.h"

#include <array>
#include <vector>

namespace {

class CharacterGrid : public EditorTest {
protected:
    MCharacterGrid grid;

    CharacterGrid() {
        settings.FontName = "Liberation Sans";
        grid.Area = {10, 10, 710, 610};
    }

    // What the window shows after a painting.
    std::vector<std::uint8_t> Paint() {
        Headless::record.paintings.clear();
        grid.Paint(AnyWindow());
        return Headless::record.paintings.empty() ? std::vector<std::uint8_t>()
                                                  : Headless::record.paintings.back().pixels;
    }
    std::vector<std::uint8_t> DrawnFromScratch() const {
        const auto drawn = grid.Draw(MCharacterGrid::CurrentMarks());
        return {drawn->pixels, drawn->pixels + std::ptrdiff_t{drawn->stride} * drawn->height};
    }
    // Where in a cell something differs from the ground, as seen from its corner.
    Desktop::Rect InkIn(std::int32_t code, const MColour& ground, int least = 1) const {
        const Desktop::Rect cell = grid.Cell(code);
        Desktop::Rect ink{cell.Width(), cell.Height(), 0, 0};
        for (std::int32_t y = 0; y < cell.Height(); ++y) {
            for (std::int32_t x = 0; x < cell.Width(); ++x) {
                if (std::abs(Painted(cell.left + x, cell.top + y).r - ground.r) < least) continue;
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1), y + 1};
            }
        }
        return ink;
    }
};

// "A" in a colour, far larger than its em; "B" and "a" plain, also over their neighbours.
fonts::Font Overflowing(const std::string& family) {
    fonts::Font font;
    font.family = family;
    const int outline = font.Add({{fonts::Box(-1500, -1200, 1700, 2100)}}, u'A');
    font.Add({{fonts::Circle(400, 300, 900)}}, u'B');
    font.Add({{fonts::Box(-700, 100, 2000, 500)}}, u'a');
    fonts::ColourTables tables;
    tables.palette.push_back({255, 0, 0, 120});
    tables.layers = {fonts::Outline(outline, fonts::Solid(0))};
    tables.glyphs[outline] = fonts::Layers(0, 1);
    font.tables["COLR"] = tables.Colr();
    font.tables["CPAL"] = tables.Cpal();
    return font;
}

} // namespace

TEST_F(CharacterGrid, Cells) {
    // 700 / 16 is 43 and 600 / 14 is 42; where a cell begins is told by the whole product.
    for (const auto& [code, cell] : {std::pair(32, Desktop::Rect{11, 11, 52, 51}),
                                     {33, {54, 11, 95, 51}},
                                     {47, {667, 11, 708, 51}},
                                     {48, {11, 53, 52, 93}},
                                     {255, {667, 568, 708, 608}}})
        EXPECT_EQ(grid.Cell(code), cell) << code;
    for (std::int32_t code = 32; code <= 255; ++code) {
        const Desktop::Rect cell = grid.Cell(code);
        EXPECT_EQ(grid.HitTest((cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2), code);
    }
}

TEST_F(CharacterGrid, HitTest) {
    const std::array<std::int32_t, 3> cases[] = {
        // Across the limits of the area, and of its first cell.
        {9, 10, -1},
        {10, 9, -1},
        {711, 300, -1},
        {300, 611, -1},
        {53, 10, 32},
        {54, 10, 33},
        {10, 52, 32},
        {10, 53, 48},
        // The right and the lower limit belong to what follows.
        {710, 10, 48},
        {710, 609, 256},
        {10, 610, 256},
        {709, 610, 271},
    };
    for (const auto& [x, y, code] : cases)
        EXPECT_EQ(grid.HitTest(x, y), code) << x << ", " << y;
    grid.Area = {};
    EXPECT_EQ(grid.HitTest(0, 0), -1);
}

TEST_F(CharacterGrid, SelectedShade) {
    EXPECT_EQ(MCharacterGrid::SelectedShade(MColour(0, 128, 129, 0)), MColour(51, 153, 103));
    EXPECT_EQ(MCharacterGrid::SelectedShade(MColour(255, 1, 254)), MColour(204, 51, 203)); // truncated
}

TEST_F(CharacterGrid, OnlyCodesOfGlyphsAreMarked) {
    for (const std::int32_t code : {-1, 32, 33, 127, 159, 255, 256}) {
        for (const bool mark : {true, false})
            EXPECT_EQ(MCharacterGrid::Mark(code, mark), code >= 33 && code <= 255) << code;
        EXPECT_FALSE(MCharacterGrid::Mark(code, false)) << code << " again";
    }
}

TEST_F(CharacterGrid, TheCursorStaysInTheGrid) {
    const std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t> cases[] = {
        {65, 1, 0, 66},  {65, 0, 1, 81},   {79, 1, 0, 79},   {64, -1, 0, 64}, {33, -1, 0, 33},
        {48, 0, -1, 48}, {255, 0, 1, 255}, {255, 1, 1, 255}, {33, 0, -1, 33}, {65, -99, 0, 64},
        {65, 99, 0, 79}, {65, 0, 99, 241}, {65, 0, -99, 33}};
    for (const auto& [from, columns, rows, to] : cases) {
        grid.Cursor = from;
        grid.MoveCursor(columns, rows);
        EXPECT_EQ(grid.Cursor, to) << from << " by " << columns << ", " << rows;
    }
}

TEST_F(CharacterGrid, ShowsCharactersOnShades) {
    for (const bool colourFont : {false, true}) {
        SCOPED_TRACE(colourFont);
        settings.ColourFont = colourFont;
        ASSERT_FALSE(Paint().empty());
        const MColour face(240, 240, 240);
        const MColour shade(192, 192, 192);
        const Desktop::Rect a = grid.Cell('A');
        ExpectPainted({{10, 10, face},
                       {a.left, a.top, shade},
                       {a.right - 1, a.bottom - 1, shade},
                       {a.right, a.bottom, face},
                       {grid.Cell('a').left, grid.Cell('a').top, face}});
        EXPECT_FALSE(InkIn('A', shade).IsEmpty() || InkIn('a', face).IsEmpty());
        EXPECT_TRUE(InkIn(32, face).IsEmpty());
    }
    grid.Release();
    settings.FontName = MString();
    EXPECT_TRUE(Paint().empty());
    settings.FontName = "Liberation Sans";
    grid.Area = {10, 10, 10, 610};
    EXPECT_TRUE(Paint().empty());
}

TEST_F(CharacterGrid, SizesAreThoseOfCellsAndOfEmsInTheMiddle) {
    const auto inkOfH = [&] { return Paint(), InkIn('h', grid.Face, 140); };
    grid.Area = {0, 0, 1600, 1428}; // cells of 100 pixels, of which 98 are drawn on: sizes of 75
    const Desktop::Rect plain = inkOfH();
    EXPECT_NEAR(plain.Height(), 75 * 1466 / 2288, 1);
    EXPECT_NEAR(plain.left + plain.right, 98, 4);
    settings.ColourFont = true;
    const Desktop::Rect coloured = inkOfH();
    EXPECT_NEAR(coloured.Height(), 75 * 1466 / 2048, 1);
    EXPECT_NEAR(coloured.left + coloured.right, 98, 4);
    EXPECT_NEAR(coloured.bottom, (98 - 75 * 2288 / 2048) / 2 + 75 * 1854 / 2048, 2) << "the baseline";
}

// Rows have no gaps in both.
TEST_F(CharacterGrid, ChangesShowWhatDrawingFromScratchDoes) {
    const AddedFonts added;
    ASSERT_TRUE(added.Add("overflowing.ttf", Overflowing("Laboratory Giant").Build()));
    std::mt19937 random(7);
    for (const char* family : {"Liberation Sans", "Laboratory Giant", "Noto Color Emoji"}) {
        for (const bool colourFont : {false, true}) {
            SCOPED_TRACE(family);
            settings.FontName = family;
            settings.ColourFont = colourFont;
            for (int step = 0; step < 12; ++step) {
                for (int changes = step % 4; changes > 0; --changes)
                    MCharacterGrid::Mark(33 + static_cast<std::int32_t>(random() % 223), random() % 2 == 0);
                // Where the giant letters reach.
                MCharacterGrid::Mark(64 + static_cast<std::int32_t>(random() % 20), random() % 2 == 0);
                ASSERT_TRUE(Paint() == DrawnFromScratch()) << "step " << step;
            }
        }
    }
    // Everything else that shows.
    settings.FontName = "Liberation Sans";
    settings.ColourFont = false;
    auto before = Paint();
    const std::vector<std::function<void()>> changes = {
        [&] { settings.Weight = 700; },           [&] { settings.Italic = true; },
        [&] { settings.ColourFont = true; },      [&] { settings.Weight = 400; },
        [&] { settings.Italic = false; },         [&] { settings.FontName = "DejaVu Serif"; },
        [&] { grid.Face = MColour(50, 60, 70); }, [&] { grid.Area.right -= 33; }};
    for (const auto& change : changes) {
        change();
        const auto now = Paint();
        EXPECT_TRUE(now != before);
        EXPECT_TRUE(now == DrawnFromScratch());
        before = now;
    }
}
