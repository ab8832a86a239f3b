// make_old_databases: fills a folder with the databases of a former release, for trying
// the upgrade by hand. The folder must hold the delivered files (a data folder after a
// first start, or a copy of the build's templates).
//
//   make_old_databases --folder DIR --version 3.4 [--patients N --programs N]

#include "dbtools/OldDatabases.h"

#include <QCoreApplication>
#include <QStringList>
#include <cstdio>
#include <exception>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const auto option = [&args](const char* name, const QString& fallback) {
        const int at = args.indexOf(QLatin1String(name));
        return at >= 0 && at + 1 < args.size() ? args[at + 1] : fallback;
    };
    const QString folder = option("--folder", QString());
    if (folder.isEmpty() || !args.contains(QStringLiteral("--version"))) {
        std::fprintf(stderr, "usage: make_old_databases --folder DIR --version TEXT "
                             "[--patients N] [--programs N]\n"
                             "  TEXT is \"\" (before the Version table) or 3.1 to 3.7\n");
        return 2;
    }
    tarvex::testing::ClinicSize size;
    size.Patients = option("--patients", QStringLiteral("12")).toInt();
    size.Programs = option("--programs", QStringLiteral("30")).toInt();
    try {
        tarvex::testing::MakeOldDatabases(folder, option("--version", QString()), size);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_old_databases: %s\n", error.what());
        return 1;
    }
    return 0;
}
