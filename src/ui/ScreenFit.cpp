#include "ui/ScreenFit.h"

#include <QEvent>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QWidget>

namespace tarvex {

namespace {

// The frame the window manager puts around the window; none before it has framed it.
QMargins FrameMargins(const QWidget* window) {
    const QRect outer = window->frameGeometry();
    const QRect inner = window->geometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

// The shift that brings [start, start + length) inside [low, high], the start first.
int ShiftInto(int start, int length, int low, int high) {
    if (start + length > high)
        return std::max(low, high - length) - start;
    if (start < low)
        return low - start;
    return 0;
}

class ScreenKeeper : public QObject {
public:
    explicit ScreenKeeper(QWidget* window) : QObject(window), window_(window) {
        window->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == window_ && event->type() == QEvent::Show)
            KeepOnScreenAfterShow(window_);
        return false;
    }

private:
    QPointer<QWidget> window_;
};

} // namespace

void KeepOnScreen(QWidget* window) {
    if (!window || !window->isWindow() || window->isMaximized() || window->isFullScreen())
        return;
    const QScreen* screen = window->screen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    const QMargins frame = FrameMargins(window);
    const QSize room(area.width() - frame.left() - frame.right(),
                     area.height() - frame.top() - frame.bottom());
    const QSize size = window->size().boundedTo(room).expandedTo(window->minimumSize());
    const QRect outer = QRect(window->geometry().topLeft(), size).marginsAdded(frame);
    const int dx = ShiftInto(outer.left(), outer.width(), area.left(), area.left() + area.width());
    const int dy = ShiftInto(outer.top(), outer.height(), area.top(), area.top() + area.height());
    const QRect client = QRect(window->geometry().topLeft(), size).translated(dx, dy);
    if (client != window->geometry())
        window->setGeometry(client);
}

void KeepOnScreenAfterShow(QWidget* window) {
    KeepOnScreen(window);
    QTimer::singleShot(250, window, [window] {
        if (window->isVisible())
            KeepOnScreen(window);
    });
}

void KeepOnScreenWhenShown(QWidget* window) {
    new ScreenKeeper(window);
}

} // namespace tarvex
