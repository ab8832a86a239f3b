#include "dbtools/Upgrade.h"

#include "data/Schema.h"
#include "data/Sql.h"
#include "dbtools/DurableCopy.h"
#include "dbtools/UpgradeRoutines.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <functional>

namespace tarvex {

namespace {

QString NewConnectionName() {
    static int serial = 0;
    return QStringLiteral("upgrade-%1").arg(++serial);
}

// One database file as the walk sees it: a connection that each step opens afresh, and
// the copy of the file as it was, made once, before the first write.
class UpgradeFile {
public:
    explicit UpgradeFile(QString path) : path_(std::move(path)) {}
    ~UpgradeFile() { Close(); }
    UpgradeFile(const UpgradeFile&) = delete;
    UpgradeFile& operator=(const UpgradeFile&) = delete;

    QSqlDatabase& Reopen() {
        Close();
        name_ = NewConnectionName();
        db_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
        db_.setDatabaseName(path_);
        if (!QFileInfo(path_).isFile() || !db_.open())
            throw DatabaseFault(
                QStringLiteral("Could not open '%1': %2").arg(path_, db_.lastError().text()),
                DatabaseFault::kFileNotFound);
        return db_;
    }

    QSqlDatabase& Db() { return db_; }

    // Runs one step: the copy of the file is kept first, then the work and its version go
    // in as one transaction.
    void Write(const std::function<void(QSqlDatabase&)>& work) {
        KeepFormerCopy();
        AtPlace(path_, [&] {
            Transaction transaction(db_);
            work(db_);
            transaction.Commit();
        });
    }

    void KeepFormerCopy() {
        if (kept_)
            return;
        // Read before the first write, so it is the version the file came with; a file that
        // is up to date never pays for it.
        const QString copy = FormerVersionCopyName(path_, ReadDatabaseVersion(path_));
        if (!QFileInfo::exists(copy))
            CopyDatabaseDurably(db_, copy);
        kept_ = true;
    }

