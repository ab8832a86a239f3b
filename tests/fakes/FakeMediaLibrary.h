#pragma once

// An in-memory movie layer: it records every call, in order, as text such as
// "Open(/m/385.AVI,0,0)" or "Play(0)", and answers from its settings.

#include "support/MediaPlayer.h"

#include <QSet>
#include <QSize>
#include <QStringList>

namespace tarvex::fakes {

class FakeMediaLibrary : public IMediaLibrary {
public:
    int FileDoesNotExist(const QString& path) override {
        calls << QStringLiteral("FileDoesNotExist(%1)").arg(path);
        return present.contains(path) ? 0 : 1;
    }
    int16_t Open(const QString& path, int left, int top) override {
        calls << QStringLiteral("Open(%1,%2,%3)").arg(path).arg(left).arg(top);
        if (openFails)
            return 0;
        const int16_t handle = nextHandle++;
        open.insert(handle);
        return handle;
    }
    void GetVideoWinSize(int16_t handle, int& width, int& height) override {
        calls << QStringLiteral("GetVideoWinSize(%1)").arg(handle);
        width = videoSize.width();
        height = videoSize.height();
    }
    void SetWinPos(int16_t handle, int x, int y) override {
        calls << QStringLiteral("SetWinPos(%1,%2,%3)").arg(handle).arg(x).arg(y);
    }
    void Show(int16_t handle) override { calls << QStringLiteral("Show(%1)").arg(handle); }
    void Play(int16_t handle) override { calls << QStringLiteral("Play(%1)").arg(handle); }
    void Pause(int16_t handle) override { calls << QStringLiteral("Pause(%1)").arg(handle); }
    void Stop(int16_t handle) override { calls << QStringLiteral("Stop(%1)").arg(handle); }
    void Rewind(int16_t handle) override { calls << QStringLiteral("Rewind(%1)").arg(handle); }
    int16_t Close(int16_t handle) override {
        calls << QStringLiteral("Close(%1)").arg(handle);
        open.remove(handle);
        return closeResult;
    }

    QSet<QString> present; // the files that exist
    QSize videoSize{160, 120};
    bool openFails = false;
    int16_t nextHandle = 1;
    int16_t closeResult = 0;
    QSet<int16_t> open;
    QStringList calls;
};

// The movie surface: remembers the size it was given.
class FakeMovieFrame : public IMovieFrame {
public:
    void SetSize(int width, int height) override {
        size = QSize(width, height);
        ++sizings;
    }
    QSize size{-1, -1};
    int sizings = 0;
};

} // namespace tarvex::fakes
