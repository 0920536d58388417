// Font files of pictures, read back by those who will read them: HarfBuzz, FreeType, and our own painter.

#include "formats/game/GameFontFile.h"
#include "formats/webfont/MWebFontExport.h"
#include "platform/text/MFaceKerning.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cmath>
#include <functional>
#include <numeric>

namespace {

using testing::HasSubstr;

class WebFonts : public GameFontTest {
protected:
    static constexpr std::int32_t height = 20;

    WebFonts() {
        AddFont();
        font.GetGlyph(u'\u0416')->SpacingAfter = -12;
        MGlyph& fill = AddInked(u'q', 6, 0, 0, 0, 20); // to the edges of its cell
        fill.Picture.Fill(MColour(10, 200, 30));
    }

    MFontDescription Description() const { return DescribeFont(font, settings.GlyphHeight); }
    std::vector<std::uint8_t> Bytes(std::vector<std::int32_t> strikes = {}) const {
        const MFontDescription description = Description();
        const MWebFont plan = PlanWebFont(description, "Test", std::move(strikes));
        EXPECT_EQ(plan.Reason, "");
        return BuildWebFont(plan, MWebFontForm::TrueType).Bytes;
    }
    std::string Reason(const char* name = "f.woff2") const {
        const MWebFontResult result =
            ExportWebFont(Description(), folder.File(name), MWebFontForm::Woff2, {}, nullptr);
        EXPECT_EQ(result.Ok(), std::filesystem::exists(folder.path / name));
        return result.Reason;
    }
};

// A face of FreeType at a size. The bytes stay the caller's.
using Face = std::unique_ptr<FT_FaceRec, decltype(&FT_Done_Face)>;

Face FaceOf(const std::vector<std::uint8_t>& file, std::int32_t size) {
    FT_Face face = nullptr;
    EXPECT_EQ(FT_New_Memory_Face(FreeTypeLibrary(), file.data(), static_cast<FT_Long>(file.size()), 0, &face),
              0);
    EXPECT_EQ(FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)), 0);
    return {face, &FT_Done_Face};
}

FT_GlyphSlot Load(const Face& face, char16_t character, FT_Int32 flags) {
    EXPECT_EQ(FT_Load_Char(face.get(), character, flags), 0) << int{character};
    return face->glyph;
}

TEST_F(WebFonts, HarfBuzzMovesThePenAsTheDocumentDoesForAllPairs) {
    // More pairs than one subtable holds.
    for (char16_t left = 300; left < 460; ++left)
        AddInked(left, 5, 1, 2, 4, 3);
    for (std::int32_t left = 300; left < 460; ++left) {
        for (std::uint32_t right = 300; right < 460; ++right)
            font.SetKerning(left, right,
                            static_cast<std::int32_t>((static_cast<std::uint32_t>(left) * 7 + right * 3) % 61) -
                                30);
    }
    const MFontDescription description = Description();
    ASSERT_GT(description.Pairs.size(), 25000U);
    const std::vector<std::uint8_t> bytes = Bytes();
    ASSERT_TRUE(AddFontFile(folder.Write("f.ttf", std::string(bytes.begin(), bytes.end()))));
    MFaceKerning shaper("Test", 400, false);
    EXPECT_EQ(shaper.UnitsPerEm(), 320);
    std::size_t wrong = 0;
    for (const MGlyphDescription& left : description.Glyphs) {
        for (const MGlyphDescription& right : description.Glyphs)
            wrong += shaper.Amount(left.Character, right.Character) !=
                     description.AmountOf(left.Character, right.Character) * 16;
    }
    EXPECT_EQ(wrong, 0U);
}

TEST_F(WebFonts, OutlinesAreTheSilhouettesWithThePicturesBox) {
    MGlyph& ring = AddInked(u'o', 18, 2, 2, 0, 0);
    double area = 0;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < 18; ++x) {
            const double r = std::hypot(x - 8.5, y - 9.5);
            const double alpha = std::clamp(8 - r, 0.0, 1.0) * std::clamp(r - 3, 0.0, 1.0);
            ring.SetPixel(x, y, MColour(255, 0, 0, static_cast<std::uint8_t>(std::lround(alpha * 255))));
            area += alpha;
        }
    }
    AddInked(u'f', 4, 0, 0, 3, 0).SetPixel(2, 7, MColour(9, 9, 9, 40)); // fainter than half everywhere
    // A reader that knows nothing of such pictures.
    std::vector<std::uint8_t> bytes = Bytes();
    const std::string_view tag = "sbix";
    *std::search(bytes.begin(), bytes.end(), tag.begin(), tag.end()) = 'x';
    const Face face = FaceOf(bytes, height);
    const FT_Size_Metrics& metrics = face->size->metrics;
    EXPECT_EQ(std::tuple(metrics.ascender, metrics.descender, metrics.height),
              std::tuple(15 * 64, -5 * 64, 20 * 64));
    const FT_GlyphSlot slot = Load(face, u'o', FT_LOAD_NO_SCALE);
    FT_BBox box;
    FT_Outline_Get_CBox(&slot->outline, &box);
    EXPECT_EQ(std::tuple(box.xMin, box.xMax, box.yMin, box.yMax),
              std::tuple(2 * 16, 20 * 16, -4 * 16, 14 * 16));
    EXPECT_EQ(FT_Outline_Get_Orientation(&slot->outline), FT_ORIENTATION_TRUETYPE);
    const auto covered = [&](char16_t character) {
        const FT_Bitmap& drawn =
            Load(face, character, FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING | FT_LOAD_RENDER)->bitmap;
        return std::accumulate(drawn.buffer, drawn.buffer + drawn.rows * static_cast<unsigned>(drawn.pitch),
                               0.0);
    };
    EXPECT_NEAR(covered(u'o') / 255, area, area * 0.03);
    EXPECT_GT(covered(u'f'), 100) << "what is faint has a silhouette all the same";
    EXPECT_LT(Load(face, u'b', FT_LOAD_NO_SCALE)->outline.n_points, 4100) << "noise";
}

