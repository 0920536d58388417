#include "editors/MAddGlyphs.h"

#include "EditorTest.h"
#include "glyphs/MFontList.h"

namespace {

class AddGlyphs : public EditorTest {
protected:
    AddGlyphs() {
        FontList = std::make_unique<MFontList>();
        FontList->Assign({{"Alpha", 400, false},
                          {"Alpha", 700, true},
                          {"Gamma", 300, false},
                          {"Gamma", 310, false},
                          {"Gamma", 900, false},
                          {"gamma", 400, false}});
        settings.FontName = "Gamma";
    }
    ~AddGlyphs() override { FontList.reset(); }
    AddGlyphs(const AddGlyphs&) = delete;
    AddGlyphs& operator=(const AddGlyphs&) = delete;
};

using Names = std::vector<MString>;

} // namespace

TEST_F(AddGlyphs, OpensWithTheNearestFace) {
    settings.Weight = 600;
    settings.Italic = true;
    const MAddGlyphs dialog;
    // A name that differs in case only stands between the faces of the other.
    EXPECT_EQ(dialog.Families, (Names{"Alpha", "Gamma", "gamma", "Gamma"}));
    EXPECT_EQ(dialog.FamilyIndex, 1);
    EXPECT_EQ(dialog.Styles, (Names{"Light", "Light", "Black"})) << "one name may stand for two faces";
    EXPECT_EQ(dialog.StyleIndex, 1) << "290 from the second, 300 from the last";
    EXPECT_EQ(settings.Weight, 310) << "at once, also if the dialog is cancelled";
    EXPECT_FALSE(settings.Italic);
}

TEST_F(AddGlyphs, AFamilyThatIsNotInstalledStays) {
    settings.FontName = "Arial Black";
    settings.Weight = 650;
    MAddGlyphs dialog;
    EXPECT_EQ(dialog.FamilyIndex, -1);
    EXPECT_TRUE(dialog.Styles.empty());
    EXPECT_EQ(dialog.StyleIndex, -1);
    EXPECT_EQ(settings.Weight, 650);
    dialog.ChangeStyle(0);
    dialog.ChangeFamily(-1);
    dialog.ChangeFamily(4);
    MAddGlyphs::Accept("", 100, false);
    EXPECT_EQ(Narrow(settings.FontName), "Arial Black");
    EXPECT_EQ(settings.Weight, 650);
    MAddGlyphs::Accept("Alpha", 100, false);
    EXPECT_EQ(Narrow(settings.FontName), "Alpha");
}

TEST_F(AddGlyphs, ChangesStandInTheSettingsAtOnce) {
    MAddGlyphs dialog;
    dialog.ChangeFamily(0);
    EXPECT_EQ(Narrow(settings.FontName), "Alpha");
    EXPECT_EQ(dialog.Styles, (Names{"Normal", "Bold Italic"}));
    EXPECT_EQ(settings.Weight, 400);
    EXPECT_EQ(dialog.StyleIndex, 0);
    for (const std::int32_t style : {1, 2}) // of which the second is none
        dialog.ChangeStyle(style);
    EXPECT_TRUE(settings.Weight == 700 && settings.Italic && dialog.StyleIndex == 1);
    dialog.ChangeFamily(3);
    EXPECT_EQ(settings.Weight, 310) << "the nearest to 400";
    EXPECT_FALSE(settings.Italic);
}

TEST_F(AddGlyphs, DragsMarkAndUnmark) {
    MAddGlyphs dialog;
    dialog.Grid.Area = {10, 10, 170, 150}; // cells of 10 pixels
    settings.Selected.fill(0);
    EXPECT_TRUE(dialog.Drag(25, 15, true, false));
    EXPECT_FALSE(dialog.Drag(26, 16, true, false)) << "marked already";
    EXPECT_TRUE(dialog.Drag(35, 15, true, true)) << "the left button decides";
    EXPECT_FALSE(dialog.Drag(45, 15, false, false));
    EXPECT_FALSE(dialog.Drag(100, 150, true, false)) << "the lower limit";
    EXPECT_EQ(settings.SelectedCount(), 2);
    EXPECT_EQ(dialog.Grid.Cursor, 34) << "the keyboard goes on where the mouse was";
    settings.Selected[34] = 7; // any value but 0 is a mark
    EXPECT_FALSE(dialog.Drag(35, 15, true, false));
    EXPECT_TRUE(dialog.ToggleAtCursor());
    EXPECT_EQ(settings.Selected[34], 0);
}
