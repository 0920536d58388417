#include "imaging/MPixelBudget.h"

#include "TemporaryFolder.h"
#include "Text.h"
#include "imaging/Pictures.h"

#include <gtest/gtest.h>

namespace {

class PixelBudgetTest : public testing::Test {
protected:
    TemporaryFolder folder;

    PixelBudgetTest() { RestorePixelBudget(); }
    ~PixelBudgetTest() override { RestorePixelBudget(); }

    // A picture of nothing, which takes a thousandth of its pixels as a file.
    MString Blank(const char* name, std::uint32_t width, std::uint32_t height) const {
        EXPECT_TRUE(BlankPicture(width, height, FormatR8).Save(folder.File(name)));
        return folder.File(name);
    }
    static bool Loads(const MString& path) { return OwnedPicture(MPicture(path)).IsValid(); }
};

TEST_F(PixelBudgetTest, APictureThatNoGlyphNeedsIsRefusedWithItsNumbers) {
    const MString bomb = Blank("bomb.png", 8000, 8000);
    EXPECT_FALSE(Loads(bomb));
    EXPECT_TRUE(Narrow(TakePixelRefusal()).starts_with("its 8000 x 8000 pixels are more than a glyph"));
    EXPECT_TRUE(TakePixelRefusal().IsEmpty()) << "told once";
    const MFontPictureScope font;
    EXPECT_TRUE(Loads(bomb)) << "but a whole font may";
}

TEST_F(PixelBudgetTest, ManyPicturesShareOneBudget) {
    const MString large = Blank("large.png", 5000, 4000);
    const MString small = Blank("small.png", 512, 512);
    EXPECT_TRUE(Loads(large));
    EXPECT_FALSE(Loads(large)) << "the second one";
    for (int i = 0; i < 223; ++i)
        ASSERT_TRUE(Loads(small)) << i;
    int more = 0;
    while (more < 1000 && Loads(small))
        ++more;
    EXPECT_LT(more, 200) << "nor is anything free without end";
    RestorePixelBudget();
    EXPECT_TRUE(Loads(large));
}

TEST_F(PixelBudgetTest, NumbersFromFilesDontOverflow) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    for (const std::uint64_t width : {most, most + 2, std::numeric_limits<std::uint64_t>::max()})
        EXPECT_FALSE(TakePixels(width, width, std::numeric_limits<std::uint64_t>::max()));
    EXPECT_TRUE(TakePixels(8192, 4096, 0));
    EXPECT_FALSE(TakeSparePixels(SparePixels));
}

} // namespace
