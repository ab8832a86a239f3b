#include "Movie.h"

#include "Render.h"

#include <QFile>
#include <QProcess>
#include <cmath>

namespace tarvex::media {

std::vector<double> MovieTimeline() {
    std::vector<double> t;
    auto hold = [&](double at, int frames) { t.insert(t.end(), frames, at); };
    auto move = [&](double from, double to, int frames) {
        for (int i = 1; i <= frames; ++i) {
            const double x = static_cast<double>(i) / frames;
            t.push_back(from + (to - from) * (1 - std::cos(M_PI * x)) / 2);
        }
    };
    hold(0, 3);
    move(0, 1, 10);
    hold(1, 4);
    move(1, 0, 10);
    hold(0, 3);
    return t;
}

std::vector<QImage> MovieFrames(const ExerciseScene& scene) {
    const Fit fit = Fit::Of(scene.Bounds(), kMovieSize);
    std::vector<QImage> frames;
    for (double t : MovieTimeline())
        frames.push_back(Render(scene.MovieFrame(t), fit, QImage::Format_RGB888));
    return frames;
}

bool WriteMovie(const QString& ffmpeg, const QString& path, const std::vector<QImage>& frames,
                QString* error) {
    const QString partial = path + QStringLiteral(".partial");
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    const QString size = QStringLiteral("%1x%2").arg(kMovieSize.width()).arg(kMovieSize.height());
    process.start(
        ffmpeg, {"-hide_banner", "-loglevel", "error", "-y",    "-f",   "rawvideo",
                 "-pix_fmt",     "rgb24",     "-s",    size,    "-r",   QString::number(kMovieFps),
                 "-i",           "-",         "-c:v",  "mjpeg", "-q:v", "3",
                 "-an",          "-f",        "avi",   partial});
    if (!process.waitForStarted(10000)) {
        *error = QStringLiteral("cannot start %1").arg(ffmpeg);
        return false;
    }
    for (const QImage& frame : frames) {
        const QImage rgb = frame.convertToFormat(QImage::Format_RGB888);
        for (int y = 0; y < rgb.height(); ++y)
            process.write(reinterpret_cast<const char*>(rgb.constScanLine(y)), rgb.width() * 3);
        if (!process.waitForBytesWritten(30000) && process.bytesToWrite() > 0) {
            *error = QStringLiteral("ffmpeg stopped taking frames");
            process.kill();
            process.waitForFinished();
            return false;
        }
    }
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        *error = QStringLiteral("ffmpeg failed: %1")
                     .arg(QString::fromLocal8Bit(process.readAllStandardError()).trimmed());
        QFile::remove(partial);
        return false;
    }
    QFile::remove(path);
    if (!QFile::rename(partial, path)) {
        *error = QStringLiteral("cannot write %1").arg(path);
        return false;
    }
    return true;
}

} // namespace tarvex::media
