// Makes the delivered media of the exercise library from content/library.tsv and the pose
// lines: the pictures (PICTURE/<id>_<view>.JPG), the icons (ICON/<id>.JPG) and, for the
// exercises with a video, the movies (MOVIE/<id>.AVI, when ffmpeg is there).
//
//   tarvex-media --library FILE --poses FILE --out DIR [--ffmpeg PATH] [--stamp FILE]
//                [--only ID,ID...] [--jobs N]

#include "Movie.h"
#include "Render.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QProcess>
#include <QSet>
#include <QThreadPool>
#include <atomic>
#include <cstdio>

using namespace tarvex::media;

namespace {

inline const QSize kPictureSize(900, 675); // 3 by 2.25 inches at 300 dpi
constexpr int kIconWidth = 61;
constexpr int kJpegQuality = 90;

QString Option(const QStringList& args, const char* name) {
    const qsizetype at = args.indexOf(QLatin1String(name));
    return at >= 0 && at + 1 < args.size() ? args[at + 1] : QString();
}

bool FfmpegRuns(const QString& ffmpeg) {
    if (ffmpeg.isEmpty())
        return false;
    QProcess p;
    p.start(ffmpeg, {"-hide_banner", "-version"});
    return p.waitForFinished(20000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

struct Tally {
    QMutex mutex;
    QStringList problems, warnings;
    QSet<QString> written; // relative paths
    std::atomic<int> pictures{0}, icons{0}, movies{0};

    void Wrote(const QString& file) {
        QMutexLocker lock(&mutex);
        written.insert(file);
    }
};

void MakeExercise(const ExerciseMedia& m, const QDir& out, const QString& ffmpeg, Tally& tally) {
    const ExerciseScene scene(m);
    const Fit fit = Fit::Of(scene.Bounds(), kPictureSize);
    const QString id = m.exercise.id;
    for (int view = 1; view <= 3; ++view) {
        if (!scene.HasView(view))
            continue;
        QString warning;
        const QImage picture = Render(scene.View(view, &warning), fit, QImage::Format_RGB32);
        const QString name = QStringLiteral("PICTURE/%1_%2.JPG").arg(id).arg(view);
        if (!picture.save(out.filePath(name), "JPG", kJpegQuality)) {
            QMutexLocker lock(&tally.mutex);
            tally.problems << QStringLiteral("cannot write %1").arg(out.filePath(name));
            continue;
        }
        tally.Wrote(name);
        ++tally.pictures;
        if (!warning.isEmpty()) {
            QMutexLocker lock(&tally.mutex);
            tally.warnings << warning;
        }
        if (view == 1) { // the icon: view 1, smoothly to 61 pixels wide
            const QString icon = QStringLiteral("ICON/%1.JPG").arg(id);
            if (picture.scaledToWidth(kIconWidth, Qt::SmoothTransformation)
                    .save(out.filePath(icon), "JPG", kJpegQuality)) {
                tally.Wrote(icon);
                ++tally.icons;
            } else {
                QMutexLocker lock(&tally.mutex);
                tally.problems << QStringLiteral("cannot write %1").arg(out.filePath(icon));
            }
        }
    }
    if (m.exercise.hasVideo && !ffmpeg.isEmpty()) {
        const QString name = QStringLiteral("MOVIE/%1.AVI").arg(id);
        QString error;
        if (!scene.CanMove()) {
            QMutexLocker lock(&tally.mutex);
            tally.problems << QStringLiteral("%1: exercise %2 has a video but no view 2 to move to")
                                  .arg(m.exercise.where, id);
        } else if (WriteMovie(ffmpeg, out.filePath(name), MovieFrames(scene), &error)) {
            tally.Wrote(name);
            ++tally.movies;
        } else {
            QMutexLocker lock(&tally.mutex);
            tally.problems << QStringLiteral("%1: %2").arg(out.filePath(name), error);
        }
    }
}

// Removes the media files an earlier run made for exercises or views that are gone.
void RemoveStale(const QDir& out, const QSet<QString>& written) {
    for (const char* folder : {"PICTURE", "ICON", "MOVIE"}) {
        const QDir dir(out.filePath(QLatin1String(folder)));
        for (const QString& file : dir.entryList({"*.JPG", "*.AVI"}, QDir::Files)) {
            const QString name = QLatin1String(folder) + u'/' + file;
            if (!written.contains(name))
                QFile::remove(out.filePath(name));
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const QString library = Option(args, "--library"), poses = Option(args, "--poses");
    const QString outPath = Option(args, "--out");
    if (library.isEmpty() || poses.isEmpty() || outPath.isEmpty()) {
        std::fprintf(stderr, "usage: tarvex-media --library FILE --poses FILE --out DIR "
                             "[--ffmpeg PATH] [--stamp FILE] [--only ID,...] [--jobs N]\n");
        return 2;
    }
    QElapsedTimer clock;
    clock.start();
    std::vector<ExerciseMedia> media;
    try {
        media = ReadPoses(poses, ReadLibrary(library));
    } catch (const InputError& e) {
        std::fprintf(stderr, "tarvex-media: error: %s\n", qPrintable(e.message));
        return 1;
    }
    const QStringList only = Option(args, "--only").split(u',', Qt::SkipEmptyParts);
    const QDir out(outPath);
    for (const char* folder : {"PICTURE", "ICON", "MOVIE"})
        if (!out.mkpath(QLatin1String(folder))) {
            std::fprintf(stderr, "tarvex-media: cannot create %s/%s\n", qPrintable(outPath),
                         folder);
            return 1;
        }
    QString ffmpeg = Option(args, "--ffmpeg");
    if (!FfmpegRuns(ffmpeg)) {
        std::printf("tarvex-media: ffmpeg is not available, so no movies are made\n");
        ffmpeg.clear();
    }

    Tally tally;
    QThreadPool pool;
    const int jobs = Option(args, "--jobs").toInt();
    if (jobs > 0)
        pool.setMaxThreadCount(jobs);
    for (const ExerciseMedia& m : media) {
        if (!only.isEmpty() && !only.contains(m.exercise.id))
            continue;
        pool.start([&m, &out, &ffmpeg, &tally] { MakeExercise(m, out, ffmpeg, tally); });
    }
    pool.waitForDone();

    for (const QString& w : tally.warnings)
        std::fprintf(stderr, "warning: %s\n", qPrintable(w));
    if (!tally.problems.isEmpty()) {
        for (const QString& p : tally.problems)
            std::fprintf(stderr, "error: %s\n", qPrintable(p));
        return 1;
    }
    if (only.isEmpty())
        RemoveStale(out, tally.written);
    std::printf("tarvex-media: %d pictures, %d icons, %d movies in %.1f s\n", tally.pictures.load(),
                tally.icons.load(), tally.movies.load(), clock.elapsed() / 1000.0);
    const QString stamp = Option(args, "--stamp");
    if (!stamp.isEmpty()) {
        QFile file(stamp);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            std::fprintf(stderr, "tarvex-media: cannot write %s\n", qPrintable(stamp));
            return 1;
        }
        file.write(QByteArray::number(tally.pictures.load()) + " pictures\n");
    }
    return 0;
}
