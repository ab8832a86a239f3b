// The database maintenance on a large clinic: 10,000 patients and 50,000 stored programs
// of six exercises each, made once as a clinic of a release before the Version table.
//
// - The upgrade walk from before 3.2 to the present version (target: under 60 s).
// - Compress against the SQLite shell's `VACUUM INTO` of the same file (within 1.2x).
// - Backup of the three databases against Info-ZIP's `zip` of the same files (within 1.25x).
// - Restore of that backup into the data folder, databases reopened (under 5 s).

#include "data/Databases.h"
#include "dbtools/DatabaseRepair.h"
#include "dbtools/MaintenanceFakes.h"
#include "dbtools/OldDatabases.h"
#include "dbtools/RestoreLogic.h"
#include "dbtools/Upgrade.h"
#include "dbtools/ZipArchive.h"
#include "fakes/FakeControls.h"
#include "media/MediaFakes.h"
#include "support/DurableFiles.h"
#include "support/FileDialog.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <benchmark/benchmark.h>
#include <memory>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

const QStringList kFiles = {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"};

// The large clinic: a folder of the former release, and one of the same clinic upgraded.
struct Clinic {
    Clinic() {
        MakeOldDatabases(former.Path(), QString(), {10000, 50000, 6, 20});
        CopyFolder(former.Path(), present.Path());
        UpgradeDatabases({present.Path(), present.File(kFiles[0]), present.File(kFiles[1]),
                          present.File(kFiles[2])},
                         nullptr);
    }
    static void CopyFolder(const QString& from, const QString& to) {
        QDirIterator files(from, QDir::Files);
        while (files.hasNext()) {
            const QString path = files.next();
            const QString target = QDir(to).filePath(files.fileName());
            QFile::remove(target);
            QFile::copy(path, target);
        }
    }
    TestFolder former;
    TestFolder present;
};

Clinic& TheClinic() {
    static Clinic clinic;
    return clinic;
}

void BM_UpgradeWalkFromBeforeVersionTable(benchmark::State& s) {
    Clinic& clinic = TheClinic();
    for (auto _ : s) {
        s.PauseTiming();
        TestFolder work;
        Clinic::CopyFolder(clinic.former.Path(), work.Path());
        s.ResumeTiming();
        UpgradeDatabases(
            {work.Path(), work.File(kFiles[0]), work.File(kFiles[1]), work.File(kFiles[2])},
            nullptr);
    }
}

void BM_Compress(benchmark::State& s) {
    Clinic& clinic = TheClinic();
    for (auto _ : s) {
        const QString work = clinic.present.File("~TEMP.MDB");
        QFile::remove(work);
        CompactDatabase(clinic.present.File(kFiles[0]), work);
        ReplaceFileDurably(work, clinic.present.File(kFiles[0]));
    }
}

void BM_CompressFloor(benchmark::State& s) {
    Clinic& clinic = TheClinic();
    for (auto _ : s) {
        const QString work = clinic.present.File("floor.MDB");
        QFile::remove(work);
        QProcess::execute("sqlite3",
                          {clinic.present.File(kFiles[0]), "VACUUM INTO '" + work + "'"});
    }
}

void BM_Backup(benchmark::State& s) {
    Clinic& clinic = TheClinic();
    QTemporaryDir target;
    QuietZipEvents events;
    for (auto _ : s) {
        const int16_t result = ZipAddFiles({QDir(target.path()).filePath("Tarvex Backup.ZIP"),
                                            clinic.present.Path(), kFiles, QString()},
                                           events);
        if (result != 0)
            s.SkipWithError("the backup failed");
    }
}

void BM_BackupFloor(benchmark::State& s) {
    Clinic& clinic = TheClinic();
    QTemporaryDir target;
    for (auto _ : s) {
        const QString archive = QDir(target.path()).filePath("floor.zip");
        s.PauseTiming();
        QFile::remove(archive);
        s.ResumeTiming();
        QProcess zip;
        zip.setWorkingDirectory(clinic.present.Path());
        zip.start("zip", QStringList({"-q", archive}) + kFiles);
        zip.waitForFinished(-1);
        if (zip.exitCode() != 0)
            s.SkipWithError("zip failed");
    }
}

void BM_Restore(benchmark::State& s) {
    Clinic& clinic = TheClinic();
    QTemporaryDir target;
    const QString archive = QDir(target.path()).filePath("Tarvex Backup.ZIP");
    QuietZipEvents events;
    ZipAddFiles({archive, clinic.present.Path(), kFiles, QString()}, events);
    for (auto _ : s) {
        s.PauseTiming();
        TestFolder folder;
        OpenDatabases(folder.state);
        FakeMaintenanceHost host(folder.state);
        fakes::ScriptedPrompter prompter;
        prompter.answers = {Answer::Yes, Answer::Ok};
        ScriptedOpenDialog dialog;
        dialog.answers = {archive};
        RestoreLogic logic(host, prompter, dialog);
        s.ResumeTiming();
        logic.RestoreDatabases();
        s.PauseTiming();
        if (prompter.boxes.size() != 2 || !prompter.boxes[1].text.startsWith("The databases were"))
            s.SkipWithError("the restore failed");
        CloseDatabases(folder.state);
        s.ResumeTiming();
    }
}

} // namespace

BENCHMARK(BM_UpgradeWalkFromBeforeVersionTable)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(2);
BENCHMARK(BM_Compress)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(BM_CompressFloor)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(BM_Backup)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(BM_BackupFloor)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(BM_Restore)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
