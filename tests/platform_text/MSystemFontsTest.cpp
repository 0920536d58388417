#include "platform/text/MSystemFonts.h"

#include "platform_text/FontBuilder.h"
#include "platform_text/FontFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

using testing::EndsWith;

constexpr std::array<double, 4> noMatrix{1, 0, 0, 1};

bool Has(const std::vector<MSystemFace>& faces, const char* family, std::int32_t weight, bool italic,
         const char* style) {
    return std::ranges::any_of(faces, [&](const MSystemFace& face) {
        return std::tuple(Narrow(face.family), face.weight, face.italic, Narrow(face.style)) ==
               std::tuple(family, weight, italic, style);
    });
}

} // namespace

TEST(SystemFonts, ListsEveryFaceUnderEachOfItsNames) {
    const auto faces = ListSystemFaces();
    EXPECT_TRUE(Has(faces, "Liberation Sans", 400, false, "Regular"));
    EXPECT_TRUE(Has(faces, "Liberation Serif", 700, true, "Bold Italic"));
    EXPECT_TRUE(Has(faces, "DejaVu Sans", 200, false, "ExtraLight"));
    EXPECT_TRUE(Has(faces, "DejaVu Sans Light", 200, false, "ExtraLight"));
    EXPECT_TRUE(Has(faces, "DejaVu Sans Condensed", 400, false, "Condensed"));
}

TEST(SystemFonts, MapperGivesTheFaceOfTheFamily) {
    const std::tuple<const char*, int, bool, const char*> wishes[] = {
        {"Liberation Sans", 0, false, "/LiberationSans-Regular.ttf"},
        {"liberation SANS", 700, false, "/LiberationSans-Bold.ttf"},
        {"Liberation Sans", 900, true, "/LiberationSans-BoldItalic.ttf"},
        {"DejaVu Sans", 100, false, "/DejaVuSans-ExtraLight.ttf"},
        {"DejaVu Sans", 400, false, "/DejaVuSans.ttf"},
        {"DejaVu Sans Condensed", 700, false, "/DejaVuSansCondensed-Bold.ttf"},
        {"Arial Black", 100, false, "/DejaVuSans-Bold.ttf"},
        {"DejaVu Math TeX Gyre", 700, false, "/DejaVuMathTeXGyre.ttf"},
        {"DejaVu Math TeX Gyre", 400, true, "/DejaVuMathTeXGyre.ttf"},
    };
    for (const auto& [family, weight, italic, file] : wishes) {
        const auto match = MatchFont(family, weight, italic);
        ASSERT_TRUE(match);
        EXPECT_THAT(match->file, EndsWith(file)) << family << " " << weight;
        // What the face has none of its own of is made from it.
        const bool made = std::string_view(family).ends_with("Gyre");
        EXPECT_EQ(match->embolden, made && weight == 700) << family;
        EXPECT_EQ(match->matrix == noMatrix, !(made && italic)) << family;
        EXPECT_EQ(match->matrix[1] > 0.1, made && italic) << family;
    }
}

TEST(SystemFonts, AnUnknownFamilyGivesSomeFont) {
    for (const char* family : {"No Such Family", "", "\xFF\xFE"}) {
        EXPECT_FALSE(IsFamilyInstalled(family));
        EXPECT_TRUE(MatchFont(family, 400, false)) << family;
    }
    EXPECT_TRUE(MatchFont("Liberation Sans", 2'000'000'000, false));
    EXPECT_TRUE(MatchFont("Liberation Sans", -2'000'000'000, false));
}

TEST(SystemFonts, AFontFileIsAFontOfThisRun) {
    const AddedFonts added;
    EXPECT_FALSE(IsFamilyInstalled("Laboratory Sans"));
    fonts::Font font;
    font.family = "Laboratory Sans";
    EXPECT_TRUE(added.Add("lab.ttf", font.Build()));
    EXPECT_TRUE(IsFamilyInstalled("Laboratory Sans"));
    EXPECT_TRUE(Has(ListSystemFaces(), "Laboratory Sans", 400, false, "Regular"));
    const auto match = MatchFont("Laboratory Sans", 400, false);
    ASSERT_TRUE(match);
    EXPECT_THAT(match->file, EndsWith("/lab.ttf"));

    EXPECT_FALSE(added.Add("text.ttf", "this is no font"));
    for (const char* none : {"/no/such/file.ttf", "/usr/share/fonts", ""})
        EXPECT_FALSE(AddFontFile(none)) << none;
}
