#include "dbtools/CompanionSource.h"

#include "data/Sql.h"
#include "shell/AppFolder.h"
#include "support/Fault.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace tarvex {

CompanionSource::CompanionSource(const QString& folder, const QString& fileName,
                                 const QString& table)
    : name_(fileName) {
    const QString path = FindFileNoCase(folder, fileName);
    if (!QFileInfo(path).isFile())
        throw DatabaseFault(QStringLiteral("Could not find file '%1'.").arg(path),
                            DatabaseFault::kFileNotFound);
    const QString connection = QStringLiteral("companion-%1").arg(fileName);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        try {
            if (!db.open())
                throw DatabaseFault(
                    QStringLiteral("Could not open '%1': %2").arg(path, db.lastError().text()));
            QSqlQuery query = OpenQuery(db, QStringLiteral("SELECT * FROM ") + table);
            const QSqlRecord record = query.record();
            while (query.next()) {
                QHash<QString, QVariant> row;
                for (int i = 0; i < record.count(); ++i)
                    row.insert(record.fieldName(i).toLower(), query.value(i));
                const qint64 id = row.value(QStringLiteral("exerciseid")).toLongLong();
                if (!firstRow_.contains(id))
                    firstRow_.insert(id, static_cast<int>(rows_.size()));
                rows_.push_back(std::move(row));
            }
        } catch (...) {
            db.close();
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(connection);
            RethrowAt(path);
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
}

bool CompanionSource::FindFirst(qint64 exerciseId) {
    const auto found = firstRow_.constFind(exerciseId);
    if (found == firstRow_.constEnd())
        return false;
    current_ = found.value();
    return true;
}

QVariant CompanionSource::Value(const QString& column) const {
    if (rows_.empty())
        throw DatabaseFault(QStringLiteral("No current record in '%1'.").arg(name_));
    const auto& row = rows_[static_cast<size_t>(current_)];
    const auto found = row.constFind(column.toLower());
    if (found == row.constEnd())
        throw DatabaseFault(
            QStringLiteral("Item not found in this collection: '%1' in '%2'.").arg(column, name_));
    return found.value();
}

} // namespace tarvex
