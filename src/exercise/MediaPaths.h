#pragma once

#include <QString>
#include <cstdint>

namespace tarvex {

// The three media folders, each ending in a path separator.
struct MediaPaths {
    QString Icon;
    QString Movie;
    QString Picture;
};

// The picture file that the exercise editor writes for a view (1 to 3): "385_1.JPG".
QString PictureFileName(const MediaPaths& paths, int32_t exerciseID, int view);

// The icon file that the exercise editor writes: "385.JPG".
QString IconFileName(const MediaPaths& paths, int32_t exerciseID);

} // namespace tarvex
