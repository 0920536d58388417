#include "imaging/MFileTypes.h"

#include "imaging/MPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    for (const char* page : {"HTML", "HTM", "PHP", "JSP", "ASP", "ASPX"})
        EXPECT_TRUE(types.IsWebPage(page)) << page;
    for (const char* other : {"PNG", "ZIP", "", "SM", "EPS", "html"})
        EXPECT_FALSE(types.IsWebPage(other)) << other;
    types.AddExtension(15, "png");
    EXPECT_FALSE(types.IsWebPage("PNG"));
}

TEST(FileTypes, CategoriesAreSortedAndWithoutDoubles) {
    MFileTypes types;
    ASSERT_TRUE(types.BuildFileTypes());
    for (const auto& extensions : types.Extensions) {
        const auto names = Names(extensions);
        EXPECT_TRUE(std::ranges::is_sorted(names));
        EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
    }
    EXPECT_STREQ(MFileTypes::GetTypeName(20), "Picture and video files");
    for (const std::int32_t outside : {-1, 21})
        EXPECT_STREQ(MFileTypes::GetTypeName(outside), "?");
}

TEST(FileTypes, Additions) {
    MFileTypes types;
    types.AddExtension(14, "eps");
    for (const std::int32_t category : {14, 14, 9, 21, -1})
        types.AddExtension(category, "abc");
    for (const std::size_t category : {14U, 9U, 20U})
        EXPECT_EQ(Names(types.Extensions[category]), std::vector<std::u16string>{u"ABC"}) << category;
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
