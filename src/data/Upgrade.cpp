#include "data/Upgrade.h"

#include "data/Schema.h"
#include "support/Fault.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace tarvex {

namespace {

void RequireCurrentVersion(const QString& path) {
    if (!QFileInfo(path).isFile())
        return;
    const QString version = ReadDatabaseVersion(path);
    if (version != QLatin1String(kCurrentDatabaseVersion))
        throw DatabaseFault(
            QStringLiteral("The database '%1' is of version \"%2\"; this program works on version "
                           "%3. Converting it is not supported by this release; the file has not "
                           "been changed.")
                .arg(path, version.isEmpty() ? QStringLiteral("unknown") : version,
                     QLatin1String(kCurrentDatabaseVersion)));
}

} // namespace

QString ReadDatabaseVersion(const QString& path) {
    const QString name = QStringLiteral("version-probe");
    QString version;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (db.open()) {
            QSqlQuery query(db);
            if (query.exec(QStringLiteral("SELECT Version FROM Version")) && query.next())
                version = query.value(0).toString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return version;
}

void UpgradeDatabases(const QString& programPath, const QString& libraryPath,
                      const QString& picklistPath) {
    RequireCurrentVersion(programPath);
    RequireCurrentVersion(libraryPath);
    Q_UNUSED(picklistPath); // the picklist database carries no version
}

} // namespace tarvex
