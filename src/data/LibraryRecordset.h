#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

namespace tarvex {

// The long-lived view of the library: "SELECT * FROM ExerciseLibrary ORDER BY AbbrevDesc
// ASC" with an optional filter in the classic dialect. Each snapshot runs the query
// afresh; the library changes only while the databases are closed, so a snapshot sees
// what the one taken at opening time would.
class LibraryRecordset {
public:
    static constexpr const char* kSql = "SELECT * FROM ExerciseLibrary ORDER BY AbbrevDesc ASC";

    void Attach(const QSqlDatabase& db) { db_ = db; }
    void Detach() { db_ = QSqlDatabase(); }
    bool IsOpen() const { return db_.isValid() && db_.isOpen(); }

    // The filter expression, e.g. "(Joint LIKE '*Knee*')"; empty for none.
    const QString& Filter() const { return filter_; }
    void SetFilter(const QString& filter) { filter_ = filter; }

    // The number of rows the query yields with the filter as it stands.
    int RecordCount();
    // The rows, in the query's order, with the filter as it stands.
    QSqlQuery OpenSnapshot();

private:
    QString WhereClause() const;

    QSqlDatabase db_;
    QString filter_;
};

} // namespace tarvex
