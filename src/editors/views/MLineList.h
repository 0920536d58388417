// A list of lines that are made when they are seen, so that tens of thousands of them cost no more than a few.
#pragma once

#include <QAbstractListModel>
#include <QListView>
#include <functional>

// The lines as they stand somewhere else.
class MLines : public QAbstractListModel {
public:
    std::function<QString(int)> text;

    void Refill(int newCount);

    int rowCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    int count = 0;
};

class MLineList : public QListView {
public:
    MLines lines;
    // The user went to a line, or clicked on the one that is selected already.
    std::function<void(int)> onSelection;

    MLineList();

    // The parts of a line that blanks separate stand below one another.
    void UseColumns(int count);

    // All lines are new, and none is selected.
    void Refill(int count) { lines.Refill(count); }
    void Select(int position); // -1 for none

    // Goes by the case first, since a font has both.
    void keyboardSearch(const QString& typed) override;
};
