// Start-up work from reading the options to the ready state (without the splash's three
// seconds), with the delivered library and with a generated library of 32,767 rows, and
// the library cache's load against its floor: the bare read of the same rows.

#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/ShellHarness.h"
#include "shell/Startup.h"
#include "support/TestFolder.h"

#include <QGuiApplication>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStandardPaths>
#include <benchmark/benchmark.h>
#include <memory>

using namespace tarvex;

namespace {

constexpr int kLargeLibrary = 32767;

// A folder whose library holds the given number of rows (0: the delivered library).
std::unique_ptr<tarvex::testing::TestFolder> MakeFolder(int rows) {
    auto folder = std::make_unique<tarvex::testing::TestFolder>();
    if (rows == 0)
        return folder;
    folder->WithDatabase("Exercise Library.MDB", [rows](QSqlDatabase& db) {
        Transaction transaction(db);
        Execute(db, "DELETE * FROM ExerciseLibrary");
        QSqlQuery insert(db);
        insert.prepare(
            "INSERT INTO ExerciseLibrary (ExerciseID, code, \"Desc\", AbbrevDesc, Reps, "
            "Hold, Sets, Joint, Motion, Type, Movie, Icon, Picture0, Picture1, Picture2, "
            "IconSrc, Instruct0, Instruct1, Instruct2, HasVideo, VideoReps, VideoHold, "
            "VideoSets) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
        const QStringList joints = {"Neck", "Shoulder", "Hip, Knee", "Ankle", "Lumbar"};
        for (int i = 1; i <= rows; ++i) {
            const QString id = QString::number(i);
            const QVariantList values = {
                i,
                id,
                "Generated exercise number " + id,
                "Gen " + id,
                10,
                i % 3 == 0 ? 5 : 0,
                2,
                joints[i % joints.size()],
                "Flexion",
                "Strengthening",
                id + ".AVI",
                id + ".JPG",
                id + "_1.JPG",
                id + "_2.JPG",
                QString(),
                0,
                "Lie on your back with both knees bent and feet flat on the floor.",
                "Slowly lift your hips until your body forms a straight line.",
                QString(),
                i % 2,
                10,
                0,
                1};
            for (const QVariant& v : values)
                insert.addBindValue(v);
            if (!insert.exec())
                throw std::runtime_error("cannot fill the library");
        }
        transaction.Commit();
    });
    return folder;
}

tarvex::testing::TestFolder& Folder(int rows) {
    static std::map<int, std::unique_ptr<tarvex::testing::TestFolder>> folders;
    auto& folder = folders[rows];
    if (!folder)
        folder = MakeFolder(rows);
    return *folder;
}

void BM_Startup(benchmark::State& s) {
    tarvex::testing::TestFolder& folder = Folder(static_cast<int>(s.range(0)));
    for (auto _ : s) {
        AppState state;
        state.AppFolder = folder.Path();
        state.DeliveredFolder = folder.state.DeliveredFolder;
        tarvex::testing::ShellHarness shell(state);
        fakes::FakeSettingsStore store;
        store.values["Options/ShowTips"] = "False";
        fakes::FakeStartupHost host;
        host.onWorkspace = [&state] { LoadLibraryCache(state); };
        fakes::ScriptedPrompter prompter;
        if (!RunStartup(state, shell.shell, store, host, prompter))
            s.SkipWithError("start-up ended");
        benchmark::DoNotOptimize(state.Library.NumChoices);
        s.PauseTiming();
        CloseDatabases(state);
        s.ResumeTiming();
    }
}

void BM_LoadLibraryCache(benchmark::State& s) {
    tarvex::testing::TestFolder& folder = Folder(static_cast<int>(s.range(0)));
    AppState state;
    state.AppFolder = folder.Path();
    OpenDatabases(state);
    for (auto _ : s) {
        LoadLibraryCache(state);
        benchmark::DoNotOptimize(state.Library.Entries.data());
    }
    s.counters["rows"] = state.Library.NumChoices;
    CloseDatabases(state);
}

// The floor: the same query, every column of every row fetched, nothing converted.
void BM_BareLibraryRead(benchmark::State& s) {
    tarvex::testing::TestFolder& folder = Folder(static_cast<int>(s.range(0)));
    AppState state;
    state.AppFolder = folder.Path();
    OpenDatabases(state);
    for (auto _ : s) {
        QSqlQuery rows(state.Dbs.LibraryDb);
        rows.setForwardOnly(true);
        rows.exec(LibraryRecordset::kSql);
        const int columns = rows.record().count();
        qint64 touched = 0;
        while (rows.next())
            for (int c = 0; c < columns; ++c)
                touched += rows.value(c).isNull() ? 0 : 1;
        benchmark::DoNotOptimize(touched);
    }
    CloseDatabases(state);
}

} // namespace

BENCHMARK(BM_Startup)->Arg(0)->Arg(kLargeLibrary)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadLibraryCache)
    ->Arg(0)
    ->Arg(kLargeLibrary)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5);
BENCHMARK(BM_BareLibraryRead)
    ->Arg(0)
    ->Arg(kLargeLibrary)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
