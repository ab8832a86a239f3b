#include "Props.h"

#include <algorithm>
#include <limits>

namespace tarvex::media {

namespace {

using Surfaces = std::vector<SurfacePoint>;

template <typename Axis> Extent Along(const Surfaces& s, Axis axis) {
    Extent e;
    for (const SurfacePoint& p : s)
        e.Add(axis(p.p), p.r);
    return e;
}

Box GroundBox(const Ground& g, double f0, double f1, double u0, double u1, double l0, double l1,
              QColor fill) {
    const Vec3 a = g.At(f0, u0, l0), b = g.At(f1, u1, l1);
    return {{std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)},
            {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)},
            fill};
}

const Skeleton::Limbs* ForemostHand(const Skeleton& s, const Ground& g) {
    return g.F(s.side[kLeft].hand) >= g.F(s.side[kRight].hand) ? &s.side[kLeft] : &s.side[kRight];
}

std::vector<Box> Chair(const Ground& g) {
    const QColor c = ink::kPropFill;
    std::vector<Box> b;
    for (double l : {-20.0, 20.0})
        for (double f : {-22.0, 22.0})
            b.push_back(GroundBox(g, f - 2, f + 2, 0, 41, l - 2, l + 2, c));
    b.push_back(GroundBox(g, -22, 24, 41, 45, -22, 22, c));
    b.push_back(GroundBox(g, -26, -22, 41, 92, -22, 22, c));
    return b;
}

std::vector<Box> Table(const Ground& g, const Placed& at, const Surfaces& s) {
    const QColor c = ink::kLargePropFill;
    const double top = place::kTableTop;
    double f0 = -80, f1 = 20;
    if (at.posture->rest != Rest::Seat) {
        const Extent e = Along(s, [&](const Vec3& v) { return g.F(v); });
        const double grow = std::max(0.0, 190 - (e.hi - e.lo)) / 2;
        f0 = e.lo - 10 - grow;
        f1 = e.hi + 10 + grow;
    }
    std::vector<Box> b;
    for (double l : {-30.0, 30.0})
        for (double f : {f0 + 8, f1 - 8})
            b.push_back(GroundBox(g, f - 2.5, f + 2.5, 0, top - 7, l - 2.5, l + 2.5, c));
    b.push_back(GroundBox(g, f0, f1, top - 7, top, -35, 35, c));
    return b;
}

// A counter (or, standing, a table) in front of the figure with its top at the hands.
std::vector<Box> Counter(const Ground& g, const Placed& at, const Surfaces& s, bool table,
                         FixedProps& fixed) {
    const Skeleton& k = at.world;
    const bool front = at.posture->front;
    // Seen from the front, the counter stands beside the figure (to the picture's right).
    auto reach = [&](const Vec3& v) { return front ? g.L(v) : g.F(v); };
    const Skeleton::Limbs& hand =
        front
            ? (g.L(k.side[kLeft].hand) >= g.L(k.side[kRight].hand) ? k.side[kLeft] : k.side[kRight])
            : *ForemostHand(k, g);
    const double handUp = g.U(hand.hand) - dims::kHandR;
    double top = 92, start = Along(s, reach).hi + 5;
    if (reach(hand.hand) > reach(hand.shoulder) + 8 && handUp > 40 && handUp < 160) {
        top = handUp;
        start = reach(hand.hand) - 7;
        if (!front) {
            fixed.holdFace = reach(hand.hand);
            fixed.holdTop = top;
        }
    }
    auto box = [&](double a0, double a1, double u0, double u1, double b0, double b1) {
        return front ? GroundBox(g, b0, b1, u0, u1, a0, a1, ink::kLargePropFill)
                     : GroundBox(g, a0, a1, u0, u1, b0, b1, ink::kLargePropFill);
    };
    std::vector<Box> b;
    if (table) {
        b.push_back(box(start + 4, start + 8, 0, top - 4, -26, -22));
        b.push_back(box(start + 52, start + 56, 0, top - 4, -26, -22));
    } else {
        b.push_back(box(start + 5, start + 60, 0, top - 4, -45, 45));
    }
    b.push_back(box(start, start + 62, top - 4, top, -50, 50));
    return b;
}

