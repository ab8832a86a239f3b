#include "exercise/MediaPaths.h"

namespace tarvex {

QString PictureFileName(const MediaPaths& paths, int32_t exerciseID, int view) {
    return paths.Picture + QString::number(exerciseID) + u'_' + QString::number(view) +
           QStringLiteral(".JPG");
}

QString IconFileName(const MediaPaths& paths, int32_t exerciseID) {
    return paths.Icon + QString::number(exerciseID) + QStringLiteral(".JPG");
}

} // namespace tarvex
