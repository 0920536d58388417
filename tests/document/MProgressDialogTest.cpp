#include "platform/MProgressDialog.h"

#include "DocumentFixture.h"
#include "Text.h"
#include "platform/MLongWork.h"

#include <algorithm>
#include <cmath>
#include <vector>

using ProgressDialogTest = DocumentTest;

TEST_F(ProgressDialogTest, TellsTheDesktopOfChangesOnly) {
    MProgressDialog dialog;
    dialog.Update(0.5F, "closed");
    dialog.Close();
    EXPECT_TRUE(Headless::record.progressPercents.empty());
    dialog.Configure(AnyWindow());
    dialog.Open();
    dialog.Configure(nullptr);
    EXPECT_EQ(dialog.owner, AnyWindow()) << "ignored while it is open";
    for (const float fraction : {0.0F, 0.499F, 0.4999F, 1.5F, 1.0F, -2.0F, std::nanf("")})
        dialog.Update(fraction, "A");
    dialog.Update(0.0F, "B");
    dialog.Close();
    dialog.Update(0.7F, "C");
    dialog.Open(); // starts clean, whatever was shown
    dialog.Close();
    EXPECT_EQ(Headless::record.progressPercents, (std::vector<std::int32_t>{0, 49, 100, 0, 0}));
    EXPECT_TRUE(std::ranges::equal(Headless::record.progressTexts, std::vector<MString>{"", "A", "B", ""}));
}

TEST_F(ProgressDialogTest, OnlyLongWorkIsShownAndTheOuterOneAlone) {
    constexpr std::uint64_t noticed = 1 << 25;
    Headless::record = {};
    {
        MLongWork brief(nullptr, "Brief", noticed - 1);
        brief.At(1, 2);
        EXPECT_FALSE(ProgressDialog.open);
        MLongWork outer(nullptr, "Outer", noticed);
        {
            MLongWork inner(nullptr, "Inner", noticed);
            inner.At(1, 2);
        }
        EXPECT_TRUE(ProgressDialog.open) << "it ends with the outer one";
        outer.At(1, 4);
    }
    EXPECT_FALSE(ProgressDialog.open);
    EXPECT_EQ(Headless::record.progressPercents, (std::vector<std::int32_t>{0, 25}));
    EXPECT_EQ(Headless::record.progressTexts.back(), MString("Outer"));
}
