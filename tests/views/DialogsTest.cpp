// What is the same in all dialogs.

#include "views/Fonts.h"

using Desktop::DialogId;

using Dialogs = EditorWindowTest;

TEST_F(Dialogs, LookAsAUserExpectsAndWorkByKeyboard) {
    AddLetters();
    font->GenerateKerning();
    const struct {
        DialogId id;
        const char* title;
        const char* picture;
        const char* controls; // from the one that has the focus on
    } cases[] = {
        {DialogId::About, "About", "about", "OK"},
        {DialogId::GlyphHeight, "Change glyph height", "glyph-height", "Glyph height|OK|Cancel"},
        {DialogId::LicenseKeys, "Enter license keys", "license-keys", "Key 1|Key 2|Key 3|OK|Cancel"},
        {DialogId::LetterCubesNames, "Export as letter cubes", "letter-cube-names",
         "Names, one to a line|OK|Cancel"},
        {DialogId::AddGlyphs, "Add/Change characters", "add-glyphs",
         "Font family|Style|Glyph height|Colour|Colour font|Characters|OK|Cancel"},
        {DialogId::AddPicture, "Add/Change picture", "add-picture-empty",
         "Picture|Browse|Character|Padding top|Padding bottom|Spacing before|Spacing after|Trim "
         "horizontally|OK|Cancel"},
        {DialogId::AddSheet, "Add picture sheet", "add-sheet-empty",
         "Picture|Browse|Characters|Sheet|Ground|Cell width|Cell height|Spacing before|Spacing after|Cancel"},
        {DialogId::GlyphEditor, "Glyph editor", "glyph-editor",
         "Glyphs|Character|Unicode|Resolution|Spacing before|Spacing after|Baseline|Cap height|Space character "
         "width|Delete glyph|OK|Cancel"},
        {DialogId::KerningEditor, "Kerning editor", "kerning-editor",
         "Kerning pairs|Left character|Right character|Kerning|Generate|Clear|OK|Cancel"},
        {DialogId::OpticalKerning, "Optical kerning", "optical-kerning",
         "Text|Line of text|Model pairs|Show white|Strength|OK|Cancel"},
        {DialogId::ExportGameFont, "Export as game font", "export-game-font",
         "Engine|Form|Page sides|Gap|Bleed|Largest side|What of the font the engine doesn't take as it "
         "is|OK|Cancel"},
    };
    settings.GameFont.Engine = "pixi";
    font->SetKerning('A', '?', -3);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.title);
        EXPECT_FALSE(RunAnd(c.id, [&](QWidget& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QString("Lettrino - ") + c.title);
            ExpectTextFits(dialog);
            QApplication::processEvents();
            Screenshot(dialog, c.picture);
            EXPECT_EQ(TabOrder(dialog).join('|'), c.controls);
            QTest::keyClick(&dialog, Qt::Key_Escape);
            EXPECT_FALSE(dialog.isVisible());
        }));
    }
    CurrentFont = nullptr;
    for (const DialogId editor : {DialogId::GlyphEditor, DialogId::KerningEditor, DialogId::ExportGameFont})
        EXPECT_FALSE(Desktop::RunDialog(nullptr, editor)) << "without a document";
}
