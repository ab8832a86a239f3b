// The program store on a PostgreSQL server against the same store in a database file, on
// the same clinic of 10,000 patients and 50,000 programs made in the same run: saving
// (replacing) and loading a 20-exercise program. And ten workstations, each a process of
// the program's logic, saving, loading and deleting programs on one server at once: the
// programs saved per second and the slowest save.
//
// The server is bench/run's private cluster, named by TARVEX_TEST_SERVER.

#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "program/ProgramStore.h"
#include "shell/ShellHarness.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace tarvex;

namespace {

constexpr int kPatients = 10000;
constexpr int kPrograms = 50000;
constexpr int kExercisesPerStoredProgram = 6;
constexpr int kWorkstations = 10;
constexpr double kWorkstationSeconds = 20;

// A clinic on one engine: the server when onServer, else the files.
struct Clinic {
    explicit Clinic(bool onServer)
        : folder(MakeFolder(onServer)), shell(folder->state),
          store(folder->state, shell.shell, prompter) {
        OpenDatabases(folder->state);
        LoadLibraryCache(folder->state);
        QSqlDatabase& db = folder->state.Dbs.ProgramDb;
        Transaction t(db);
        PreparedInsert patient(db, "Patient", {"LastName", "FirstName", "FullName", "ID"});
        PreparedInsert invoice(db, "Invoice", {"PatientID", "Date", "Provider", "Usage"});
        PreparedInsert exercise(db, "Exercise",
                                {"InvoiceID", "RankOnTape", "ExerciseID", "code", "Desc",
                                 "AbbrevDesc", "Reps", "Hold", "Sets", "HasVideo"});
        std::vector<qint64> patients;
        for (int i = 1; i <= kPatients; ++i) {
            const QString n = QString::number(i);
            patients.push_back(
                patient.Insert({"Last" + n, "First" + n, "Last" + n + ", First" + n, "MRN" + n}));
        }
        for (int i = 1; i <= kPrograms; ++i) {
            const qint64 id =
                invoice.Insert({patients[static_cast<size_t>(i % kPatients)],
                                QDateTime(QDate(2025, 1 + i % 12, 1 + i % 28), QTime(10, 0)),
                                "Dr. Jane Smith, PT", "Twice a day"});
            for (int r = 0; r < kExercisesPerStoredProgram; ++r)
                exercise.Insert({id, r, 1 + r, "1", "Desc", "Abbrev", 10, 0, 2, false});
        }
        t.Commit();
        if (onServer)
            Execute(db, "ANALYZE");
        // The program of the 77th patient, which the benchmarks save and load.
        ExerciseProgram& p = folder->state.Program;
        p.PatientID = static_cast<int32_t>(patients[77]);
        p.FullName = "Last77, First77";
        store.LoadProgram(std::nullopt);
        for (int i = 0; i < ExerciseProgram::kMaxExercises; ++i)
            p.Exercise(i) = folder->state.Library
                                .Entries[static_cast<size_t>(i % folder->state.Library.NumChoices)];
        p.NumExercises = ExerciseProgram::kMaxExercises;
        p.IsNew = false;
        p.Modified = true;
        store.SaveProgram(false);
    }

    // The folder decides its engine by the environment when it is made.
    static std::unique_ptr<tarvex::testing::TestFolder> MakeFolder(bool onServer) {
        static const QByteArray server = qgetenv("TARVEX_TEST_SERVER");
        if (server.isEmpty())
            throw std::runtime_error("TARVEX_TEST_SERVER names no server");
        if (onServer)
            qputenv("TARVEX_TEST_SERVER", server);
        else
            qunsetenv("TARVEX_TEST_SERVER");
        auto folder = std::make_unique<tarvex::testing::TestFolder>();
        qputenv("TARVEX_TEST_SERVER", server);
        return folder;
    }

    std::unique_ptr<tarvex::testing::TestFolder> folder;
    fakes::ScriptedPrompter prompter;
    tarvex::testing::ShellHarness shell;
    ProgramStore store;
};

Clinic& TheClinic(bool onServer) {
    static Clinic files(false);
    static Clinic server(true);
    return onServer ? server : files;
}

void SaveProgram(benchmark::State& s, bool onServer) {
    Clinic& c = TheClinic(onServer);
    for (auto _ : s) {
        c.folder->state.Program.Modified = true;
        c.store.SaveProgram(false);
    }
}

void LoadProgram(benchmark::State& s, bool onServer) {
    Clinic& c = TheClinic(onServer);
    const auto id = c.folder->state.Program.InvoiceID;
    for (auto _ : s)
        c.store.LoadProgram(id);
    c.folder->state.Program.IsNew = false;
}

void BM_SaveProgramOnFile(benchmark::State& s) {
    SaveProgram(s, false);
}
void BM_SaveProgramOnServer(benchmark::State& s) {
    SaveProgram(s, true);
}
void BM_LoadProgramOnFile(benchmark::State& s) {
    LoadProgram(s, false);
}
void BM_LoadProgramOnServer(benchmark::State& s) {
    LoadProgram(s, true);
}

// Ten workstations at once on the server's clinic, each for the same seconds.
void BM_TenWorkstations(benchmark::State& s) {
    Clinic& c = TheClinic(true);
    const QString database = c.folder->ServerDatabase();
    CloseDatabases(c.folder->state); // out of the way: the workstations are the clinic now
    int saves = 0;
    qint64 slowest = 0, total = 0, p95 = 0;
    for (auto _ : s) {
        std::vector<std::unique_ptr<QTemporaryDir>> homes;
        std::vector<std::unique_ptr<QProcess>> children;
        for (int i = 0; i < kWorkstations; ++i) {
            homes.push_back(std::make_unique<QTemporaryDir>());
            children.push_back(std::make_unique<QProcess>());
            children.back()->start(WORKSTATION_CHILD,
                                   {homes.back()->path(),
                                    qEnvironmentVariable("TARVEX_TEST_SERVER"), database,
                                    QString::number(kWorkstationSeconds), QString::number(500 + i),
                                    QString::number(*c.folder->state.Program.PatientID)});
        }
        for (auto& child : children) {
            child->waitForFinished(static_cast<int>(kWorkstationSeconds * 1000) + 120000);
            if (child->exitCode() != 0)
                throw std::runtime_error(child->readAllStandardError().toStdString());
            for (const QByteArray& line : child->readAllStandardOutput().split('\n')) {
                const QList<QByteArray> f = line.split(' ');
                if (f.value(0) != "saves")
                    continue;
                saves += f.value(1).toInt();
                slowest = std::max(slowest, f.value(f.indexOf("slowest_ms") + 1).toLongLong());
                total += f.value(f.indexOf("total_save_ms") + 1).toLongLong();
                p95 = std::max(p95, f.value(f.indexOf("p95_ms") + 1).toLongLong());
            }
        }
    }
    s.counters["programs_per_s"] = saves / kWorkstationSeconds;
    s.counters["slowest_save_ms"] = static_cast<double>(slowest);
    s.counters["worst_p95_save_ms"] = static_cast<double>(p95);
    s.counters["mean_save_ms"] = saves > 0 ? static_cast<double>(total) / saves : 0.0;
    OpenDatabases(c.folder->state);
}

} // namespace

BENCHMARK(BM_SaveProgramOnFile)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_SaveProgramOnServer)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadProgramOnFile)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadProgramOnServer)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_TenWorkstations)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

int main(int argc, char** argv) {
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
