// The mouse and the keys on the picture: panning, the crop box, the marks and the zoom.

#include "ui/bench/PictureCanvas.h"

#include "picturebench/PictureEdits.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <cmath>

namespace tarvex {

namespace {

// How near a corner of the crop box, in pixels of the view, takes hold of it.
constexpr double kCornerReach = 12.0;
// A press and release closer than this, in pixels of the view, is a click, not a drag.
constexpr double kDragStart = 4.0;

} // namespace

int PictureCanvas::CornerAt(QPointF viewportPoint) const {
    const QRectF box = CropBoxInView();
    const std::array<QPointF, 4> corners = {box.topLeft(), box.topRight(), box.bottomRight(),
                                            box.bottomLeft()};
    int nearest = -1;
    double best = kCornerReach;
    for (size_t i = 0; i < corners.size(); ++i) {
        const double distance = QLineF(corners[i], viewportPoint).length();
        if (distance <= best) {
            best = distance;
            nearest = static_cast<int>(i);
        }
    }
    return nearest;
}

PictureCanvas::Drag PictureCanvas::CropDragAt(QPointF viewportPoint, QPointF* anchor) const {
    const QRectF box(cropBox_);
    if (const int corner = CornerAt(viewportPoint); corner >= 0) {
        // The corner across the box stays where it is.
        const std::array<QPointF, 4> opposite = {box.bottomRight(), box.bottomLeft(), box.topLeft(),
                                                 box.topRight()};
        *anchor = opposite[static_cast<size_t>(corner)];
        return Drag::ResizeBox;
    }
    if (CropBoxInView().contains(viewportPoint))
        return Drag::MoveBox;
    // Outside the box a new box is dragged out from the point.
    *anchor = Clamped(ToPicture(viewportPoint));
    return Drag::ResizeBox;
}

void PictureCanvas::ResizeBoxTo(QPointF picturePoint) {
    const QPointF to = Clamped(picturePoint);
    const double dx = to.x() - anchor_.x();
    const double dy = to.y() - anchor_.y();
    const bool right = dx >= 0;
    const bool down = dy >= 0;
    // As wide as the pointer reaches either way, 4:3, and no further than the picture goes
    // from the fixed corner.
    const double roomX = right ? image_.width() - anchor_.x() : anchor_.x();
    const double roomY = down ? image_.height() - anchor_.y() : anchor_.y();
    double width = std::max(std::abs(dx), std::abs(dy) * 4.0 / 3.0);
    width = std::min({width, roomX, roomY * 4.0 / 3.0});
    const double height = width * 3.0 / 4.0;
    const QRectF wanted(right ? anchor_.x() : anchor_.x() - width,
                        down ? anchor_.y() : anchor_.y() - height, width, height);
    SetCropBox(wanted);
}

void PictureCanvas::UpdateCursor(QPointF viewportPoint) {
    const bool onPicture = PictureRect().contains(viewportPoint);
    Qt::CursorShape shape = Qt::ArrowCursor;
    switch (tool_) {
    case Tool::None:
        if (horizontalScrollBar()->maximum() > 0 || verticalScrollBar()->maximum() > 0)
            shape = drag_ == Drag::Pan ? Qt::ClosedHandCursor : Qt::OpenHandCursor;
        break;
    case Tool::Crop:
        if (const int corner = CornerAt(viewportPoint); corner >= 0)
            shape = corner % 2 == 0 ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
        else if (CropBoxInView().contains(viewportPoint))
            shape = Qt::SizeAllCursor;
        else
            shape = Qt::CrossCursor;
        break;
    case Tool::Arrow:
    case Tool::Line:
        shape = onPicture ? Qt::CrossCursor : Qt::ArrowCursor;
        break;
    case Tool::Text:
        shape = onPicture ? Qt::IBeamCursor : Qt::ArrowCursor;
        break;
    }
    viewport()->setCursor(shape);
}

void PictureCanvas::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    pressView_ = event->position();
    pressPicture_ = ToPicture(pressView_);
    dragMoved_ = false;
    const bool onPicture = PictureRect().contains(pressView_);
    switch (tool_) {
    case Tool::None:
        if (horizontalScrollBar()->maximum() > 0 || verticalScrollBar()->maximum() > 0) {
            drag_ = Drag::Pan;
            scrollAtPress_ = QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
        }
        break;
    case Tool::Crop:
        drag_ = CropDragAt(pressView_, &anchor_);
        boxAtPress_ = cropBox_;
        break;
    case Tool::Arrow:
    case Tool::Line:
        if (onPicture) {
            drag_ = Drag::Mark;
            markFrom_ = markTo_ = Clamped(pressPicture_);
        }
        break;
    case Tool::Text:
        if (onPicture)
            emit TextRequested(Clamped(pressPicture_));
        break;
    }
    UpdateCursor(pressView_);
    event->accept();
}

