#include "editors/views/MAddSheetView.h"

#include "foundation/MFolders.h"
#include "foundation/Product.h"
#include "imaging/MFileTypes.h"
#include "platform/qt/DraggedFile.h"

#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QMouseEvent>

namespace {

using Ground = MSheetWishes::Ground;

constexpr int typingPause = 400; // milliseconds without a key, after which a text counts as typed

// The local path of the first picture in what is dragged; empty if the first file is none.
MString PictureIn(const QMimeData& data) {
    const MString file = DraggedFile(data);
    return FileTypes.IsPicture(ExtensionOf(file)) ? file : MString();
}

} // namespace

MAddSheetView::MAddSheetView(QWidget* owner)
    : MDialogView(owner, "Add picture sheet", 500, 296, {225, 170}, {186, 52}) {
    LayOut();
    dialog.Window = Handle();
    dialog.Area = RectOf(sheet);
    client.draw = [this] {
        dialog.Area = RectOf(sheet);
        dialog.Density = static_cast<float>(devicePixelRatioF());
        dialog.Paint();
    };
    Fill(path, dialog.Path);
    Connect();
    ConnectFields();
    setAcceptDrops(true);
    setMouseTracking(true);
    MDialogView::ground.setMouseTracking(true);
    ShowControls();
    (dialog.Editor.SelectedBox() ? text : path).setFocus();
}

void MAddSheetView::LayOut() {
    Place(path, 45, 5, 390, 14);
    AddLabel("&Picture", path, 5, 5, 39, 14);
    Place(browse, 441, 5, 54, 14);
    Place(text, 45, 23, 450, 14);
    AddLabel("&Characters", text, 5, 23, 39, 14);
    text.setPlaceholderText("all on the sheet, line after line, as ABCDEFG");
    Place(sheet, 5, 43, 405, 195);
    sheet.setToolTip(
        "Type what the selected letter is. The arrow keys go from box to box, with Ctrl they move a "
        "box, with Shift its lower right corner. Delete leaves a box out. Drag on empty ground for a "
        "new box, press Ctrl to join a box with the selected one. Ctrl + and Ctrl - zoom.");
    int top = 43;
    for (QPushButton* const button : {&join, &cut, &leaveOut, &doubt, &undo}) {
        Place(*button, 416, top, 79, 14);
        top += 16;
    }
    Place(ground, 416, 139, 79, 14);
    AddLabel("&Ground", ground, 416, 128, 79, 10);
    ground.addItems({"Found by itself", "Transparent", "A colour..."});
    Place(box, 5, 241, 405, 10);
    AddLabel("Cells of &width, height", cellWidth, 5, 252, 77, 14);
    PlacePair({"Cell width", &cellWidth}, {"Cell height", &cellHeight}, "none", {84, 252});
    Place(keepCells, 164, 252, 58, 14);
    keepCells.setToolTip("Every glyph becomes as wide as its cell.");
    AddLabel("Sp&acing before, after", spacingBefore, 416, 159, 79, 10);
    PlacePair({"Spacing before", &spacingBefore}, {"Spacing after", &spacingAfter}, "drawn", {416, 170});
    notice.setWordWrap(true);
    Place(notice, 5, 268, 391, 26);
    AddButtons(400, 277, 450, 277);
}

void MAddSheetView::PlacePair(MNamedField first, MNamedField second, const char* ifEmpty, MPoint at) {
    first.field->setAccessibleName(first.name);
    second.field->setAccessibleName(second.name);
    Place(*first.field, at.x, at.y, 35, 14);
    Place(*second.field, at.x + 39, at.y, 35, 14);
    first.field->setPlaceholderText(ifEmpty);
    second.field->setPlaceholderText(ifEmpty);
}

void MAddSheetView::Connect() {
    connect(&join, &QPushButton::clicked, this,
            [this] { Act([](MSheetEditor& editor) { editor.Join(editor.Selected + 1); }); });
    connect(&cut, &QPushButton::clicked, this, [this] {
        Act([this](MSheetEditor& editor) { editor.Cut < 0 ? editor.BeginCut() : dialog.CutHere(); });
    });
    connect(&leaveOut, &QPushButton::clicked, this, [this] { Act(&MSheetEditor::LeaveOut); });
    connect(&doubt, &QPushButton::clicked, this, [this] { Act(&MSheetEditor::StepToDoubt); });
    connect(&undo, &QPushButton::clicked, this, [this] { Act(&MSheetEditor::Undo); });
    sheet.value = [this] { return ToQt(dialog.BoxText()); };
    sheet.onKey = [this](const QKeyEvent& event) { return Key(event); };
    sheet.onText = [this](const QString& typed) { Type(typed); };
    onMouse = [this](const MMouse& mouse) {
        const MPoint at{mouse.x, mouse.y};
        if (!mouse.left || (!mouse.moved && !IsStrictlyInside(dialog.Area, at))) return;
        if (mouse.moved) {
            dialog.Dragged(at);
        } else {
            sheet.setFocus();
            dialog.Pressed(at, QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier));
        }
        ShowControls();
    };
}

