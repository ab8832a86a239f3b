#include "shell/SystemInfo.h"

#include "data/Schema.h"
#include "dbtools/Upgrade.h"
#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "shell/Splash.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStorageInfo>
#include <QSysInfo>

namespace tarvex {

QString FileSizeText(qint64 bytes) {
    if (bytes < 1024)
        return QStringLiteral("%1 bytes").arg(bytes);
    if (bytes < 1024 * 1024)
        return QStringLiteral("%1 KB").arg((bytes + 1023) / 1024);
    const double mb = static_cast<double>(bytes) / (1024.0 * 1024.0);
    if (mb < 1024.0)
        return QStringLiteral("%1 MB").arg(mb, 0, 'f', 1);
    return QStringLiteral("%1 GB").arg(mb / 1024.0, 0, 'f', 2);
}

namespace {

// The SQLite library the program runs with, asked of an open connection (or of a
// connection of its own to memory when none is open).
QString SqliteVersion(const AppState& state) {
    QSqlDatabase db = state.Dbs.ProgramDb;
    QString own;
    if (!db.isValid() || !db.isOpen()) {
        own = QStringLiteral("tarvex-sysinfo");
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), own);
        db.setDatabaseName(QStringLiteral(":memory:"));
        db.open();
    }
    QString version;
    {
        QSqlQuery query(db);
        if (query.exec(QStringLiteral("SELECT sqlite_version()")) && query.next())
            version = query.value(0).toString();
    }
    if (!own.isEmpty()) {
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(own);
    }
    return version.isEmpty() ? QStringLiteral("unknown") : version;
}

QString DatabaseLine(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile())
        return QStringLiteral("missing (%1)").arg(QDir::toNativeSeparators(path));
    const QString version = ReadDatabaseVersion(path);
    return QStringLiteral("%1, %2 (%3)")
        .arg(version.isEmpty() ? QStringLiteral("no version")
                               : QStringLiteral("version ") + version,
             FileSizeText(file.size()), QDir::toNativeSeparators(path));
}

QString ProbeLine(const QString& folder, const QStringList& probes) {
    QStringList found;
    for (const QString& probe : probes) {
        const bool there = QFileInfo(FindFileNoCase(folder, probe)).isFile();
        found << QStringLiteral("%1 %2").arg(probe, there ? QStringLiteral("found")
                                                          : QStringLiteral("not found"));
    }
    return QStringLiteral("%1 (%2)").arg(folder, found.join(QStringLiteral(", ")));
}

} // namespace

QList<SystemInfoItem> GatherSystemInfo(const AppState& state, const QStringList& printers,
                                       const QString& settingsFile) {
    QList<SystemInfoItem> items;
    const auto add = [&items](const char* section, const QString& item, const QString& value) {
        items.push_back({QLatin1String(section), item, value});
    };
    add("Program", QStringLiteral("Name"), ProductName());
    add("Program", QStringLiteral("Version"), VersionText().mid(8));
    add("Program", QStringLiteral("Executable"),
        QDir::toNativeSeparators(QCoreApplication::applicationFilePath()));
    add("Operating system", QStringLiteral("System"), QSysInfo::prettyProductName());
    add("Operating system", QStringLiteral("Kernel"),
        QSysInfo::kernelType() + u' ' + QSysInfo::kernelVersion());
    add("Operating system", QStringLiteral("Processor"), QSysInfo::currentCpuArchitecture());
    add("Libraries", QStringLiteral("Qt"), QString::fromLatin1(qVersion()));
    add("Libraries", QStringLiteral("SQLite"), SqliteVersion(state));

    const QStorageInfo volume(state.AppFolder);
    add("Data", QStringLiteral("Data folder"), QDir::toNativeSeparators(state.AppFolder));
    add("Data", QStringLiteral("Free space"),
        volume.isValid() ? FileSizeText(volume.bytesAvailable()) : QStringLiteral("unknown"));
    add("Data", QStringLiteral("Settings"), QDir::toNativeSeparators(settingsFile));
    add("Data", QStringLiteral("Delivered files"), QDir::toNativeSeparators(state.DeliveredFolder));
    add("Data", QStringLiteral("CD-ROM drive"), state.CDRomDrive);
    for (const char* name : {kProgramDbFile, kLibraryDbFile, kPicklistDbFile})
        add("Databases", QLatin1String(name),
            DatabaseLine(FindFileNoCase(state.AppFolder, QLatin1String(name))));
    add("Databases", QStringLiteral("Program expects"), QLatin1String(kCurrentDatabaseVersion));

    add("Media folders", QStringLiteral("Icons"),
        ProbeLine(state.Media.Icon, {QStringLiteral("1.JPG")}));
    add("Media folders", QStringLiteral("Pictures"),
        ProbeLine(state.Media.Picture, {QStringLiteral("1_1.JPG"), QStringLiteral("385_1.JPG")}));
    add("Media folders", QStringLiteral("Movies"),
        ProbeLine(state.Media.Movie, {QStringLiteral("1.AVI")}));

    if (printers.isEmpty())
        add("Printers", QStringLiteral("Printer"), QStringLiteral("none installed"));
    for (int i = 0; i < printers.size(); ++i)
        add("Printers", i == 0 ? QStringLiteral("Default") : QStringLiteral("Printer"),
            printers.at(i));
    return items;
}

QString SystemInfoText(const QList<SystemInfoItem>& items) {
    QString text;
    QString section;
    for (const SystemInfoItem& item : items) {
        if (item.Section != section) {
            section = item.Section;
            text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + section + u'\n';
        }
        text += QStringLiteral("  %1: %2\n").arg(item.Item, item.Value);
    }
    return text;
}

} // namespace tarvex
