// Library maintenance with a generated library of 32,767 exercises: the library list filled
// into its model and view, against a bare read of the same rows; leaving the library
// (the databases closed and opened, the selection workspace made anew); and the selection
// icon made from a 900x675 picture and from a 24-megapixel photo, each against a bare
// decode of the same file.

#include "GeneratedLibrary.h"
#include "data/Databases.h"
#include "fakes/FakeControls.h"
#include "library/LibraryListLogic.h"
#include "library/PictureImport.h"
#include "program/ProgramStore.h"
#include "shell/ShellHarness.h"
#include "support/ReportModel.h"
#include "support/TestFolder.h"
#include "ui/WorkspaceWindow.h"

#include <QApplication>
#include <QImageReader>
#include <QPainter>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTreeView>
#include <benchmark/benchmark.h>

using namespace tarvex;

namespace {

constexpr int kLargeLibrary = 32767;

class NoHost : public ILibraryListHost {
public:
    void ShowExerciseEditor() override {}
    QString PictureBenchProgram() const override { return {}; }
    void StartDetached(const QString&) override {}
    void ReopenDatabasesAndRebuildWorkspace() override {}
};

// The library window's parts over the large library: its list logic, model and view, and
// the workspace that leaving it makes anew.
struct Rig {
    Rig()
        : shell(folder.state), store(folder.state, shell.shell, prompter),
          model({"Code", "Desc", "Joint", "Motion", "Type"}),
          logic(folder.state, shell.shell, prompter, model, host) {
        bench::FillGeneratedLibrary(folder, kLargeLibrary);
        folder.state.Media.Icon = folder.Path() + "/ICON/";
        OpenDatabases(folder.state);
        view.setUniformRowHeights(true);
        view.setRootIsDecorated(false);
        view.setModel(&model);
        view.setSelectionModel(model.Selection());
        view.resize(1000, 560);
        view.show();
        MakeWorkspace();
    }
    ~Rig() { view.setModel(nullptr); }
    void MakeWorkspace() {
        workspace = std::make_unique<WorkspaceWindow>(folder.state, shell.shell, prompter, store);
        workspace->LoadOnce();
        workspace->show();
        workspace->hide();
    }

    tarvex::testing::TestFolder folder;
    fakes::ScriptedPrompter prompter;
    tarvex::testing::ShellHarness shell;
    ProgramStore store;
    ReportModel model;
    NoHost host;
    LibraryListLogic logic;
    QTreeView view;
    std::unique_ptr<WorkspaceWindow> workspace;
};

std::unique_ptr<Rig> rig; // made on first use, gone before the application object

Rig& Large() {
    if (!rig)
        rig = std::make_unique<Rig>();
    return *rig;
}

void BM_FillLibraryList(benchmark::State& s) {
    Rig& r = Large();
    for (auto _ : s) {
        r.logic.cmdFillListBox_Click();
        r.view.repaint();
    }
    s.counters["rows"] = r.model.RowCount();
}

void BM_FillLibraryListSorted(benchmark::State& s) {
    Rig& r = Large();
    r.model.SortByColumn(1);
    for (auto _ : s) {
        r.logic.cmdFillListBox_Click();
        r.view.repaint();
    }
    r.model.SortByColumn(0);
}

// The floor: the list's query read, every field to text, into memory.
void BM_FillLibraryListFloor(benchmark::State& s) {
    Rig& r = Large();
    for (auto _ : s) {
        QSqlQuery q = OpenQuery(r.folder.state.Dbs.LibraryDb,
                                "SELECT ExerciseID, Code, Joint, Motion, Type, Desc From "
                                "ExerciseLibrary");
        std::vector<QStringList> rows;
        rows.reserve(kLargeLibrary);
        while (q.next())
            rows.push_back({q.value(0).toString(), q.value(5).toString(), q.value(2).toString(),
                            q.value(3).toString(), q.value(4).toString()});
        benchmark::DoNotOptimize(rows.data());
    }
}

void BM_LeaveLibrary(benchmark::State& s) {
    Rig& r = Large();
    for (auto _ : s) {
        CloseDatabases(r.folder.state);
        OpenDatabases(r.folder.state);
        r.workspace.reset();
        r.MakeWorkspace();
        QCoreApplication::processEvents();
    }
    s.counters["entries"] = static_cast<double>(r.folder.state.Library.Entries.size());
}

// A photo-like picture: gradients and shapes, so that the JPEG is of a real photo's size.
QString MakePicture(const QString& folder, QSize size) {
    const QString path =
        folder + QStringLiteral("/picture-%1x%2.jpg").arg(size.width()).arg(size.height());
    if (QFileInfo::exists(path))
        return path;
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, size.width(), size.height());
    sky.setColorAt(0, QColor(200, 220, 240));
    sky.setColorAt(1, QColor(90, 70, 50));
    painter.fillRect(image.rect(), sky);
    for (int i = 0; i < 40; ++i) {
        painter.setBrush(QColor::fromHsv((i * 37) % 360, 120, 200));
        painter.drawEllipse(QPoint((i * 997) % size.width(), (i * 613) % size.height()),
                            size.width() / 12, size.height() / 10);
    }
    painter.end();
    if (!image.save(path, "JPEG", 90))
        throw std::runtime_error("cannot write the picture");
    return path;
}

QSize SizeOf(int which) {
    return which == 0 ? QSize(900, 675) : QSize(6000, 4000);
}

void BM_MakeIcon(benchmark::State& s) {
    Rig& r = Large();
    const QString picture = MakePicture(r.folder.Path(), SizeOf(static_cast<int>(s.range(0))));
    const QString icon = r.folder.Path() + "/icon.JPG";
    fakes::FakeStatusBar status;
    for (auto _ : s) {
        PictureImport service(status);
        service.LoadFile(picture, 0);
        service.ResizeAndSaveFile(icon, 61);
    }
}

// The floor: the same file decoded whole by a bare reader.
void BM_MakeIconFloor(benchmark::State& s) {
    Rig& r = Large();
    const QString picture = MakePicture(r.folder.Path(), SizeOf(static_cast<int>(s.range(0))));
    for (auto _ : s) {
        QImageReader reader(picture);
        QImage image = reader.read();
        benchmark::DoNotOptimize(image.constBits());
    }
}

} // namespace

BENCHMARK(BM_FillLibraryList)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_FillLibraryListSorted)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_FillLibraryListFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LeaveLibrary)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_MakeIcon)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_MakeIconFloor)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Repetitions(5);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    rig.reset();
    return 0;
}
