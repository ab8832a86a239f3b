// The movies: the figure moves from view 1 to view 2 and back; the frames go as raw RGB
// to ffmpeg, which writes Motion JPEG in an AVI file.
#pragma once

#include "Scene.h"

#include <QImage>
#include <vector>

namespace tarvex::media {

inline constexpr int kMovieFps = 12;
inline const QSize kMovieSize(480, 360);

// How far from view 1 towards view 2 each frame is: a rest, the way there, a rest at the
// end and the way back (2.5 seconds).
std::vector<double> MovieTimeline();

std::vector<QImage> MovieFrames(const ExerciseScene& scene);

// Runs ffmpeg; false with the reason in error when it fails.
bool WriteMovie(const QString& ffmpeg, const QString& path, const std::vector<QImage>& frames,
                QString* error);

} // namespace tarvex::media
