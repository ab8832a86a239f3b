#include "UpgradeHarness.h"

#include "data/Schema.h"
#include "dbtools/Upgrade.h"
#include "dbtools/UpgradeRoutines.h"
#include "support/Fault.h"

#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

const QString kProgram = QStringLiteral("Tarvex.MDB");
const QString kLibrary = QStringLiteral("Exercise Library.MDB");
const QString kPicklist = QStringLiteral("Picklist.MDB");

QStringList Sorted(QStringList names) {
    for (QString& n : names)
        n = n.toLower();
    names.sort();
    return names;
}

// Everything a database holds, as text: its definitions and its rows.
QString Dump(const OldFolder& old, const QString& file) {
    QString dump;
    old.folder.WithDatabase(file, [&](QSqlDatabase& db) {
        QStringList tables;
        QSqlQuery schema = OpenQuery(db, "SELECT name, sql FROM sqlite_schema ORDER BY name");
        while (schema.next()) {
            dump += schema.value(1).toString() + u'\n';
            if (schema.value(1).toString().startsWith("CREATE TABLE") &&
                !schema.value(0).toString().startsWith("sqlite_"))
                tables << schema.value(0).toString();
        }
        for (const QString& table : tables) {
            QSqlQuery rows =
                OpenQuery(db, QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(table));
            while (rows.next())
                for (int i = 0; i < rows.record().count(); ++i)
                    dump += rows.value(i).toString() + u'|';
        }
    });
    return dump;
}

} // namespace

TEST(Upgrade, EveryFormerReleaseComesUpToThePresentSchemaWithAllItsData) {
    for (const QString& version : FormerVersions()) {
        SCOPED_TRACE(version.toStdString());
        OldFolder old(version);
        const int exercises = old.Count(kProgram, "SELECT COUNT(*) FROM Exercise");
        const int invoices = old.Count(kProgram, "SELECT COUNT(*) FROM Invoice");
        old.OpenAndClose();

        EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kLibrary)), "3.8");
        EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kProgram)), "3.7");
        EXPECT_EQ(old.Count(kProgram, "SELECT COUNT(*) FROM Exercise"), exercises);
        EXPECT_EQ(old.Count(kProgram, "SELECT COUNT(*) FROM Invoice"), invoices);
        // The columns are those of a new database, whatever their order.
        TestFolder fresh;
        for (const char* table : {"Exercise", "ProtocolExercise", "Invoice"}) {
            QStringList expected;
            fresh.WithDatabase(kProgram, [&](QSqlDatabase& db) {
                QSqlQuery q = OpenQuery(db, QStringLiteral("PRAGMA table_info(%1)").arg(table));
                while (q.next())
                    expected << q.value(1).toString();
            });
            EXPECT_EQ(Sorted(old.Columns(kProgram, table)), Sorted(expected)) << table;
        }
        QStringList library;
        fresh.WithDatabase(kLibrary, [&](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(db, "PRAGMA table_info(ExerciseLibrary)");
            while (q.next())
                library << q.value(1).toString();
        });
        EXPECT_EQ(Sorted(old.Columns(kLibrary, "ExerciseLibrary")), Sorted(library));
        EXPECT_EQ(old.Text(kProgram, "PRAGMA integrity_check"), "ok");
        EXPECT_EQ(old.Text(kLibrary, "PRAGMA integrity_check"), "ok");
        // A copy of each file as it was is kept beside it, named for its version.
        const QString label = version.isEmpty() ? "no version" : "version " + version;
        EXPECT_TRUE(QFileInfo::exists(old.folder.File("Tarvex (" + label + ").MDB")));
        EXPECT_TRUE(QFileInfo::exists(old.folder.File("Exercise Library (" + label + ").MDB")));
    }
}

TEST(Upgrade, ALibraryWithoutAVersionRunsEveryStepAndASecondRunLeavesItAlone) {
    OldFolder old("");
    old.OpenAndClose();
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kLibrary)), "3.8");
    EXPECT_FALSE(old.Columns(kLibrary, "ExerciseLibrary").contains("reps_opts"));
    EXPECT_FALSE(old.Columns(kLibrary, "ExerciseLibrary").contains("Picture3"));
    const QString before = Dump(old, kLibrary);
    old.OpenAndClose();
    EXPECT_EQ(Dump(old, kLibrary), before);
}

