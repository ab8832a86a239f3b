// The arrows of the pictures, in picture centimetres (y up).
#pragma once

#include <QPointF>
#include <QVector>

namespace tarvex::media {

// An arrow beside the path a point follows (curved along an arc, straight along a line),
// on the side away from the body. Empty when the point hardly moves.
QVector<QPointF> PathArrow(const QVector<QPointF>& samples, double pointRadius,
                           const QPointF& bodyCentre);

// A short straight arrow from beside a point in the direction (dx, dy).
QVector<QPointF> PushArrow(const QPointF& point, double pointRadius, double dx, double dy);

} // namespace tarvex::media
