#include "editors/views/MKerningEditorView.h"

#include "platform/qt/QtText.h"

#include <QTimer>

MKerningEditorView::MKerningEditorView(QWidget* owner)
    : MDialogView(owner, "Kerning editor", 535, 335, {50, 250}, {100, 190}), editor(*CurrentFont) {
    LayOut();
    editor.Window = Handle();
    list.lines.text = [this](int row) { return ToQt(editor.Lines.Text(row)); };
    client.draw = [this] {
        const bool shown = editor.Area.IsEmpty() || painted.intersects(ToWidgetPixels(ground, editor.Area));
        editor.Area = MKerningEditor::AreaBeside(RectOf(list), RectOf(left));
        drag.setGeometry(ToWidgetPixels(ground, editor.Area));
        drag.lower();
        // Painting shows the pair anew, which is told of a change that was made out of sight. The ground of
        // other controls is painted far more often than that of the preview.
        if (!shown) return;
        editor.Paint();
        QTimer::singleShot(0, this, [this] { ShowControls(); });
    };
    Connect();
    ShowControls();
    list.setFocus();
}

void MKerningEditorView::LayOut() {
    Place(list, 400, 5, 49, 325);
    list.setAccessibleName("Kerning pairs");
    list.UseColumns(2);
    Place(left, 455, 5, 30, 14);
    left.setAccessibleName("Left character");
    left.setToolTip("Left character");
    Place(right, 500, 5, 30, 14);
    right.setAccessibleName("Right character");
    right.setToolTip("Right character");
    drag.setParent(&ground);
    drag.setCursor(Qt::SizeHorCursor);
    drag.setToolTip("Drag with the left button held to move the two characters closer or further apart.");
    Place(amount, 500, 25, 30, 14);
    AddLabel("&Kerning", amount, 455, 25, 43, 14);
    Place(generate, 455, 50, 75, 14);
    Place(clear, 455, 68, 75, 14);
    AddButtons(485, 298, 485, 316);
}

void MKerningEditorView::Connect() {
    const auto changed = [this](QLineEdit& field, void (MKerningEditor::*change)(const MString&)) {
        connect(&field, &QLineEdit::textChanged, this, [this, change](const QString& text) {
            if (!editor.updating) return;
            (editor.*change)(FromQt(text));
            ShowControls();
        });
    };
    changed(left, &MKerningEditor::LeftChanged);
    changed(right, &MKerningEditor::RightChanged);
    changed(amount, &MKerningEditor::AmountChanged);
    list.onSelection = [this](int position) {
        if (!editor.updating) return;
        editor.SelectionChanged(position);
        ShowControls();
    };
    connect(&generate, &QPushButton::clicked, this, [this] {
        editor.Generate();
        ShowControls();
    });
    connect(&clear, &QPushButton::clicked, this, [this] {
        editor.Clear();
        ShowControls();
    });
    onMouse = [this](const MMouse& mouse) {
        if (!mouse.left) return;
        if (mouse.moved) {
            editor.MouseMoved({mouse.x, mouse.y});
        } else {
            editor.MousePressed({mouse.x, mouse.y});
        }
    };
    onOk = [this] { editor.Ok(); };
    connect(this, &QDialog::rejected, this, [this] { editor.Cancel(); });
}

void MKerningEditorView::ShowControls() {
    editor.updating = false;
    if (fillings != editor.Fillings) {
        fillings = editor.Fillings;
        list.Refill(editor.Lines.Count());
    }
    list.Select(editor.Position);
    left.Show(editor.Left);
    right.Show(editor.Right);
    Fill(amount, editor.Amount);
    editor.updating = true;
}
