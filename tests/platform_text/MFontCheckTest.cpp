#include "platform/text/MFontCheck.h"

#include "bombs/Bombs.h"
#include "platform_text/FontFixture.h"

#include <gtest/gtest.h>

namespace {

std::string Checked(const std::string& font) {
    const TemporaryFolder folder;
    return WhyUnsafe(ToSystemPath(folder.Write("f.ttf", font)).string());
}

} // namespace

TEST(FontCheck, RealFontsPass) {
    for (const char* name : {"DejaVuSans", "LiberationSans-Regular"})
        EXPECT_EQ(WhyUnsafe(FontPath(name)), "") << name;
    EXPECT_EQ(WhyUnsafe("/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf"), "");
    for (const std::string& font : bombs::SmallFaces())
        EXPECT_EQ(Checked(font), "");
    EXPECT_EQ(Checked("no font at all"), "") << "which others tell";
}

TEST(FontCheck, WhatTheLibrariesWouldDieOfIsRefusedWithAReason) {
    const std::pair<const char*, const char*> expected[] = {
        {"glyphs of glyphs of nothing, 1000^4", "too many others"},
        {"1100 x 1100 in each glyph", "larger than a glyph"},
        {"a document of 30 MB for each glyph", "unpack to more"},
        {"WOFF of 200 MB", "unpacks to 20000"},
        {"30,000 faces", "it has 30000 faces"},
        {"a gzip of 100 MB", "it is packed"},
    };
    std::size_t found = 0;
    for (auto* const some : {bombs::FaceBombs, bombs::ColourBombs}) {
        for (const bombs::Bomb& bomb : some()) {
            for (const auto& [name, words] : expected) {
                if (bomb.name != name || bomb.reader == "CBDT") continue;
                EXPECT_NE(Checked(bomb.bytes).find(words), std::string::npos) << name;
                ++found;
            }
        }
    }
    EXPECT_EQ(found, std::size(expected));
}
