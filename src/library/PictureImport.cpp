#include "library/PictureImport.h"

#include "support/Fault.h"
#include "support/Pictures.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>

namespace tarvex {

namespace {

constexpr int kJpegQuality = 95;

} // namespace

void PictureImport::LoadFile(const QString& path, int32_t /*flag*/) {
    status_.SetPanelText(0, QLatin1String(kLoading));
    status_.Refresh();
    picture_ = QImage();
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImage picture = ReadPictureAtMost(reader, QSize(kLoadBound, kLoadBound));
    if (picture.isNull())
        throw Fault(QStringLiteral("The picture \"%1\" could not be read: %2")
                        .arg(QDir::toNativeSeparators(path), reader.errorString()));
    picture_ = std::move(picture);
    status_.SetPanelText(0, QLatin1String(kReady));
}

void PictureImport::ResizeAndSaveFile(const QString& path, int32_t size) {
    status_.SetPanelText(0, QLatin1String(kResizing));
    status_.Refresh();
    if (picture_.isNull())
        throw Fault(QStringLiteral("No picture is loaded to make \"%1\" from.")
                        .arg(QDir::toNativeSeparators(path)));
    if (size < 1)
        throw Fault(QStringLiteral("A picture cannot be made %1 pixels wide.").arg(size));
    // JPEG keeps no transparency: a transparent picture is laid on white, as it prints.
    const QImage source = picture_.scaledToWidth(size, Qt::SmoothTransformation);
    QImage scaled(source.size(), QImage::Format_RGB32);
    scaled.fill(Qt::white);
    {
        QPainter painter(&scaled);
        painter.drawImage(0, 0, source);
    }
    status_.SetPanelText(0, QLatin1String(kSaving));
    status_.Refresh();
    QSaveFile file(path);
    const QString folder = QDir::toNativeSeparators(QFileInfo(path).absolutePath());
    if (!file.open(QIODevice::WriteOnly))
        throw Fault(QStringLiteral("The picture \"%1\" could not be written in the folder "
                                   "\"%2\": %3")
                        .arg(QDir::toNativeSeparators(path), folder, file.errorString()));
    QImageWriter writer(&file, "jpeg");
    writer.setQuality(kJpegQuality);
    if (!writer.write(scaled)) {
        file.cancelWriting();
        throw Fault(QStringLiteral("The picture \"%1\" could not be written: %2")
                        .arg(QDir::toNativeSeparators(path), writer.errorString()));
    }
    if (!file.commit())
        throw Fault(QStringLiteral("The picture \"%1\" could not be written in the folder "
                                   "\"%2\": %3")
                        .arg(QDir::toNativeSeparators(path), folder, file.errorString()));
    status_.SetPanelText(0, QLatin1String(kReady));
}

bool FolderIsWritable(const QString& folder) {
    const QFileInfo info(folder);
    return info.isDir() && info.isWritable();
}

bool IsMediaFolder(const QString& folder, const QString& iconFolder, const QString& pictureFolder) {
    const QString upper = folder.toUpper();
    return upper == iconFolder.toUpper() || upper == pictureFolder.toUpper();
}

} // namespace tarvex
