#include "Render.h"

#include <QPainterPath>
#include <cmath>

namespace tarvex::media {

namespace {

constexpr double kFigureLine = 4.8; // outline of the figure, in line units
constexpr double kPropLine = 3.0;
constexpr double kArrowLine = 6.5;
constexpr double kArrowHead = 30;
constexpr double kArrowHalfWidth = 14;

QPen RoundPen(const QColor& colour, double width) {
    return QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void PaintTube(QPainter& p, const Shape& s, const Fit& f, double line) {
    for (bool outline : {true, false}) {
        for (qsizetype i = 1; i < s.points.size(); ++i) {
            const double w = 2 * s.radii.value(i - 1, s.radii.last()) * f.scale;
            p.setPen(RoundPen(outline ? s.line : s.fill, outline ? w + 2 * line : w));
            p.drawLine(f.Map(s.points[i - 1]), f.Map(s.points[i]));
        }
    }
}

void PaintPolygon(QPainter& p, const Shape& s, const Fit& f, double line) {
    QPainterPath path;
    path.moveTo(f.Map(s.points.value(0)));
    for (qsizetype i = 1; i < s.points.size(); ++i)
        path.lineTo(f.Map(s.points[i]));
    path.closeSubpath();
    const double w = 2 * s.radii.value(0) * f.scale;
    p.setBrush(s.line);
    p.setPen(RoundPen(s.line, w + 2 * line));
    p.drawPath(path);
    p.setBrush(s.fill);
    p.setPen(w > 0.01 ? RoundPen(s.fill, w) : Qt::NoPen);
    p.drawPath(path);
}

void PaintHead(QPainter& p, const Shape& s, const Fit& f, double line) {
    const QPointF c = f.Map(s.points[0]);
    const double r = s.radii[0] * f.scale;
    p.setPen(RoundPen(s.line, line));
    if (s.nose) { // a small nose, outlined, before the head covers its root
        const QPointF tip = f.Map(*s.nose);
        const QPointF d = (tip - c) / std::hypot(tip.x() - c.x(), tip.y() - c.y());
        const QPointF n(-d.y(), d.x());
        p.setBrush(s.fill);
        p.drawPolygon(QPolygonF{c + d * (r * 0.8) - n * (r * 0.38), tip,
                                c + d * (r * 0.85) + n * (r * 0.05)});
    }
    p.setPen(Qt::NoPen);
    p.setBrush(s.fill);
    p.drawEllipse(c, r, r);
    // The hair: the part of the head on the side of its back and top.
    const double hx = s.hair.x(), hy = -s.hair.y(); // image y grows downwards
    const double reach = std::hypot(hx, hy);
    QPainterPath hair;
    if (reach > 0.25) {
        const double at = std::atan2(-hy, hx) * 180 / M_PI; // Qt angles are counter-clockwise
        const double half = 55 + 35 * (1 - std::min(1.0, reach));
        const QRectF box(c.x() - r, c.y() - r, 2 * r, 2 * r);
        hair.arcMoveTo(box, at - half);
        hair.arcTo(box, at - half, 2 * half);
        hair.closeSubpath();
    } else if (s.hair.isNull() == false) {
        hair.addEllipse(c, r * 0.75, r * 0.75); // the back of the head
    }
    p.setBrush(ink::kHair);
    p.drawPath(hair);
    p.setBrush(Qt::NoBrush);
    p.setPen(RoundPen(s.line, line));
    p.drawEllipse(c, r, r);
    p.setPen(Qt::NoPen);
    p.setBrush(s.line);
    for (const QPointF& e : s.eyes)
        p.drawEllipse(f.Map(e), r * 0.1 + line * 0.3, r * 0.1 + line * 0.3);
}

void PaintArrow(QPainter& p, const QVector<QPointF>& cm, const Fit& f) {
    if (cm.size() < 2)
        return;
    QVector<QPointF> pts;
    for (const QPointF& q : cm)
        pts << f.Map(q);
    const QPointF tip = pts.last();
    // The direction at the tip, from a point a head's length back along the path.
    const double headLength = kArrowHead * f.unit;
    QPointF back = pts.first();
    double run = 0;
    for (qsizetype i = pts.size() - 1; i > 0; --i) {
        run += std::hypot(pts[i].x() - pts[i - 1].x(), pts[i].y() - pts[i - 1].y());
        if (run >= headLength) {
            back = pts[i - 1];
            break;
        }
    }
    const double len = std::hypot(tip.x() - back.x(), tip.y() - back.y());
    if (len < 1e-6)
        return;
    const QPointF d = (tip - back) / len, n(-d.y(), d.x());
    const QPointF base = tip - d * headLength;
    pts.last() = tip - d * (headLength * 0.6);
    const QPolygonF head{tip, base + n * (kArrowHalfWidth * f.unit),
                         base - n * (kArrowHalfWidth * f.unit)};
    for (bool halo : {true, false}) {
        const QColor c = halo ? QColor(Qt::white) : ink::kArrow;
        const double extra = halo ? 5 * f.unit : 0;
        p.setPen(RoundPen(c, kArrowLine * f.unit + 2 * extra));
        p.setBrush(Qt::NoBrush);
        p.drawPolyline(QPolygonF(pts));
        p.setPen(RoundPen(c, 1 + 2 * extra));
        p.setBrush(c);
        p.drawPolygon(head);
    }
}

void PaintShape(QPainter& p, const Shape& s, const Fit& f) {
    const double line = (s.prop ? kPropLine : kFigureLine) * f.unit;
    switch (s.kind) {
    case Shape::Kind::Tube:
    case Shape::Kind::Line:
        PaintTube(p, s, f, line);
        break;
    case Shape::Kind::Polygon:
        PaintPolygon(p, s, f, line);
        break;
    case Shape::Kind::Disc:
        p.setPen(RoundPen(s.line, line));
        p.setBrush(s.fill);
        p.drawEllipse(f.Map(s.points[0]), s.radii[0] * f.scale, s.radii[0] * f.scale);
        break;
    case Shape::Kind::Head:
        PaintHead(p, s, f, line);
        break;
    }
    p.setBrush(Qt::NoBrush);
    p.setPen(RoundPen(s.line, line * 0.7));
    for (const auto& detail : s.details) {
        QPolygonF poly;
        for (const QPointF& q : detail)
            poly << f.Map(q);
        p.drawPolyline(poly);
    }
}

} // namespace

Fit Fit::Of(const QRectF& bounds, QSize size) {
    Fit f;
    f.size = size;
    f.unit = size.width() / 900.0;
    const double margin = 0.06;
    const double w = std::max(bounds.width(), 1.0), h = std::max(bounds.height(), 1.0);
    f.scale = std::min(size.width() * (1 - 2 * margin) / w, size.height() * (1 - 2 * margin) / h);
    f.centre = bounds.center();
    return f;
}

QPointF Fit::Map(const QPointF& cm) const {
    return {size.width() / 2.0 + (cm.x() - centre.x()) * scale,
            size.height() / 2.0 - (cm.y() - centre.y()) * scale};
}

void Paint(QPainter& p, const Drawing& d, const Fit& f) {
    p.setRenderHint(QPainter::Antialiasing);
    if (d.floor) {
        const double y = f.Map(QPointF(0, *d.floor)).y();
        p.setPen(RoundPen(ink::kFloor, kPropLine * f.unit));
        p.drawLine(QPointF(f.size.width() * 0.03, y), QPointF(f.size.width() * 0.97, y));
    }
    for (const Shape& s : d.props)
        PaintShape(p, s, f);
    for (const Shape& s : d.body)
        PaintShape(p, s, f);
    for (const auto& arrow : d.arrows)
        PaintArrow(p, arrow, f);
}

QImage Render(const Drawing& d, const Fit& f, QImage::Format format) {
    QImage image(f.size, format);
    image.fill(Qt::white);
    QPainter p(&image);
    Paint(p, d, f);
    p.end();
    return image;
}

} // namespace tarvex::media
