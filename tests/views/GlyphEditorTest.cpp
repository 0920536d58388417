// The glyph editor as a user has it.

#include "views/Fonts.h"

#include <QListView>

using Desktop::DialogId;

namespace {

class GlyphEditor : public EditorWindowTest {
protected:
    void SetUp() override {
        EditorWindowTest::SetUp();
        settings.BackgroundColour = {0, 255, 0};
    }
    static QRect Preview(QWidget& dialog) { return Find(dialog, QColor(0, 255, 0)); }

    static QString Shown(QWidget& dialog) {
        return TextsOf(dialog, {"Character", "Unicode", "Resolution", "Spacing before", "Spacing after",
                                "Baseline", "Cap height", "Space character width"});
    }
};

TEST_F(GlyphEditor, KeysAndMouseChangeTheFont) {
    for (const char16_t letter : {u'A', u'b', u'B'})
        AddBlock(letter);
    font->Baseline = 9;
    EXPECT_TRUE(RunAnd(DialogId::GlyphEditor, [&](QWidget& dialog) {
        EXPECT_EQ(Shown(dialog), "A|65|40 x 50|0|0|9|0|50");
        const QRect preview = Preview(dialog);
        const double scale = ScaleOf(preview);
        const QRect list = Named<QListView>(dialog, "Glyphs")->geometry();
        EXPECT_EQ(preview.topLeft(), QPoint(list.top(), list.top()));
        EXPECT_TRUE(preview.bottom() == list.bottom() && preview.right() < list.left());
        const QWidget* const hint = GroundOf(dialog).childAt(preview.center());
        EXPECT_EQ(hint->cursor().shape(), Qt::SizeAllCursor);
        EXPECT_TRUE(hint->toolTip().contains("left") && hint->toolTip().contains("right"));
        const QRect ink = Find(dialog, QColor(0, 0, 255));
        EXPECT_NEAR(ink.width(), 40 * scale, 3); // a guide lies on the edge at either side
        EXPECT_LE((ink.center() - preview.center()).manhattanLength(), 4);

        QTest::keyClicks(QApplication::focusWidget(), "B"); // goes to the line of that very letter
        EXPECT_EQ(Shown(dialog), "B|66|40 x 50|0|0|9|0|50");
        TypeInto(Named<QLineEdit>(dialog, "Spacing before"), "-3");
        TypeInto(Named<QLineEdit>(dialog, "Cap height"), "30");
        TypeInto(Named<QLineEdit>(dialog, "Space character width"), "17");
        EXPECT_EQ(font->GetGlyph(u'B')->SpacingBefore, -3);
        EXPECT_EQ(font->CapHeight, 30);

        const auto at = [&](double x, double y) {
            return preview.center() + QPoint(static_cast<int>(x * scale), static_cast<int>(y * scale));
        };
        Drag(dialog, Qt::LeftButton, {at(10, 3), at(22.5, 3)}); // 2 and a half right of the glyph
        EXPECT_EQ(font->GetGlyph(u'B')->SpacingAfter, 2);
        EXPECT_EQ(Named<QLineEdit>(dialog, "Spacing after")->text(), "2");
        Drag(dialog, Qt::RightButton, {at(5, 24), at(5, 17.5)}); // 7 and a half above its bottom
        EXPECT_EQ(font->Baseline, 7);
        Drag(dialog, Qt::RightButton, {at(5, -14.5)}); // that high above the middle
        EXPECT_EQ(font->CapHeight, 25 - 7 + 14);
        Screenshot(dialog, "glyph-editor-dragged");

        TypeInto(Named<QLineEdit>(dialog, "Character"), "A");
        EXPECT_EQ(Named<QListView>(dialog, "Glyphs")->currentIndex().row(), 0);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }));
    EXPECT_EQ(font->SpaceWidth, 17);
    EXPECT_EQ(font->GetGlyph(u'A')->SpacingBefore, 0);
}

TEST_F(GlyphEditor, DeletingAndEscape) {
    AddBlock(u'A');
    AddBlock(u'B').SpacingBefore = 7;
    EXPECT_FALSE(RunAnd(DialogId::GlyphEditor, [&](QWidget& dialog) {
        auto* const list = Named<QListView>(dialog, "Glyphs");
        TypeInto(Named<QLineEdit>(dialog, "Baseline"), "1");
        PressMnemonic(Qt::Key_D);
        EXPECT_EQ(list->model()->rowCount(), 1);
        EXPECT_EQ(list->currentIndex().row(), 0);
        EXPECT_EQ(Shown(dialog), "B|66|40 x 50|7|0|1|0|50");
        EXPECT_FALSE(Find(dialog, QColor(0, 0, 255)).isNull());
        const QRect preview = Preview(dialog);
        EXPECT_TRUE(PaintsAnew(dialog, preview, [] { PressMnemonic(Qt::Key_D); }));
        EXPECT_TRUE(Find(dialog, QColor(0, 0, 255)).isNull());
        QTest::keyClick(list, Qt::Key_Escape);
    }));
    EXPECT_EQ(font->GlyphCount(), 0) << "which Escape doesn't bring back";
    EXPECT_EQ(font->Baseline, 0);
    RunAnd(DialogId::GlyphEditor, [&](QWidget& dialog) {
        EXPECT_EQ(Shown(dialog), "|||||||");
        Drag(dialog, Qt::LeftButton, {QPoint(200, 200)});
        PressMnemonic(Qt::Key_D); // there is nothing to delete
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
}

} // namespace
