#include "imaging/MFileTypes.h"

#include "imaging/MPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

TEST(FileTypes, OnlyServerScriptsAreWebPages) {
    MFileTypes types;
    for (const char* extension : {"abc", "png"})
        types.AddExtension(15, extension);
    EXPECT_TRUE(types.IsWebPage("ABC") && !types.IsWebPage("abc"));
    EXPECT_FALSE(types.IsWebPage("PNG")) << "in whatever category";
}

TEST(FileTypes, NamesAndAdditions) {
    EXPECT_STREQ(MFileTypes::GetTypeName(20), "Picture and video files");
    for (const std::int32_t outside : {-1, 21})
        EXPECT_STREQ(MFileTypes::GetTypeName(outside), "?");
    MFileTypes types;
    types.AddExtension(14, "eps");
    for (const std::int32_t category : {14, 14, 9, 21, -1})
        types.AddExtension(category, "abc");
    for (const std::size_t category : {14U, 9U, 20U})
        EXPECT_TRUE(std::ranges::equal(types.Extensions[category], std::vector<MString>{"ABC"})) << category;
}

TEST(ListCodecs, HeadingNumbersAndExtensions) {
    MString text("before");
    ListCodecs(text, true, true);
    EXPECT_TRUE(text.Contains(MString(".jpg,.jpeg,.jpe,.jfif\n")));
    EXPECT_TRUE(text.Contains(MString(".tga\n")));
    EXPECT_FALSE(text.Contains(MString("before")) || text.Contains(MString("\t")));
    ListCodecs(text, false, false);
    EXPECT_EQ(text.View().substr(0, 29), u"WIC ENCODERS\n\n1\tPNG\t.png\n2\tJP");
    EXPECT_FALSE(text.Contains(MString("tga"))) << "it is only read";
}
