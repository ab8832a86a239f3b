// Printed output of a 20-exercise program with three pictures each: every page at two a
// page written as PDF, and one zoom step of the preview (its ten pages drawn again at
// 2.0), against a floor measured in the same run: decoding and scaling the same 60
// pictures alone.

#include "data/Databases.h"
#include "exercise/LibraryCache.h"
#include "print/PainterSurface.h"
#include "print/PreviewLogic.h"
#include "print/PrintJob.h"
#include "print/RecordingSurface.h"
#include "support/TestFolder.h"

#include <QGuiApplication>
#include <QImage>
#include <QPdfWriter>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace tarvex;

namespace {

// A program of the 20 first library exercises that have three views.
struct Program {
    Program() {
        folder.state.Media.Picture = tarvex::testing::DeliveredFolder() + "/PICTURE/";
        folder.state.Media.Icon = tarvex::testing::DeliveredFolder() + "/ICON/";
        OpenDatabases(folder.state);
        LoadLibraryCache(folder.state);
        ExerciseProgram& p = folder.state.Program;
        p.PatientID = 1;
        p.FullName = "Okafor, Chidi";
        for (const ExerciseEntry& e : folder.state.Library.Entries) {
            if (p.NumExercises == 20)
                break;
            if (!e.Picture2.isEmpty())
                p.Exercise(p.NumExercises++) = e;
        }
        for (int i = 0; i < p.NumExercises; ++i)
            for (const QString& name :
                 {p.Exercise(i).Picture0, p.Exercise(i).Picture1, p.Exercise(i).Picture2})
                pictures << folder.state.Media.Picture + name;
    }
    tarvex::testing::TestFolder folder;
    QStringList pictures;
};

Program& TheProgram() {
    static Program program;
    return program;
}

void BM_PdfTwoAPage(benchmark::State& s) {
    Program& p = TheProgram();
    QTemporaryDir dir;
    for (auto _ : s) {
        QPdfWriter writer(dir.filePath("ex2.pdf"));
        writer.setResolution(1200);
        PainterSurface surface(writer);
        p.folder.state.Print.PrintJobKind = kJobExercises2;
        p.folder.state.Print.PrintScale = 1.0;
        p.folder.state.Print.IsPreview = false;
        DrawPrintJob(surface, p.folder.state);
        surface.EndDoc();
    }
    s.counters["pictures"] = p.pictures.size();
}

void BM_PreviewZoomStep(benchmark::State& s) {
    Program& p = TheProgram();
    p.folder.state.Print.PrintJobKind = kJobExercises2;
    RecordingSurface printer;
    PreviewLogic preview(p.folder.state, printer);
    preview.Load(1280 * 15, 800 * 15);
    for (auto _ : s) {
        p.folder.state.Print.PrintScale = 2.0;
        preview.DoPrintPreview();
    }
    s.counters["pages"] = preview.LastPage() + 1;
}

// The floor: the same 60 pictures decoded and scaled to their boxes at 2.0 alone.
void BM_DecodeAndScalePictures(benchmark::State& s) {
    Program& p = TheProgram();
    for (auto _ : s) {
        for (const QString& file : p.pictures) {
            const QImage image(file);
            benchmark::DoNotOptimize(
                image.scaled(576, 432, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        }
    }
}

} // namespace

BENCHMARK(BM_PdfTwoAPage)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_PreviewZoomStep)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_DecodeAndScalePictures)->Unit(benchmark::kMillisecond)->Repetitions(5);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
