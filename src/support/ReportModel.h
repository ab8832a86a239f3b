#pragma once

#include "support/Controls.h"

#include <QAbstractTableModel>
#include <QItemSelectionModel>
#include <QStringList>
#include <vector>

namespace tarvex {

// A report list as an item model: rows of texts with a key each, a chosen row, and a sort
// by the text of one column. Once a column has been sorted by, the list keeps that order:
// a refill is sorted when it ends, and a row added alone goes to its sorted place. A
// refill bracketed by BeginFill and EndFill shows the view one reset for all its rows.
class ReportModel : public QAbstractTableModel, public IReportList {
    Q_OBJECT
public:
    static constexpr int kKeyRole = Qt::UserRole;

    explicit ReportModel(const QStringList& headers, QObject* parent = nullptr);

    // IReportList
    void Clear() override;
    void AddRow(const QString& key, const QStringList& columns) override;
    int RowCount() const override { return static_cast<int>(rows_.size()); }
    QString Key(int row) const override;
    QString Text(int row, int column) const override;
    int SelectedRow() const override;
    void SetSelectedRow(int row) override;
    void SortByColumn(int column) override;
    void BeginFill() override;
    void EndFill() override;

    // The column the rows are kept sorted by, or -1 while no sort was asked for.
    int SortColumn() const { return sortColumn_; }
    // The chosen row as the view shows it: a view takes this as its selection model.
    QItemSelectionModel* Selection() { return &selection_; }

    // QAbstractTableModel
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row {
        QString key;
        QStringList columns;
    };
    bool RowBefore(const Row& a, const Row& b) const;

    QStringList headers_;
    std::vector<Row> rows_;
    int sortColumn_ = -1;
    bool filling_ = false;
    QItemSelectionModel selection_;
};

} // namespace tarvex
