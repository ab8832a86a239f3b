// The selection workspace with a generated library of 32,767 exercises: a filter click
// until the pane is redrawn, one scroll step of the upper pane, the slowest step of a
// scroll through the whole pane, and ReloadChoices against a bare read of the same
// filtered rows. Also the peak memory of the workspace with the delivered library.

#include "GeneratedLibrary.h"
#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "program/ProgramStore.h"
#include "shell/ShellHarness.h"
#include "support/TestFolder.h"
#include "ui/ChoicePaneWidget.h"
#include "ui/WorkspaceWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QListWidget>
#include <QScrollBar>
#include <QSqlQuery>
#include <QStandardPaths>
#include <benchmark/benchmark.h>
#include <sys/resource.h>

using namespace tarvex;
using tarvex::bench::FillGeneratedLibrary;

namespace {

constexpr int kLargeLibrary = 32767;

long PeakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// One workspace window over a folder, loaded as at start-up.
struct Rig {
    explicit Rig(int rows) : shell(folder.state), store(folder.state, shell.shell, prompter) {
        if (rows > 0)
            FillGeneratedLibrary(folder, rows);
        folder.state.Media.Icon = folder.Path() + "/ICON/";
        OpenDatabases(folder.state);
        window = std::make_unique<WorkspaceWindow>(folder.state, shell.shell, prompter, store);
        window->LoadOnce();
        window->show();
        folder.state.WorkspaceMode = WorkspacePurpose::NewProtocol; // no program to reload
        window->Logic().InitExerciseSelection(false);
        QCoreApplication::processEvents();
    }
    tarvex::testing::TestFolder folder;
    fakes::ScriptedPrompter prompter;
    tarvex::testing::ShellHarness shell;
    ProgramStore store;
    std::unique_ptr<WorkspaceWindow> window;
};

std::unique_ptr<Rig> large; // made on first use, gone before the application object

Rig& Large() {
    if (!large)
        large = std::make_unique<Rig>(kLargeLibrary);
    return *large;
}

// Selects one entry of the Joint list, as a click does, and waits for the pane's repaint.
void ClickJoint(Rig& rig, int row) {
    QListWidget* joints = rig.window->ViewList(0);
    joints->clearSelection();
    joints->item(row)->setSelected(true);
    rig.window->ChoicePane()->repaint();
}

void BM_FilterClick(benchmark::State& s) {
    Rig& rig = Large();
    int row = 1;
    for (auto _ : s) {
        ClickJoint(rig, row);
        row = row == 1 ? 2 : 1; // another joint each time: the filter changes
    }
    s.counters["entries"] = rig.folder.state.Library.NumChoices;
}

void BM_ScrollStep(benchmark::State& s) {
    Rig& rig = Large();
    ClickJoint(rig, 0); // (All)
    SelectionPanes& panes = rig.window->Logic().Panes();
    int value = 0;
    for (auto _ : s) {
        s.PauseTiming();
        panes.SizeSourcePane(); // every picture stale again
        value = (value + 37) % panes.ScrollMax();
        s.ResumeTiming();
        rig.window->ChoicePane()->VScroll1()->setValue(value);
        rig.window->ChoicePane()->repaint();
    }
}

// Scrolls the whole upper pane row by row; the slowest step is what a person would feel.
void BM_ScrollWholePane(benchmark::State& s) {
    Rig& rig = Large();
    ClickJoint(rig, 0);
    SelectionPanes& panes = rig.window->Logic().Panes();
    QScrollBar* bar = rig.window->ChoicePane()->VScroll1();
    double slowest = 0;
    for (auto _ : s) {
        panes.SizeSourcePane();
        bar->setValue(0);
        for (int v = 1; v <= panes.ScrollMax(); ++v) {
            QElapsedTimer step;
            step.start();
            bar->setValue(v);
            rig.window->ChoicePane()->repaint();
            slowest = std::max(slowest, step.nsecsElapsed() / 1e6);
        }
    }
    s.counters["slowest_step_ms"] = slowest;
    s.counters["rows"] = panes.ScrollMax();
}

void BM_ReloadChoices(benchmark::State& s) {
    Rig& rig = Large();
    rig.folder.state.Dbs.Library.SetFilter("(Joint LIKE '*Knee*')");
    for (auto _ : s)
        ReloadChoices(rig.folder.state);
    s.counters["rows"] = rig.folder.state.Library.NumChoices;
}

// The floor: the same filtered rows fetched, every column, nothing converted.
void BM_ReloadChoicesFloor(benchmark::State& s) {
    Rig& rig = Large();
    QSqlQuery q(rig.folder.state.Dbs.LibraryDb);
    q.prepare("SELECT * FROM ExerciseLibrary WHERE (Joint LIKE '%Knee%') ORDER BY AbbrevDesc ASC");
    qint64 touched = 0;
    for (auto _ : s) {
        q.exec();
        const int columns = 26;
        while (q.next())
            for (int c = 0; c < columns; ++c)
                touched += q.value(c).isNull() ? 0 : 1;
    }
    benchmark::DoNotOptimize(touched);
}

void BM_DeliveredWorkspacePeakMemory(benchmark::State& s) {
    const long before = PeakKilobytes();
    for (auto _ : s) {
        Rig rig(0);
        SelectionPanes& panes = rig.window->Logic().Panes();
        for (int v = 0; v <= panes.ScrollMax(); ++v)
            rig.window->ChoicePane()->VScroll1()->setValue(v);
        rig.window->ChoicePane()->repaint();
    }
    s.counters["peak_MB"] = PeakKilobytes() / 1024.0;
    s.counters["before_MB"] = before / 1024.0;
}

} // namespace

BENCHMARK(BM_DeliveredWorkspacePeakMemory)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterClick)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_ScrollStep)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_ScrollWholePane)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReloadChoices)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_ReloadChoicesFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    large.reset();
    return 0;
}
