// What the desktop asks the user for the program: message boxes, files, colours.

#include "platform/Desktop.h"
#include "platform/qt/MClientArea.h"
#include "platform/qt/MCursors.h"
#include "platform/qt/QtText.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QScreen>
#include <QTreeView>
#include <QUrl>

namespace {

QMessageBox::StandardButtons ToQt(Desktop::Buttons buttons) {
    switch (buttons) {
    case Desktop::Buttons::OkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case Desktop::Buttons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case Desktop::Buttons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Desktop::Buttons::Ok: break;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon ToQt(Desktop::Icon icon) {
    switch (icon) {
    case Desktop::Icon::Information: return QMessageBox::Information;
    case Desktop::Icon::Warning: return QMessageBox::Warning;
    case Desktop::Icon::Error: return QMessageBox::Critical;
    case Desktop::Icon::Question: return QMessageBox::Question;
    case Desktop::Icon::None: break;
    }
    return QMessageBox::NoIcon;
}

// What closing the box means.
QMessageBox::StandardButton EscapeOf(QMessageBox::StandardButtons buttons) {
    for (const auto button : {QMessageBox::Cancel, QMessageBox::No}) {
        if (buttons & button) return button;
    }
    return QMessageBox::Ok;
}

// What Enter means: the first button of the set, on every desktop.
QMessageBox::StandardButton DefaultOf(QMessageBox::StandardButtons buttons) {
    return buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
}

// "PNG Files (*.PNG)" and "*.PNG" as Qt has it. Names of files differ in case here, extensions need not.
QString FilterText(const Desktop::FileFilter& filter) {
    QStringList patterns;
    const QStringList parts = ToQt(filter.pattern).split(';', Qt::SkipEmptyParts);
    for (const QString& part : parts)
        patterns << part << part.toLower();
    patterns.removeDuplicates();
    return ToQt(filter.name).section(" (", 0, 0) + " (" + patterns.join(' ') + ')';
}

// Where a dialog begins whose folder is gone, and would be taken for the name of a file.
QString ExistingFolder(QString folder) {
    while (!folder.isEmpty() && !QFileInfo(folder).isDir()) {
        const QString parent = QFileInfo(folder).path();
        if (parent == folder) return {}; // of a drive that is gone
        folder = parent;
    }
    return folder;
}

void OfferPlaces(QFileDialog& chooser, const QList<QUrl>& usual, const std::vector<MString>& places) {
    QList<QUrl> urls = usual;
    for (const MString& place : places) {
        const QUrl url = QUrl::fromLocalFile(ToQt(place));
        if (QFileInfo(ToQt(place)).isDir() && !urls.contains(url)) urls << url;
    }
    chooser.setSidebarUrls(urls);
}

// Names are what matters; the other columns are as wide as they need, and the window is wide enough for all.
void ShowWholeColumns(QFileDialog& chooser) {
    constexpr QSize wanted(820, 500);
    chooser.setViewMode(QFileDialog::Detail);
    chooser.resize(wanted.boundedTo(chooser.screen()->availableSize()));
    if (auto* const list = chooser.findChild<QTreeView*>("treeView")) {
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
}

// White at the first use; Qt keeps what the user makes of them.
void PrepareCustomColours() {
    static bool prepared = false;
    if (prepared) return;
    prepared = true;
    for (int i = 0; i < QColorDialog::customCount(); ++i)
        QColorDialog::setCustomColor(i, Qt::white);
}

} // namespace

namespace Desktop {

Answer ShowMessage(WindowHandle owner, const MString& text, const MString& caption, Buttons buttons,
                   Icon icon) {
    const MOwnCursors cursors;
    const QMessageBox::StandardButtons shown = ToQt(buttons);
    QMessageBox box(ToQt(icon), ToQt(caption), ToQt(text), shown, WidgetOf(owner));
    box.setTextFormat(Qt::PlainText);
    box.setEscapeButton(EscapeOf(shown));
    box.setDefaultButton(DefaultOf(shown));
    switch (box.exec()) {
    case QMessageBox::Yes: return Answer::Yes;
    case QMessageBox::No: return Answer::No;
    case QMessageBox::Cancel: return Answer::Cancel;
    default: return Answer::Ok;
    }
}

MString ShowFileDialog(WindowHandle owner, FileDialog& dialog, const MString& extension) {
    const MOwnCursors cursors;
    QFileDialog chooser(WidgetOf(owner), ToQt(dialog.title), ExistingFolder(ToQt(dialog.folder)));
    chooser.setAcceptMode(dialog.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    chooser.setFileMode(dialog.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    QStringList filters;
    for (const FileFilter& filter : dialog.filters)
        filters << FilterText(filter);
    chooser.setNameFilters(filters);
    if (dialog.filterIndex >= 1 && dialog.filterIndex <= filters.size())
        chooser.selectNameFilter(filters[dialog.filterIndex - 1]);
    const QList<QUrl> usualPlaces = chooser.sidebarUrls();
    OfferPlaces(chooser, usualPlaces, dialog.places);
    ShowWholeColumns(chooser);
    chooser.setDefaultSuffix(ToQt(extension));
    chooser.selectFile(ToQt(dialog.fileName));
    const bool accepted = chooser.exec() == QDialog::Accepted;
    chooser.setSidebarUrls(usualPlaces); // which Qt keeps for the dialogs of all programs
    if (!accepted || chooser.selectedFiles().isEmpty()) return {};
    dialog.filterIndex = static_cast<std::int32_t>(filters.indexOf(chooser.selectedNameFilter())) + 1;
    return FromQt(chooser.selectedFiles().constFirst());
}

bool ChooseColour(WindowHandle owner, MColour& colour) {
    const MOwnCursors cursors;
    PrepareCustomColours();
    const QColor chosen =
        QColorDialog::getColor(QColor(colour.r, colour.g, colour.b), WidgetOf(owner), "Select colour");
    if (!chosen.isValid()) return false;
    const auto channel = [](int value) { return static_cast<std::uint8_t>(value); };
    colour = MColour(channel(chosen.red()), channel(chosen.green()), channel(chosen.blue()));
    return true;
}

} // namespace Desktop
