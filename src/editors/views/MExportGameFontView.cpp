#include "editors/views/MExportGameFontView.h"

#include "platform/qt/QtText.h"

namespace {

void FillList(QComboBox& list, const std::vector<MString>& lines, std::int32_t chosen) {
    list.clear();
    for (const MString& line : lines)
        list.addItem(ToQt(line));
    list.setCurrentIndex(chosen);
}

} // namespace

MExportGameFontView::MExportGameFontView(QWidget* owner, const MColourFont& font)
    : MDialogView(owner, "Export as game font", 340, 215, {130, 20}, {110, 50}), dialog(font) {
    LayOut();
    FillList(engine, dialog.Engines, dialog.Engine);
    FillList(pageSize, dialog.PageSizes, dialog.PageSize);
    Fill(gap, dialog.Gap);
    Fill(bleed, dialog.Bleed);
    Fill(largest, dialog.Largest);
    Show();
    Connect();
    engine.setFocus();
}

void MExportGameFontView::LayOut() {
    const struct {
        const char* label;
        QWidget& control;
        int left;
        int top;
        int width;
    } rows[] = {
        {"&Engine", engine, 60, 8, 100},        {"&Form", form, 60, 27, 100},
        {"&Page sides", pageSize, 60, 46, 100}, {"&Gap", gap, 245, 8, 40},
        {"&Bleed", bleed, 245, 27, 40},         {"&Largest side", largest, 245, 46, 40},
    };
    for (const auto& row : rows) {
        Place(row.control, row.left, row.top, row.width, 14);
        AddLabel(row.label, row.control, row.left - 50 - (row.left > 100 ? 15 : 0), row.top,
                 row.left > 100 ? 64 : 49, 14);
        if (row.left > 100) Place(*new QLabel("pixels", &ground), row.left + 44, row.top, 40, 14);
    }
    summary.setWordWrap(true);
    Place(summary, 10, 66, 320, 22);
    findings.setReadOnly(true);
    findings.setTabChangesFocus(true);
    Place(findings, 10, 102, 320, 88);
    AddLabel("&What of the font the engine doesn't take as it is", findings, 10, 90, 320, 12);
    AddButtons(237, 196, 285, 196);
}

void MExportGameFontView::Connect() {
    const auto change = [this](auto act) {
        if (updating) return;
        act();
        Show();
    };
    connect(&engine, &QComboBox::currentIndexChanged, this,
            [=, this](int place) { change([&] { dialog.ChangeEngine(place); }); });
    connect(&form, &QComboBox::currentIndexChanged, this,
            [=, this](int place) { change([&] { dialog.ChangeForm(place); }); });
    connect(&pageSize, &QComboBox::currentIndexChanged, this,
            [=, this](int place) { change([&] { dialog.ChangePageSize(place); }); });
    for (QLineEdit* const field : {&gap, &bleed, &largest}) {
        connect(field, &QLineEdit::textChanged, this, [=, this] {
            change([&] {
                dialog.Gap = FromQt(gap.text());
                dialog.Bleed = FromQt(bleed.text());
                dialog.Largest = FromQt(largest.text());
                dialog.ChangeNumbers();
            });
        });
    }
    onOk = [this] { dialog.Accept(); };
}

// What comes of the choices; the numbers stay as they are typed.
void MExportGameFontView::Show() {
    updating = true;
    FillList(form, dialog.Forms, dialog.Form);
    summary.setText(ToQt(dialog.Summary));
    findings.setPlainText(ToQt(dialog.Findings));
    ok.setEnabled(dialog.CanExport);
    updating = false;
}
