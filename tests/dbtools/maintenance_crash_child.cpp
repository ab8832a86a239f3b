// The child that the crash tests of the maintenance kill at a random moment: it runs one
// maintenance job on the folder again and again, and says "ready" once it begins.
//
//   maintenance_crash_child upgrade|compress FOLDER

#include "data/Schema.h"
#include "dbtools/DatabaseRepair.h"
#include "dbtools/Upgrade.h"
#include "shell/AppFolder.h"
#include "support/DurableFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <cstdio>
#include <exception>

using namespace tarvex;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 3)
        return 2;
    const QString mode = args[1];
    const QDir folder(args[2]);
    const DatabasePaths paths{folder.path(), folder.filePath(QLatin1String(kProgramDbFile)),
                              folder.filePath(QLatin1String(kLibraryDbFile)),
                              folder.filePath(QLatin1String(kPicklistDbFile))};
    std::printf("ready\n");
    std::fflush(stdout);
    try {
        for (;;) {
            if (mode == QLatin1String("upgrade")) {
                UpgradeDatabases(paths, nullptr);
            } else {
                const QString work = folder.filePath(QStringLiteral("~TEMP.MDB"));
                QFile::remove(work);
                CompactDatabase(paths.Program, work);
                ReplaceFileDurably(work, paths.Program);
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
