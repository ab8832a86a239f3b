// The child that the crash tests of the maintenance kill at a random moment: it runs one
// maintenance job on the folder again and again (a repair once), and says "ready" once it
// begins.
//
//   maintenance_crash_child upgrade|compress|repair FOLDER
//   maintenance_crash_child backup FOLDER ARCHIVE
//   maintenance_crash_child restore FOLDER ARCHIVE

#include "MaintenanceFakes.h"

#include "data/Schema.h"
#include "dbtools/DatabaseRepair.h"
#include "dbtools/RestoreLogic.h"
#include "dbtools/Upgrade.h"
#include "dbtools/ZipArchive.h"
#include "fakes/FakeControls.h"
#include "media/MediaFakes.h"
#include "support/DurableFiles.h"
#include "support/FileDialog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <cstdio>
#include <exception>

using namespace tarvex;

namespace {

void Restore(const QString& folder, const QString& archive) {
    AppState state;
    state.AppFolder = folder;
    testing::FakeMaintenanceHost host(state);
    OpenDatabases(state);
    fakes::ScriptedPrompter prompter;
    prompter.answers = {Answer::Yes, Answer::Ok};
    testing::ScriptedOpenDialog dialog;
    dialog.answers = {archive};
    RestoreLogic logic(host, prompter, dialog);
    logic.RestoreDatabases();
    CloseDatabases(state);
    if (prompter.boxes.size() != 2 || !prompter.boxes[1].text.startsWith("The databases were"))
        throw std::runtime_error("the restore failed");
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3)
        return 2;
    const QString mode = args[1];
    const QDir folder(args[2]);
    const QString archive = args.value(3);
    const DatabasePaths paths{folder.path(), folder.filePath(QLatin1String(kProgramDbFile)),
                              folder.filePath(QLatin1String(kLibraryDbFile)),
                              folder.filePath(QLatin1String(kPicklistDbFile))};
    std::printf("ready\n");
    std::fflush(stdout);
    try {
        for (;;) {
            if (mode == QLatin1String("upgrade")) {
                UpgradeDatabases(paths, nullptr);
            } else if (mode == QLatin1String("compress")) {
                const QString work = folder.filePath(QStringLiteral("~TEMP.MDB"));
                QFile::remove(work);
                CompactDatabase(paths.Program, work);
                ReplaceFileDurably(work, paths.Program);
            } else if (mode == QLatin1String("repair")) {
                RepairDatabaseFile(paths.Program, QDateTime::currentDateTime());
                return 0;
            } else if (mode == QLatin1String("backup")) {
                QuietZipEvents events;
                ZipAddFiles({archive,
                             folder.path(),
                             {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"},
                             QString()},
                            events);
            } else {
                Restore(folder.path(), archive);
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
