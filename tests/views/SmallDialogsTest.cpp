// The dialogs that are no more than fields: the glyph height, the license keys.

#include "licensing/MLicense.h"
#include "views/Windows.h"

using Desktop::DialogId;

namespace {

class SmallDialogs : public WindowTest {};

} // namespace

TEST_F(SmallDialogs, GlyphHeightIsLimitedOnOk) {
    const struct {
        const char* typed;
        std::int32_t height;
    } cases[] = {
        {"64", 64}, {"5", 16}, {"5000", 1024}, {"-3", 16}, {"", 16}, {"abc", 16}, {"99999999999999999", 1024}};
    for (const auto& [typed, height] : cases) {
        SCOPED_TRACE(typed);
        settings.GlyphHeight = 100;
        EXPECT_TRUE(RunAnd(DialogId::GlyphHeight, [&](QWidget& dialog) {
            auto* const field = Named<QLineEdit>(dialog, "Glyph height");
            EXPECT_EQ(field->text(), "100");
            EXPECT_TRUE(field->hasFocus());
            ExpectTextFits(dialog);
            Screenshot(dialog, "glyph-height");
            QTest::keySequence(field, QKeySequence::SelectAll);
            QTest::keyClick(field, Qt::Key_Delete);
            QTest::keyClicks(field, typed);
            QTest::keyClick(field, Qt::Key_Return);
        }));
        EXPECT_EQ(settings.GlyphHeight, height);
    }
}

TEST_F(SmallDialogs, EscapeLeavesTheGlyphHeight) {
    EXPECT_FALSE(RunAnd(DialogId::GlyphHeight, [](QWidget& dialog) {
        QTest::keyClicks(QApplication::focusWidget(), "77");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(settings.GlyphHeight, 100);
}

TEST_F(SmallDialogs, TheFirstLicenseKeyIsTheUsersName) {
    MLicense license(settings);
    License = &license;
    EXPECT_TRUE(license.Name.IsEmpty());
    EXPECT_TRUE(RunAnd(DialogId::LicenseKeys, [](QWidget& dialog) {
        ExpectTextFits(dialog);
        Screenshot(dialog, "license-keys");
        for (const char* key : {"Ann", "two", "three"}) {
            QTest::keyClicks(QApplication::focusWidget(), key);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        EXPECT_EQ(static_cast<QAbstractButton*>(QApplication::focusWidget())->text(), "OK");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    }));
    EXPECT_TRUE(license.Name.Equals(u"Ann"));
    EXPECT_TRUE(settings.Keys[2].Equals(u"three"));
    License = nullptr;
}
