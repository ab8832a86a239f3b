#include "Drawing.h"

#include <algorithm>
#include <cmath>

namespace tarvex::media {

QRectF Shape::Bounds() const {
    QRectF r;
    const double pad = radii.isEmpty() ? 0 : *std::max_element(radii.begin(), radii.end());
    for (const QPointF& p : points)
        r = r.united(QRectF(p.x() - pad, p.y() - pad, 2 * pad, 2 * pad));
    if (nose)
        r = r.united(QRectF(*nose, QSizeF(0.01, 0.01)));
    return r;
}

void Drawing::SortByDepth() {
    // Depths within a few centimetres count as the same layer; the rank orders a layer.
    auto layer = [](const Shape& s) { return std::lround(s.depth / 6.0); };
    std::stable_sort(body.begin(), body.end(), [&](const Shape& a, const Shape& b) {
        if (layer(a) != layer(b))
            return layer(a) < layer(b);
        return a.rank < b.rank;
    });
}

QRectF Drawing::Bounds() const {
    QRectF r;
    for (const auto* list : {&props, &body})
        for (const Shape& s : *list)
            r = r.united(s.Bounds());
    for (const auto& arrow : arrows)
        for (const QPointF& p : arrow)
            r = r.united(QRectF(p.x() - 3, p.y() - 3, 6, 6));
    if (floor)
        r = r.united(QRectF(r.left(), *floor - 2, r.width(), 2));
    return r;
}

QVector<QPointF> ConvexHull(QVector<QPointF> p) {
    std::sort(p.begin(), p.end(), [](const QPointF& a, const QPointF& b) {
        return a.x() < b.x() || (a.x() == b.x() && a.y() < b.y());
    });
    if (p.size() < 3)
        return p;
    auto cross = [](const QPointF& o, const QPointF& a, const QPointF& b) {
        return (a.x() - o.x()) * (b.y() - o.y()) - (a.y() - o.y()) * (b.x() - o.x());
    };
    QVector<QPointF> hull(2 * p.size());
    qsizetype k = 0;
    for (qsizetype i = 0; i < p.size(); ++i) {
        while (k >= 2 && cross(hull[k - 2], hull[k - 1], p[i]) <= 1e-9)
            --k;
        hull[k++] = p[i];
    }
    for (qsizetype i = p.size() - 2, t = k + 1; i >= 0; --i) {
        while (k >= t && cross(hull[k - 2], hull[k - 1], p[i]) <= 1e-9)
            --k;
        hull[k++] = p[i];
    }
    hull.resize(k - 1);
    return hull;
}

} // namespace tarvex::media
