// One exercise's scenes: the figure of each view placed on its support among the props,
// the arrows, and the in-between poses of the movie.
#pragma once

#include "Props.h"

namespace tarvex::media {

// The shift that rests a figure (already turned into the world) on its support: a chair's
// seat, a plinth, a mat, a step or the floor, at the place its posture keeps still.
// Props already set up (a wall, a step) keep the figure against or on them.
Vec3 RestingShift(const Skeleton& turned, const Posture& posture, const PoseLine& view,
                  const FixedProps& fixed);

class ExerciseScene {
public:
    explicit ExerciseScene(const ExerciseMedia& media);

    const ExerciseMedia& Media() const { return media_; }
    bool HasView(int view) const { return media_.views[view - 1].has_value(); }
    bool CanMove() const { return HasView(1) && HasView(2); }

    // The picture of a view (1..3) with its arrow. A warning is set when the arrow's point
    // does not move.
    Drawing View(int view, QString* warning = nullptr) const;
    // A frame of the movie: t = 0 is view 1, t = 1 view 2.
    Drawing MovieFrame(double t) const;
    // What every view and the movie cover, so that all are drawn at one scale.
    QRectF Bounds() const { return bounds_; }

private:
    Placed Place(const PoseLine& v) const;
    Placed Between(const PoseLine& a, const PoseLine& b, double t) const;
    Drawing Draw(const Placed& at, const std::vector<const PoseLine*>& views,
                 const PoseLine& held) const;

    ExerciseMedia media_;
    FixedProps fixed_;
    QRectF bounds_;
};

} // namespace tarvex::media
