// A child process for the crash test: opens the databases of the folder given and saves
// the first patient's 20-exercise program over and over, replacing it each time, until it
// is killed. It prints "saved" after each save. With a third argument, the databases are
// that database of the test server instead.

#include "data/Databases.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/ShellHarness.h"

#include <QCoreApplication>
#include <cstdio>

using namespace tarvex;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 3 && argc != 4)
        return 2;
    AppState state;
    state.AppFolder = QString::fromLocal8Bit(argv[1]);
    if (argc == 4) {
        state.Dbs.Choice.Engine = DatabaseEngine::Postgres;
        state.Dbs.Choice.Server.Host = qEnvironmentVariable("TARVEX_TEST_SERVER");
        state.Dbs.Choice.Server.Database = QString::fromLocal8Bit(argv[3]);
        state.Dbs.Choice.Server.User = QStringLiteral("tarvex");
    }
    OpenDatabases(state);
    LoadLibraryCache(state);
    tarvex::testing::ShellHarness shell(state);
    fakes::ScriptedPrompter prompter;
    ProgramStore store(state, shell.shell, prompter);
    ExerciseProgram& p = state.Program;
    p.PatientID = QString::fromLocal8Bit(argv[2]).toInt();
    store.LoadProgram(std::nullopt);
    p.IsNew = false; // the latest program is replaced by every save
    for (long round = 0;; ++round) {
        for (int i = 0; i < ExerciseProgram::kMaxExercises; ++i) {
            p.Exercise(i) =
                state.Library.Entries[static_cast<size_t>((i + round) % state.Library.NumChoices)];
            p.Exercise(i).Reps = static_cast<int16_t>(round % 30);
        }
        p.NumExercises = ExerciseProgram::kMaxExercises;
        p.Modified = true;
        store.SaveProgram(false);
        std::printf("saved\n");
        std::fflush(stdout);
    }
}
