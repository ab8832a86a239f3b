#pragma once

class QWidget;

namespace tarvex {

// Keeps a window, frame and all, on its screen's free area: a window bigger than that area
// is made smaller (down to its minimum size), and one that lies partly off the screen is
// moved back onto it. A maximised or full-screen window is left as it is. Before the window
// manager has framed the window only its inside is kept on the screen.
void KeepOnScreen(QWidget* window);

// For a window that has just been shown: KeepOnScreen now, and once more when the window
// manager has had time to frame it.
void KeepOnScreenAfterShow(QWidget* window);

// Runs KeepOnScreenAfterShow each time the window is shown.
void KeepOnScreenWhenShown(QWidget* window);

} // namespace tarvex