std::vector<Box> Wall(const Ground& g, const Placed& at, const Surfaces& s, FixedProps& fixed) {
    const QColor c = ink::kLargePropFill;
    const Extent up = Along(s, [&](const Vec3& v) { return g.U(v); });
    const double top = up.hi + 25;
    if (at.posture->lying) { // at the feet's end
        const double f = Along(s, [&](const Vec3& v) { return g.F(v); }).hi;
        return {GroundBox(g, f, f + 10, 0, top, -70, 70, c)};
    }
    const Skeleton::Limbs& hand = *ForemostHand(at.world, g);
    if (!at.posture->front && g.F(hand.hand) > g.F(hand.shoulder) + 20 &&
        g.U(hand.hand) > g.U(at.world.pelvis)) { // the hands lean on it: it is in front
        const double f = g.F(hand.hand) + dims::kHandR;
        fixed.wallFace = f;
        fixed.wallInFront = true;
        return {GroundBox(g, f, f + 10, 0, top, -70, 70, c)};
    }
    const double f = Along(s, [&](const Vec3& v) { return g.F(v); }).lo;
    fixed.wallFace = f;
    return {GroundBox(g, f - 10, f, 0, top, -70, 70, c)};
}

std::vector<Box> Step(const Ground& g, const Placed& at, FixedProps& fixed) {
    const Skeleton& k = at.world;
    auto sole = [&](const Skeleton::Limbs& l) {
        return std::min(g.U(l.heel), g.U(l.toe)) - dims::kFootR;
    };
    const double left = sole(k.side[kLeft]), right = sole(k.side[kRight]);
    std::vector<const Skeleton::Limbs*> feet;
    if (std::abs(left - right) < 8)
        feet = {&k.side[kLeft], &k.side[kRight]};
    else
        feet = {left > right ? &k.side[kLeft] : &k.side[kRight]};
    Extent f;
    double top = std::numeric_limits<double>::max();
    for (const Skeleton::Limbs* l : feet) {
        f.Add(g.F(l->heel), 6);
        f.Add(g.F(l->toe), 6);
        top = std::min(top, sole(*l));
    }
    const double l = g.L(at.world.pelvis);
    fixed.stepMiddle = (f.lo + f.hi) / 2;
    fixed.stepTop = top;
    if (feet.size() == 1) { // one foot up on it: make it deep enough to stand on
        f.lo = std::min(f.lo, f.hi - 34);
        fixed.stepMiddle = (f.lo + f.hi) / 2;
    }
    if (at.posture->front)
        return {GroundBox(g, f.lo - 10, f.hi + 10, 0, top, l - 30, l + 30, ink::kPropFill)};
    return {GroundBox(g, f.lo, f.hi, 0, top, -30, 30, ink::kPropFill)};
}

} // namespace

bool IsFixed(PropKind kind) {
    switch (kind) {
    case PropKind::Chair:
    case PropKind::Table:
    case PropKind::Mat:
    case PropKind::Wall:
    case PropKind::Counter:
    case PropKind::Step:
    case PropKind::Door:
        return true;
    default:
        return false;
    }
}

