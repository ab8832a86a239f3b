#include "ui/bench/PictureCanvas.h"

#include "picturebench/PictureEdits.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

namespace tarvex {

namespace {

const QColor kGround(0x80, 0x80, 0x80);
// The side of the squares at the corners of the crop box, in pixels of the view.
constexpr double kHandle = 10.0;
// Above this zoom the pixels are shown as squares, so that they can be told apart.
constexpr double kPixelZoom = 3.0;

double DefaultWidthFor(const QImage& image) {
    return std::max(2.0, image.width() / 150.0);
}

} // namespace

PictureCanvas::PictureCanvas(QWidget* parent) : QAbstractScrollArea(parent) {
    setObjectName(QStringLiteral("pictureCanvas"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(160, 120);
    viewport()->setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    horizontalScrollBar()->setSingleStep(24);
    verticalScrollBar()->setSingleStep(24);
    image_ = EmptyCanvas();
}

void PictureCanvas::SetImage(const QImage& image) {
    const bool resized = image.size() != image_.size();
    image_ = image;
    scaled_ = QImage();
    scaledZoom_ = 0;
    if (tool_ == Tool::Crop) {
        cropBox_ = resized ? LargestCrop(image_.size()) : FitCropBox(cropBox_, image_.size());
        emit CropBoxChanged(cropBox_);
    }
    if (drag_ == Drag::Mark || drag_ == Drag::MoveBox || drag_ == Drag::ResizeBox)
        drag_ = Drag::None;
    Relayout();
    viewport()->update();
}

double PictureCanvas::FitZoom() const {
    if (image_.isNull())
        return 1.0;
    const QSize view = viewport()->size() - QSize(2 * kMargin, 2 * kMargin);
    const double zoom = std::min(static_cast<double>(view.width()) / image_.width(),
                                 static_cast<double>(view.height()) / image_.height());
    return std::clamp(zoom, kMinZoom, 4.0);
}

double PictureCanvas::Zoom() const {
    return fitting_ ? FitZoom() : zoom_;
}

void PictureCanvas::ZoomToFit() {
    fitting_ = true;
    Relayout();
    viewport()->update();
}

void PictureCanvas::SetZoom(double zoom) {
    ZoomAround(zoom, QRectF(viewport()->rect()).center());
}

void PictureCanvas::ZoomAround(double zoom, QPointF viewportPoint) {
    const QPointF held = ToPicture(viewportPoint);
    fitting_ = false;
    zoom_ = std::clamp(zoom, kMinZoom, kMaxZoom);
    Relayout();
    // The scroll bars are set so that the held point of the picture is under the view point
    // again (as near as they can: at an edge the picture goes no further).
    const double left = kMargin + held.x() * zoom_ - viewportPoint.x();
    const double top = kMargin + held.y() * zoom_ - viewportPoint.y();
    horizontalScrollBar()->setValue(static_cast<int>(std::lround(left)));
    verticalScrollBar()->setValue(static_cast<int>(std::lround(top)));
    viewport()->update();
}

void PictureCanvas::ZoomIn() {
    SetZoom(Zoom() * kZoomStep);
}

void PictureCanvas::ZoomOut() {
    SetZoom(Zoom() / kZoomStep);
}

void PictureCanvas::ZoomActual() {
    SetZoom(1.0);
}

void PictureCanvas::Relayout() {
    const QSize view = viewport()->size();
    if (fitting_) {
        horizontalScrollBar()->setRange(0, 0);
        verticalScrollBar()->setRange(0, 0);
    } else {
        const int width = static_cast<int>(std::ceil(image_.width() * zoom_)) + 2 * kMargin;
        const int height = static_cast<int>(std::ceil(image_.height() * zoom_)) + 2 * kMargin;
        horizontalScrollBar()->setRange(0, std::max(0, width - view.width()));
        verticalScrollBar()->setRange(0, std::max(0, height - view.height()));
        horizontalScrollBar()->setPageStep(view.width());
        verticalScrollBar()->setPageStep(view.height());
    }
    NoteZoom();
}

void PictureCanvas::NoteZoom() {
    const double zoom = Zoom();
    if (zoom != notedZoom_) {
        notedZoom_ = zoom;
        emit ZoomChanged(zoom);
    }
}

QRectF PictureCanvas::PictureRect() const {
    const double zoom = Zoom();
    const QSizeF shown(image_.width() * zoom, image_.height() * zoom);
    const QSizeF view = viewport()->size();
    // A picture smaller than the view lies in its middle; a larger one where it is scrolled.
    // (On whole pixels of the view, so that the picture is drawn without blur.)
    const double left = shown.width() + 2 * kMargin <= view.width() || fitting_
                            ? std::floor((view.width() - shown.width()) / 2)
                            : kMargin - horizontalScrollBar()->value();
    const double top = shown.height() + 2 * kMargin <= view.height() || fitting_
                           ? std::floor((view.height() - shown.height()) / 2)
                           : kMargin - verticalScrollBar()->value();
    return {QPointF(left, top), shown};
}

QPointF PictureCanvas::ToPicture(QPointF viewportPoint) const {
    const QRectF shown = PictureRect();
    const double zoom = Zoom();
    return (viewportPoint - shown.topLeft()) / zoom;
}

QPointF PictureCanvas::ToViewport(QPointF picturePoint) const {
    return PictureRect().topLeft() + picturePoint * Zoom();
}

QPointF PictureCanvas::Clamped(QPointF picturePoint) const {
    return {std::clamp(picturePoint.x(), 0.0, static_cast<double>(image_.width())),
            std::clamp(picturePoint.y(), 0.0, static_cast<double>(image_.height()))};
}

void PictureCanvas::SetTool(Tool tool) {
    if (tool == tool_)
        return;
    tool_ = tool;
    drag_ = Drag::None;
    if (tool_ == Tool::Crop) {
        cropBox_ = LargestCrop(image_.size());
        emit CropBoxChanged(cropBox_);
    }
    UpdateCursor(viewport()->mapFromGlobal(QCursor::pos()));
    viewport()->update();
}

void PictureCanvas::SetCropBox(const QRectF& wanted) {
    cropBox_ = FitCropBox(wanted, image_.size());
    emit CropBoxChanged(cropBox_);
    viewport()->update();
}

void PictureCanvas::SetMarkStyle(const QColor& colour, double width) {
    markColour_ = colour;
    markWidth_ = width;
}

void PictureCanvas::SetPreview(const QImage& preview, bool withGrid) {
    preview_ = preview;
    previewGrid_ = withGrid;
    viewport()->update();
}

void PictureCanvas::ClearPreview() {
    preview_ = QImage();
    viewport()->update();
}

void PictureCanvas::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    Relayout();
}

void PictureCanvas::scrollContentsBy(int /*dx*/, int /*dy*/) {
    viewport()->update();
}

bool PictureCanvas::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave)
        emit PointerMoved(QPoint(), false);
    return QAbstractScrollArea::viewportEvent(event);
}

