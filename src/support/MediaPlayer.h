#pragma once

// The video layer as the parameter dialog uses it: a movie is opened into the dialog's
// movie surface and then addressed by a small handle. A handle of 0 means no movie; every
// command with a handle that names no open movie does nothing.

#include <QString>
#include <cstdint>

namespace tarvex {

class IMediaLibrary {
public:
    virtual ~IMediaLibrary() = default;
    // 1 when there is no movie file under the path, 0 when there is.
    virtual int FileDoesNotExist(const QString& path) = 0;
    // Opens the movie into the movie surface, its window placed at left, top and still
    // hidden, stopped on its first frame. Returns the new handle, 0 when the file cannot be
    // played.
    virtual int16_t Open(const QString& path, int left, int top) = 0;
    // The size of the video itself in pixels (the movie window adds its border and bar).
    virtual void GetVideoWinSize(int16_t handle, int& width, int& height) = 0;
    // Moves the movie window within the surface.
    virtual void SetWinPos(int16_t handle, int x, int y) = 0;
    // Makes the movie window visible, with the current frame.
    virtual void Show(int16_t handle) = 0;
    virtual void Play(int16_t handle) = 0;
    virtual void Pause(int16_t handle) = 0;
    // Ends playing and goes back to the first frame.
    virtual void Stop(int16_t handle) = 0;
    // Goes back to the first frame; a playing movie plays on from there.
    virtual void Rewind(int16_t handle) = 0;
    // Closes the movie and removes its window. Returns the handle's new value: 0.
    virtual int16_t Close(int16_t handle) = 0;
};

// The surface in which the movie window lies; it is sized to the movie window.
class IMovieFrame {
public:
    virtual ~IMovieFrame() = default;
    virtual void SetSize(int width, int height) = 0; // pixels
};

} // namespace tarvex
