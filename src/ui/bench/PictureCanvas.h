#pragma once

#include <QAbstractScrollArea>
#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRect>
#include <QRectF>

namespace tarvex {

// The picture of Picture Bench on a neutral grey ground: fitted to the view, or at a zoom
// of its own with scroll bars when it is larger than the view. The tools work on it with
// the mouse: the crop box, the arrow and the line (dragged from tail to head) and the text
// (a click where it goes). The canvas changes no picture itself: it tells what the user
// chose, in pixels of the picture, and the window makes the edit.
class PictureCanvas : public QAbstractScrollArea {
    Q_OBJECT
public:
    enum class Tool { None, Crop, Arrow, Line, Text };

    static constexpr double kMinZoom = 0.05;
    static constexpr double kMaxZoom = 16.0;
    static constexpr double kZoomStep = 1.25;
    // The grey ground left round a fitted picture, in pixels of the view.
    static constexpr int kMargin = 14;

    explicit PictureCanvas(QWidget* parent = nullptr);

    void SetImage(const QImage& image);
    const QImage& Image() const { return image_; }

    // The scale of the picture on the screen: shown pixels per picture pixel.
    double Zoom() const;
    bool IsFitting() const { return fitting_; }
    // Fits the picture to the view (and keeps it fitted as the view changes size).
    void ZoomToFit();
    // Sets the scale, keeping the point of the picture in the middle of the view there.
    void SetZoom(double zoom);
    // Sets the scale, keeping the point of the picture under the view point there.
    void ZoomAround(double zoom, QPointF viewportPoint);
    void ZoomIn();
    void ZoomOut();
    void ZoomActual();

    // Where the picture lies in the viewport, and the mapping between the viewport's
    // coordinates and the picture's pixels.
    QRectF PictureRect() const;
    QPointF ToPicture(QPointF viewportPoint) const;
    QPointF ToViewport(QPointF picturePoint) const;

    void SetTool(Tool tool);
    Tool CurrentTool() const { return tool_; }
    // The crop box, in pixels of the picture: 4:3 and inside the picture (FitCropBox).
    QRect CropBox() const { return cropBox_; }
    void SetCropBox(const QRectF& wanted);
    // The colour and width of the arrow or line being dragged (a width of 0 draws as the
    // picture's marks are drawn by default).
    void SetMarkStyle(const QColor& colour, double width);

    // Shows another picture in the picture's place while an adjustment is being chosen,
    // with a grid over it to judge upright lines by when asked.
    void SetPreview(const QImage& preview, bool withGrid = false);
    void ClearPreview();
    bool HasPreview() const { return !preview_.isNull(); }

signals:
    // The pointer is over the picture at this pixel, or has left it (onPicture false).
    void PointerMoved(QPoint picturePixel, bool onPicture);
    void ZoomChanged(double zoom);
    void CropBoxChanged(QRect box);
    // The crop box was double-clicked: crop to it.
    void CropAccepted();
    // An arrow or a line was dragged, in pixels of the picture.
    void LineDrawn(QPointF from, QPointF to);
    // The text tool was clicked at this point of the picture.
    void TextRequested(QPointF at);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Drag { None, Pan, MoveBox, ResizeBox, Mark };

    double FitZoom() const;
    void Relayout();
    void NoteZoom();
    QPointF Clamped(QPointF picturePoint) const;
    QRectF CropBoxInView() const;
    // The corner of the crop box near the view point (0 top left, then clockwise), or -1.
    int CornerAt(QPointF viewportPoint) const;
    Drag CropDragAt(QPointF viewportPoint, QPointF* anchor) const;
    void ResizeBoxTo(QPointF picturePoint);
    void UpdateCursor(QPointF viewportPoint);
    void PaintPicture(QPainter& painter) const;
    void PaintCropBox(QPainter& painter) const;
    void PaintMark(QPainter& painter) const;

    QImage image_;
    QImage preview_;
    bool previewGrid_ = false;
    mutable QImage scaled_; // the picture at the zoom, when smaller than the picture
    mutable double scaledZoom_ = 0;
    bool fitting_ = true;
    double zoom_ = 1.0;
    double notedZoom_ = 0;

    Tool tool_ = Tool::None;
    QRect cropBox_;
    QColor markColour_ = Qt::black;
    double markWidth_ = 0;

    Drag drag_ = Drag::None;
    bool dragMoved_ = false;
    QPointF pressView_;
    QPointF pressPicture_;
    QPointF anchor_;
    QRect boxAtPress_;
    QPoint scrollAtPress_;
    QPointF markFrom_;
    QPointF markTo_;
};

} // namespace tarvex