void PictureCanvas::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), kGround);
    PaintPicture(painter);
    if (tool_ == Tool::Crop && preview_.isNull())
        PaintCropBox(painter);
    if (drag_ == Drag::Mark)
        PaintMark(painter);
}

void PictureCanvas::PaintPicture(QPainter& painter) const {
    const QRectF shown = PictureRect();
    // A soft shadow lifts the picture off the ground.
    painter.fillRect(shown.translated(3, 3), QColor(0, 0, 0, 50));
    painter.fillRect(shown.translated(1, 1), QColor(0, 0, 0, 60));
    if (!preview_.isNull()) {
        // The adjusted picture fills the picture's place (it may be a little smaller).
        const QSizeF size = QSizeF(preview_.size()).scaled(shown.size(), Qt::KeepAspectRatio);
        const QRectF target(shown.center() - QPointF(size.width() / 2, size.height() / 2), size);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(target, preview_);
        if (previewGrid_) {
            constexpr int kCells = 8;
            painter.setPen(QPen(QColor(255, 255, 255, 140), 1));
            for (int line = 1; line < kCells; ++line) {
                const double x = target.left() + target.width() * line / kCells;
                const double y = target.top() + target.height() * line / kCells;
                painter.drawLine(QPointF(x, target.top()), QPointF(x, target.bottom()));
                painter.drawLine(QPointF(target.left(), y), QPointF(target.right(), y));
            }
        }
        return;
    }
    const double zoom = Zoom();
    if (zoom < 1.0) {
        // Smaller than the picture: scaled once, smoothly, and kept for the next paints.
        if (scaled_.isNull() || scaledZoom_ != zoom) {
            const QSize size(std::max(1, static_cast<int>(std::lround(image_.width() * zoom))),
                             std::max(1, static_cast<int>(std::lround(image_.height() * zoom))));
            scaled_ = image_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            scaledZoom_ = zoom;
        }
        painter.drawImage(QRectF(shown.topLeft(), QSizeF(scaled_.size())), scaled_);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom < kPixelZoom);
    painter.drawImage(shown, image_);
}

