// The protocols of a clinic that keeps 5,000 of them, 20 exercises each: the names combo
// filled, one protocol's list shown, one laid into the program, and one stored, each
// against a floor of the same rows read or written with bare prepared statements. And the
// picklist tree of 2,000 entries, loaded into its model and saved back.

#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "picklist/PicklistStore.h"
#include "protocol/ProtocolEditorLogic.h"
#include "protocol/ProtocolLists.h"
#include "shell/ShellHarness.h"
#include "support/TestFolder.h"
#include "support/TreeModel.h"

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStandardPaths>
#include <benchmark/benchmark.h>

using namespace tarvex;

namespace {

constexpr int kProtocols = 5000;
constexpr int kRowsPerProtocol = 20;
constexpr int kLists = 10;
constexpr int kEntriesPerList = 200;

void Exec(QSqlQuery& q) {
    if (!q.exec())
        throw std::runtime_error("statement failed: " + q.lastError().text().toStdString());
}

QSqlQuery Prepared(QSqlDatabase& db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.prepare(sql))
        throw std::runtime_error("prepare failed: " + q.lastError().text().toStdString());
    return q;
}

// Reads every column of every row, as a floor for the reads that fill an exercise slot.
int ReadAll(QSqlQuery& q) {
    int cells = 0;
    const int columns = q.record().count();
    while (q.next())
        for (int c = 0; c < columns; ++c)
            cells += q.value(c).isNull() ? 0 : 1;
    return cells;
}

class NoWorkspace : public IProtocolWorkspace {
public:
    void ClearSelectedExercises() override {}
    void LoadSelectedExs() override {}
    void OpenForProtocol(WorkspacePurpose) override {}
    void ShowAgain() override {}
};

// The clinic's databases, made once for all benchmarks.
struct Clinic {
    Clinic()
        : shell(folder.state), lists(folder.state, prompter, cbo, lst),
          editor(folder.state, shell.shell, prompter, editorCbo, editorLst, workspace) {
        OpenDatabases(folder.state);
        LoadLibraryCache(folder.state);
        QSqlDatabase& db = folder.state.Dbs.ProgramDb;
        Execute(db, "DELETE FROM Protocol");
        // The program in memory: twenty library exercises, the list every protocol holds.
        ExerciseProgram& p = folder.state.Program;
        const auto& entries = folder.state.Library.Entries;
        for (int i = 0; i < kRowsPerProtocol; ++i)
            p.Exercise(i) = entries[static_cast<size_t>(i * 7) % entries.size()];
        p.NumExercises = kRowsPerProtocol;
        Transaction t(db);
        for (int i = 0; i < kProtocols; ++i)
            InsertBare(QStringLiteral("Protocol %1").arg(kProtocols - i, 5, 10, QChar('0')));
        t.Commit();
        middleID = IdOf(QStringLiteral("Protocol %1").arg(kProtocols / 2, 5, 10, QChar('0')));
    }

    // One protocol and its rows with bare prepared statements.
    qint64 InsertBare(const QString& name) {
        QSqlDatabase& db = folder.state.Dbs.ProgramDb;
        if (!protocol) {
            protocol =
                std::make_unique<QSqlQuery>(Prepared(db, "INSERT INTO Protocol (Name) VALUES (?)"));
            rows = std::make_unique<QSqlQuery>(Prepared(
                db, "INSERT INTO ProtocolExercise (ProtocolID, RankOnTape, AbbrevDesc, code, "
                    "\"Desc\", ExerciseID, Hold, Icon, Movie, Instruct0, Instruct1, Instruct2, "
                    "Picture0, Picture1, Picture2, Reps, Sets, HasVideo, VideoReps, VideoHold, "
                    "VideoSets) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"));
        }
        protocol->bindValue(0, name);
        Exec(*protocol);
        const qint64 id = protocol->lastInsertId().toLongLong();
        const ExerciseProgram& p = folder.state.Program;
        for (int r = 0; r < p.NumExercises; ++r) {
            const ExerciseEntry& e = p.Exercise(r);
            const QVariantList values = {id,          r,           e.AbbrevDesc,
                                         e.Code,      e.Desc,      e.ExerciseID,
                                         e.Hold,      e.Icon,      e.Movie,
                                         e.Instruct0, e.Instruct1, e.Instruct2,
                                         e.Picture0,  e.Picture1,  e.Picture2,
                                         e.Reps,      e.Sets,      e.HasVideo ? 1 : 0,
                                         e.VideoReps, e.VideoHold, e.VideoSets};
            for (int k = 0; k < values.size(); ++k)
                rows->bindValue(k, values[k]);
            Exec(*rows);
        }
        return id;
    }

