#include "media/MediaCopy.h"

#include "support/Numbers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <filesystem>
#include <system_error>

namespace tarvex {

namespace {

std::filesystem::path FsPath(const QString& path) {
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

} // namespace

QStringList DirectorySearch(const QString& pattern) {
    const QFileInfo info(pattern);
    QString names = info.fileName();
    if (names == QLatin1String("*.*"))
        names = QStringLiteral("*");
    const QDir folder(info.path());
    if (!folder.exists())
        return {};
    return folder.entryList({names}, QDir::Files, QDir::Unsorted);
}

int16_t CountFiles(const QString& pattern) {
    return ToInt16(static_cast<double>(DirectorySearch(pattern).size()));
}

bool CopyFileReplacing(const QString& source, const QString& target) {
    const QString partial = target + QStringLiteral(".partial");
    std::error_code error;
    std::filesystem::copy_file(FsPath(source), FsPath(partial),
                               std::filesystem::copy_options::overwrite_existing, error);
    if (!error)
        std::filesystem::permissions(
            FsPath(partial),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
    if (!error)
        std::filesystem::rename(FsPath(partial), FsPath(target), error);
    if (error)
        QFile::remove(partial);
    return !error;
}

QString FormerBitmapName(const QString& target) {
    return target.left(target.size() - 3) + QStringLiteral("BMP");
}

} // namespace tarvex
