#include "Figure.h"

#include <numeric>

namespace tarvex::media {

namespace {

// The parts of one layer of depth are painted legs first, arms last.
enum Rank { kLegRank, kTrunkRank, kNeckRank, kHeadRank, kArmRank };

Shape Part(Shape::Kind kind, std::initializer_list<Vec3> joints,
           std::initializer_list<double> radii, double tilt, int rank) {
    Shape s;
    s.kind = kind;
    s.rank = rank;
    s.radii = radii;
    double depth = 0;
    for (const Vec3& j : joints) {
        const Projected p = Project(j, tilt);
        s.points << QPointF(p.x, p.y);
        depth += p.depth;
    }
    s.depth = depth / static_cast<double>(joints.size());
    return s;
}

Shape Head(const Skeleton& k, double tilt) {
    const double r = dims::kHeadRadius;
    Shape s = Part(Shape::Kind::Head, {k.headCentre}, {r}, tilt, kHeadRank);
    const Projected c = Project(k.headCentre, tilt);
    auto onHead = [&](const Vec3& local) {
        return Project(k.headCentre + k.headFrame * local, tilt);
    };
    // The hair covers the back and the top of the head.
    const Projected hair = onHead(Vec3{-0.55, 0.83, 0});
    s.hair = QPointF(hair.x - c.x, hair.y - c.y);
    for (double side : {1.0, -1.0}) {
        const Projected eye = onHead(Vec3{0.82, 0.1, 0.45 * side} * r);
        if (eye.depth > c.depth + 0.2 * r)
            s.eyes << QPointF(eye.x, eye.y);
    }
    const Projected nose = onHead(Vec3{1.2, -0.12, 0} * r);
    if (std::hypot(nose.x - c.x, nose.y - c.y) > 1.02 * r)
        s.nose = QPointF(nose.x, nose.y);
    return s;
}

} // namespace

void DrawFigure(Drawing& d, const Skeleton& k, const Posture& posture) {
    const double tilt = posture.tilt;
    std::vector<Shape> parts;

    Shape torso;
    torso.kind = Shape::Kind::Polygon;
    torso.rank = kTrunkRank;
    torso.radii = {dims::kTrunkR};
    QVector<QPointF> outline;
    double depth = 0;
    for (const Vec3& v : k.torso) {
        const Projected p = Project(v, tilt);
        outline << QPointF(p.x, p.y);
        depth += p.depth;
    }
    torso.points = ConvexHull(outline);
    torso.depth = depth / static_cast<double>(k.torso.size());
    parts.push_back(torso);

    parts.push_back(
        Part(Shape::Kind::Tube, {k.neckBase, k.neckTop}, {dims::kNeckR}, tilt, kNeckRank));
    parts.push_back(Head(k, tilt));
    for (const Skeleton::Limbs& l : k.side) {
        Shape leg = Part(Shape::Kind::Tube, {l.hip, l.knee, l.ankle, l.heel, l.toe},
                         {dims::kThighR, dims::kShankR, 4.2, dims::kFootR}, tilt, kLegRank);
        Shape arm = Part(Shape::Kind::Tube, {l.shoulder, l.elbow, l.wrist, l.hand},
                         {dims::kUpperArmR, dims::kForearmR, dims::kHandR}, tilt, kArmRank);
        // Seen from the side, the limbs on the far side are shaded so that depth reads.
        for (Shape* s : {&leg, &arm})
            if (!posture.front && s->depth < torso.depth - 4)
                s->fill = ink::kFarSkin;
        parts.push_back(leg);
        parts.push_back(arm);
    }
    d.body.insert(d.body.end(), parts.begin(), parts.end());
}

} // namespace tarvex::media