void AddFixedProp(FixedProps& fixed, PropKind kind, const Placed& at, const PoseLine& view) {
    if (fixed.boxes.count(kind))
        return;
    const Ground g{*at.posture};
    const Surfaces s = Surface(at.world);
    std::vector<Box>& boxes = fixed.boxes[kind];
    switch (kind) {
    case PropKind::Chair:
        boxes = Chair(g);
        break;
    case PropKind::Table:
        boxes = at.posture->lying || at.posture->rest == Rest::Seat
                    ? Table(g, at, s)
                    : Counter(g, at, s, true, fixed);
        break;
    case PropKind::Mat: {
        const Extent f = Along(s, [&](const Vec3& v) { return g.F(v); });
        const Extent l = Along(s, [&](const Vec3& v) { return g.L(v); });
        // A mat is 60 cm wide under a lying figure, wider than the feet under a standing one.
        const double ml = g.L(at.world.pelvis);
        const bool lying = at.posture->lying;
        boxes = {GroundBox(g, f.lo - 10, f.hi + 10, 0, place::kMatTop, lying ? ml - 30 : l.lo - 15,
                           lying ? ml + 30 : l.hi + 15, ink::kPropFill)};
        break;
    }
    case PropKind::Wall:
        boxes = Wall(g, at, s, fixed);
        break;
    case PropKind::Counter:
        boxes = Counter(g, at, s, false, fixed);
        break;
    case PropKind::Step:
        boxes = Step(g, at, fixed);
        break;
    case PropKind::Door: {
        // The door faces the viewer: in front of a figure seen from the side, beside one
        // seen from the front, on the side away from the band's hand.
        double height = 100;
        bool leftHand = true;
        for (const PropItem& p : view.props)
            if (p.kind == PropKind::Band && (p.a == Point::Door || p.b == Point::Door)) {
                const Point body = p.a == Point::Door ? *p.b : *p.a;
                height = std::clamp(g.U(PointOf(at.world, body, fixed)), 20.0, 190.0);
                leftHand = body == Point::LHand || body == Point::LElbow || body == Point::LKnee ||
                           body == Point::LFoot;
            }
        const Extent x = Along(s, [&](const Vec3& v) { return v.x; });
        const bool toRight = !at.posture->front || !leftHand;
        const double near = toRight ? x.hi + 30 : x.lo - 30;
        const double far = toRight ? near + 75 : near - 75;
        const double back = Along(s, [](const Vec3& v) { return v.z; }).lo - 4;
        Box door{{std::min(near, far), 0, back - 3},
                 {std::max(near, far), 205, back},
                 ink::kLargePropFill,
                 true};
        boxes = {door};
        fixed.doorAnchor = Vec3{near + (toRight ? 2 : -2), height, back};
        break;
    }
    default:
        break;
    }
}

Vec3 PointOf(const Skeleton& s, Point point, const FixedProps& fixed) {
    switch (point) {
    case Point::Head:
        return s.headCentre;
    case Point::LHand:
        return s.side[kLeft].hand;
    case Point::RHand:
        return s.side[kRight].hand;
    case Point::LElbow:
        return s.side[kLeft].elbow;
    case Point::RElbow:
        return s.side[kRight].elbow;
    case Point::LKnee:
        return s.side[kLeft].knee;
    case Point::RKnee:
        return s.side[kRight].knee;
    case Point::LFoot:
        return Lerp(s.side[kLeft].heel, s.side[kLeft].toe, 0.45);
    case Point::RFoot:
        return Lerp(s.side[kRight].heel, s.side[kRight].toe, 0.45);
    case Point::Hips:
        return s.pelvis;
    case Point::Back:
        return s.back;
    case Point::Door:
        return fixed.doorAnchor;
    }
    return {};
}

double PointRadius(Point point) {
    switch (point) {
    case Point::Head:
        return dims::kHeadRadius;
    case Point::LHand:
    case Point::RHand:
        return dims::kHandR;
    case Point::LElbow:
    case Point::RElbow:
        return dims::kUpperArmR;
    case Point::LKnee:
    case Point::RKnee:
        return dims::kThighR;
    case Point::LFoot:
    case Point::RFoot:
        return dims::kFootR;
    case Point::Hips:
    case Point::Back:
        return 12;
    case Point::Door:
        return 1;
    }
    return 1;
}

} // namespace tarvex::media
