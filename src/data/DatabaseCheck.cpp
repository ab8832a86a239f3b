#include "data/DatabaseCheck.h"

#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>

namespace tarvex {

namespace {

// Every database file of the engine begins with these sixteen bytes, in a header of 100.
constexpr char kHeaderMagic[] = "SQLite format 3";
constexpr qint64 kHeaderSize = 100;

QString ReadOnlyText(const QString& path) {
    return QStringLiteral("The database file\n%1\nis read-only, so the program cannot save to "
                          "it.\n\nThe file has not been changed. Make it writable again (in the "
                          "file's properties, for the user who runs the program), or copy it "
                          "back from your last backup, then start the program again.")
        .arg(QDir::toNativeSeparators(path));
}

// What is wrong with the file at the level of its bytes, or an empty text.
QString HeaderProblem(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("the file cannot be read (%1)").arg(file.errorString());
    if (file.size() == 0)
        return QStringLiteral("the file is empty (0 bytes)");
    const QByteArray header = file.read(kHeaderSize);
    if (!header.startsWith(QByteArray(kHeaderMagic, sizeof kHeaderMagic)))
        return QStringLiteral("the file is not a database (it does not begin as one)");
    if (header.size() < kHeaderSize)
        return QStringLiteral("the file is cut short (%1 bytes)").arg(file.size());
    return {};
}

} // namespace

bool HasJournalToRecover(const QString& path) {
    const QFileInfo journal(path + QStringLiteral("-journal"));
    return (journal.isFile() && journal.size() > 0) ||
           QFileInfo(path + QStringLiteral("-wal")).isFile();
}

namespace {

// The engine's own view of the file: its quick check and the table that marks it.
QString EngineProblem(const QString& path, const QString& markTable) {
    static std::atomic<int> serial{0};
    const QString name = QStringLiteral("database-check-%1").arg(++serial);
    QString problem;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!HasJournalToRecover(path))
            db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open()) {
            problem = QStringLiteral("the file cannot be opened (%1)").arg(db.lastError().text());
        } else {
            QSqlQuery check(db);
            if (!check.exec(QStringLiteral("PRAGMA quick_check(1)")) || !check.next())
                problem = QStringLiteral("the file is damaged (%1)")
                              .arg(check.lastError().databaseText());
            else if (QString found = check.value(0).toString(); found != QLatin1String("ok"))
                problem =
                    QStringLiteral("the file is damaged (%1)")
                        .arg(found.remove(QStringLiteral("*** in database main ***")).simplified());
            check.finish();
            if (problem.isEmpty()) {
                QSqlQuery mark(db);
                mark.prepare(
                    QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ? "
                                   "COLLATE NOCASE"));
                mark.addBindValue(markTable);
                if (!mark.exec() || !mark.next())
                    problem = QStringLiteral("the file is a database, but not one of this "
                                             "program (it has no table \"%1\")")
                                  .arg(markTable);
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return problem;
}

} // namespace

QString UnusableDatabaseText(const QString& path, const QString& cause) {
    return QStringLiteral("The database file\n%1\ncannot be used: %2.\n\nIt is damaged, or it is "
                          "not a database of TVX Regimenter. The file has not been changed. "
                          "Restore it from your last backup, or repair it with Database > "
                          "Rebuild, then start the program again.")
        .arg(QDir::toNativeSeparators(path), cause);
}

void CheckDatabaseFile(const QString& path, const QString& markTable) {
    const QFileInfo info(path);
    if (info.isDir())
        throw DatabaseFault(UnusableDatabaseText(
            path, QStringLiteral("there is a folder of that name where the file should be")));
    if (!info.exists())
        throw DatabaseFault(QStringLiteral("Could not find file '%1'.").arg(path));
    if (QString problem = HeaderProblem(path); !problem.isEmpty())
        throw DatabaseFault(UnusableDatabaseText(path, problem));
    // The owner's write bit counts even for a user whom the system would let write anyway:
    // a file made read-only was made so on purpose.
    if (!info.isWritable() || !(info.permissions() & QFileDevice::WriteOwner))
        throw DatabaseFault(ReadOnlyText(path));
    if (QString problem = EngineProblem(path, markTable); !problem.isEmpty())
        throw DatabaseFault(UnusableDatabaseText(path, problem));
}

} // namespace tarvex
