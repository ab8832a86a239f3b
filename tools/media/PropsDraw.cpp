// Drawing the props: boxes seen from the viewer's place, and the held things.
#include "Props.h"

namespace tarvex::media {

namespace {

QPointF Flat(const Vec3& v, double tilt) {
    const Projected p = Project(v, tilt);
    return {p.x, p.y};
}

double Depth(const Vec3& v, double tilt) {
    return Project(v, tilt).depth;
}

Shape BoxShape(const Box& b, double tilt) {
    Shape s;
    s.kind = Shape::Kind::Polygon;
    s.prop = true;
    s.fill = b.fill;
    s.line = ink::kProp;
    s.radii = {0.6};
    QVector<QPointF> corners;
    for (double x : {b.lo.x, b.hi.x})
        for (double y : {b.lo.y, b.hi.y})
            for (double z : {b.lo.z, b.hi.z})
                corners << Flat({x, y, z}, tilt);
    s.points = ConvexHull(corners);
    s.depth = Depth((b.lo + b.hi) * 0.5, tilt);
    if (tilt > 0) // the top is seen: outline it
        s.details << QVector<QPointF>{Flat({b.lo.x, b.hi.y, b.hi.z}, tilt),
                                      Flat({b.hi.x, b.hi.y, b.hi.z}, tilt)};
    if (b.door) {
        const double w = b.hi.x - b.lo.x;
        for (auto [y0, y1] : {std::pair{112.0, 190.0}, std::pair{18.0, 96.0}}) {
            const double x0 = b.lo.x + w * 0.18, x1 = b.hi.x - w * 0.18;
            s.details << QVector<QPointF>{
                Flat({x0, y0, b.hi.z}, tilt), Flat({x1, y0, b.hi.z}, tilt),
                Flat({x1, y1, b.hi.z}, tilt), Flat({x0, y1, b.hi.z}, tilt),
                Flat({x0, y0, b.hi.z}, tilt)};
        }
    }
    return s;
}

Shape Disc(const QPointF& centre, double radius, double depth, QColor fill) {
    Shape s;
    s.kind = Shape::Kind::Disc;
    s.prop = true;
    s.points = {centre};
    s.radii = {radius};
    s.fill = fill;
    s.line = ink::kProp;
    s.depth = depth;
    s.rank = 6;
    return s;
}

Shape Strip(const QPointF& a, const QPointF& b, double halfWidth, double depth, QColor fill) {
    Shape s;
    s.kind = Shape::Kind::Line;
    s.prop = true;
    s.points = {a, b};
    s.radii = {halfWidth};
    s.fill = fill;
    s.line = ink::kProp;
    s.depth = depth;
    s.rank = 6;
    return s;
}

Vec3 Unit(const Vec3& v) {
    const double l = v.Length();
    return l > 1e-9 ? v * (1.0 / l) : Vec3{0, 1, 0};
}

bool IsHand(Point p) {
    return p == Point::LHand || p == Point::RHand;
}
bool IsFoot(Point p) {
    return p == Point::LFoot || p == Point::RFoot;
}
bool IsKnee(Point p) {
    return p == Point::LKnee || p == Point::RKnee;
}
const Skeleton::Limbs& LimbOf(const Skeleton& s, Point p) {
    const bool left =
        p == Point::LHand || p == Point::LFoot || p == Point::LKnee || p == Point::LElbow;
    return s.side[left ? kLeft : kRight];
}

} // namespace

void DrawFixedProps(Drawing& d, const FixedProps& fixed, const std::vector<PropKind>& kinds,
                    double tilt) {
    std::vector<Shape> shapes;
    for (PropKind kind : kinds) {
        const auto it = fixed.boxes.find(kind);
        if (it == fixed.boxes.end())
            continue;
        for (const Box& b : it->second) {
            shapes.push_back(BoxShape(b, tilt));
            if (tilt > 0 && kind == PropKind::Mat) // seen from above, a mat is a large area
                shapes.back().fill = ink::kLargePropFill;
            if (b.door) {
                const Vec3 knob{fixed.doorAnchor.x + (b.lo.x < fixed.doorAnchor.x ? -6 : 6), 96,
                                b.hi.z};
                Shape k = Disc(Flat(knob, tilt), 2.5, Depth(knob, tilt) + 1, ink::kPropFill);
                shapes.push_back(k);
            }
        }
    }
    std::stable_sort(shapes.begin(), shapes.end(),
                     [](const Shape& a, const Shape& b) { return a.depth < b.depth; });
    d.props.insert(d.props.end(), shapes.begin(), shapes.end());
}

void DrawHeldProps(Drawing& d, const std::vector<PropItem>& props, const Placed& at,
                   const FixedProps& fixed) {
    const Skeleton& s = at.world;
    const double tilt = at.posture->tilt;
    const Vec3 up = at.posture->up;
    for (const PropItem& p : props) {
        if (IsFixed(p.kind) || !p.a)
            continue;
        const Vec3 a = PointOf(s, *p.a, fixed);
        const double ra = PointRadius(*p.a);
        switch (p.kind) {
        case PropKind::Band:
        case PropKind::Towel:
            if (p.b) {
                const Vec3 b = PointOf(s, *p.b, fixed);
                const bool band = p.kind == PropKind::Band;
                d.body.push_back(Strip(Flat(a, tilt), Flat(b, tilt), band ? 0.9 : 2.2,
                                       std::max(Depth(a, tilt), Depth(b, tilt)) + 0.5,
                                       band ? QColor(0x8a, 0x8a, 0x8a) : QColor(0xe6, 0xe6, 0xe6)));
            } else { // a rolled towel under the point
                const Vec3 c = a - up * (ra + 5);
                d.body.push_back(
                    Disc(Flat(c, tilt), 5, Depth(a, tilt) - 1, QColor(0xe6, 0xe6, 0xe6)));
            }
            break;
        case PropKind::Ball: {
            double r = 11;
            Vec3 c = a;
            if (IsHand(*p.a))
                c = a + Unit(a - LimbOf(s, *p.a).wrist) * (r - 2);
            else if (IsFoot(*p.a))
                c = a - up * (r + dims::kFootR);
            else if (*p.a == Point::Back || *p.a == Point::Hips) {
                r = 16;
                c = *p.a == Point::Back ? a + Unit(a - s.trunkMid) * (r + 2) : a - up * (r + 10);
            }
            d.body.push_back(Disc(Flat(c, tilt), r, Depth(a, tilt) - 2, ink::kPropFill));
            break;
        }
        case PropKind::Weight:
            if (IsHand(*p.a)) { // a dumbbell across the hand
                const Vec3 axis = LimbOf(s, *p.a).handFrame * Vec3{0, 0, 1};
                const Vec3 e0 = a - axis * 7, e1 = a + axis * 7;
                const double depth = Depth(a, tilt) + 0.5;
                d.body.push_back(Strip(Flat(e0, tilt), Flat(e1, tilt), 1.3, depth, ink::kProp));
                for (const Vec3& e : {e0, e1})
                    d.body.push_back(Disc(Flat(e, tilt), 4.5, depth + Depth(e - a, 0) * 0.01,
                                          QColor(0x80, 0x80, 0x80)));
            } else if (IsFoot(*p.a) || IsKnee(*p.a)) { // a cuff weight above the ankle
                const Skeleton::Limbs& l = LimbOf(s, *p.a);
                const Vec3 c0 = Lerp(l.ankle, l.knee, 0.08), c1 = Lerp(l.ankle, l.knee, 0.25);
                Shape cuff = Strip(Flat(c0, tilt), Flat(c1, tilt), dims::kShankR + 1.8,
                                   Depth(l.ankle, tilt) + 0.5, QColor(0x80, 0x80, 0x80));
                d.body.push_back(cuff);
            } else {
                d.body.push_back(Disc(Flat(a, tilt), 5, Depth(a, tilt) + 0.5, ink::kPropFill));
            }
            break;
        case PropKind::Pillow: {
            const Vec3 c = a - up * (ra + 4);
            const Ground g{*at.posture};
            Box b{c - g.At(18, 4.5, 20) * 1.0, c + g.At(18, 4.5, 20) * 1.0,
                  QColor(0xea, 0xea, 0xea)};
            const Vec3 lo = b.lo, hi = b.hi;
            b.lo = {std::min(lo.x, hi.x), std::min(lo.y, hi.y), std::min(lo.z, hi.z)};
            b.hi = {std::max(lo.x, hi.x), std::max(lo.y, hi.y), std::max(lo.z, hi.z)};
            Shape pillow = BoxShape(b, tilt);
            pillow.radii = {3.5};
            d.props.push_back(pillow);
            break;
        }
        default:
            break;
        }
    }
}

} // namespace tarvex::media
