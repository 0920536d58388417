#include "editors/views/MOpticalKerningView.h"

#include "platform/qt/QtText.h"

#include <QKeyEvent>

MOpticalKerningView::MOpticalKerningView(QWidget* owner)
    : MDialogView(owner, "Optical kerning", 500, 272, {100, 165}, {40, 75}), editor(*CurrentFont) {
    LayOut();
    editor.Window = Handle();
    models.lines.text = [this](int row) { return ToQt(editor.ModelText(static_cast<std::size_t>(row))); };
    client.draw = [this] {
        editor.Area = RectOf(preview);
        editor.Density = static_cast<float>(devicePixelRatioF());
        editor.Paint();
    };
    text.setText(ToQt(editor.Text));
    strength.setRange(0, MOpticalKerningEditor::Strongest);
    strength.setPageStep(10);
    strength.setValue(editor.Strength);
    white.setChecked(editor.ShowWhite);
    Connect();
    ShowControls();
    text.setFocus();
}

void MOpticalKerningView::LayOut() {
    Place(text, 40, 5, 455, 14);
    AddLabel("&Text", text, 5, 7, 33, 10);
    Place(preview, 5, 25, 405, 190);
    preview.setToolTip(
        "Click between two letters to choose a pair. The left and right arrow keys move it closer and "
        "further apart, up and down go to the pair before and behind it, Delete takes it back.");
    Place(models, 415, 37, 80, 110);
    AddLabel("&Model pairs", models, 415, 25, 80, 10);
    models.UseColumns(3);
    models.setToolTip("Pairs that you have fixed. They stay as they are, and all others follow them.");
    Place(remove, 415, 151, 80, 14);
    Place(white, 415, 171, 80, 12);
    white.setToolTip(
        "A strip under the line: blue where two letters stand tighter than upright ones, red where looser.");
    Place(pairs, 415, 190, 80, 10);
    Place(gap, 5, 219, 300, 10);
    QLabel* const hint = new QLabel("Click between two letters, then move them with the arrow keys.", &ground);
    hint->setWordWrap(true);
    Place(*hint, 5, 231, 300, 18);
    Place(strength, 45, 250, 220, 14);
    AddLabel("&Strength", strength, 5, 252, 38, 10);
    Place(percent, 270, 252, 40, 10);
    AddButtons(400, 252, 450, 252);
}

void MOpticalKerningView::Connect() {
    connect(&text, &QLineEdit::textChanged, this, [this](const QString& changed) {
        editor.TextChanged(FromQt(changed));
        ShowControls();
    });
    connect(&strength, &QSlider::valueChanged, this, [this](int value) {
        editor.StrengthChanged(value);
        ShowControls();
    });
    connect(&white, &QCheckBox::toggled, this, [this](bool on) {
        editor.ShowWhiteChanged(on);
        ShowControls();
    });
    connect(&remove, &QPushButton::clicked, this, [this] {
        editor.RemoveModel(static_cast<std::size_t>(std::max(models.currentIndex().row(), 0)));
        ShowControls();
    });
    models.onSelection = [this](int position) {
        editor.SelectModel(static_cast<std::size_t>(position));
        ShowControls();
        models.Select(position);
    };
    preview.value = [this] { return ToQt(editor.GapText()); };
    preview.onKey = [this](const QKeyEvent& event) { return Key(event); };
    onMouse = [this](const MMouse& mouse) {
        if (!mouse.left || mouse.moved || !IsStrictlyInside(editor.Area, {mouse.x, mouse.y})) return;
        preview.setFocus();
        editor.Clicked({mouse.x, mouse.y});
        ShowControls();
    };
    onOk = [this] { editor.Ok(); };
}

bool MOpticalKerningView::Key(const QKeyEvent& event) {
    const int pixels = event.modifiers().testFlag(Qt::ControlModifier) ? 10 : 1;
    switch (event.key()) {
    case Qt::Key_Left: editor.Nudge(-pixels); break;
    case Qt::Key_Right: editor.Nudge(pixels); break;
    case Qt::Key_Up: editor.MoveGap(-1); break;
    case Qt::Key_Down: editor.MoveGap(1); break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace: editor.Release(); break;
    default: return false;
    }
    ShowControls();
    return true;
}

void MOpticalKerningView::ShowControls() {
    models.Refill(static_cast<int>(editor.Models.size()));
    remove.setEnabled(!editor.Models.empty());
    percent.setText(QString::number(editor.Strength) + " %");
    pairs.setText(ToQt(editor.PairCount()));
    gap.setText(ToQt(editor.GapText()));
    ok.setEnabled(editor.IsReady());
    preview.TellChange();
    Repaint(RectOf(preview));
}
