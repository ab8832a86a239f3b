#include "ui/PaneDrag.h"

#include "support/Pictures.h"

#include <QDir>
#include <QDrag>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QPixmap>
#include <QWidget>

namespace tarvex {

QMimeData* PaneDragData(DragSource source) {
    auto* data = new QMimeData;
    const QString kind =
        source.kind == DragKind::SrcIm ? QStringLiteral("SrcIm") : QStringLiteral("TargetIm");
    data->setData(QLatin1String(kPaneDragMime),
                  (kind + u':' + QString::number(source.index)).toUtf8());
    return data;
}

DragSource PaneDragSource(const QMimeData* data) {
    if (!data || !data->hasFormat(QLatin1String(kPaneDragMime)))
        return {};
    const QStringList parts =
        QString::fromUtf8(data->data(QLatin1String(kPaneDragMime))).split(u':');
    if (parts.size() != 2)
        return {};
    DragSource source;
    source.kind = parts[0] == QLatin1String("SrcIm")      ? DragKind::SrcIm
                  : parts[0] == QLatin1String("TargetIm") ? DragKind::TargetIm
                                                          : DragKind::Other;
    source.index = parts[1].toInt();
    return source;
}

void StartPaneDrag(QWidget* from, DragSource source, const QImage& image) {
    auto* drag = new QDrag(from);
    drag->setMimeData(PaneDragData(source));
    if (!image.isNull())
        drag->setPixmap(QPixmap::fromImage(image));
    drag->exec(Qt::MoveAction);
}

PictureLoad ReadPaneImage(const QString& path, QImage& image, QSize bound) {
    image = QImage();
    const QFileInfo info(path);
    if (!info.isFile())
        return {PictureLoad::Missing, info.dir().exists() ? 53 : 76,
                QStringLiteral("File not found")};
    QImageReader reader(path);
    image = ReadPictureAtMost(reader, bound);
    if (image.isNull()) {
        image = QImage();
        return {PictureLoad::Failed, 481,
                QStringLiteral("Invalid picture (%1)").arg(reader.errorString())};
    }
    return {PictureLoad::Loaded, 0, {}};
}

} // namespace tarvex
