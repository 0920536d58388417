#include "editors/views/MAddGlyphsView.h"

#include "document/MSettings.h"
#include "editors/PreviewArea.h"
#include "platform/qt/QtText.h"

#include <QKeyEvent>
#include <QRegularExpressionValidator>

MAddGlyphsView::MAddGlyphsView(QWidget* owner)
    : MDialogView(owner, "Add/Change characters", 565, 350, {50, 250}, {160, 160}) {
    LayOut();
    for (const MString& name : dialog.Families)
        family.addItem(ToQt(name));
    family.setPlaceholderText(ToQt(Settings->FontName) + " (not installed)");
    family.setCurrentIndex(dialog.FamilyIndex);
    style.setPlaceholderText("(choose a family)");
    FillStyles();
    Fill(height, Settings->GlyphHeight);
    colourFont.setChecked(Settings->ColourFont);
    updating = false;
    Connect();
    TellCursor();
    family.setFocus();
}

void MAddGlyphsView::LayOut() {
    Place(family, 405, 15, 150, 14);
    AddLabel("Font &family", family, 405, 5, 150, 10);
    Place(style, 405, 50, 150, 14);
    AddLabel("&Style", style, 405, 40, 150, 10);
    Place(height, 485, 80, 70, 14);
    AddLabel("&Glyph height", height, 405, 80, 78, 14);
    height.setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), &height));
    swatch.setParent(&ground);
    colourLabel = AddLabel("&Colour", swatch, 405, 110, 78, 14);
    Place(colourFont, 485, 135, 75, 14);
    colourFont.setAccessibleName("Colour font");
    grid.setParent(&ground);
    AddButtons(405, 330, 485, 330);
    Place(ok, 405, 330, 70, 14);
    Place(cancel, 485, 330, 70, 14);
    swatch.setGeometry(ToWidgetPixels(ground, SwatchArea()));
}

void MAddGlyphsView::Connect() {
    connect(&family, &QComboBox::currentIndexChanged, this, [this](int index) {
        dialog.ChangeFamily(index);
        FillStyles();
        Repaint(dialog.Grid.Area);
    });
    connect(&style, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (updating) return;
        dialog.ChangeStyle(index);
        Repaint(dialog.Grid.Area);
    });
    connect(&colourFont, &QCheckBox::toggled, this, [this](bool on) {
        MAddGlyphs::ChangeColourFont(on);
        Repaint(dialog.Grid.Area);
    });
    client.draw = [this] { Draw(); };
    onMouse = [this](const MMouse& mouse) {
        if (!mouse.moved && IsStrictlyInside(SwatchArea(), {mouse.x, mouse.y})) return ChooseColour();
        if (!mouse.moved && dialog.Grid.HitTest(mouse.x, mouse.y) >= 0) grid.setFocus();
        if (dialog.Drag(mouse.x, mouse.y, mouse.left && !mouse.rightPress, mouse.right, mouse.moved))
            Repaint(dialog.Grid.Area);
        TellCursor();
    };
    swatch.onKey = [this](const QKeyEvent& event) {
        if (event.key() != Qt::Key_Space && event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter)
            return false;
        ChooseColour();
        return true;
    };
    grid.onKey = [this](const QKeyEvent& event) { return GridKey(event); };
    swatch.role = QAccessible::PushButton;
    swatch.value = [] { return QColor(Settings->Colour.r, Settings->Colour.g, Settings->Colour.b).name(); };
    // A box for the character at the cursor.
    grid.role = QAccessible::CheckBox;
    grid.value = [this] { return grid.accessibleDescription(); };
    grid.checked = [this] { return Settings->Selected[static_cast<std::size_t>(dialog.Grid.Cursor)] != 0; };
    grid.frame = [this] {
        return ToWidgetPixels(ground, dialog.Grid.Cell(dialog.Grid.Cursor)).translated(-grid.pos());
    };
    onOk = [this] {
        MAddGlyphs::Accept(FromQt(family.currentText()), NumberIn(height), colourFont.isChecked());
    };
}

void MAddGlyphsView::FillStyles() {
    updating = true;
    style.clear();
    for (const MString& name : dialog.Styles)
        style.addItem(ToQt(name));
    style.setCurrentIndex(dialog.StyleIndex);
    updating = false;
}

Desktop::Rect MAddGlyphsView::SwatchArea() const {
    return MAddGlyphs::SwatchArea(RectOf(cancel), RectOf(*colourLabel));
}

void MAddGlyphsView::Draw() {
    dialog.Grid.Area = MAddGlyphs::GridArea(RectOf(family), RectOf(cancel), qRound(10 * devicePixelRatioF()));
    grid.setGeometry(ToWidgetPixels(ground, dialog.Grid.Area));
    dialog.Grid.Face = Desktop::ButtonColour();
    dialog.Grid.Paint(Handle());
    MAddGlyphs::PaintSwatch(Handle(), SwatchArea());
}

void MAddGlyphsView::ChooseColour() {
    swatch.setFocus();
    if (!MAddGlyphs::ChooseColour(Handle())) return;
    Repaint(SwatchArea());
    swatch.TellChange();
}

bool MAddGlyphsView::GridKey(const QKeyEvent& event) {
    MCharacterGrid& characters = dialog.Grid;
    const QString text = event.text();
    const std::int32_t before = characters.Cursor;
    if (event.matches(QKeySequence::SelectAll)) {
        MAddGlyphs::MarkAll();
        Repaint(characters.Area);
        TellCursor();
        return true;
    }
    switch (event.key()) {
    case Qt::Key_Left: characters.MoveCursor(-1, 0); break;
    case Qt::Key_Right: characters.MoveCursor(1, 0); break;
    case Qt::Key_Up: characters.MoveCursor(0, -1); break;
    case Qt::Key_Down: characters.MoveCursor(0, 1); break;
    case Qt::Key_Home: characters.MoveCursor(-MCharacterGrid::Columns, 0); break;
    case Qt::Key_End: characters.MoveCursor(MCharacterGrid::Columns, 0); break;
    case Qt::Key_PageUp: characters.MoveCursor(0, -MCharacterGrid::Rows); break;
    case Qt::Key_PageDown: characters.MoveCursor(0, MCharacterGrid::Rows); break;
    case Qt::Key_Space: dialog.ToggleAtCursor(); break;
    default:
        // Any other character leads to its cell.
        if (text.size() != 1 || !text.front().isPrint() || !MCharacterGrid::Counts(text.front().unicode()))
            return false;
        characters.Cursor = text.front().unicode();
    }
    // With Shift the arrows mark what they pass, as dragging does.
    const bool passes = event.modifiers().testFlag(Qt::ShiftModifier) && event.key() >= Qt::Key_Home &&
                        event.key() <= Qt::Key_PageDown;
    if (passes && characters.Cursor != before) dialog.MarkPassed(before);
    Repaint(characters.Area);
    TellCursor();
    return true;
}

// For those who can't see the frame.
void MAddGlyphsView::TellCursor() {
    const auto code = static_cast<std::size_t>(dialog.Grid.Cursor);
    grid.setAccessibleDescription(QString(QChar(static_cast<char16_t>(code))) + " (" + QString::number(code) +
                                  (Settings->Selected[code] != 0 ? "), selected" : "), not selected"));
    grid.TellChange();
}
