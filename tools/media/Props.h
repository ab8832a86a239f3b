// The things around the figure: furniture and floor coverings that keep their place for
// all the views of an exercise, and the things held or put at a body point in one view.
#pragma once

#include "Drawing.h"
#include "PoseFile.h"

#include <algorithm>
#include <limits>
#include <map>

namespace tarvex::media {

// A figure placed in the world for one view.
struct Placed {
    const Posture* posture = nullptr;
    Skeleton world;
};

// Coordinates along the ground frame of a posture.
struct Ground {
    const Posture& p;
    double F(const Vec3& v) const { return v.Dot(p.fwd); }
    double U(const Vec3& v) const { return v.Dot(p.up); }
    double L(const Vec3& v) const { return v.Dot(p.lat); }
    Vec3 At(double f, double u, double l) const { return p.fwd * f + p.up * u + p.lat * l; }
};

namespace place {
inline constexpr double kSeatTop = 45;
inline constexpr double kTableTop = 65;
inline constexpr double kMatTop = 2.5;
inline constexpr double kStepTop = 18;
inline constexpr double kSeatedPelvis = 9; // the hips sit this far behind the chair's middle
inline constexpr double kStandBeforeChair = 36;
} // namespace place

// The reach of a set of round things along one axis.
struct Extent {
    double lo = std::numeric_limits<double>::max();
    double hi = std::numeric_limits<double>::lowest();
    void Add(double v, double r) {
        lo = std::min(lo, v - r);
        hi = std::max(hi, v + r);
    }
};

// A box of the world with its sides along the axes, and how it is painted.
struct Box {
    Vec3 lo, hi;
    QColor fill;
    bool door = false; // draw panels and a knob on the side facing the viewer
};

struct FixedProps {
    std::map<PropKind, std::vector<Box>> boxes;
    Vec3 doorAnchor; // where a band is tied to the door
    // Along the ground's forward axis: the face of the wall the figure leans on (its back,
    // or its hands when the wall is in front), and the middle and top of the step.
    double wallFace = 0;
    bool wallInFront = false;
    double stepMiddle = 0, stepTop = 0;
    // Hands on a counter or table top (its forward edge and height): a figure whose hand is
    // at that height keeps it there.
    std::optional<double> holdFace;
    double holdTop = 0;
};

// Sets up a fixed prop (chair, table, mat, wall, counter, step, door) around a placed
// figure, when the exercise has none of that kind yet.
void AddFixedProp(FixedProps& fixed, PropKind kind, const Placed& at, const PoseLine& view);

bool IsFixed(PropKind kind);

// The world place of a body point (or of the door's anchor) and its thickness.
Vec3 PointOf(const Skeleton& s, Point point, const FixedProps& fixed);
double PointRadius(Point point);

// Adds the fixed props of the given kinds (behind the figure) to a drawing.
void DrawFixedProps(Drawing& d, const FixedProps& fixed, const std::vector<PropKind>& kinds,
                    double tilt);

// Adds the held props of a view: bands, towels, balls, weights and pillows.
void DrawHeldProps(Drawing& d, const std::vector<PropItem>& props, const Placed& at,
                   const FixedProps& fixed);

} // namespace tarvex::media