    void Close() {
        if (name_.isEmpty())
            return;
        db_.close();
        db_ = QSqlDatabase();
        QSqlDatabase::removeDatabase(name_);
        name_.clear();
    }

private:
    QString path_;
    QString name_;
    QSqlDatabase db_;
    bool kept_ = false;
};

struct Step {
    const char* Version;
    std::function<void(QSqlDatabase&)> Work;       // one transaction, with its version
    std::function<void(QSqlDatabase&)> After = {}; // statements of their own afterwards
    std::function<void()> Before = {};             // a question first
};

// The steps of a file in order: each runs on a fresh connection, unless the file has its
// version; the work of a step writes its version itself where it has one.
void RunSteps(UpgradeFile& file, const QString& path, const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        QSqlDatabase& db = file.Reopen();
        if (DatabaseHasVersion(db, QLatin1String(step.Version)))
            continue;
        if (step.Before)
            step.Before();
        file.Write(step.Work);
        if (step.After)
            AtPlace(path, [&] { step.After(db); });
    }
}

void UpgradeLibrary(const DatabasePaths& paths) {
    UpgradeFile file(paths.Library);
    if (DatabaseHasVersion(file.Reopen(), QStringLiteral("3.8")))
        return;
    const QString table = QStringLiteral("ExerciseLibrary");
    const QString folder = paths.Folder;
    RunSteps(file, paths.Library,
             {
                 {"3.2",
                  [&](QSqlDatabase& db) {
                      AddVideoColumns(db, folder, table);
                      SetDatabaseVersion(db, "3.2");
                  },
                  // The old option columns go after the version is written, each on its
                  // own: a break between them leaves them in a file that counts as 3.2,
                  // and no later step takes them.
                  [](QSqlDatabase& db) {
                      for (const char* column : {"reps_opts", "hold_opts", "sets_opts"})
                          Execute(db, QStringLiteral("ALTER TABLE ExerciseLibrary DROP COLUMN ") +
                                          QLatin1String(column));
                  }},
                 {"3.3", [](QSqlDatabase& db) { SetDatabaseVersion(db, "3.3"); }},
                 {"3.4",
                  [&](QSqlDatabase& db) {
                      ChangePicturesToJPG(db, table);
                      SetDatabaseVersion(db, "3.4");
                  }},
                 {"3.5",
                  [&](QSqlDatabase& db) {
                      ResizeInstructions(db, table);
                      SetDatabaseVersion(db, "3.5");
                  }},
                 {"3.6",
                  [&](QSqlDatabase& db) {
                      UpdateExerciseText(db, folder, table);
                      SetDatabaseVersion(db, "3.6");
                  }},
                 {"3.7",
                  [&](QSqlDatabase& db) {
                      DropFourthPicture(db, table);
                      SetDatabaseVersion(db, "3.7");
                  }},
             });
    // Without a new connection, whatever the steps found.
    file.Write([](QSqlDatabase& db) { SetDatabaseVersion(db, "3.8"); });
}

void AskUpdateText(Prompter* prompter) {
    if (!prompter)
        return;
    // Both buttons answer something other than nothing, and the update runs either way.
    (void)prompter->MsgBox(
        QStringLiteral("Do you want the browser to update the text\nfor your stored protocols "
                       "and exercise programs\nto match the new pictures.\nWe recommend you "
                       "answer Yes."),
        msg::YesNo | msg::Information, QStringLiteral("Update Text"));
}

void UpgradeProgram(const DatabasePaths& paths, Prompter* prompter) {
    UpgradeFile file(paths.Program);
    if (DatabaseHasVersion(file.Reopen(), QStringLiteral("3.8")))
        return;
    const QString folder = paths.Folder;
    const auto both = [](QSqlDatabase& db,
                         const std::function<void(QSqlDatabase&, QString)>& work) {
        work(db, QStringLiteral("Exercise"));
        work(db, QStringLiteral("ProtocolExercise"));
    };
    RunSteps(
        file, paths.Program,
        {
            {"3.2",
             [&](QSqlDatabase& db) {
                 both(db,
                      [&](QSqlDatabase& d, const QString& t) { AddVideoColumns(d, folder, t); });
                 SetDatabaseVersion(db, "3.2");
             }},
            {"3.3",
             [](QSqlDatabase& db) {
                 RebuildRankOnTape(db, QStringLiteral("Exercise"));
                 SetDatabaseVersion(db, "3.3");
             }},
            {"3.4",
             [&](QSqlDatabase& db) {
                 both(db, [](QSqlDatabase& d, const QString& t) { ChangePicturesToJPG(d, t); });
                 AllowEmptyInstruct0(db);
                 SetDatabaseVersion(db, "3.4");
             }},
            {"3.5",
             [&](QSqlDatabase& db) {
                 both(db, [](QSqlDatabase& d, const QString& t) { ResizeInstructions(d, t); });
                 SetDatabaseVersion(db, "3.5");
             }},
            {"3.6",
             [&](QSqlDatabase& db) {
                 both(db,
                      [&](QSqlDatabase& d, const QString& t) { UpdateExerciseText(d, folder, t); });
                 SetDatabaseVersion(db, "3.6");
             },
             {},
             [prompter] { AskUpdateText(prompter); }},
            {"3.7",
             [&](QSqlDatabase& db) {
                 both(db, [](QSqlDatabase& d, const QString& t) { DropFourthPicture(d, t); });
                 SetDatabaseVersion(db, "3.7");
             }},
            // No version is written: the program database stays at 3.7 and this step runs
            // at every opening.
            {"3.8",
             [](QSqlDatabase& db) {
                 CutTextColumn(db, QStringLiteral("Invoice"), "Provider", 40);
             }},
        });
}

void UpgradePicklist(const DatabasePaths& paths) {
    UpgradeFile file(paths.Picklist);
    QSqlDatabase& db = file.Reopen();
    if (!DatabaseHasVersion(db, QStringLiteral("3.8")) &&
        !DatabaseHasVersion(db, QStringLiteral("3.8")))
        file.Write([](QSqlDatabase& d) {
            CutTextColumn(d, QStringLiteral("Level1"), QStringLiteral("Name"), 40);
        });
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

QString FormerVersionCopyName(const QString& path, const QString& version) {
    const QFileInfo info(path);
    QString safe = version.trimmed().left(20);
    safe.remove(QRegularExpression(QStringLiteral("[^A-Za-z0-9._-]")));
    const QString label =
        safe.isEmpty() ? QStringLiteral("no version") : QStringLiteral("version ") + safe;
    return info.dir().filePath(
        QStringLiteral("%1 (%2).%3").arg(info.completeBaseName(), label, info.suffix()));
}

void UpgradeDatabases(const DatabasePaths& paths, Prompter* prompter) {
    UpgradeLibrary(paths);
    UpgradeProgram(paths, prompter);
    UpgradePicklist(paths);
}

} // namespace tarvex
