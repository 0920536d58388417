#include "glyphs/MFontList.h"

#include <gtest/gtest.h>

#include <string>

namespace {

MFontList ListOf(std::vector<MFontFace> faces) {
    MFontList list;
    list.Assign(std::move(faces));
    return list;
}

} // namespace

TEST(FontList, NamesWeightsAndSlants) {
    // The last weight of each name, and the next one.
    const std::pair<std::int32_t, const char*> names[] = {
        {-5, "Normal"},       {0, "Normal"},        {1, "Thin"},     {150, "Thin"},
        {151, "Extra light"}, {250, "Extra light"}, {251, "Light"},  {350, "Light"},
        {351, "Normal"},      {450, "Normal"},      {451, "Medium"}, {550, "Medium"},
        {551, "Semi bold"},   {650, "Semi bold"},   {651, "Bold"},   {750, "Bold"},
        {751, "Extra bold"},  {850, "Extra bold"},  {851, "Black"},  {INT32_MAX, "Black"}};
    for (const auto& [weight, name] : names) {
        EXPECT_TRUE(FaceStyleName({"F", weight, false}).Equals(MString(name))) << weight;
        EXPECT_TRUE(FaceStyleName({"F", weight, true}).Equals(MString(name) + " Italic")) << weight;
    }
}

TEST(FontList, IsSortedWithoutDuplicates) {
    const MFontList list = ListOf({{"beta", 700, true},
                                   {"Beta Two", 400, false},
                                   {"", 400, false},
                                   {"beta", 400, true},
                                   {"Alpha", 400, false},
                                   {"beta", 400, false},
                                   {"BETA", 500, false},
                                   {"Alpha", 400, false},
                                   {"beta", 700, true}});
    const std::vector<MFontFace> expected{{"Alpha", 400, false}, {"beta", 400, false},
                                          {"beta", 400, true},   {"BETA", 500, false},
                                          {"beta", 700, true},   {"Beta Two", 400, false}};
    ASSERT_EQ(list.count, 6);
    EXPECT_EQ(list.capacity, 6);
    for (std::int32_t i = 0; i < list.count; ++i) {
        const MFontFace& face = expected[static_cast<std::size_t>(i)];
        EXPECT_TRUE(list.Face(i)->family.Equals(face.family)) << i;
        EXPECT_EQ(list.Face(i)->weight, face.weight) << i;
        EXPECT_EQ(list.Face(i)->italic, face.italic) << i;
    }
    EXPECT_EQ(list.Face(-1), nullptr);
    EXPECT_EQ(list.Face(6), nullptr);
    EXPECT_EQ(MFontList().Face(0), nullptr);
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
    struct Case {
        const char* family;
        std::int32_t weight;
        bool italic;
        std::int32_t foundWeight;
        bool foundItalic;
        std::int32_t inFamily;
    };
    for (const Case& c : {Case{"Gap", 400, true, 400, false, 0}, Case{"Gap", 700, false, 700, true, 1},
                          Case{"Gap", 550, false, 400, false, 0}, Case{"Gap", 551, false, 700, true, 1},
                          Case{"Tie", 400, true, 300, false, 0}, Case{"Both", 900, true, 400, true, 1},
                          Case{"far", INT32_MAX, true, INT32_MIN, false, 0}}) {
        std::int32_t weight = c.weight;
        bool italic = c.italic;
        std::int32_t index = 0;
        std::int32_t inFamily = 0;
        ASSERT_TRUE(list.ClosestFace(c.family, weight, italic, index, inFamily)) << c.family;
        EXPECT_EQ(weight, c.foundWeight) << c.family << " " << c.weight;
        EXPECT_EQ(italic, c.foundItalic) << c.family << " " << c.weight;
        EXPECT_EQ(inFamily, c.inFamily) << c.family << " " << c.weight;
        EXPECT_TRUE(list.Face(index)->family.Equals(MString(c.family)));
        EXPECT_EQ(list.Face(index)->weight, c.foundWeight);
    }
    std::int32_t weight = 123;
    bool italic = true;
    std::int32_t index = 5;
    std::int32_t inFamily = 5;
    EXPECT_FALSE(list.ClosestFace("gap", weight, italic, index, inFamily)) << "the exact name only";
    EXPECT_EQ(weight, 123);
    EXPECT_TRUE(italic);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(inFamily, -1);
}

TEST(FontList, EnumeratesThisMachine) {
    MFontList list;
    list.Enumerate();
    ASSERT_GT(list.count, 0);
    std::int32_t weight = 650;
    bool italic = true;
    std::int32_t index = 0;
    std::int32_t inFamily = 0;
    ASSERT_TRUE(list.ClosestFace("Liberation Sans", weight, italic, index, inFamily));
    EXPECT_EQ(weight, 700);
    EXPECT_TRUE(italic);
    EXPECT_EQ(inFamily, 3) << "after regular, italic and bold";
    const std::int32_t count = list.count;
    list.Enumerate();
    EXPECT_EQ(list.count, count);

    FontList.reset();
    const MFontList* const ofProgram = &InstalledFonts();
    EXPECT_EQ(ofProgram->count, count);
    EXPECT_EQ(&InstalledFonts(), ofProgram) << "made once";
    FontList.reset();
}
