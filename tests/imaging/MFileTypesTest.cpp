#include "imaging/MFileTypes.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<std::u16string> Names(const MVector<MString>& extensions) {
    std::vector<std::u16string> names;
    for (const MString& extension : extensions)
        names.emplace_back(extension.View());
    return names;
}

} // namespace

TEST(FileTypes, OnlyServerScriptsAreWebPages) {
    MFileTypes types;
    EXPECT_FALSE(types.IsWebPage("HTML")) << "nothing is, before the table is built";
    ASSERT_TRUE(types.BuildFileTypes());
    EXPECT_TRUE(types.IsWebPage("HTML"));
    for (const char* other : {"ZIP", "", "html"})
        EXPECT_FALSE(types.IsWebPage(other)) << other;
    types.AddExtension(15, "png");
    EXPECT_FALSE(types.IsWebPage("PNG"));
}

TEST(FileTypes, Additions) {
    MFileTypes types;
    types.AddExtension(14, "eps");
    types.AddExtension(14, "abc");
    types.AddExtension(14, "ABC");
    types.AddExtension(9, "abc");
    types.AddExtension(21, "abc");
    types.AddExtension(-1, "abc");
    EXPECT_EQ(Names(types.Extensions[14]), std::vector<std::u16string>{u"ABC"});
    EXPECT_EQ(Names(types.Extensions[9]), std::vector<std::u16string>{u"ABC"});
    EXPECT_EQ(Names(types.Extensions[20]), std::vector<std::u16string>{u"ABC"});
    for (const std::int32_t outside : {-1, 21})
        EXPECT_STREQ(MFileTypes::GetTypeName(outside), "?");
}
