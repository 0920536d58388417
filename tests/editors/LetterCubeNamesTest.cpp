#include "editors/LetterCubeNames.h"

#include "EditorTest.h"

namespace {

using LetterCubeNamesTest = EditorTest;

TEST_F(LetterCubeNamesTest, LinesEndAsInTheSettingsFile) {
    StoreLetterCubeNames("Anna\nBob\n\n");
    EXPECT_EQ(Narrow(settings.LetterCubesNames), "Anna\r\nBob\r\n\r\n");
    StoreLetterCubeNames("");
    EXPECT_TRUE(settings.LetterCubesNames.IsEmpty());
    MString longText;
    for (int i = 0; i < 400; ++i)
        longText += "xy\n";
    StoreLetterCubeNames(longText);
    EXPECT_EQ(settings.LetterCubesNames.Length(), 1000); // 250 lines of four
}

} // namespace