void MAddSheetView::ConnectFields() {
    connect(&browse, &QPushButton::clicked, this, [this] {
        if (!dialog.Browse()) return;
        Fill(path, dialog.Path);
        ShowControls();
        text.setFocus();
    });
    connect(&path, &QLineEdit::textChanged, this, [this](const QString& typed) {
        dialog.PathChanged(FromQt(typed));
        ShowControls();
    });
    connect(&text, &QLineEdit::textChanged, this, [this](const QString& typed) {
        dialog.TextChanged(FromQt(typed));
        typing.start();
        ShowControls();
    });
    const auto done = [this] {
        dialog.TextDone();
        ShowControls();
    };
    connect(&text, &QLineEdit::editingFinished, this, done);
    typing.setSingleShot(true);
    typing.setInterval(typingPause);
    typing.callOnTimeout(this, done);
    for (QLineEdit* const field : {&cellWidth, &cellHeight}) {
        connect(field, &QLineEdit::textChanged, this, [this] {
            dialog.CellWidth = FromQt(cellWidth.text());
            dialog.CellHeight = FromQt(cellHeight.text());
            dialog.ChoicesChanged();
            ShowControls();
        });
    }
    for (QLineEdit* const field : {&spacingBefore, &spacingAfter}) {
        connect(field, &QLineEdit::textChanged, this, [this] {
            dialog.SpacingBefore = FromQt(spacingBefore.text());
            dialog.SpacingAfter = FromQt(spacingAfter.text());
        });
    }
    connect(&keepCells, &QCheckBox::toggled, this, [this](bool on) { dialog.KeepCells = on; });
    connect(&ground, &QComboBox::activated, this, [this](int choice) { ChooseGround(choice); });
}

void MAddSheetView::ChooseGround(int choice) {
    const auto wanted = static_cast<Ground>(choice);
    if (wanted == Ground::Colour && !Desktop::ChooseColour(Handle(), dialog.GroundColour)) {
        ground.setCurrentIndex(static_cast<int>(dialog.Ground));
        return;
    }
    dialog.Ground = wanted;
    dialog.ChoicesChanged();
    ShowControls();
}

void MAddSheetView::Act(const std::function<void(MSheetEditor&)>& change) {
    sheet.setFocus();
    change(dialog.Editor);
    dialog.Reveal();
    ShowControls();
}

void MAddSheetView::Type(const QString& typed) {
    for (const QChar character : typed) {
        if (character.unicode() > u' ' && character.unicode() != 0x7F)
            Act([&](MSheetEditor& editor) { editor.Type(character.unicode()); });
    }
}

bool MAddSheetView::Key(const QKeyEvent& event) {
    if ((dialog.Editor.Cut >= 0 && CutKey(event)) || MoveKey(event)) {
        dialog.Reveal();
        ShowControls();
        return true;
    }
    // Alt leads to a button; with Ctrl it stands for the key that gives a third character.
    const bool alt = event.modifiers().testFlag(Qt::AltModifier);
    const bool control = event.modifiers().testFlag(Qt::ControlModifier);
    if (event.text().isEmpty() || alt != control || event.text().front().unicode() <= u' ') return false;
    Type(event.text());
    return true;
}

bool MAddSheetView::CutKey(const QKeyEvent& event) {
    const int columns = event.modifiers().testFlag(Qt::ControlModifier) ? 10 : 1;
    switch (event.key()) {
    case Qt::Key_Left: dialog.NudgeCut(-columns); return true;
    case Qt::Key_Right: dialog.NudgeCut(columns); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: dialog.CutHere(); return true;
    case Qt::Key_Escape: dialog.Editor.LeaveCut(); return true;
    default: return false;
    }
}

