// The parametric figure: segment lengths in proportion, the degrees of freedom of its
// joints and the forward kinematics that turn joint angles into the places of the joints.
//
// Body frame (before a posture turns the figure): x forward, y up (towards the head),
// z towards the figure's left. The root is the middle of the two hip joints.
#pragma once

#include "Geometry.h"

#include <array>
#include <vector>

namespace tarvex::media {

// Measures of the figure in centimetres (a grown-up of about 176 cm).
namespace dims {
inline constexpr double kHipHalf = 9;       // hip joint from the middle
inline constexpr double kTrunk = 50;        // hips to the base of the neck
inline constexpr double kShoulderY = 46;    // shoulder joints along the trunk
inline constexpr double kShoulderHalf = 17; // shoulder joint from the middle
inline constexpr double kNeck = 8;
inline constexpr double kHeadRadius = 11.5;
inline constexpr double kUpperArm = 29;
inline constexpr double kForearm = 26;
inline constexpr double kHand = 9; // wrist to the middle of the finger tips' round end
inline constexpr double kThigh = 44;
inline constexpr double kShank = 43;
inline constexpr double kAnkleDrop = 6; // ankle joint above the line of the sole
inline constexpr double kHeelBack = 4;  // heel behind the ankle
inline constexpr double kFoot = 23;     // heel to toes
// Half thicknesses of the rounded segments.
inline constexpr double kUpperArmR = 5;
inline constexpr double kForearmR = 4.2;
inline constexpr double kHandR = 3.8;
inline constexpr double kThighR = 7.5;
inline constexpr double kShankR = 5.5;
inline constexpr double kFootR = 3.5;
inline constexpr double kNeckR = 4.8;
inline constexpr double kTrunkR = 4; // rounding of the trunk's outline
} // namespace dims

// The degrees of freedom, in degrees. "Front" ones turn in the frontal plane.
enum Dof : int {
    kTrunkFlex,
    kTrunkSide, // towards the figure's right
    kNeckFlex,
    kNeckSide, // towards the figure's right
    kNeckRot,  // face towards the figure's right
    kSideBase, // first of the per-side block; add kLeft or kRight
};
enum SideDof : int {
    kShFlex,
    kShAbd,
    kElFlex,
    kElFront, // elbow bending in the frontal plane, towards the head
    kWrFlex,
    kHipFlex,
    kHipAbd,
    kKnFlex,
    kAnFlex, // dorsiflexion
    kSideDofCount,
};
inline constexpr int kLeft = 0;
inline constexpr int kRight = 1;
inline constexpr int kDofCount = kSideBase + 2 * kSideDofCount;

inline constexpr int SideIndex(int side, SideDof dof) {
    return kSideBase + side * kSideDofCount + dof;
}

using Dofs = std::array<double, kDofCount>;

Dofs Lerp(const Dofs& a, const Dofs& b, double t);

// The joints of a posed figure, in one frame (the body frame or, after Transformed,
// the world).
struct Skeleton {
    Vec3 pelvis;
    Vec3 neckBase, neckTop, headCentre;
    Mat3 headFrame;             // columns: forward, up, left of the head
    std::array<Vec3, 16> torso; // outline points of the trunk (convex hull when seen)
    Vec3 trunkMid, back;        // middle of the trunk and the middle of its back
    struct Limbs {
        Vec3 shoulder, elbow, wrist, hand;
        Vec3 hip, knee, ankle, heel, toe;
        Mat3 handFrame; // for a held weight
    };
    std::array<Limbs, 2> side; // kLeft, kRight
};

// The points of the figure's surface as (centre, radius): what rests on the floor, what
// touches a wall.
struct SurfacePoint {
    Vec3 p;
    double r;
};
std::vector<SurfacePoint> Surface(const Skeleton& s);

// Places the joints for the given angles in the body frame.
Skeleton Pose(const Dofs& dofs);

// The skeleton turned by rotation and then moved by shift.
Skeleton Transformed(const Skeleton& s, const Mat3& rotation, const Vec3& shift);

// Each point of a moved part of the way towards the same point of b (the head's and hands'
// frames are the nearer one's).
Skeleton Blend(const Skeleton& a, const Skeleton& b, double t);

} // namespace tarvex::media
