#include "editors/views/MAddPictureView.h"

#include "platform/qt/QtText.h"

MAddPictureView::MAddPictureView(QWidget* owner)
    : MDialogView(owner, "Add/Change picture", 365, 190, {60, 120}, {145, 15}) {
    LayOut();
    Fill(path, dialog.Path);
    character.Show(dialog.Character);
    Fill(paddingTop, dialog.PaddingTop);
    Fill(paddingBottom, dialog.PaddingBottom);
    Fill(spacingBefore, dialog.SpacingBefore);
    Fill(spacingAfter, dialog.SpacingAfter);
    trim.setChecked(dialog.Trim);
    Connect();
    path.selectAll();
    path.setFocus();
}

void MAddPictureView::LayOut() {
    Place(path, 55, 8, 240, 14);
    pathLabel = AddLabel("&Picture", path, 10, 8, 44, 14);
    Place(browse, 303, 8, 52, 14);
    const struct {
        const char* label;
        QLineEdit& field;
        int top;
        bool pixels;
    } rows[] = {
        {"&Character", character, 32, false},         {"Padding &top", paddingTop, 52, true},
        {"Padding b&ottom", paddingBottom, 70, true}, {"&Spacing before", spacingBefore, 88, true},
        {"Spacing &after", spacingAfter, 106, true},
    };
    for (const auto& row : rows) {
        Place(row.field, 287, row.top, 34, 14);
        AddLabel(row.label, row.field, 215, row.top, 70, 14);
        if (row.pixels) Place(*new QLabel("pixels", &ground), 325, row.top, 32, 14);
    }
    Place(trim, 215, 126, 140, 14);
    trim.setAccessibleName("Trim horizontally");
    AddButtons(215, 168, 310, 168);
}

void MAddPictureView::Connect() {
    connect(&browse, &QPushButton::clicked, this, [this] { Browse(); });
    connect(&path, &QLineEdit::textChanged, this, [this](const QString& text) {
        dialog.Path = FromQt(text);
        Repaint(PreviewArea());
    });
    client.draw = [this] {
        if (dialog.Path.IsEmpty()) client.image.fill(Qt::transparent);
        dialog.Density = static_cast<float>(devicePixelRatioF());
        dialog.PaintPreview(Handle(), PreviewArea());
    };
    onOk = [this] { Accept(); };
}

Desktop::Rect MAddPictureView::PreviewArea() const {
    return MAddPicture::PreviewArea(RectOf(*pathLabel), RectOf(character), RectOf(ok));
}

void MAddPictureView::Browse() {
    dialog.Character = FromQt(character.text());
    if (!dialog.Browse(Handle())) return;
    Fill(path, dialog.Path);
    character.Show(dialog.Character);
    Repaint(PreviewArea());
}

void MAddPictureView::Accept() {
    dialog.Character = FromQt(character.text());
    dialog.PaddingTop = NumberIn(paddingTop);
    dialog.PaddingBottom = NumberIn(paddingBottom);
    dialog.SpacingBefore = NumberIn(spacingBefore);
    dialog.SpacingAfter = NumberIn(spacingAfter);
    dialog.Trim = trim.isChecked();
    dialog.Accept();
}
