// Painting a drawing with QPainter: dark outlines on white, grey props, a floor line and
// black arrows, at any size with the same look.
#pragma once

#include "Drawing.h"

#include <QImage>
#include <QPainter>

namespace tarvex::media {

// Where the picture centimetres land on an image.
struct Fit {
    double scale = 1; // pixels per centimetre
    QPointF centre;   // the picture centimetre at the middle of the image
    QSize size;       // pixels
    double unit = 1;  // pixels per line unit (1 on a picture 900 pixels wide)

    // Fits the bounds with a margin into an image of the given size.
    static Fit Of(const QRectF& bounds, QSize size);
    QPointF Map(const QPointF& cm) const;
};

void Paint(QPainter& painter, const Drawing& drawing, const Fit& fit);

// An image of the drawing on white.
QImage Render(const Drawing& drawing, const Fit& fit, QImage::Format format);

} // namespace tarvex::media
