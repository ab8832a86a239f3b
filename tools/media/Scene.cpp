#include "Scene.h"

#include "Arrow.h"
#include "Figure.h"

#include <algorithm>
#include <limits>

namespace tarvex::media {

namespace {

// The centre of mass of the figure, from rough weights of its parts.
Vec3 CentreOfMass(const Skeleton& k) {
    Vec3 sum = k.headCentre * 8;
    double weight = 8;
    for (const Vec3& p : k.torso) {
        sum = sum + p * 3;
        weight += 3;
    }
    for (const Skeleton::Limbs& l : k.side) {
        const std::pair<Vec3, double> parts[] = {{Lerp(l.shoulder, l.elbow, 0.5), 3},
                                                 {Lerp(l.elbow, l.wrist, 0.5), 2},
                                                 {l.hand, 0.6},
                                                 {Lerp(l.hip, l.knee, 0.5), 10},
                                                 {Lerp(l.knee, l.ankle, 0.5), 4.5},
                                                 {Lerp(l.heel, l.toe, 0.5), 1.5}};
        for (const auto& [p, w] : parts) {
            sum = sum + p * w;
            weight += w;
        }
    }
    return sum * (1 / weight);
}

// A figure lying on the floor (or on hands and knees) rocks, as a stiff body would, about
// the axis across the picture until it rests with its centre of mass as low as it goes:
// a bridge rests on the shoulders and the feet. The turn to add to the posture's.
Mat3 Settle(const Skeleton& turned, const Posture& p) {
    // Kneeling on one knee (the other foot forward) rocks too; on both knees it stays up.
    const Ground g{p};
    const bool oneKnee = p.rest == Rest::Knees && std::abs(g.U(turned.side[kLeft].knee) -
                                                           g.U(turned.side[kRight].knee)) > 10;
    if ((p.rest != Rest::Pelvis && !oneKnee) || p.front || p.tilt != 0)
        return Mat3();
    // Kneeling, only a little: a tall figure would otherwise fall over.
    const double most = p.rest == Rest::Knees ? 12 : 40;
    auto height = [&](double degrees) {
        const Mat3 r = Mat3::RotZ(degrees);
        const Skeleton k = Transformed(turned, r, {});
        double lowest = std::numeric_limits<double>::max();
        for (const SurfacePoint& s : Surface(k))
            lowest = std::min(lowest, g.U(s.p) - s.r);
        return g.U(CentreOfMass(k)) - lowest;
    };
    double best = 0, bestHeight = height(0);
    for (double a = 0.5; a <= most; a += 0.5)
        for (double degrees : {a, -a}) {
            const double h = height(degrees);
            if (h < bestHeight - 0.05) {
                best = degrees;
                bestHeight = h;
            }
        }
    return Mat3::RotZ(best);
}

// The figure of a pose, turned into the world, rocked to rest and moved onto its support;
// the shift comes from the given rule (the posture and props of a view).
Skeleton Rested(const Dofs& dofs, const Posture& posture, const PoseLine& rule,
                const FixedProps& fixed) {
    const Skeleton body = Pose(dofs);
    const Skeleton turned = Transformed(body, posture.toWorld, {});
    const Mat3 turn = Settle(turned, posture) * posture.toWorld;
    const Skeleton settled = Transformed(body, turn, {});
    return Transformed(body, turn, RestingShift(settled, posture, rule, fixed));
}

QPointF Flat(const Vec3& v, double tilt) {
    const Projected p = Project(v, tilt);
    return {p.x, p.y};
}

} // namespace

Vec3 RestingShift(const Skeleton& k, const Posture& p, const PoseLine& v, const FixedProps& fixed) {
    const Ground g{p};
    const std::vector<SurfacePoint> surface = Surface(k);
    double lowest = std::numeric_limits<double>::max();
    Extent along;
    for (const SurfacePoint& s : surface) {
        lowest = std::min(lowest, g.U(s.p) - s.r);
        along.Add(g.F(s.p), s.r);
    }
    double support = 0;
    if (v.Has(PropKind::Table) && (p.lying || p.rest == Rest::Seat))
        support = place::kTableTop;
    else if (v.Has(PropKind::Mat))
        support = place::kMatTop;
    double up = 0, fwd = 0;
    switch (p.rest) {
    case Rest::Seat:
        up = (support > 0 ? support : place::kSeatTop) + dims::kThighR - g.U(k.pelvis);
        fwd = -place::kSeatedPelvis - g.F(k.pelvis);
        break;
    case Rest::Pelvis:
        up = support - lowest;
        fwd = -g.F(k.pelvis);
        break;
    case Rest::Knees:
    case Rest::Feet: {
        // What touches the ground stays where it is (a kneeling figure's knees); in front
        // of a chair when there is one.
        double sum = 0;
        int count = 0;
        for (const SurfacePoint& s : surface)
            if (g.U(s.p) - s.r < lowest + 2) {
                sum += g.F(s.p);
                ++count;
            }
        double middle = sum / count;
        if (p.rest == Rest::Knees) {
            const Skeleton::Limbs &l = k.side[kLeft], &r = k.side[kRight];
            const double gap = g.U(l.knee) - g.U(r.knee);
            middle = std::abs(gap) < 3 ? (g.F(l.knee) + g.F(r.knee)) / 2
                                       : g.F(gap < 0 ? l.knee : r.knee);
        }
        fwd = (v.Has(PropKind::Chair) ? place::kStandBeforeChair : 0) - middle;
        if (v.Has(PropKind::Step)) {
            auto sole = [&](const Skeleton::Limbs& l) {
                return std::min(g.U(l.heel), g.U(l.toe)) - dims::kFootR;
            };
            if (std::abs(sole(k.side[kLeft]) - sole(k.side[kRight])) < 8) {
                support = place::kStepTop; // both feet on the step
                if (fixed.boxes.count(PropKind::Step)) {
                    support = fixed.stepTop;
                    fwd = fixed.stepMiddle - middle;
                }
            }
        }
        const Vec3& hand = g.F(k.side[kLeft].hand) > g.F(k.side[kRight].hand) ? k.side[kLeft].hand
                                                                              : k.side[kRight].hand;
        if (fixed.holdFace && (v.Has(PropKind::Counter) || v.Has(PropKind::Table)) &&
            std::abs(g.U(hand) + support - lowest - dims::kHandR - fixed.holdTop) < 25)
            fwd = *fixed.holdFace - g.F(hand); // the hand stays on the counter
        if (v.Has(PropKind::Wall) && fixed.boxes.count(PropKind::Wall)) {
            if (fixed.wallInFront) { // the hands stay on the wall
                fwd = fixed.wallFace - (g.F(hand) + dims::kHandR);
            } else { // the back stays on the wall
                fwd = fixed.wallFace - along.lo;
            }
        }
        up = support - lowest;
        break;
    }
    }
    return g.At(fwd, up, -g.L(k.pelvis));
}

Placed ExerciseScene::Place(const PoseLine& v) const {
    return {v.posture, Rested(v.dofs, *v.posture, v, fixed_)};
}

ExerciseScene::ExerciseScene(const ExerciseMedia& media) : media_(media) {
    // The fixed props take their place from the first view that has them.
    for (const auto& v : media_.views) {
        if (!v)
            continue;
        const Placed at = Place(*v);
        for (const PropKind kind : {PropKind::Chair, PropKind::Table, PropKind::Mat, PropKind::Wall,
                                    PropKind::Counter, PropKind::Step, PropKind::Door})
            if (v->Has(kind) || (kind == PropKind::Chair && v->posture->rest == Rest::Seat))
                AddFixedProp(fixed_, kind, at, *v);
    }
    for (int view = 1; view <= 3; ++view)
        if (HasView(view))
            bounds_ = bounds_.united(View(view).Bounds());
    if (CanMove())
        bounds_ = bounds_.united(MovieFrame(0.5).Bounds());
}

Placed ExerciseScene::Between(const PoseLine& a, const PoseLine& b, double t) const {
    const bool same = a.posture->front == b.posture->front && a.posture->tilt == b.posture->tilt;
    const Mat3& r = a.posture->toWorld;
    (void)r;
    const bool sameTurn =
        same && std::equal(&r.m[0][0], &r.m[0][0] + 9, &b.posture->toWorld.m[0][0]);
    if (!sameTurn) // no way between two different turns of the body: it changes half-way
        return Place(t < 0.5 ? a : b);
    // The same pose resting by the rules of both views, weighed by how far along it is;
    // between sitting and standing, the feet stay planted all the way.
    const Dofs dofs = Lerp(a.dofs, b.dofs, t);
    const bool aSits = a.posture->rest == Rest::Seat, bSits = b.posture->rest == Rest::Seat;
    const bool aStands = a.posture->rest == Rest::Feet, bStands = b.posture->rest == Rest::Feet;
    const PoseLine& ruleA = aSits && bStands ? b : a;
    const PoseLine& ruleB = bSits && aStands ? a : b;
    const Skeleton byA = Rested(dofs, *ruleA.posture, ruleA, fixed_);
    const Skeleton byB = Rested(dofs, *ruleB.posture, ruleB, fixed_);
    Skeleton blend = Blend(byA, byB, t);
    // Never through the floor.
    const Ground g{*a.posture};
    double lowest = std::numeric_limits<double>::max();
    for (const SurfacePoint& p : Surface(blend))
        lowest = std::min(lowest, g.U(p.p) - p.r);
    if (lowest < 0)
        blend = Transformed(blend, Mat3(), g.At(0, -lowest, 0));
    return {t < 0.5 ? a.posture : b.posture, blend};
}

Drawing ExerciseScene::Draw(const Placed& at, const std::vector<const PoseLine*>& views,
                            const PoseLine& held) const {
    Drawing d;
    std::vector<PropKind> kinds;
    for (const PoseLine* v : views) {
        for (const PropItem& p : v->props)
            if (IsFixed(p.kind))
                kinds.push_back(p.kind);
        if (v->posture->rest == Rest::Seat && !v->Has(PropKind::Table))
            kinds.push_back(PropKind::Chair);
    }
    std::sort(kinds.begin(), kinds.end());
    kinds.erase(std::unique(kinds.begin(), kinds.end()), kinds.end());
    DrawFixedProps(d, fixed_, kinds, at.posture->tilt);
    DrawHeldProps(d, held.props, at, fixed_);
    DrawFigure(d, at.world, *at.posture);
    d.SortByDepth();
    if (at.posture->up.z == 0) { // not seen from above
        if (at.posture->tilt == 0) {
            d.floor = 0;
        } else {
            double low = std::numeric_limits<double>::max();
            for (const auto* list : {&d.props, &d.body})
                for (const Shape& s : *list)
                    low = std::min(low, s.Bounds().top());
            d.floor = low;
        }
    }
    return d;
}

Drawing ExerciseScene::View(int view, QString* warning) const {
    const PoseLine& v = *media_.views[view - 1];
    const Placed at = Place(v);
    Drawing d = Draw(at, {&v}, v);
    const double tilt = at.posture->tilt;
    const ArrowItem& arrow = v.arrow;
    if (arrow.kind == ArrowItem::Kind::Push) {
        d.arrows << PushArrow(Flat(PointOf(at.world, arrow.point, fixed_), tilt),
                              PointRadius(arrow.point), arrow.dx, arrow.dy);
    } else if (arrow.kind == ArrowItem::Kind::Path) {
        const int target = view == 1 ? 2 : 1;
        const PoseLine& to = *media_.views[target - 1];
        QVector<QPointF> samples;
        for (int i = 0; i <= 24; ++i) {
            const Placed p = Between(v, to, i / 24.0);
            samples << Flat(PointOf(p.world, arrow.point, fixed_), tilt);
        }
        const QVector<QPointF> path =
            PathArrow(samples, PointRadius(arrow.point), Flat(at.world.trunkMid, tilt));
        if (path.isEmpty() && warning)
            *warning = QStringLiteral("%1: the arrow's point does not move between view %2 "
                                      "and view %3; no arrow drawn")
                           .arg(v.where)
                           .arg(view)
                           .arg(target);
        if (!path.isEmpty())
            d.arrows << path;
    }
    return d;
}

Drawing ExerciseScene::MovieFrame(double t) const {
    const PoseLine& a = *media_.views[0];
    const PoseLine& b = *media_.views[1];
    return Draw(Between(a, b, t), {&a, &b}, t < 0.5 ? a : b);
}

} // namespace tarvex::media
