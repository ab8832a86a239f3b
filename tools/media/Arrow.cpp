#include "Arrow.h"

#include <cmath>

namespace tarvex::media {

namespace {

double Length(const QPointF& v) {
    return std::hypot(v.x(), v.y());
}

QPointF Unit(const QPointF& v) {
    const double l = Length(v);
    return l > 1e-9 ? v / l : QPointF(1, 0);
}

} // namespace

QVector<QPointF> PathArrow(const QVector<QPointF>& samples, double pointRadius,
                           const QPointF& bodyCentre) {
    double length = 0;
    for (qsizetype i = 1; i < samples.size(); ++i)
        length += Length(samples[i] - samples[i - 1]);
    if (samples.size() < 3 || length < 1.5)
        return {};
    const double offset = pointRadius + 5;
    // The circle through the start, the middle and the end of the way; an arc of it is the
    // arrow's line, or a straight line when the three are (nearly) in a row.
    const QPointF a = samples.first(), m = samples[samples.size() / 2], b = samples.last();
    const QPointF ab = b - a, am = m - a;
    const double chord = Length(ab);
    const double cross = ab.x() * am.y() - ab.y() * am.x();
    const double sagitta = chord > 1e-6 ? std::abs(cross) / chord : Length(am);
    if (chord < 12 || sagitta < 0.06 * chord || sagitta > chord * 0.55) {
        // Straight (or a way that doubles back, which an arc would only muddle): beside the
        // middle of the way, at least 14 cm long.
        const QPointF dir = chord > 1e-6 ? Unit(ab) : Unit(am);
        const QPointF mid = chord > 1e-6 ? (a + b) / 2 : m;
        QPointF normal(-dir.y(), dir.x());
        if (QPointF::dotProduct(normal, mid - bodyCentre) < 0)
            normal = -normal;
        const double half = std::max(7.0, chord * 0.38);
        const QPointF c = mid + normal * (chord < 12 ? offset + 3 : offset);
        return {c - dir * half, c + dir * half};
    }
    // The centre of the circle through a, m and b.
    const double d =
        2 * (a.x() * (m.y() - b.y()) + m.x() * (b.y() - a.y()) + b.x() * (a.y() - m.y()));
    auto sq = [](const QPointF& p) { return p.x() * p.x() + p.y() * p.y(); };
    const QPointF centre(
        (sq(a) * (m.y() - b.y()) + sq(m) * (b.y() - a.y()) + sq(b) * (a.y() - m.y())) / d,
        (sq(a) * (b.x() - m.x()) + sq(m) * (a.x() - b.x()) + sq(b) * (m.x() - a.x())) / d);
    const double radius = Length(a - centre) + offset;
    const double from = std::atan2(a.y() - centre.y(), a.x() - centre.x());
    double sweep = std::atan2(b.y() - centre.y(), b.x() - centre.x()) - from;
    // The way round that passes the middle.
    const double mAt = std::atan2(m.y() - centre.y(), m.x() - centre.x()) - from;
    auto wrap = [](double x) { return std::remainder(x, 2 * M_PI); };
    sweep = wrap(sweep);
    if ((wrap(mAt) > 0) != (sweep > 0))
        sweep += sweep > 0 ? -2 * M_PI : 2 * M_PI;
    QVector<QPointF> arc;
    for (int i = 0; i <= 32; ++i) {
        const double t = from + sweep * (0.1 + 0.82 * i / 32.0);
        arc << centre + QPointF(std::cos(t), std::sin(t)) * radius;
    }
    return arc;
}

QVector<QPointF> PushArrow(const QPointF& point, double pointRadius, double dx, double dy) {
    const QPointF dir(dx, dy);
    const QPointF start = point + dir * (pointRadius + 4);
    return {start, start + dir * 16};
}

} // namespace tarvex::media