TEST_F(WebFonts, SmallerStrikesAreOfTheirOwnSize) {
    const std::vector<std::uint8_t> bytes = Bytes({10});
    const Face face = FaceOf(bytes, 10);
    ASSERT_EQ(face->num_fixed_sizes, 2);
    const FT_GlyphSlot slot = Load(face, u'q', FT_LOAD_COLOR);
    EXPECT_EQ(std::tuple(slot->bitmap.width, slot->bitmap.rows), std::tuple(3U, 10U));
    EXPECT_EQ(slot->bitmap.buffer[1], 200);
}

TEST_F(WebFonts, WhatTheTablesCannotHoldIsRefused) {
    const auto glyph = [&](char16_t character) -> MGlyph& { return *font.GetGlyph(character); };
    const auto only = [&](std::u16string_view characters) {
        font.Clear();
        for (const char16_t character : characters)
            AddInked(character, 1, 0, 0, 0, 1);
    };
    const struct {
        std::function<void()> change;
        const char* reason; // empty: it is written
    } cases[] = {
        {[] {}, ""},
        {[&] { glyph(u'A').SpacingAfter = -11; }, "the glyph of code 65 moves the pen back by 1 pixels"},
        {[&] { glyph(u'A').SpacingAfter = 2000; }, ""},
        {[&] { glyph(u'A').SpacingAfter = 70000; },
         "the glyph of code 65 advances by 70010 pixels, which is more"},
        {[&] { glyph(u'A').SpacingBefore = -(glyph(u'A').SpacingAfter = 32767); },
         "the glyph of code 65 reaches to -32768"},
        {[&] { font.SetKerning('A', 'b', -40000); }, "the pair of codes 65 and 98 moves by -40000 pixels"},
        {[&] { font.Baseline = -5; }, ""},
        {[&] { font.Baseline = 100000; }, "the baseline is at 100000 pixels"},
        {[&] { settings.GlyphHeight = 0; }, "the font's glyph height is below 1"},
        {[&] { settings.GlyphHeight = 16384; }, ""},
        {[&] { settings.GlyphHeight = 16385; }, "the font is 16385 pixels high"},
        {[&] { only(u""); }, "the font has no glyphs"},
        {[&] { only(u"."); }, ""},
        {[&] { only(u" \xD83D"); }, ""},
        {[&] { only(u"\uFFFF"); }, "the font has no glyphs"},
    };
    int number = 0;
    for (const auto& [change, reason] : cases) {
        font.Clear();
        settings.GlyphHeight = height;
        AddFont();
        glyph(u'\u0416').SpacingAfter = 0;
        change();
        const std::string told = Reason(("f" + std::to_string(number++) + ".woff2").c_str());
        EXPECT_TRUE(*reason == 0 ? told.empty() : told.find(reason) != told.npos) << number << ": " << told;
    }
    // At the greatest height of the program: two thousand pixels at the usual precision, fewer units for more.
    font.Clear();
    settings.GlyphHeight = 1024;
    for (const std::int32_t width : {2000, 3000, 32000, 33000}) {
        MGlyph& wide = AddInked(u'W', width, 0, 0, 0, 1);
        wide.SetPixel(width - 1, 0, MColour(1, 2, 3));
        const MFontDescription description = Description();
        const MWebFont plan = PlanWebFont(description, "W");
        EXPECT_EQ(plan.Scale, width == 2000 ? 16 : width == 3000 ? 8 : width == 32000 ? 1 : 0) << width;
        EXPECT_EQ(plan.Reason.empty(), width < 33000) << width;
    }
}

TEST_F(WebFonts, AnyNameIsAName) {
    const std::pair<const char16_t*, std::u16string> cases[] = {
        {u"Demo", u"Demo"},
        {u"  \t\u0001 ", u"Lettrino"},
        {u"", u"Lettrino"},
        {u"a\nb\u007F\uFFFE", u"a b"},
        {u"\xD83D\xDE00 \xD83D", u"\xD83D\xDE00 \uFFFD"},
        {u"<\"&\\'%> \u65E5\u672C", u"<\"&\\'%> \u65E5\u672C"}};
    for (const auto& [name, family] : cases)
        EXPECT_EQ(CleanFamilyName(name), family);
    EXPECT_EQ(CleanFamilyName(MString(std::u16string(999, u'x') + u"\xD83D\xDE00")).size(), 999U) << "no half";
    const MFontDescription description = Description();
    const MWebFont plan = PlanWebFont(description, u"\"; } */ <b> \\");
    const std::string sheet = CssSheetText(plan, "a\"b c*/");
    EXPECT_THAT(sheet,
                HasSubstr("font-family: \"\\22 ; } */ <b> \\5c \";\n    src: url(\"a%22b%20c%2A%2F.woff2\")"));
    EXPECT_THAT(sheet, HasSubstr("\n.font-a-b-c-- {"));
    EXPECT_THAT(CssPageText(plan, "a"), HasSubstr("<title>&quot;; } */ &lt;b&gt; \\</title>"));
}

} // namespace