    int32_t IdOf(const QString& name) {
        QSqlQuery q =
            Prepared(folder.state.Dbs.ProgramDb, "SELECT ProtocolID FROM Protocol WHERE Name = ?");
        q.bindValue(0, name);
        Exec(q);
        return q.next() ? q.value(0).toInt() : 0;
    }

    tarvex::testing::TestFolder folder;
    fakes::ScriptedPrompter prompter;
    tarvex::testing::ShellHarness shell;
    fakes::FakeItemDataCombo cbo, editorCbo;
    fakes::FakeListBox lst, editorLst;
    NoWorkspace workspace;
    ProtocolLists lists;
    ProtocolEditorLogic editor;
    std::unique_ptr<QSqlQuery> protocol, rows;
    int32_t middleID = 0;
};

Clinic& TheClinic() {
    static Clinic clinic;
    return clinic;
}

void BM_FillcboProtocol(benchmark::State& s) {
    Clinic& c = TheClinic();
    for (auto _ : s)
        c.lists.FillcboProtocol();
    if (c.cbo.ListCount() != kProtocols + 1)
        s.SkipWithError("the combo does not hold every protocol");
}

// The floor: the names and numbers read by name, into a list.
void BM_FillcboProtocolFloor(benchmark::State& s) {
    Clinic& c = TheClinic();
    QSqlQuery q = Prepared(c.folder.state.Dbs.ProgramDb,
                           "SELECT ProtocolID, Name FROM Protocol ORDER BY Name");
    for (auto _ : s) {
        Exec(q);
        QStringList names;
        std::vector<int32_t> ids;
        while (q.next()) {
            ids.push_back(q.value(0).toInt());
            names << q.value(1).toString();
        }
        benchmark::DoNotOptimize(names);
    }
}

void BM_LoadLstProtocol(benchmark::State& s) {
    Clinic& c = TheClinic();
    for (auto _ : s)
        c.lists.LoadLstProtocol(c.middleID);
    if (c.lst.ListCount() != kRowsPerProtocol)
        s.SkipWithError("the list does not hold the protocol's exercises");
}

// The floor: the protocol's rows in their order, as the list reads them, with a bare
// prepared statement; the descriptions kept.
void BM_LoadLstProtocolFloor(benchmark::State& s) {
    Clinic& c = TheClinic();
    QSqlQuery q = Prepared(c.folder.state.Dbs.ProgramDb,
                           "SELECT * FROM ProtocolExercise WHERE ProtocolID = ? "
                           "ORDER BY RankOnTape");
    q.setForwardOnly(true);
    for (auto _ : s) {
        q.bindValue(0, c.middleID);
        Exec(q);
        const int desc = q.record().indexOf("Desc");
        QStringList texts;
        while (q.next())
            texts << q.value(desc).toString();
        benchmark::DoNotOptimize(texts);
    }
}

void BM_InitSelExsFromProtocol(benchmark::State& s) {
    Clinic& c = TheClinic();
    for (auto _ : s)
        c.lists.InitSelExsFromProtocol(c.middleID, [] {});
    if (c.folder.state.Program.NumExercises != kRowsPerProtocol)
        s.SkipWithError("the program does not hold the protocol's exercises");
}

// The floor: every column of the protocol's rows read in their order.
void BM_InitSelExsFromProtocolFloor(benchmark::State& s) {
    Clinic& c = TheClinic();
    QSqlQuery q = Prepared(c.folder.state.Dbs.ProgramDb,
                           "SELECT * FROM ProtocolExercise WHERE ProtocolID = ? "
                           "ORDER BY RankOnTape");
    for (auto _ : s) {
        q.bindValue(0, c.middleID);
        Exec(q);
        benchmark::DoNotOptimize(ReadAll(q));
    }
}

