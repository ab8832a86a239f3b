// The copy of the delivered media to the hard drive, and the opening of the help.
//
// - "Hard Drive" in the pictures window: both folders of the delivered media (the pictures
//   and the movies, about 40 MB) copied into a fresh data folder file by file, with the
//   progress, the events between files and the removal of old bitmaps, against `cp -r`
//   of the same two folders in the same run.
// - The help window made, filled with its contents and index and showing its first page.

#include "fakes/FakeControls.h"
#include "media/CheckMediaLogic.h"
#include "media/MediaFakes.h"
#include "shell/AppState.h"
#include "support/TestFolder.h"
#include "ui/HelpWindow.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

QString Delivered() {
    return DeliveredFolder();
}

void BM_CopyDeliveredMedia(benchmark::State& s) {
    for (auto _ : s) {
        s.PauseTiming();
        QTemporaryDir dir;
        AppState state;
        state.AppFolder = dir.path();
        state.CDRomDrive = Delivered();
        FakeDriveList drives;
        drives.drives = {{"Delivered", Delivered()}};
        drives.chosen = 0;
        fakes::FakeCommands buttons;
        FakeCheckMediaHost host;
        host.onEvents = [](int) { QCoreApplication::processEvents(); };
        fakes::FakeProgressWindow progress;
        fakes::ScriptedPrompter prompter;
        CheckMediaLogic logic(state, {drives, buttons}, host, progress, prompter);
        s.ResumeTiming();
        logic.cmdPictureLocation(QStringLiteral("HardDrive"));
        if (logic.FailedFiles() != 0)
            s.SkipWithError("files were not copied");
    }
}

void BM_CopyDeliveredMediaFloor(benchmark::State& s) {
    for (auto _ : s) {
        s.PauseTiming();
        QTemporaryDir dir;
        s.ResumeTiming();
        const int status = QProcess::execute(
            QStringLiteral("cp"), {QStringLiteral("-r"), Delivered() + QStringLiteral("/PICTURE"),
                                   Delivered() + QStringLiteral("/MOVIE"), dir.path()});
        if (status != 0)
            s.SkipWithError("cp failed");
    }
}

void BM_OpenHelpWindow(benchmark::State& s) {
    const QString folder = Delivered() + QStringLiteral("/Help");
    for (auto _ : s) {
        HelpWindow help(folder);
        help.show();
        help.ShowPage(QStringLiteral("index.html"));
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(help.CurrentPage());
    }
}

} // namespace

BENCHMARK(BM_CopyDeliveredMedia)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5);
BENCHMARK(BM_CopyDeliveredMediaFloor)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5);
BENCHMARK(BM_OpenHelpWindow)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(10);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
