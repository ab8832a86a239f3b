#pragma once

#include "support/MediaPlayer.h"

#include <QPointer>
#include <QSize>
#include <map>
#include <memory>

class QAudioOutput;
class QFrame;
class QMediaPlayer;
class QProgressBar;
class QVideoWidget;
class QWidget;

namespace tarvex {

// The movie layer over Qt Multimedia. Each open movie is a player with a small movie
// window inside the surface: the video framed by a one-pixel border, with a thin bar
// under it that shows how far the movie has played. The window is the video's size plus
// 2 pixels wide and 19 high.
class QtMediaLibrary : public IMediaLibrary {
public:
    static constexpr int kBarHeight = 17;
    static constexpr int kWaitMs = 3000; // the longest wait for a file to load

    explicit QtMediaLibrary(QWidget* surface);
    ~QtMediaLibrary() override;
    QtMediaLibrary(const QtMediaLibrary&) = delete;
    QtMediaLibrary& operator=(const QtMediaLibrary&) = delete;

    int FileDoesNotExist(const QString& path) override;
    int16_t Open(const QString& path, int left, int top) override;
    void GetVideoWinSize(int16_t handle, int& width, int& height) override;
    void SetWinPos(int16_t handle, int x, int y) override;
    void Show(int16_t handle) override;
    void Play(int16_t handle) override;
    void Pause(int16_t handle) override;
    void Stop(int16_t handle) override;
    void Rewind(int16_t handle) override;
    int16_t Close(int16_t handle) override;

    // For the window and its tests: what is open.
    int OpenCount() const { return static_cast<int>(movies_.size()); }
    QMediaPlayer* Player(int16_t handle) const;
    QWidget* MovieWindow(int16_t handle) const;

private:
    struct Movie;

    Movie* Find(int16_t handle) const;
    int16_t NextHandle();
    bool WaitUntilExposed(const Movie& movie) const;

    QPointer<QWidget> surface_;
    std::map<int16_t, std::unique_ptr<Movie>> movies_;
    int16_t lastHandle_ = 0;
};

// The movie surface over a frame: it takes the movie window's size.
class QtMovieFrame : public IMovieFrame {
public:
    explicit QtMovieFrame(QWidget* frame) : frame_(frame) {}
    void SetSize(int width, int height) override;

private:
    QPointer<QWidget> frame_;
};

} // namespace tarvex