TEST(Upgrade, AProgramDatabaseAt37CutsItsProviderAtEveryOpeningAndStaysAt37) {
    OldFolder old("3.7");
    const QString longProvider =
        old.Text(kProgram, "SELECT Provider FROM Invoice WHERE InvoiceID = 1");
    ASSERT_GT(longProvider.size(), 40);
    ASSERT_NE(old.Columns(kProgram, "Invoice").last(), "Provider");
    old.OpenAndClose();
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kProgram)), "3.7");
    // The column has moved to the end: the step ran.
    EXPECT_EQ(old.Columns(kProgram, "Invoice").last(), "Provider");
    // The copy back writes the whole text over the cut one, and the engine keeps it.
    EXPECT_EQ(old.Text(kProgram, "SELECT Provider FROM Invoice WHERE InvoiceID = 1"), longProvider);

    // At the next opening it runs again: the column it put last is moved last once more,
    // behind a column added in between.
    old.folder.WithDatabase(kProgram, [](QSqlDatabase& db) {
        Execute(db, "ALTER TABLE Invoice ADD COLUMN Marker INTEGER");
    });
    old.OpenAndClose();
    EXPECT_EQ(old.Columns(kProgram, "Invoice").last(), "Provider");
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kProgram)), "3.7");
}

TEST(Upgrade, TheUpdateTextQuestionUpdatesWhicheverButtonIsPressed) {
    QString texts[2];
    for (int i = 0; i < 2; ++i) {
        OldFolder old("3.5");
        old.prompter.answers.assign(1, i == 0 ? Answer::Yes : Answer::No);
        old.OpenAndClose();
        ASSERT_EQ(old.prompter.boxes.size(), 1u);
        EXPECT_EQ(old.prompter.boxes[0].title, "Update Text");
        EXPECT_EQ(old.prompter.boxes[0].style, msg::YesNo | msg::Information);
        EXPECT_EQ(old.prompter.boxes[0].text,
                  "Do you want the browser to update the text\nfor your stored protocols and "
                  "exercise programs\nto match the new pictures.\nWe recommend you answer Yes.");
        texts[i] = old.Text(kProgram, "SELECT group_concat(\"Desc\" || Reps, '|') FROM Exercise");
        EXPECT_FALSE(texts[i].contains("Former:"));
    }
    EXPECT_EQ(texts[0], texts[1]);
}

TEST(Upgrade, TheUpdateTakesTextsAndDefaultParametersFromTheFormerLibrary) {
    OldFolder old("3.5");
    old.OpenAndClose();
    // The program's own repetitions give way to the library's defaults of the 3.6 release.
    const int id =
        old.Count(kProgram, "SELECT ExerciseID FROM Exercise WHERE ExerciseID < 10000 LIMIT 1");
    QString former;
    old.folder.WithDatabase("TVX Exercise Library.MDB", [&](QSqlDatabase& db) {
        QSqlQuery q = OpenQuery(
            db, QStringLiteral(
                    "SELECT \"Desc\" || '/' || Reps FROM ExerciseLibrary WHERE ExerciseID = %1")
                    .arg(id));
        ASSERT_TRUE(q.next());
        former = q.value(0).toString();
    });
    EXPECT_EQ(
        old.Text(kProgram,
                 QStringLiteral(
                     "SELECT \"Desc\" || '/' || Reps FROM Exercise WHERE ExerciseID = %1 LIMIT 1")
                     .arg(id)),
        former);
}

TEST(Upgrade, AVersionOf310ReadsAs31AndSoAsLowerThan32) {
    OldFolder old("3.10");
    old.folder.WithDatabase(kProgram, [](QSqlDatabase& db) {
        EXPECT_FALSE(DatabaseHasVersion(db, "3.2"));
        EXPECT_TRUE(DatabaseHasVersion(db, "3.1"));
        EXPECT_TRUE(DatabaseHasVersion(db, "3.09"));
    });
    old.OpenAndClose();
    EXPECT_TRUE(old.Columns(kProgram, "Exercise").contains("HasVideo"));
}

TEST(Upgrade, AnExerciseTheClinicAddedKeepsItsPictureNamesAtTheJpgStep) {
    OldFolder old("3.3");
    for (const char* file : {"Tarvex.MDB", "Exercise Library.MDB"})
        old.folder.WithDatabase(file, [&](QSqlDatabase& db) {
            const QString table = QLatin1String(file) == kProgram ? "Exercise" : "ExerciseLibrary";
            Transaction transaction(db);
            ChangePicturesToJPG(db, table);
            transaction.Commit();
        });
    EXPECT_EQ(old.Text(kLibrary, "SELECT Icon || Picture0 || Picture2 FROM ExerciseLibrary WHERE "
                                 "ExerciseID = 100000"),
              "100000.BMP100000_1.BMP100000_3.BMP");
    EXPECT_EQ(old.Text(kLibrary, "SELECT Icon || Picture0 || Picture2 FROM ExerciseLibrary WHERE "
                                 "ExerciseID = 2"),
              "2.JPG2_1.JPG2_3.JPG");
    const QString notJpg = "(substr(Icon, -4) <> '.JPG' OR substr(Picture0, -4) <> '.JPG' OR "
                           "substr(Picture1, -4) <> '.JPG' OR substr(Picture2, -4) <> '.JPG')";
    EXPECT_EQ(
        old.Count(kLibrary,
                  "SELECT COUNT(*) FROM ExerciseLibrary WHERE ExerciseID < 10000 AND " + notJpg),
        0);
    EXPECT_EQ(
        old.Count(kProgram, "SELECT COUNT(*) FROM Exercise WHERE ExerciseID < 10000 AND " + notJpg),
        0);
    const int added =
        old.Count(kProgram, "SELECT COUNT(*) FROM Exercise WHERE ExerciseID >= 100000");
    ASSERT_GT(added, 0);
    EXPECT_EQ(old.Count(kProgram, "SELECT COUNT(*) FROM Exercise WHERE ExerciseID >= 100000 AND "
                                  "substr(Icon, -4) = '.BMP'"),
              added);
}

