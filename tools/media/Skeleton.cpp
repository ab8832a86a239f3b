#include "Skeleton.h"

namespace tarvex::media {

Dofs Lerp(const Dofs& a, const Dofs& b, double t) {
    Dofs r{};
    for (int i = 0; i < kDofCount; ++i)
        r[i] = a[i] + (b[i] - a[i]) * t;
    return r;
}

namespace {

const Vec3 kForward{1, 0, 0};
const Vec3 kUp{0, 1, 0};
const Vec3 kDown{0, -1, 0};

// A frame is a rotation (its columns are its forward, up and left axes) and an origin.
struct Frame {
    Mat3 r;
    Vec3 o;
    Vec3 At(double x, double y, double z) const { return o + r * Vec3{x, y, z}; }
};

void PoseArm(const Dofs& d, const Frame& trunk, int side, Skeleton::Limbs& limb) {
    const double toLeft = side == kLeft ? 1.0 : -1.0;
    auto dof = [&](SideDof k) { return d[SideIndex(side, k)]; };
    limb.shoulder = trunk.At(0, dims::kShoulderY, toLeft * dims::kShoulderHalf);
    // Abduction takes the arm out to its own side: about x, away from the middle.
    const Mat3 arm = trunk.r * Mat3::RotZ(dof(kShFlex)) * Mat3::RotX(-toLeft * dof(kShAbd));
    limb.elbow = limb.shoulder + arm * kDown * dims::kUpperArm;
    const Mat3 fore = arm * Mat3::RotZ(dof(kElFlex)) * Mat3::RotX(-toLeft * dof(kElFront));
    limb.wrist = limb.elbow + fore * kDown * dims::kForearm;
    limb.handFrame = fore * Mat3::RotZ(dof(kWrFlex));
    limb.hand = limb.wrist + limb.handFrame * kDown * dims::kHand;
}

void PoseLeg(const Dofs& d, const Frame& pelvis, int side, Skeleton::Limbs& limb) {
    const double toLeft = side == kLeft ? 1.0 : -1.0;
    auto dof = [&](SideDof k) { return d[SideIndex(side, k)]; };
    limb.hip = pelvis.At(0, 0, toLeft * dims::kHipHalf);
    const Mat3 thigh = pelvis.r * Mat3::RotZ(dof(kHipFlex)) * Mat3::RotX(-toLeft * dof(kHipAbd));
    limb.knee = limb.hip + thigh * kDown * dims::kThigh;
    const Mat3 shank = thigh * Mat3::RotZ(-dof(kKnFlex));
    limb.ankle = limb.knee + shank * kDown * dims::kShank;
    // The toes turn out a little, so that a foot seen from the front still has a length.
    const Mat3 foot = shank * Mat3::RotZ(dof(kAnFlex)) * Mat3::RotY(toLeft * -12);
    limb.heel = limb.ankle + shank * kDown * dims::kAnkleDrop - foot * kForward * dims::kHeelBack;
    limb.toe = limb.heel + foot * kForward * dims::kFoot;
}

} // namespace

Skeleton Pose(const Dofs& d) {
    Skeleton s;
    const Frame pelvis{Mat3(), Vec3{}};
    s.pelvis = pelvis.o;
    const Mat3 bend = Mat3::RotZ(-d[kTrunkFlex]) * Mat3::RotX(-d[kTrunkSide]);
    const Mat3 halfBend = Mat3::RotZ(-d[kTrunkFlex] / 2) * Mat3::RotX(-d[kTrunkSide] / 2);
    const Frame trunk{bend, pelvis.o};
    const Frame waist{halfBend, pelvis.o};

    // The trunk's outline: a ring at the hips, one at the waist, one at the chest and the
    // round of the shoulders; drawn as the convex hull of what is seen, with round corners.
    int n = 0;
    for (double z : {1.0, -1.0}) {
        s.torso[n++] = pelvis.At(-12, -4, 10 * z); // the seat
        s.torso[n++] = pelvis.At(9, -2, 11 * z);
        s.torso[n++] = waist.At(-8.5, 24, 10.5 * z);
        s.torso[n++] = waist.At(8, 24, 10.5 * z);
        s.torso[n++] = trunk.At(-10, 38, 13.5 * z); // the chest
        s.torso[n++] = trunk.At(11, 36, 13.5 * z);
        s.torso[n++] = trunk.At(-3, 47.5, 15 * z); // the round of the shoulders
        s.torso[n++] = trunk.At(1, 51, 7 * z);
    }
    s.trunkMid = waist.At(0, 24, 0);
    s.back = waist.At(-12, 24, 0);

    s.neckBase = trunk.At(0, dims::kTrunk - 4, 0);
    const Mat3 head =
        bend * Mat3::RotZ(-d[kNeckFlex]) * Mat3::RotX(-d[kNeckSide]) * Mat3::RotY(d[kNeckRot]);
    s.neckTop = s.neckBase + head * kUp * (dims::kNeck + 4);
    s.headCentre = s.neckTop + head * Vec3{1.5, dims::kHeadRadius - 2, 0};
    s.headFrame = head;

    for (int side : {kLeft, kRight}) {
        PoseArm(d, trunk, side, s.side[side]);
        PoseLeg(d, pelvis, side, s.side[side]);
    }
    return s;
}

std::vector<SurfacePoint> Surface(const Skeleton& s) {
    std::vector<SurfacePoint> out;
    for (const Vec3& p : s.torso)
        out.push_back({p, dims::kTrunkR});
    out.push_back({s.headCentre, dims::kHeadRadius});
    for (const Skeleton::Limbs& l : s.side) {
        out.push_back({l.shoulder, dims::kUpperArmR});
        out.push_back({l.elbow, dims::kUpperArmR});
        out.push_back({l.wrist, dims::kForearmR});
        out.push_back({l.hand, dims::kHandR});
        out.push_back({l.hip, dims::kThighR});
        out.push_back({l.knee, dims::kThighR});
        out.push_back({l.ankle, dims::kShankR});
        out.push_back({l.heel, dims::kFootR});
        out.push_back({l.toe, dims::kFootR});
    }
    return out;
}

namespace {

// Calls f(point of o, same point of b) for every point of two skeletons.
template <typename F> void EachPoint(Skeleton& o, const Skeleton& b, F f) {
    f(o.pelvis, b.pelvis);
    f(o.neckBase, b.neckBase);
    f(o.neckTop, b.neckTop);
    f(o.headCentre, b.headCentre);
    for (size_t i = 0; i < o.torso.size(); ++i)
        f(o.torso[i], b.torso[i]);
    f(o.trunkMid, b.trunkMid);
    f(o.back, b.back);
    for (int k : {kLeft, kRight}) {
        Skeleton::Limbs& x = o.side[k];
        const Skeleton::Limbs& y = b.side[k];
        for (auto m : {&Skeleton::Limbs::shoulder, &Skeleton::Limbs::elbow, &Skeleton::Limbs::wrist,
                       &Skeleton::Limbs::hand, &Skeleton::Limbs::hip, &Skeleton::Limbs::knee,
                       &Skeleton::Limbs::ankle, &Skeleton::Limbs::heel, &Skeleton::Limbs::toe})
            f(x.*m, y.*m);
    }
}

} // namespace

Skeleton Transformed(const Skeleton& s, const Mat3& r, const Vec3& t) {
    Skeleton o = s;
    EachPoint(o, s, [&](Vec3& p, const Vec3& q) { p = r * q + t; });
    o.headFrame = r * s.headFrame;
    for (int k : {kLeft, kRight})
        o.side[k].handFrame = r * s.side[k].handFrame;
    return o;
}

Skeleton Blend(const Skeleton& a, const Skeleton& b, double t) {
    Skeleton o = t < 0.5 ? a : b;
    Skeleton from = a;
    EachPoint(from, b, [&](Vec3& p, const Vec3& q) { p = Lerp(p, q, t); });
    EachPoint(o, from, [](Vec3& p, const Vec3& q) { p = q; });
    return o;
}

} // namespace tarvex::media
