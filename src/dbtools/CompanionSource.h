#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <vector>

namespace tarvex {

// A table of one of the two companion files the upgrade reads ("Video.MDB", "TVX Exercise
// Library.MDB"), held as a recordset with a current row that a search moves. As with the
// classic engine, a search that finds nothing leaves the current row where it was; a copy
// after such a search takes that row's values.
class CompanionSource {
public:
    // Reads the whole table of the file of that name in the folder (found without regard
    // to case). A missing file, or one without the table, is a DatabaseFault.
    CompanionSource(const QString& folder, const QString& fileName, const QString& table);

    // Moves to the first row whose ExerciseID equals the number; true when there is one.
    bool FindFirst(qint64 exerciseId);
    // A column of the current row. A source without rows has none: a DatabaseFault.
    QVariant Value(const QString& column) const;

    int RowCount() const { return static_cast<int>(rows_.size()); }

private:
    std::vector<QHash<QString, QVariant>> rows_; // column names in lower case
    QHash<qint64, int> firstRow_;
    int current_ = 0;
    QString name_;
};

} // namespace tarvex
