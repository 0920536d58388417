// Documents for the tests of the editors' windows.
#pragma once

#include "DocumentFixture.h"
#include "views/Windows.h"

#include <QMouseEvent>

// With a document of its own, which is the current one.
class EditorWindowTest : public WindowTest {
protected:
    std::unique_ptr<MColourFont> font;

    void SetUp() override {
        WindowTest::SetUp();
        font = std::make_unique<MColourFont>(nullptr);
        CurrentFont = font.get();
    }
    void TearDown() override {
        CurrentFont = nullptr;
        font.reset();
        WindowTest::TearDown();
    }

    // Rendered letters, a to z and A to Z.
    void AddLetters() {
        settings.FontName = "DejaVu Sans";
        settings.Selected.fill(0);
        for (std::size_t i = 0; i < 26; ++i)
            settings.Selected[u'A' + i] = settings.Selected[u'a' + i] = 1;
        ASSERT_TRUE(font->GenerateSelectedCharacters());
    }
    // A block of blue, 50 high, without spacings.
    MGlyph& AddBlock(char16_t character, std::int32_t width = 40) {
        MGlyph& glyph = AddGlyph(*font, character, width, 50);
        glyph.SpacingBefore = glyph.SpacingAfter = 0;
        glyph.Picture.Fill(MColour(0, 0, 255));
        return glyph;
    }
};

// At which the editors show a block in a preview of this size: they leave 100 pixels of the screen free.
inline double ScaleOf(const QRect& preview) {
    const double margin = 100 / qGuiApp->devicePixelRatio();
    return std::min((preview.width() - margin) / 40.0, (preview.height() - margin) / 50.0);
}

// Where a window shows this colour.
inline QRect Find(QWidget& window, QColor colour) {
    const QImage image = window.grab().toImage();
    const double density = image.devicePixelRatio();
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == colour) found |= QRect(x, y, 1, 1);
        }
    }
    return QRectF(found.x() / density, found.y() / density, found.width() / density, found.height() / density)
        .toRect();
}

// The texts of fields, one behind the other.
inline QString TextsOf(QWidget& dialog, std::initializer_list<const char*> fields) {
    QStringList texts;
    for (const char* const name : fields)
        texts += Named<QLineEdit>(dialog, name)->text();
    return texts.join('|');
}

// Alt and the letter of a button, which is seen to go down before it acts.
inline void PressMnemonic(Qt::Key letter) {
    QTest::keyClick(QApplication::focusWidget(), letter, Qt::AltModifier);
    QTest::qWait(150);
}

// Pressed at the first place and moved over the others.
inline void Drag(QWidget& window, Qt::MouseButton button, const std::vector<QPoint>& places) {
    QTest::mousePress(&window, button, {}, places.front());
    for (const QPoint& place : places) {
        QMouseEvent move(QEvent::MouseMove, place, window.mapToGlobal(place), Qt::NoButton, button, {});
        QApplication::sendEvent(&window, &move);
    }
    QTest::mouseRelease(&window, button, {}, places.back());
}

// The names of what Tab goes through, from the control that has the focus on, until it is there again.
inline QStringList TabOrder(QWidget& window) {
    QStringList names;
    QWidget* const first = QApplication::focusWidget();
    do {
        QWidget* const control = QApplication::focusWidget();
        const auto* const button = qobject_cast<QAbstractButton*>(control);
        EXPECT_FALSE(control->visibleRegion().isEmpty()) << "scrolled out of sight";
        names += button ? button->text().remove('&') : control->accessibleName();
        QTest::keyClick(control, Qt::Key_Tab);
    } while (QApplication::focusWidget() != first && names.size() < 30);
    EXPECT_EQ(window.focusWidget(), first);
    return names;
}