bool MAddSheetView::MoveKey(const QKeyEvent& event) {
    MSheetEditor& editor = dialog.Editor;
    const bool control = event.modifiers().testFlag(Qt::ControlModifier);
    const bool edges = event.modifiers().testFlag(Qt::ShiftModifier);
    const auto arrow = [&](int x, int y) {
        if (control || edges) {
            dialog.Nudge(x, y, edges);
        } else if (x != 0) {
            editor.Step(x);
        } else {
            editor.StepLine(y);
        }
        return true;
    };
    switch (event.key()) {
    case Qt::Key_Left: return arrow(-1, 0);
    case Qt::Key_Right: return arrow(1, 0);
    case Qt::Key_Up: return arrow(0, -1);
    case Qt::Key_Down: return arrow(0, 1);
    case Qt::Key_Home: editor.Select(0); return true;
    case Qt::Key_End: editor.Select(static_cast<std::int32_t>(editor.Sheet.boxes.size()) - 1); return true;
    case Qt::Key_Delete: editor.LeaveOut(); return true;
    case Qt::Key_Backspace: editor.Untype(); return true;
    default: break;
    }
    if (!control) return false;
    switch (event.key()) {
    case Qt::Key_Z: editor.Undo(); return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal: dialog.Zoom(1); return true;
    case Qt::Key_Minus: dialog.Zoom(-1); return true;
    case Qt::Key_0: dialog.Zoom(-100); return true;
    default: return false;
    }
}

void MAddSheetView::ShowControls() {
    const MSheetEditor& editor = dialog.Editor;
    const MSheetBox* const selected = editor.SelectedBox();
    for (QPushButton* const button : {&cut, &leaveOut})
        button->setEnabled(selected);
    doubt.setEnabled(!editor.Sheet.boxes.empty());
    join.setEnabled(selected && editor.Selected + 1 < static_cast<std::int32_t>(editor.Sheet.boxes.size()));
    undo.setEnabled(editor.CanUndo());
    keepCells.setEnabled(editor.Sheet.grid.has_value());
    leaveOut.setText(selected && selected->leftOut ? "&Let back in" : "&Leave out");
    cut.setText(editor.Cut < 0 ? "&Split" : "&Split here");
    box.setText(ToQt(dialog.BoxText()));
    notice.setText(ToQt(dialog.Notice()));
    ok.setEnabled(dialog.CanFinish());
    sheet.TellChange();
    Repaint(RectOf(sheet));
}

void MAddSheetView::accept() {
    const std::string failure = dialog.Finish();
    if (failure.empty()) return QDialog::accept();
    Desktop::ShowMessage(Handle(), FromSystem(failure), ProductName, Desktop::Buttons::Ok,
                         Desktop::Icon::Error);
}

void MAddSheetView::mouseMoveEvent(QMouseEvent* event) {
    MDialogView::mouseMoveEvent(event);
    const QPoint at = ToScreenPixels(MDialogView::ground, MDialogView::ground.mapFrom(this, event->position()));
    const MSheetGrip grip = dialog.GripAt({at.x(), at.y()});
    const bool sideways = grip.left || grip.right;
    const bool upright = grip.top || grip.bottom;
    setCursor(sideways && upright ? (grip.left == grip.top ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor)
              : sideways          ? Qt::SizeHorCursor
              : upright           ? Qt::SizeVerCursor
              : grip.inside       ? Qt::SizeAllCursor
                                  : Qt::ArrowCursor);
}

void MAddSheetView::wheelEvent(QWheelEvent* event) {
    const QPoint at = ToScreenPixels(MDialogView::ground, MDialogView::ground.mapFrom(this, event->position()));
    if (!IsStrictlyInside(dialog.Area, {at.x(), at.y()})) return MDialogView::wheelEvent(event);
    const QPoint turned = event->angleDelta();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        if (turned.y() != 0) dialog.Lens.Zoom(turned.y() > 0 ? 1 : -1, {at.x(), at.y()});
    } else {
        dialog.Lens.Scroll(-turned.x(), -turned.y());
    }
    event->accept();
    Repaint(RectOf(sheet));
}

void MAddSheetView::Open(const MString& file) {
    path.setText(ToQt(file));
    text.setFocus();
}

void MAddSheetView::dragEnterEvent(QDragEnterEvent* event) {
    if (!PictureIn(*event->mimeData()).IsEmpty()) event->acceptProposedAction();
}

void MAddSheetView::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    Open(PictureIn(*event->mimeData()));
}
