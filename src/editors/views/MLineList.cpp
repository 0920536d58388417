#include "editors/views/MLineList.h"

#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>

namespace {

constexpr auto separator = "    ";

class MColumns : public QStyledItemDelegate {
public:
    MColumns(QObject* parent, int columnCount) : QStyledItemDelegate(parent), count(columnCount) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& index) const override {
        QStyleOptionViewItem option = given;
        initStyleOption(&option, index);
        const QStringList parts = option.text.split(separator);
        option.text.clear();
        const QStyle* const style = option.widget->style();
        style->drawControl(QStyle::CE_ItemViewItem, &option, painter, option.widget);
        const bool selected = option.state.testFlag(QStyle::State_Selected);
        const QRect line = option.rect.adjusted(6, 0, -2, 0);
        for (int i = 0; i < parts.size(); ++i) {
            const QRect place(line.left() + line.width() * i / count, line.top(), line.width() / count,
                              line.height());
            style->drawItemText(painter, place, Qt::AlignVCenter | Qt::AlignLeft, option.palette, true,
                                parts[i], selected ? QPalette::HighlightedText : QPalette::Text);
        }
    }

private:
    const int count;
};

} // namespace

void MLineList::UseColumns(int count) {
    setItemDelegate(new MColumns(this, count));
}

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
    setSpacing(1); // "_" would touch what stands below it
    setSelectionMode(SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (onSelection && current.isValid()) onSelection(current.row());
    });
    connect(this, &QListView::pressed, this, [this](const QModelIndex& index) {
        if (onSelection) onSelection(index.row());
    });
}

void MLineList::keyboardSearch(const QString& typed) {
    const QModelIndex next = lines.index((currentIndex().row() + 1) % std::max(lines.rowCount({}), 1));
    const auto found = lines.match(next, Qt::DisplayRole, typed, 1,
                                   Qt::MatchStartsWith | Qt::MatchCaseSensitive | Qt::MatchWrap);
    if (found.isEmpty()) return QListView::keyboardSearch(typed);
    setCurrentIndex(found.first());
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
