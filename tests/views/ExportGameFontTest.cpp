// The window in which the export of a font for games is chosen.

#include "views/Fonts.h"

#include <QComboBox>
#include <QPlainTextEdit>

using Desktop::DialogId;

using ExportGameFontWindow = EditorWindowTest;

TEST_F(ExportGameFontWindow, TellsAtOnceWhatWillBeWrittenAndRemembersOnOk) {
    AddLetters();
    EXPECT_TRUE(RunAnd(DialogId::ExportGameFont, [](QWidget& dialog) {
        auto* const findings =
            Named<QPlainTextEdit>(dialog, "What of the font the engine doesn't take as it is");
        const auto summary = [&] {
            const QString tells = LabelWith(dialog, ";");
            return tells.isEmpty() ? LabelWith(dialog, "Nothing") : tells;
        };
        auto* const engine = Named<QComboBox>(dialog, "Engine");
        auto* const form = Named<QComboBox>(dialog, "Form");
        EXPECT_TRUE(summary().startsWith("text, ")) << summary().toStdString();
        QTest::keyClick(engine, Qt::Key_Down); // PixiJS
        EXPECT_TRUE(findings->toPlainText().contains("base: the engine draws text too low"));
        EXPECT_EQ(form->count(), 2);
        QTest::keyClick(engine, Qt::Key_Down); // Phaser
        EXPECT_EQ(form->currentText(), "xml");
        EXPECT_TRUE(summary().contains("1 page of ")) << summary().toStdString();

        const QString before = summary();
        TypeInto(Named<QLineEdit>(dialog, "Gap"), "9");
        EXPECT_NE(summary(), before) << "a wider gap, a larger page";
        auto* const largest = Named<QLineEdit>(dialog, "Largest side");
        TypeInto(largest, "256");
        EXPECT_TRUE(summary().startsWith("Nothing can be written: the glyphs need "))
            << summary().toStdString();
        EXPECT_TRUE(findings->toPlainText().startsWith("pages: ")) << "what is to do comes first";
        QTest::keyClick(largest, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible()) << "there is nothing to write";
        TypeInto(largest, "1024");
        QTest::keyClick(Named<QComboBox>(dialog, "Page sides"), Qt::Key_End);
        QTest::keyClick(largest, Qt::Key_Return);
    }));
    EXPECT_TRUE(settings.GameFont.Engine.Equals(u"phaser") && settings.GameFont.Form.Equals(u"xml"));
    EXPECT_TRUE(settings.GameFont.PageSize.Equals(u"pot"));
    EXPECT_EQ(std::tuple(settings.GameFont.Gap, settings.GameFont.Largest), std::tuple(9, 1024));
    EXPECT_FALSE(RunAnd(DialogId::ExportGameFont, [](QWidget& dialog) {
        EXPECT_EQ(Named<QComboBox>(dialog, "Engine")->currentText(), "Phaser");
        TypeInto(Named<QLineEdit>(dialog, "Gap"), "3");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(settings.GameFont.Gap, 9) << "cancelled";
}