void PictureCanvas::mouseMoveEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    const QPointF picture = ToPicture(position);
    const bool onPicture = picture.x() >= 0 && picture.y() >= 0 && picture.x() < image_.width() &&
                           picture.y() < image_.height();
    emit PointerMoved(QPoint(static_cast<int>(std::floor(picture.x())),
                             static_cast<int>(std::floor(picture.y()))),
                      onPicture);
    if (QLineF(position, pressView_).length() >= kDragStart)
        dragMoved_ = true;
    switch (drag_) {
    case Drag::None:
        UpdateCursor(position);
        break;
    case Drag::Pan: {
        const QPointF moved = position - pressView_;
        horizontalScrollBar()->setValue(scrollAtPress_.x() - static_cast<int>(moved.x()));
        verticalScrollBar()->setValue(scrollAtPress_.y() - static_cast<int>(moved.y()));
        break;
    }
    case Drag::MoveBox:
        SetCropBox(QRectF(boxAtPress_).translated(picture - pressPicture_));
        break;
    case Drag::ResizeBox:
        if (dragMoved_)
            ResizeBoxTo(picture);
        break;
    case Drag::Mark:
        markTo_ = Clamped(picture);
        viewport()->update();
        break;
    }
    event->accept();
}

void PictureCanvas::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mouseReleaseEvent(event);
        return;
    }
    const Drag ended = drag_;
    drag_ = Drag::None;
    if (ended == Drag::Mark) {
        markTo_ = Clamped(ToPicture(event->position()));
        viewport()->update();
        if (QLineF(pressView_, event->position()).length() >= kDragStart)
            emit LineDrawn(markFrom_, markTo_);
    }
    UpdateCursor(event->position());
    event->accept();
}

void PictureCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (tool_ == Tool::Crop && event->button() == Qt::LeftButton &&
        CropBoxInView().contains(event->position())) {
        drag_ = Drag::None;
        emit CropAccepted();
        event->accept();
        return;
    }
    // Otherwise a double click is two clicks.
    mousePressEvent(event);
}

void PictureCanvas::wheelEvent(QWheelEvent* event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    const double steps = event->angleDelta().y() / 120.0;
    if (steps != 0)
        ZoomAround(Zoom() * std::pow(kZoomStep, steps), event->position());
    event->accept();
}

void PictureCanvas::keyPressEvent(QKeyEvent* event) {
    if (tool_ != Tool::Crop) {
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    // The crop box from the keys: the arrows move it (by a hundredth of the picture, or a
    // tenth with Shift), + and - make it larger or smaller about its middle.
    const double step = std::max(1.0, image_.width() / 100.0) *
                        (event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1);
    QRectF box(cropBox_);
    switch (event->key()) {
    case Qt::Key_Left:
        box.translate(-step, 0);
        break;
    case Qt::Key_Right:
        box.translate(step, 0);
        break;
    case Qt::Key_Up:
        box.translate(0, -step);
        break;
    case Qt::Key_Down:
        box.translate(0, step);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_Minus: {
        const double scale = event->key() == Qt::Key_Minus ? 1 / 1.05 : 1.05;
        const QPointF centre = box.center();
        box.setSize(box.size() * scale);
        box.moveCenter(centre);
        break;
    }
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    SetCropBox(box);
    event->accept();
}

} // namespace tarvex