TEST(Upgrade, AStoredExerciseInNeitherCompanionTakesTheRowTheLastSearchLeft) {
    OldFolder old("3.1");
    // The rows of the added exercise and of the row before each.
    struct Pair {
        qint64 added;
        int before;
    };
    std::vector<Pair> pairs;
    old.folder.WithDatabase(kProgram, [&](QSqlDatabase& db) {
        QSqlQuery q =
            OpenQuery(db, "SELECT rowid, (SELECT ExerciseID FROM Exercise p WHERE p.rowid "
                          "< e.rowid ORDER BY p.rowid DESC LIMIT 1) FROM Exercise e WHERE "
                          "ExerciseID >= 100000");
        while (q.next())
            pairs.push_back({q.value(0).toLongLong(), q.value(1).toInt()});
    });
    ASSERT_FALSE(pairs.empty());
    old.OpenAndClose();
    for (const Pair& pair : pairs) {
        QString expected;
        old.folder.WithDatabase("TVX Exercise Library.MDB", [&](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(db, QStringLiteral("SELECT \"Desc\" || Picture0 || HasVideo "
                                                       "FROM ExerciseLibrary WHERE ExerciseID = %1")
                                            .arg(pair.before));
            ASSERT_TRUE(q.next());
            expected = q.value(0).toString();
        });
        EXPECT_EQ(
            old.Text(kProgram,
                     QStringLiteral(
                         "SELECT \"Desc\" || Picture0 || HasVideo FROM Exercise WHERE rowid = %1")
                         .arg(pair.added)),
            expected);
    }
}

TEST(Upgrade, ResizingAColumnMovesItToTheEndAndTheProgramReadsByName) {
    OldFolder old("3.4");
    const QStringList before = old.Columns(kProgram, "Exercise");
    old.OpenAndClose();
    const QStringList after = old.Columns(kProgram, "Exercise");
    EXPECT_LT(before.indexOf("Instruct0"), before.indexOf("HasVideo"));
    EXPECT_GT(after.indexOf("Instruct0"), after.indexOf("HasVideo"));
    EXPECT_EQ(after.mid(after.size() - 3), QStringList({"Instruct0", "Instruct1", "Instruct2"}));
    // The program opens on it and the library view reads every row by name.
    OpenDatabases(old.folder.state);
    EXPECT_GT(old.folder.state.Dbs.Library.RecordCount(), 200);
    CloseDatabases(old.folder.state);
}

TEST(Upgrade, TheProtocolsFirstInstructionTakesAnEmptyTextAfterTheStep) {
    OldFolder old("3.3");
    old.folder.WithDatabase(kProgram, [](QSqlDatabase& db) {
        QSqlQuery refused(db);
        EXPECT_FALSE(
            refused.exec("INSERT INTO ProtocolExercise (ProtocolID, Instruct0) VALUES (1, '')"));
        Transaction transaction(db);
        AllowEmptyInstruct0(db);
        transaction.Commit();
        Execute(db, "INSERT INTO ProtocolExercise (ProtocolID, Instruct0) VALUES (1, '')");
        QSqlQuery check = OpenQuery(db, "PRAGMA integrity_check");
        ASSERT_TRUE(check.next());
        EXPECT_EQ(check.value(0).toString(), "ok");
    });
}

