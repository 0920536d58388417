// What the tests of windows share: acting while a modal dialog runs, and pictures of what a user would see.
#pragma once

#include "document/MSettings.h"
#include "platform/Desktop.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>

// The settings that a test's dialogs work on.
class WindowTest : public testing::Test {
protected:
    MSettings settings;

    void SetUp() override { Settings = &settings; }
    void TearDown() override { Settings = nullptr; }
};

// Kept as an artefact of the test run.
inline void Keep(const QPixmap& picture, const QString& name) {
    const QString folder = qEnvironmentVariable("LETTRINO_ARTEFACTS", QDir::tempPath()) + "/windows";
    QDir().mkpath(folder);
    EXPECT_TRUE(picture.save(folder + '/' + name + ".png"));
}

inline void Screenshot(QWidget& window, const QString& name) {
    Keep(window.grab(), name);
}

// What a window shows at a place of it, which has several pixels on a dense screen.
inline QColor ColourAt(QWidget& window, const QPoint& place) {
    const QImage image = window.grab().toImage();
    return image.pixelColor((QPointF(place) * image.devicePixelRatio()).toPoint());
}

// Runs `open`, which shows a modal dialog, and `act` on that dialog as soon as it is there. A dialog that `act`
// leaves open is closed. What `open` gives.
template<typename Open>
auto WhileOpen(const Open& open, const std::function<void(QWidget&)>& act) {
    bool seen = false;
    QTimer::singleShot(0, [&] {
        const QPointer<QWidget> dialog = QApplication::activeModalWidget();
        seen = dialog != nullptr;
        if (!seen) return;
        EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog));
        act(*dialog);
        if (dialog && dialog->isVisible()) dialog->close();
    });
    const auto result = open();
    EXPECT_TRUE(seen) << "no dialog was shown";
    return result;
}

inline bool RunAnd(Desktop::DialogId id, const std::function<void(QWidget&)>& act) {
    return WhileOpen([id] { return Desktop::RunDialog(nullptr, id); }, act);
}

// The control whose accessible name this is, as one who can't see would find it.
template<typename Control>
Control* Named(QWidget& window, const QString& name) {
    for (Control* const control : window.findChildren<Control*>()) {
        if (control->accessibleName() == name) return control;
    }
    ADD_FAILURE() << "no control is called " << name.toStdString();
    return nullptr;
}

// What a label tells that has this in it and names no control.
inline QString LabelWith(QWidget& dialog, const QString& part) {
    for (const QLabel* const label : dialog.findChildren<QLabel*>())
        if (label->text().contains(part) && !label->buddy()) return label->text();
    return {};
}

inline void TypeInto(QLineEdit* field, const QString& text) {
    field->setFocus();
    QTest::keySequence(field, QKeySequence::SelectAll);
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

inline void Click(QWidget& window, const QString& button) {
    for (auto* const each : window.findChildren<QAbstractButton*>()) {
        if (each->text().remove('&') == button) return QTest::mouseClick(each, Qt::LeftButton);
    }
    ADD_FAILURE() << "no button " << button.toStdString();
}

// What holds all controls of a dialog.
inline QWidget& GroundOf(QWidget& dialog) {
    return *dialog.findChild<QScrollArea*>()->widget();
}

// Whether `act` has a dialog paint all of a place of its ground by itself. A grab tells nothing of that: it
// paints anew.
inline bool PaintsAnew(QWidget& dialog, const QRect& place, const std::function<void()>& act) {
    class Watcher : public QObject {
    public:
        QRegion unpainted;

        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) unpainted -= static_cast<QPaintEvent*>(event)->region();
            return false;
        }
    } watcher;
    QTest::qWait(20); // for what is due already
    watcher.unpainted = place;
    GroundOf(dialog).installEventFilter(&watcher);
    act();
    return QTest::qWaitFor([&] { return watcher.unpainted.isEmpty(); }, 1000);
}

// Every label and button has room for its text, every field for a line, all lie on the dialog's ground, and the
// dialog on the screen.
inline void ExpectTextFits(QWidget& dialog) {
    EXPECT_TRUE(dialog.screen()->availableGeometry().contains(dialog.geometry()));
    QWidget& ground = GroundOf(dialog);
    for (QWidget* const control : ground.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!control->isVisible() || control->isWindow()) continue;
        const std::string name =
            control->accessibleName().toStdString() + " " + control->metaObject()->className();
        EXPECT_TRUE(ground.rect().contains(control->geometry())) << name;
        if (const auto* const label = qobject_cast<QLabel*>(control)) {
            const std::string text = label->text().toStdString();
            const bool wraps = label->wordWrap();
            EXPECT_GE(label->width(), wraps ? 0 : label->sizeHint().width()) << text;
            EXPECT_GE(label->height(), wraps ? label->heightForWidth(label->width()) : 0) << text;
        }
        if (const auto* const button = qobject_cast<QAbstractButton*>(control)) {
            const int text = button->fontMetrics().horizontalAdvance(button->text().remove('&'));
            EXPECT_GE(button->width(), text + 8) << button->text().toStdString();
            EXPECT_GE(button->height(), button->fontMetrics().height()) << button->text().toStdString();
        }
        const auto* const field = qobject_cast<QLineEdit*>(control);
        EXPECT_TRUE(!field || field->height() >= field->fontMetrics().height() + 4) << name;
    }
}