// Stores the program's twenty exercises as a new protocol and refills the names; the
// protocol is removed again outside the timing, so that every round sees 5,000.
void BM_StoreProtocol(benchmark::State& s) {
    Clinic& c = TheClinic();
    QSqlDatabase& db = c.folder.state.Dbs.ProgramDb;
    for (auto _ : s) {
        c.editor.StoreProtocol(QStringLiteral("Knee replacement, week 1"));
        s.PauseTiming();
        Execute(db, "DELETE FROM Protocol WHERE Name = 'Knee replacement, week 1'");
        s.ResumeTiming();
    }
}

// The floor: the same protocol and rows with bare prepared statements in one transaction,
// and the names read again.
void BM_StoreProtocolFloor(benchmark::State& s) {
    Clinic& c = TheClinic();
    QSqlDatabase& db = c.folder.state.Dbs.ProgramDb;
    QSqlQuery names = Prepared(db, "SELECT ProtocolID, Name FROM Protocol ORDER BY Name");
    for (auto _ : s) {
        db.transaction();
        c.InsertBare(QStringLiteral("Knee replacement, week 1"));
        db.commit();
        Exec(names);
        QStringList read;
        while (names.next())
            read << names.value(1).toString();
        benchmark::DoNotOptimize(read);
        s.PauseTiming();
        Execute(db, "DELETE FROM Protocol WHERE Name = 'Knee replacement, week 1'");
        s.ResumeTiming();
    }
}

// The picklists of a large clinic: ten lists of 200 entries.
struct Picklists {
    Picklists() {
        OpenDatabases(folder.state);
        QSqlDatabase& db = folder.state.Dbs.PicklistDb;
        Transaction t(db);
        Execute(db, "DELETE FROM Label");
        QSqlQuery label = Prepared(db, "INSERT INTO Label (Name) VALUES (?)");
        QSqlQuery entry = Prepared(db, "INSERT INTO Level1 (LabelID, Name) VALUES (?, ?)");
        for (int l = 0; l < kLists; ++l) {
            label.bindValue(0, QStringLiteral("List %1").arg(l));
            Exec(label);
            const qint64 id = label.lastInsertId().toLongLong();
            for (int e = 0; e < kEntriesPerList; ++e) {
                entry.bindValue(0, id);
                entry.bindValue(1,
                                QStringLiteral("Entry %1 of %2").arg(kEntriesPerList - e).arg(l));
                Exec(entry);
            }
        }
        t.Commit();
    }
    tarvex::testing::TestFolder folder;
};

Picklists& ThePicklists() {
    static Picklists picklists;
    return picklists;
}

void BM_LoadPicklistTree(benchmark::State& s) {
    Picklists& p = ThePicklists();
    TreeModel tree;
    for (auto _ : s) {
        LoadPicklistTree(p.folder.state, tree);
        // The editor opens with every list sorted, as expanding them does.
        for (const QString& list : tree.ChildKeys(QStringLiteral("Picklist")))
            tree.SetChildrenSorted(list);
    }
    if (tree.ChildKeys(QStringLiteral("List 0")).size() != kEntriesPerList)
        s.SkipWithError("the tree does not hold every entry");
}

void BM_SavePicklistTree(benchmark::State& s) {
    Picklists& p = ThePicklists();
    TreeModel tree;
    LoadPicklistTree(p.folder.state, tree);
    for (auto _ : s)
        SavePicklistTree(p.folder.state, tree);
}

} // namespace

BENCHMARK(BM_FillcboProtocol)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_FillcboProtocolFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadLstProtocol)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadLstProtocolFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_InitSelExsFromProtocol)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_InitSelExsFromProtocolFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_StoreProtocol)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_StoreProtocolFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadPicklistTree)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_SavePicklistTree)->Unit(benchmark::kMillisecond)->Repetitions(5);

int main(int argc, char** argv) {
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