TEST(Upgrade, TheLibrarysOptionColumnsGoAfterItsVersionIsWritten) {
    OldFolder old("");
    // A library whose option column cannot be dropped (an index holds it) stops the walk
    // after the version 3.2 is written: the columns stay in a file that counts as 3.2.
    old.folder.WithDatabase(kLibrary, [](QSqlDatabase& db) {
        Execute(db, "CREATE INDEX HoldOptions ON ExerciseLibrary (hold_opts)");
    });
    EXPECT_THROW(old.OpenAndClose(), DatabaseFault);
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kLibrary)), "3.2");
    const QStringList columns = old.Columns(kLibrary, "ExerciseLibrary");
    EXPECT_FALSE(columns.contains("reps_opts"));
    EXPECT_TRUE(columns.contains("hold_opts"));
    EXPECT_TRUE(columns.contains("HasVideo"));
    // No later step takes them up.
    old.folder.WithDatabase(kLibrary,
                            [](QSqlDatabase& db) { Execute(db, "DROP INDEX HoldOptions"); });
    old.OpenAndClose();
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kLibrary)), "3.8");
    EXPECT_TRUE(old.Columns(kLibrary, "ExerciseLibrary").contains("hold_opts"));
}

TEST(Upgrade, AMissingCompanionStopsTheStepAndLeavesTheFileAsItWas) {
    OldFolder old("3.1");
    ASSERT_TRUE(QFile::remove(old.folder.File("Video.MDB")));
    const QString before = Dump(old, kLibrary);
    try {
        old.OpenAndClose();
        FAIL() << "the walk went on without Video.MDB";
    } catch (const DatabaseFault& fault) {
        EXPECT_TRUE(fault.Message().contains("Video.MDB"));
    }
    EXPECT_EQ(Dump(old, kLibrary), before);
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kLibrary)), "3.1");
    EXPECT_FALSE(old.folder.state.Dbs.IsOpen());
}

TEST(Upgrade, ANullPictureNameFailsTheStepWholeAndTheNextStartRunsItAgain) {
    OldFolder old("3.3");
    old.folder.WithDatabase(kProgram, [](QSqlDatabase& db) {
        Execute(db, "UPDATE Exercise SET Picture2 = NULL WHERE rowid = 5");
    });
    EXPECT_THROW(old.OpenAndClose(), TypeFault);
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kProgram)), "3.3");
    EXPECT_EQ(old.Count(kProgram, "SELECT COUNT(*) FROM Exercise WHERE Icon LIKE '%.JPG'"), 0);
    old.folder.WithDatabase(kProgram, [](QSqlDatabase& db) {
        Execute(db, "UPDATE Exercise SET Picture2 = 'X.BMP' WHERE rowid = 5");
    });
    old.OpenAndClose();
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kProgram)), "3.7");
}

TEST(Upgrade, AVersionTableWithTwoRowsIsReadByItsFirst) {
    OldFolder old("3.7");
    old.folder.WithDatabase(kLibrary, [](QSqlDatabase& db) {
        Execute(db, "INSERT INTO Version (Version) VALUES ('3.1')");
    });
    old.OpenAndClose();
    EXPECT_EQ(ReadDatabaseVersion(old.folder.File(kLibrary)), "3.8");
    EXPECT_TRUE(old.Columns(kLibrary, "ExerciseLibrary").contains("HasVideo"));
}

TEST(Upgrade, APresentDatabaseWithoutAVersionRowOrWithANonNumberIsRefusedUnchanged) {
    for (const char* stored : {"none", "abc"}) {
        SCOPED_TRACE(stored);
        TestFolder folder;
        folder.WithDatabase(kLibrary, [&](QSqlDatabase& db) {
            Execute(db, "DELETE FROM Version");
            if (QLatin1String(stored) != QLatin1String("none"))
                Execute(db, QStringLiteral("INSERT INTO Version VALUES ('%1')").arg(stored));
        });
        EXPECT_THROW(OpenDatabases(folder.state), DatabaseFault);
        EXPECT_FALSE(folder.state.Dbs.IsOpen());
        // Every step that wrote was taken back: the columns are as delivered.
        folder.WithDatabase(kLibrary, [](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(
                db,
                "SELECT COUNT(*) FROM pragma_table_info('ExerciseLibrary') WHERE name = 'Temp'");
            ASSERT_TRUE(q.next());
            EXPECT_EQ(q.value(0).toInt(), 0);
        });
    }
}

TEST(Upgrade, TheKeptCopyIsPrivateAndMadeOnce) {
    OldFolder old("3.6");
    old.OpenAndClose();
    const QString copy = old.folder.File("Tarvex (version 3.6).MDB");
    ASSERT_TRUE(QFileInfo::exists(copy));
    EXPECT_EQ(QFileInfo(copy).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
    EXPECT_EQ(ReadDatabaseVersion(copy), "3.6");
    const QDateTime made = QFileInfo(copy).lastModified();
    old.OpenAndClose();
    EXPECT_EQ(QFileInfo(copy).lastModified(), made);
    // The file stays at 3.7 and its next write keeps one copy of that version too.
    EXPECT_TRUE(QFileInfo::exists(old.folder.File("Tarvex (version 3.7).MDB")));
    EXPECT_FALSE(QFileInfo::exists(copy + ".partial"));
}
