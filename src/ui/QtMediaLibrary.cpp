#include "ui/QtMediaLibrary.h"

#include <QAudioOutput>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QFrame>
#include <QMediaPlayer>
#include <QProgressBar>
#include <QTimer>
#include <QUrl>
#include <QVideoSink>
#include <QVideoWidget>
#include <QWindow>
#include <algorithm>
#include <functional>
#include <limits>

namespace tarvex {

namespace {

constexpr int kExposeWaitMs = 1000;

// Gives the event loop turns until ready() holds or the time is up. The user's input
// waits meanwhile, so that no click reaches a half-loaded dialog.
bool WaitUntil(const std::function<bool()>& ready, int ms) {
    if (ready())
        return true;
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer tick;
    tick.setInterval(10);
    QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
        if (ready() || clock.elapsed() >= ms)
            loop.quit();
    });
    tick.start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return ready();
}

bool IsLoaded(QMediaPlayer::MediaStatus status) {
    switch (status) {
    case QMediaPlayer::LoadedMedia:
    case QMediaPlayer::BufferingMedia:
    case QMediaPlayer::BufferedMedia:
    case QMediaPlayer::EndOfMedia:
        return true;
    default:
        return false;
    }
}

int Clamped(qint64 ms) {
    return static_cast<int>(std::clamp<qint64>(ms, 0, std::numeric_limits<int>::max()));
}

} // namespace

// One open movie: its player and its window in the surface.
struct QtMediaLibrary::Movie {
    std::unique_ptr<QMediaPlayer> player;
    std::unique_ptr<QAudioOutput> audio;
    QPointer<QFrame> window;
    QPointer<QVideoWidget> video;
    QSize videoSize;

    ~Movie() {
        if (player) {
            player->stop();
            player->setVideoOutput(nullptr);
        }
        player.reset();
        audio.reset();
        delete window.data();
    }
};

QtMediaLibrary::QtMediaLibrary(QWidget* surface) : surface_(surface) {}

QtMediaLibrary::~QtMediaLibrary() = default;

int QtMediaLibrary::FileDoesNotExist(const QString& path) {
    return QFileInfo(path).isFile() ? 0 : 1;
}

