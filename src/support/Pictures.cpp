#include "support/Pictures.h"

#include <QImageReader>

namespace tarvex {

QImage ReadPictureAtMost(QImageReader& reader, QSize bound) {
    const QSize size = reader.size();
    if (bound.isValid() && !bound.isEmpty() && size.isValid() &&
        (size.width() > bound.width() || size.height() > bound.height()))
        reader.setScaledSize(size.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    return reader.read();
}

} // namespace tarvex
