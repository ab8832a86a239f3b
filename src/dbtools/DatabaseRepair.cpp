#include "dbtools/DatabaseRepair.h"

#include "data/DatabaseCheck.h"
#include "data/Sql.h"
#include "shell/PrivateFiles.h"
#include "support/DurableFiles.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <functional>

namespace tarvex {

namespace {

// Runs the work on a connection of its own to the file, closed afterwards.
void WithFile(const QString& path, bool readOnly, const std::function<void(QSqlDatabase&)>& work) {
    static int serial = 0;
    const QString name = QStringLiteral("repair-%1").arg(++serial);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (readOnly)
            db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        try {
            if (!QFileInfo(path).isFile() || !db.open())
                throw DatabaseFault(QStringLiteral("Could not open '%1'.").arg(path),
                                    DatabaseFault::kFileNotFound);
            work(db);
        } catch (...) {
            db.close();
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
            throw;
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

QString SqliteShell() {
    QString shell = QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
    if (shell.isEmpty())
        throw DatabaseFault(QStringLiteral(
            "The damaged database cannot be recovered: the SQLite shell \"sqlite3\" is not "
            "installed. Install the package sqlite3 and rebuild again."));
    return shell;
}

// Runs the shell with the arguments, input and output files; true when it ended well.
bool RunShell(const QStringList& args, const QString& in, const QString& out) {
    QProcess process;
    if (!in.isEmpty())
        process.setStandardInputFile(in);
    if (!out.isEmpty())
        process.setStandardOutputFile(out);
    process.start(SqliteShell(), args);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

// The SQL text that rebuilds the damaged file. The shell's recovery reads every page it
// can; where the shell cannot run it (Debian 12's library lacks the page table it needs),
// the shell's dump, which reads around damaged pages, stands in. A dump that met damage
// ends by taking itself back; what it could read is kept instead.
void WriteRecoveryScript(const QString& damaged, const QString& script) {
    if (RunShell({damaged, QStringLiteral(".recover")}, QString(), script))
        return;
    RunShell({damaged, QStringLiteral(".dump")}, QString(), script);
    QFile file(script);
    if (!file.open(QIODevice::ReadWrite) || file.size() == 0)
        throw DatabaseFault(
            QStringLiteral("The recovery of '%1' found nothing it could read.").arg(damaged));
    QByteArray text = file.readAll();
    const QByteArray takenBack = "ROLLBACK; -- due to errors";
    const qsizetype at = text.lastIndexOf(takenBack);
    if (at >= 0) {
        text.replace(at, takenBack.size(), "COMMIT;");
        file.resize(0);
        file.seek(0);
        file.write(text);
    }
}

// The damaged file's recovery run into a new file, which counts only when it is sound and
// holds the program's tables.
void RecoverInto(const QString& damaged, const QString& recovered) {
    const QString script = recovered + QStringLiteral(".sql");
    QFile::remove(script);
    QFile::remove(recovered);
    try {
        WriteRecoveryScript(damaged, script);
        // Statements that fail (a row the damage cut short) are passed over.
        RunShell({recovered}, script, QString());
        bool complete = false;
        WithFile(recovered, true, [&](QSqlDatabase& db) {
            QSqlQuery check(db);
            complete = check.exec(QStringLiteral("SELECT COUNT(*) FROM Patient"));
        });
        if (!complete)
            throw DatabaseFault(
                QStringLiteral("The recovery of '%1' could not bring back its tables.")
                    .arg(damaged));
    } catch (...) {
        QFile::remove(script);
        QFile::remove(recovered);
        throw;
    }
    QFile::remove(script);
    MakeFilePrivate(recovered);
}

} // namespace

bool DatabaseIsSound(const QString& path) {
    bool sound = false;
    try {
        WithFile(path, !HasJournalToRecover(path), [&](QSqlDatabase& db) {
            QSqlQuery check(db);
            sound = check.exec(QStringLiteral("PRAGMA integrity_check")) && check.next() &&
                    check.value(0).toString() == QLatin1String("ok");
        });
    } catch (const DatabaseFault&) {
        sound = false;
    }
    return sound;
}

void CompactDatabase(const QString& source, const QString& work) {
    WithFile(source, false,
             [&](QSqlDatabase& db) { ExecPrepared(db, QStringLiteral("VACUUM INTO ?"), {work}); });
    MakeFilePrivate(work);
    if (!SyncFile(work))
        throw DatabaseFault(QStringLiteral("Could not write '%1' to the disk.").arg(work));
}

QString DamagedCopyName(const QString& path, const QDateTime& now) {
    const QFileInfo info(path);
    return info.dir().filePath(QStringLiteral("%1 (damaged %2).%3")
                                   .arg(info.completeBaseName(),
                                        now.toString(QStringLiteral("yyyy-MM-dd HHmmss")),
                                        info.suffix()));
}

bool RepairDatabaseFile(const QString& path, const QDateTime& now) {
    if (!QFileInfo(path).isFile())
        throw DatabaseFault(QStringLiteral("Could not find file '%1'.").arg(path),
                            DatabaseFault::kFileNotFound);
    if (DatabaseIsSound(path))
        return false;
    const QString recovered = path + QStringLiteral(".recovered");
    RecoverInto(path, recovered);
    if (!DatabaseIsSound(recovered)) {
        QFile::remove(recovered);
        throw DatabaseFault(
            QStringLiteral("The recovered copy of '%1' is not sound; the file is left as it was.")
                .arg(path));
    }
    // The damaged file keeps a second name, with its journal beside it, before the
    // recovered one takes its place: there is never a moment without the file.
    const QString kept = DamagedCopyName(path, now);
    try {
        KeepSecondName(path, kept);
    } catch (const Fault& fault) {
        QFile::remove(recovered);
        throw DatabaseFault(fault.Message());
    }
    for (const char* journal : {"-wal", "-shm"})
        if (QFileInfo::exists(path + QLatin1String(journal)))
            QFile::rename(path + QLatin1String(journal), kept + QLatin1String(journal));
    try {
        ReplaceFileDurably(recovered, path);
    } catch (const Fault& fault) {
        throw DatabaseFault(fault.Message());
    }
    return true;
}

} // namespace tarvex
