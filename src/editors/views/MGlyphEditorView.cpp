#include "editors/views/MGlyphEditorView.h"

#include "platform/qt/QtText.h"

MGlyphEditorView::MGlyphEditorView(QWidget* owner)
    : MDialogView(owner, "Glyph editor", 630, 335, {50, 312}, {225, 85}), editor(*CurrentFont) {
    LayOut();
    editor.Window = Handle();
    list.lines.text = [this](int row) { return QString(QChar(editor.Lines[static_cast<std::size_t>(row)])); };
    client.draw = [this] {
        editor.Area = MGlyphEditor::AreaBeside(RectOf(list), RectOf(glyphBox));
        drag.setGeometry(ToWidgetPixels(ground, editor.Area));
        drag.lower();
        // What was shown of a glyph stays otherwise, also of one that is gone.
        if (editor.Lines.empty()) client.image.fill(Qt::transparent);
        editor.DrawPreview();
    };
    Connect();
    ShowControls();
    list.setFocus();
}

void MGlyphEditorView::LayOut() {
    Place(list, 420, 5, 30, 325);
    list.setAccessibleName("Glyphs");
    Place(glyphBox, 455, 5, 170, 112);
    Place(fontBox, 455, 122, 170, 76);
    const struct {
        const char* label;
        QLineEdit& field;
        int top;
    } rows[] = {
        {"&Character", character, 24},        {"&Unicode", unicode, 42},
        {"&Resolution", resolution, 60},      {"Spacing &before", spacingBefore, 78},
        {"Spacing &after", spacingAfter, 96}, {"Base&line", baseline, 141},
        {"Cap &height", capHeight, 159},      {"&Space character width", spaceWidth, 177},
    };
    for (const auto& row : rows) {
        Place(row.field, 555, row.top, 63, 14);
        AddLabel(row.label, row.field, 462, row.top, 92, 14);
    }
    for (QLineEdit* const field : {&unicode, &resolution}) {
        field->setReadOnly(true);
        QPalette flat = field->palette();
        flat.setColor(QPalette::Base, flat.color(QPalette::Window));
        field->setPalette(flat);
    }
    drag.setParent(&ground);
    drag.setCursor(Qt::SizeAllCursor);
    drag.setToolTip("Drag with the left button held to move the spacing of that side, with the right one to "
                    "move the base line or the cap height.");
    Place(deleteGlyph, 455, 205, 75, 14);
    AddButtons(532, 316, 580, 316);
}

void MGlyphEditorView::Connect() {
    const auto changed = [this](QLineEdit& field, void (MGlyphEditor::*change)(const MString&)) {
        connect(&field, &QLineEdit::textChanged, this, [this, change](const QString& text) {
            if (!editor.updating) return;
            (editor.*change)(FromQt(text));
            ShowControls();
        });
    };
    changed(character, &MGlyphEditor::CharacterChanged);
    changed(spacingBefore, &MGlyphEditor::SpacingBeforeChanged);
    changed(spacingAfter, &MGlyphEditor::SpacingAfterChanged);
    changed(baseline, &MGlyphEditor::BaselineChanged);
    changed(capHeight, &MGlyphEditor::CapHeightChanged);
    changed(spaceWidth, &MGlyphEditor::SpaceWidthChanged);
    list.onSelection = [this](int position) {
        if (!editor.updating) return;
        editor.SelectionChanged(position);
        ShowControls();
    };
    connect(&deleteGlyph, &QPushButton::clicked, this, [this] {
        editor.DeleteGlyph();
        ShowControls();
    });
    onMouse = [this](const MMouse& mouse) {
        editor.Mouse({mouse.x, mouse.y}, mouse.left, mouse.right);
        ShowControls();
    };
    connect(this, &QDialog::rejected, this, [this] { editor.Cancel(); });
}

void MGlyphEditorView::ShowControls() {
    editor.updating = false;
    if (fillings != editor.Fillings) {
        fillings = editor.Fillings;
        list.Refill(static_cast<int>(editor.Lines.size()));
        Repaint(editor.Area);
    }
    list.Select(editor.Position);
    character.Show(editor.Character);
    Fill(unicode, editor.Unicode);
    Fill(resolution, editor.Resolution);
    Fill(spacingBefore, editor.SpacingBefore);
    Fill(spacingAfter, editor.SpacingAfter);
    Fill(baseline, editor.Baseline);
    Fill(capHeight, editor.CapHeight);
    Fill(spaceWidth, editor.SpaceWidth);
    editor.updating = true;
}
