#include "editors/MOpticalKerningEditor.h"

#include "DocumentFixture.h"
#include "glyphs/Pixels.h"

using OpticalKerningEditorTest = DocumentTest;

// A long line of a large font is set from letters that were shrunk before: they stand where the whole ones
// would.
TEST_F(OpticalKerningEditorTest, ALineThatIsDrawnMuchSmallerKeepsItsPlaces) {
    constexpr std::int32_t advance = 340, inset = 60, count = 60, height = 512;
    MColourFont font(nullptr);
    MGlyph& block = AddGlyph(font, u'H', advance - 2 * inset, height);
    block.SpacingBefore = block.SpacingAfter = inset;
    block.Picture.Fill(MColour(0, 0, 255));
    settings.KerningText = MString();
    MOpticalKerningEditor editor(font);
    MString text;
    for (int i = 0; i < count; ++i)
        text += u'H';
    editor.TextChanged(text);
    editor.ShowWhite = false;
    editor.Window = AnyWindow();
    editor.Area = {0, 0, 816, 380};
    editor.Paint();
    ASSERT_FALSE(Headless::record.paintings.empty());
    const Headless::Painting& painting = Headless::record.paintings.back();
    ASSERT_EQ(painting.width, 816);
    // A row through the middle of the lower line.
    const std::int32_t row = 16 + 177 + (354 - 177) / 2 - 8;
    std::vector<double> middles;
    std::int32_t begin = -1;
    for (std::int32_t x = 0; x < painting.width; ++x) {
        const bool ink = PixelAt(painting, x, row).r < 160; // white has as much red as blue
        if (ink && begin < 0) begin = x;
        if (ink || begin < 0) continue;
        middles.push_back((begin + x) / 2.0);
        begin = -1;
    }
    ASSERT_EQ(middles.size(), static_cast<std::size_t>(count));
    const double scale = 800.0 / (advance * count);
    for (std::size_t i = 0; i < middles.size(); ++i)
        EXPECT_NEAR(middles[i], 8 + (static_cast<double>(i) + 0.5) * advance * scale, 1.0) << i;
}
