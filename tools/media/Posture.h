// The base postures of the figure: how the body lies in the world, what its angles mean,
// where it rests and the angles it has before a pose line changes them.
//
// World: X to the picture's right, Y up, Z towards the viewer; the floor is where the
// ground frame's "up" coordinate is 0.
#pragma once

#include "Skeleton.h"

#include <QStringView>
#include <optional>

namespace tarvex::media {

enum class Rest {
    Feet,   // standing: what touches the floor stays in place
    Knees,  // kneeling: the knee on the floor stays in place
    Seat,   // sitting on a chair (or the edge of a plinth)
    Pelvis, // lying, on hands and knees, sitting on the floor
};

struct Posture {
    const char* name;
    bool front;   // the angles turn in the frontal plane (abduction, side bending)
    Mat3 toWorld; // body frame to world
    Vec3 up;      // the ground frame in the world: up from the floor,
    Vec3 fwd;     // the way the figure faces (or its feet point, lying),
    Vec3 lat;     // and across
    double tilt;  // the viewer looks down on the scene by this many degrees
    Rest rest;
    bool lying; // a plinth or mat goes under the whole body
    Dofs base;
};

const Posture* FindPosture(QStringView name);

// The degree of freedom a joint name of the pose file sets in a posture; none for an
// unknown name.
std::optional<int> JointDof(QStringView joint, const Posture& posture);

// The picture's coordinates of a world point: x right, y up, and its depth (larger is
// nearer the viewer).
struct Projected {
    double x, y, depth;
};
Projected Project(const Vec3& world, double tilt);

} // namespace tarvex::media
