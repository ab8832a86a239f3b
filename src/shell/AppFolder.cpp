#include "shell/AppFolder.h"

#include "data/Schema.h"
#include "shell/AppState.h"
#include "shell/PrivateFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace tarvex {

QString AppPathAndFName(const AppState& state, const QString& name) {
    QString relative = name;
    relative.replace(u'\\', u'/');
    while (relative.startsWith(u'/'))
        relative.remove(0, 1);
    return FindFileNoCase(state.AppFolder, relative);
}

QString FindFileNoCase(const QString& folder, const QString& name) {
    QString joined = QDir(folder).filePath(name);
    if (QFileInfo::exists(joined))
        return joined;
    const QFileInfo wanted(joined);
    const QDir dir = wanted.dir();
    const QStringList entries = dir.entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        if (entry.compare(wanted.fileName(), Qt::CaseInsensitive) == 0)
            return dir.filePath(entry);
    }
    return joined;
}

QString DefaultAppFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Tarvex");
}

QString DefaultDeliveredFolder() {
    QString beside = QCoreApplication::applicationDirPath();
    const QString installed = QDir(beside).filePath(QStringLiteral("../share/tarvex"));
    if (QFileInfo::exists(QDir(installed).filePath(QStringLiteral("templates"))))
        return QDir::cleanPath(installed);
    return beside;
}

QString TemplatesFolder(const AppState& state) {
    return QDir(state.DeliveredFolder).filePath(QStringLiteral("templates"));
}

QString HelpFolder(const AppState& state) {
    QString own = AppPathAndFName(state, QStringLiteral("Help"));
    if (QFileInfo(QDir(own).filePath(QStringLiteral("contents.txt"))).isFile())
        return own;
    return FindFileNoCase(state.DeliveredFolder, QStringLiteral("Help"));
}

QStringList DeliveredFileNames() {
    return {QLatin1String(kProgramDbFile),
            QLatin1String(kLibraryDbFile),
            QLatin1String(kPicklistDbFile),
            QStringLiteral("cover.txt"),
            QStringLiteral("TIPOFDAY.TXT"),
            QStringLiteral("Video.MDB"),
            QStringLiteral("TVX Exercise Library.MDB"),
            QStringLiteral("Patient Instructions.Doc")};
}

namespace {

// The icons lie beside the program's data, as they always did: a first start copies the
// delivered ones in. A folder that is already there is left as it is.
QString CopyIcons(const QString& appFolder, const QString& templatesFolder) {
    const QDir delivered(FindFileNoCase(QDir(templatesFolder).filePath(QStringLiteral("..")),
                                        QStringLiteral("ICON")));
    const QString target = FindFileNoCase(appFolder, QStringLiteral("ICON"));
    if (!delivered.exists() || QFileInfo::exists(target))
        return QString();
    const QString partial = QDir(appFolder).filePath(QStringLiteral("ICON.partial"));
    QDir(partial).removeRecursively();
    if (!QDir().mkpath(partial))
        return QStringLiteral("The icon folder cannot be created in %1.").arg(appFolder);
    for (const QString& name : delivered.entryList(QDir::Files)) {
        // A copy keeps the delivered file's rights, which are read-only where the program
        // is installed; the user's own icons are theirs to change.
        const QString copy = QDir(partial).filePath(name);
        if (!QFile::copy(delivered.filePath(name), copy) ||
            !QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner))
            return QStringLiteral("The icon %1 cannot be copied into %2.").arg(name, appFolder);
    }
    if (!QDir().rename(partial, QDir(appFolder).filePath(QStringLiteral("ICON"))))
        return QStringLiteral("The icon folder cannot be made in %1.").arg(appFolder);
    return QString();
}

} // namespace

QString PrepareAppFolder(const QString& appFolder, const QString& templatesFolder,
                         bool* madePrivate) {
    const bool existed = QFileInfo(appFolder).isDir();
    if (!QDir().mkpath(appFolder))
        return QStringLiteral("The data folder %1 cannot be created.")
            .arg(QDir::toNativeSeparators(appFolder));
    const bool tightened = MakeFolderPrivate(appFolder);
    if (madePrivate)
        *madePrivate = existed && tightened;

    // The delivered files fill a data folder at its first start only, when none of the
    // three databases is there. Later a missing database is never replaced by an empty one:
    // that would silently start the clinic on an empty patient list.
    QStringList present, missing;
    for (const char* database : {kProgramDbFile, kLibraryDbFile, kPicklistDbFile}) {
        const QString name = QLatin1String(database);
        (QFileInfo::exists(FindFileNoCase(appFolder, name)) ? present : missing) << name;
    }
    if (!present.isEmpty() && !missing.isEmpty())
        return MissingDatabaseText(missing.first(), appFolder);
    if (!present.isEmpty())
        return QString();

    for (const QString& name : DeliveredFileNames()) {
        if (QFileInfo::exists(FindFileNoCase(appFolder, name)))
            continue;
        const QString source = FindFileNoCase(templatesFolder, name);
        if (!QFileInfo(source).isFile())
            return QStringLiteral("The delivered file %1 is missing from %2.")
                .arg(name, QDir::toNativeSeparators(templatesFolder));
        const QString target = QDir(appFolder).filePath(name);
        // Copied under a temporary name first, so that a broken copy never stands for a database.
        const QString partial = target + QStringLiteral(".partial");
        QFile::remove(partial);
        if (!QFile::copy(source, partial) ||
            !QFile::setPermissions(partial, QFile::ReadOwner | QFile::WriteOwner) ||
            !QFile::rename(partial, target)) {
            QFile::remove(partial);
            return QStringLiteral("%1 cannot be copied into %2.")
                .arg(name, QDir::toNativeSeparators(appFolder));
        }
    }
    return CopyIcons(appFolder, templatesFolder);
}

QString MissingDatabaseText(const QString& fileName, const QString& appFolder) {
    return QStringLiteral("The database \"%1\" is missing from the data folder %2.\n\n"
                          "Nothing has been created or changed. Put the file back from your "
                          "backup and start the program again.")
        .arg(fileName, QDir::toNativeSeparators(appFolder));
}

} // namespace tarvex
