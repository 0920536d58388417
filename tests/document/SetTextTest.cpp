#include "document/SetText.h"

#include "DocumentFixture.h"
#include "imaging/Pictures.h"

#include <string>

namespace {

class SetTextTest : public DocumentTest {
protected:
    MColourFont font{nullptr};

    // The first row, a letter for each pixel: red for "A", green for "B", "." for the background.
    std::string FirstRow(const MString& text) const {
        const OwnedPicture picture(SetText(font, text, MColour(0, 0, 9)));
        std::string row;
        for (std::int32_t x = 0; x < static_cast<std::int32_t>(picture.Width); ++x) {
            const MColour pixel = picture.GetPixel(x, 0);
            row += pixel.r == 255 ? 'A' : pixel.g == 255 ? 'B' : pixel == MColour(0, 0, 9) ? '.' : '?';
        }
        return row;
    }
};

TEST_F(SetTextTest, ThePenGoesBySpacingsKerningAndSpace) {
    AddGlyph(font, u'A', 3, 4).Picture.Fill(MColour(255, 0, 0)); // spacings of 1 and 2
    AddGlyph(font, u'B', 2, 4).Picture.Fill(MColour(0, 255, 0));
    font.SpaceWidth = 4;
    font.SetKerning('A', 'B', -2);
    font.SetKerning('B', 'A', 1);
    const std::pair<const char*, const char*> cases[] = {
        {"A", ".AAA.."},
        {"AA", ".AAA...AAA.."},
        {"AB", ".AAA.BB.."},
        {"BA", ".BB....AAA.."},
        {"A B", ".AAA.......BB.."}, // no pair across a space
        {"AxB", ".AAA...BB.."},     // nor across what the font lacks, which takes no room
        {"", ""},
    };
    for (const auto& [text, row] : cases)
        EXPECT_EQ(FirstRow(text), row) << text;
    font.GetGlyph(u'A')->SpacingBefore = -2;
    EXPECT_EQ(FirstRow("AB"), "AAA.BB..") << "ink before the pen's start";
}

TEST_F(SetTextTest, RowsThatAGlyphOnlyClaimsAreNone) {
    AddGlyph(font, u'A', 3, 4).Picture.Fill(MColour(255, 0, 0));
    AddGlyph(font, u'B', 2, 4).Picture.Free();
    for (const char16_t c : {u'A', u'B'})
        font.GetGlyph(c)->Height = 1'000'000; // as after a failed resize
    const OwnedPicture picture(SetText(font, "AB", MColour()));
    EXPECT_EQ(std::pair(picture.Width, picture.Height), std::pair(11U, 4U));
    EXPECT_EQ(picture.GetPixel(1, 3), MColour(255, 0, 0));
}

} // namespace