QRectF PictureCanvas::CropBoxInView() const {
    return {ToViewport(QPointF(cropBox_.topLeft())),
            ToViewport(QPointF(cropBox_.x() + cropBox_.width(), cropBox_.y() + cropBox_.height()))};
}

void PictureCanvas::PaintCropBox(QPainter& painter) const {
    const QRectF box = CropBoxInView();
    // What the crop takes away is darkened.
    QPainterPath outside;
    outside.setFillRule(Qt::OddEvenFill);
    outside.addRect(PictureRect());
    outside.addRect(box);
    painter.fillPath(outside, QColor(0, 0, 0, 150));
    // Thirds, to place the figure by.
    painter.setPen(QPen(QColor(255, 255, 255, 90), 1));
    for (int third = 1; third < 3; ++third) {
        const double x = box.left() + box.width() * third / 3;
        const double y = box.top() + box.height() * third / 3;
        painter.drawLine(QPointF(x, box.top()), QPointF(x, box.bottom()));
        painter.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 150), 3));
    painter.drawRect(box);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.drawRect(box);
    painter.setPen(QPen(QColor(0x33, 0x33, 0x33), 1));
    painter.setBrush(Qt::white);
    for (const QPointF corner :
         {box.topLeft(), box.topRight(), box.bottomRight(), box.bottomLeft()})
        painter.drawRect(
            QRectF(corner - QPointF(kHandle / 2, kHandle / 2), QSizeF(kHandle, kHandle)));
    // The size the picture will have, in the box's corner.
    const QString size =
        QStringLiteral("%1 \u00d7 %2").arg(cropBox_.width()).arg(cropBox_.height());
    const QFontMetricsF metrics(font());
    const QRectF label(box.topLeft() + QPointF(10, 10),
                       QSizeF(metrics.horizontalAdvance(size) + 14, metrics.height() + 6));
    if (label.right() < box.right() - 6 && label.bottom() < box.bottom() - 6) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 170));
        painter.drawRoundedRect(label, 4, 4);
        painter.setPen(Qt::white);
        painter.drawText(label, Qt::AlignCenter, size);
    }
}

void PictureCanvas::PaintMark(QPainter& painter) const {
    // Drawn as the edit will draw it, in pixels of the picture.
    painter.save();
    painter.translate(PictureRect().topLeft());
    painter.scale(Zoom(), Zoom());
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = markWidth_ > 0 ? markWidth_ : DefaultWidthFor(image_);
    painter.setPen(QPen(markColour_, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QLineF line(markFrom_, markTo_);
    if (tool_ != Tool::Arrow || line.length() < 0.5) {
        painter.drawLine(line);
        painter.restore();
        return;
    }
    const double length = line.length();
    const double headLength = std::min(length, std::max(10.0, 4.0 * width));
    const QPointF along = (markTo_ - markFrom_) / length;
    const QPointF across(-along.y(), along.x());
    const QPointF base = markTo_ - along * headLength;
    painter.drawLine(QLineF(markFrom_, base + along * std::min(width / 2, headLength / 2)));
    painter.setPen(Qt::NoPen);
    painter.setBrush(markColour_);
    const double half = headLength * 0.5;
    painter.drawPolygon(QPolygonF({markTo_, base + across * half, base - across * half}));
    painter.restore();
}

} // namespace tarvex