int16_t QtMediaLibrary::Open(const QString& path, int left, int top) {
    if (!QFileInfo(path).isFile())
        return 0;
    auto movie = std::make_unique<Movie>();
    movie->window = new QFrame(surface_);
    movie->window->setObjectName(QStringLiteral("MovieWindow"));
    movie->window->setFrameStyle(QFrame::Box | QFrame::Plain);
    movie->window->setLineWidth(1);
    movie->window->hide();
    movie->video = new QVideoWidget(movie->window);
    movie->video->setAspectRatioMode(Qt::KeepAspectRatio);
    auto* bar = new QProgressBar(movie->window);
    bar->setObjectName(QStringLiteral("MovieBar"));
    bar->setTextVisible(false);
    bar->setRange(0, 1);
    bar->setValue(0);

    movie->player = std::make_unique<QMediaPlayer>();
    movie->audio = std::make_unique<QAudioOutput>();
    movie->player->setAudioOutput(movie->audio.get());
    movie->player->setVideoOutput(movie->video.data());
    QMediaPlayer* player = movie->player.get();
    QObject::connect(player, &QMediaPlayer::durationChanged, bar,
                     [bar](qint64 duration) { bar->setRange(0, qMax(1, Clamped(duration))); });
    QObject::connect(player, &QMediaPlayer::positionChanged, bar,
                     [bar](qint64 position) { bar->setValue(Clamped(position)); });

    player->setSource(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
    const auto failed = [player] {
        return player->error() != QMediaPlayer::NoError ||
               player->mediaStatus() == QMediaPlayer::InvalidMedia;
    };
    WaitUntil([&] { return IsLoaded(player->mediaStatus()) || failed(); }, kWaitMs);
    if (!IsLoaded(player->mediaStatus()) || failed())
        return 0;

    // Paused, the player shows the first frame, which also tells the video's size.
    player->pause();
    QVideoSink* sink = movie->video->videoSink();
    WaitUntil([&] { return sink->videoSize().isValid() || failed(); }, kWaitMs);
    const QSize size = sink->videoSize();
    if (!size.isValid() || size.isEmpty() || failed())
        return 0;

    movie->videoSize = size;
    movie->video->setGeometry(1, 1, size.width(), size.height());
    bar->setGeometry(1, size.height() + 1, size.width(), kBarHeight);
    movie->window->setGeometry(left, top, size.width() + 2, size.height() + kBarHeight + 2);
    const int16_t handle = NextHandle();
    movies_.emplace(handle, std::move(movie));
    return handle;
}

int16_t QtMediaLibrary::NextHandle() {
    do {
        lastHandle_ = lastHandle_ >= INT16_MAX ? int16_t{1} : static_cast<int16_t>(lastHandle_ + 1);
    } while (movies_.count(lastHandle_) != 0);
    return lastHandle_;
}

QtMediaLibrary::Movie* QtMediaLibrary::Find(int16_t handle) const {
    const auto it = movies_.find(handle);
    return it == movies_.end() ? nullptr : it->second.get();
}

QMediaPlayer* QtMediaLibrary::Player(int16_t handle) const {
    const Movie* movie = Find(handle);
    return movie ? movie->player.get() : nullptr;
}

QWidget* QtMediaLibrary::MovieWindow(int16_t handle) const {
    const Movie* movie = Find(handle);
    return movie ? movie->window.data() : nullptr;
}

void QtMediaLibrary::GetVideoWinSize(int16_t handle, int& width, int& height) {
    const Movie* movie = Find(handle);
    width = movie ? movie->videoSize.width() : 0;
    height = movie ? movie->videoSize.height() : 0;
}

void QtMediaLibrary::SetWinPos(int16_t handle, int x, int y) {
    if (const Movie* movie = Find(handle); movie && movie->window)
        movie->window->move(x, y);
}

void QtMediaLibrary::Show(int16_t handle) {
    const Movie* movie = Find(handle);
    if (!movie || !movie->window)
        return;
    movie->window->show();
    movie->window->raise();
    // A frame that came while the window was hidden is not drawn when it appears: once
    // the window is on the screen, a stopped movie goes through its frame again.
    QMediaPlayer* player = movie->player.get();
    if (WaitUntilExposed(*movie) && player->playbackState() != QMediaPlayer::PlayingState) {
        const qint64 at = player->position();
        player->stop();
        player->pause();
        if (at > 0)
            player->setPosition(at);
    }
}

bool QtMediaLibrary::WaitUntilExposed(const Movie& movie) const {
    // On a real display the video lives in a window of its own inside the dialog's; it
    // must be mapped before the movie can start or show a frame.
    if (!movie.window || !movie.window->isVisible())
        return false;
    QWindow* top = movie.window->window()->windowHandle();
    if (!top)
        return false;
    return WaitUntil(
        [top] {
            if (!top->isExposed())
                return false;
            const auto inner = top->findChildren<QWindow*>();
            return std::all_of(inner.begin(), inner.end(),
                               [](const QWindow* w) { return !w->isVisible() || w->isExposed(); });
        },
        kExposeWaitMs);
}

void QtMediaLibrary::Play(int16_t handle) {
    if (const Movie* movie = Find(handle)) {
        WaitUntilExposed(*movie);
        movie->player->play();
    }
}

void QtMediaLibrary::Pause(int16_t handle) {
    if (const Movie* movie = Find(handle))
        movie->player->pause();
}

void QtMediaLibrary::Stop(int16_t handle) {
    // Stopped means on the first frame, as the movie stands when it opens; the player's
    // own stop would leave the window blank.
    if (const Movie* movie = Find(handle)) {
        movie->player->pause();
        movie->player->setPosition(0);
    }
}

void QtMediaLibrary::Rewind(int16_t handle) {
    if (const Movie* movie = Find(handle)) {
        if (movie->player->playbackState() == QMediaPlayer::StoppedState)
            movie->player->pause();
        movie->player->setPosition(0);
    }
}

int16_t QtMediaLibrary::Close(int16_t handle) {
    movies_.erase(handle);
    return 0;
}

void QtMovieFrame::SetSize(int width, int height) {
    if (frame_)
        frame_->setFixedSize(width, height);
}

} // namespace tarvex
