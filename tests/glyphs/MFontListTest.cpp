#include "glyphs/MFontList.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

namespace {

MFontList ListOf(std::vector<MFontFace> faces) {
    MFontList list;
    list.Assign(std::move(faces));
    return list;
}

// Weight, slant, index, index in family.
using Found = std::tuple<std::int32_t, bool, std::int32_t, std::int32_t>;

Found Closest(const MFontList& list, const char* family, std::int32_t weight, bool italic) {
    std::int32_t index = 5, inFamily = 5;
    const bool found = list.ClosestFace(family, weight, italic, index, inFamily);
    EXPECT_EQ(found, index >= 0);
    return {weight, italic, index, inFamily};
}

} // namespace

TEST(FontList, NamesWeightsAndSlants) {
    // The last weight of each name, and the next one.
    const std::pair<std::int32_t, const char*> names[] = {
        {-5, "Normal"}, {0, "Normal"},       {1, "Thin"},     {151, "Extra light"},
        {350, "Light"}, {351, "Normal"},     {451, "Medium"}, {650, "Semi bold"},
        {651, "Bold"},  {751, "Extra bold"}, {851, "Black"},  {INT32_MAX, "Black"}};
    for (const auto& [weight, name] : names) {
        EXPECT_TRUE(FaceStyleName({"F", weight, false}).Equals(MString(name))) << weight;
        EXPECT_TRUE(FaceStyleName({"F", weight, true}).Equals(MString(name) + " Italic")) << weight;
    }
}

TEST(FontList, IsSortedWithoutDuplicates) {
    const std::vector<MFontFace> sorted{{"Alpha", 400, false}, {"beta", 400, false}, {"beta", 400, true},
                                        {"BETA", 500, false},  {"beta", 700, true},  {"Beta Two", 400, false}};
    std::vector<MFontFace> faces(sorted.rbegin(), sorted.rend());
    faces.insert(faces.end(), {{"", 400, false}, {"Alpha", 400, false}, {"beta", 700, true}});
    const MFontList list = ListOf(faces);
    ASSERT_EQ(list.count, 6);
    for (std::int32_t i = 0; i < list.count; ++i) {
        const auto& [family, weight, italic] = sorted[static_cast<std::size_t>(i)];
        EXPECT_TRUE(list.Face(i)->family.Equals(family)) << i;
        EXPECT_EQ(std::pair(list.Face(i)->weight, list.Face(i)->italic), std::pair(weight, italic)) << i;
    }
    EXPECT_FALSE(list.Face(-1) || list.Face(6) || MFontList().Face(0));
}

TEST(FontList, FindsTheClosestFace) {
    const MFontList list = ListOf({{"A", 400, false},
                                   {"Gap", 400, false},
                                   {"Gap", 700, true},
                                   {"Tie", 300, false},
                                   {"Tie", 500, false},
                                   {"Both", 400, false},
                                   {"Both", 400, true},
                                   {"far", INT32_MIN, false}});
    const std::tuple<const char*, std::int32_t, bool, Found> cases[] = {
        {"Gap", 400, true, {400, false, 4, 0}},
        {"Gap", 700, false, {700, true, 5, 1}},
        {"Gap", 550, false, {400, false, 4, 0}},
        {"Gap", 551, false, {700, true, 5, 1}},
        {"Tie", 400, true, {300, false, 6, 0}},
        {"Both", 900, true, {400, true, 2, 1}},
        {"far", INT32_MAX, true, {INT32_MIN, false, 3, 0}},
        {"gap", 123, true, {123, true, -1, -1}}, // the exact name only
    };
    for (const auto& [family, weight, italic, found] : cases)
        EXPECT_EQ(Closest(list, family, weight, italic), found) << family << " " << weight;
}

TEST(FontList, EnumeratesThisMachine) {
    MFontList list;
    list.Enumerate();
    ASSERT_GT(list.count, 0);
    const auto [weight, italic, index, inFamily] = Closest(list, "Liberation Sans", 650, true);
    EXPECT_EQ(std::tuple(weight, italic, inFamily), std::tuple(700, true, 3)) << "the bold italic is last";
    FontList.reset();
    const MFontList* const ofProgram = &InstalledFonts();
    EXPECT_EQ(ofProgram->count, list.count);
    EXPECT_EQ(&InstalledFonts(), ofProgram) << "made once";
    FontList.reset();
}
