#include "data/LibraryRecordset.h"

#include "data/Sql.h"
#include "support/Fault.h"

namespace tarvex {

QString LibraryRecordset::WhereClause() const {
    return filter_.trimmed().isEmpty() ? QString() : QStringLiteral(" WHERE (%1)").arg(filter_);
}

int LibraryRecordset::RecordCount() {
    if (!IsOpen())
        throw DatabaseFault(QStringLiteral("The exercise library is not open."));
    QSqlQuery query =
        OpenQuery(db_, QStringLiteral("SELECT COUNT(*) FROM ExerciseLibrary") + WhereClause());
    return query.next() ? query.value(0).toInt() : 0;
}

QSqlQuery LibraryRecordset::OpenSnapshot() {
    if (!IsOpen())
        throw DatabaseFault(QStringLiteral("The exercise library is not open."));
    return OpenQuery(db_, QStringLiteral("SELECT * FROM ExerciseLibrary") + WhereClause() +
                              QStringLiteral(" ORDER BY AbbrevDesc ASC"));
}

} // namespace tarvex
