#include "editors/views/MLineList.h"

void MLines::Refill(int newCount) {
    beginResetModel();
    count = newCount;
    endResetModel();
}

int MLines::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count;
}

QVariant MLines::data(const QModelIndex& index, int role) const {
    return role == Qt::DisplayRole && text ? text(index.row()) : QVariant();
}

MLineList::MLineList() {
    setModel(&lines);
    setUniformItemSizes(true);
    setSelectionMode(SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (onSelection && current.isValid()) onSelection(current.row());
    });
    connect(this, &QListView::pressed, this, [this](const QModelIndex& index) {
        if (onSelection) onSelection(index.row());
    });
}

void MLineList::Select(int position) {
    if (currentIndex().row() == position) return;
    if (position < 0) {
        clearSelection();
        selectionModel()->clearCurrentIndex();
    } else {
        setCurrentIndex(lines.index(position));
    }
}
