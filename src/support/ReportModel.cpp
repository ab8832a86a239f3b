#include "support/ReportModel.h"

#include <algorithm>
#include <numeric>

namespace tarvex {

ReportModel::ReportModel(const QStringList& headers, QObject* parent)
    : QAbstractTableModel(parent), headers_(headers), selection_(this) {}

void ReportModel::Clear() {
    if (filling_) {
        rows_.clear();
        return;
    }
    beginResetModel();
    rows_.clear();
    endResetModel();
}

void ReportModel::AddRow(const QString& key, const QStringList& columns) {
    Row row{key, columns};
    if (filling_) {
        rows_.push_back(std::move(row));
        return;
    }
    auto place = rows_.end();
    if (sortColumn_ >= 0)
        place = std::upper_bound(rows_.begin(), rows_.end(), row,
                                 [this](const Row& a, const Row& b) { return RowBefore(a, b); });
    const int at = static_cast<int>(place - rows_.begin());
    beginInsertRows({}, at, at);
    rows_.insert(place, std::move(row));
    endInsertRows();
}

QString ReportModel::Key(int row) const {
    return row >= 0 && row < RowCount() ? rows_[static_cast<size_t>(row)].key : QString();
}

QString ReportModel::Text(int row, int column) const {
    return row >= 0 && row < RowCount() ? rows_[static_cast<size_t>(row)].columns.value(column)
                                        : QString();
}

int ReportModel::SelectedRow() const {
    const QModelIndex current = selection_.currentIndex();
    return current.isValid() ? current.row() : -1;
}

void ReportModel::SetSelectedRow(int row) {
    if (row < 0 || row >= RowCount()) {
        selection_.clear();
        return;
    }
    selection_.setCurrentIndex(index(row, 0),
                               QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ReportModel::SortByColumn(int column) {
    if (column < 0 || column >= columnCount())
        return;
    sortColumn_ = column;
    if (filling_)
        return;
    // The rows move; every index held on them (the chosen row among them) moves along.
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> order(rows_.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
        return RowBefore(rows_[static_cast<size_t>(a)], rows_[static_cast<size_t>(b)]);
    });
    std::vector<int> newPlace(rows_.size());
    std::vector<Row> sorted;
    sorted.reserve(rows_.size());
    for (size_t i = 0; i < order.size(); ++i) {
        newPlace[static_cast<size_t>(order[i])] = static_cast<int>(i);
        sorted.push_back(std::move(rows_[static_cast<size_t>(order[i])]));
    }
    rows_ = std::move(sorted);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& old : before)
        after << index(newPlace[static_cast<size_t>(old.row())], old.column());
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void ReportModel::BeginFill() {
    if (filling_)
        return;
    beginResetModel();
    filling_ = true;
}

void ReportModel::EndFill() {
    if (!filling_)
        return;
    filling_ = false;
    if (sortColumn_ >= 0)
        std::stable_sort(rows_.begin(), rows_.end(),
                         [this](const Row& a, const Row& b) { return RowBefore(a, b); });
    endResetModel();
}

int ReportModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : RowCount();
}

int ReportModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

QVariant ReportModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= RowCount())
        return {};
    const Row& row = rows_[static_cast<size_t>(index.row())];
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return row.columns.value(index.column());
    if (role == kKeyRole)
        return row.key;
    return {};
}

QVariant ReportModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return headers_.value(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}

bool ReportModel::RowBefore(const Row& a, const Row& b) const {
    return SortsBefore(a.columns.value(sortColumn_), b.columns.value(sortColumn_));
}

} // namespace tarvex
