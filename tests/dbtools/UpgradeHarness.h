#pragma once

#include "data/Databases.h"
#include "data/Sql.h"
#include "dbtools/OldDatabases.h"
#include "fakes/FakeControls.h"
#include "support/TestFolder.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

namespace tarvex::testing {

// A data folder whose three databases are those of a former release.
class OldFolder {
public:
    explicit OldFolder(const QString& version, const ClinicSize& size = {}) {
        MakeOldDatabases(folder.Path(), version, size);
        folder.state.Dbs.UpgradePrompter = &prompter;
        prompter.answers.assign(4, Answer::Yes);
    }

    // Opens the databases as a start does (the upgrade runs first) and closes them again.
    void OpenAndClose() {
        OpenDatabases(folder.state);
        CloseDatabases(folder.state);
    }

    int Count(const QString& file, const QString& sql) const {
        int n = -1;
        folder.WithDatabase(file, [&](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(db, sql);
            n = q.next() ? q.value(0).toInt() : -1;
        });
        return n;
    }

    QString Text(const QString& file, const QString& sql) const {
        QString text;
        folder.WithDatabase(file, [&](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(db, sql);
            if (q.next())
                text = q.value(0).toString();
        });
        return text;
    }

    // The columns of a table in their order.
    QStringList Columns(const QString& file, const QString& table) const {
        QStringList names;
        folder.WithDatabase(file, [&](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(db, QStringLiteral("PRAGMA table_info(%1)").arg(table));
            while (q.next())
                names << q.value(1).toString();
        });
        return names;
    }

    TestFolder folder;
    fakes::ScriptedPrompter prompter;
};

} // namespace tarvex::testing
