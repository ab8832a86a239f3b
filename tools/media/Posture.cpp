#include "Posture.h"

#include <QLatin1String>
#include <vector>

namespace tarvex::media {

namespace {

const Vec3 kX{1, 0, 0}, kY{0, 1, 0}, kZ{0, 0, 1};
const Vec3 kMinusX{-1, 0, 0}, kMinusY{0, -1, 0};

// A feet-down ankle for a shin that lies on the floor (kneeling, on hands and knees,
// lying prone), so that the toes do not prop the figure up.
constexpr double kAnkleOnFloor = -60;

Dofs Base(std::initializer_list<std::pair<int, double>> values) {
    Dofs d{};
    for (const auto& [dof, value] : values)
        d[dof] = value;
    return d;
}

int L(SideDof d) {
    return SideIndex(kLeft, d);
}
int R(SideDof d) {
    return SideIndex(kRight, d);
}

const std::vector<Posture>& Postures() {
    static const std::vector<Posture> all = [] {
        const Mat3 upright = Mat3::Columns(kX, kY, kZ);
        const Mat3 facing = Mat3::Columns(kZ, kY, kX);
        const Dofs sitting =
            Base({{L(kHipFlex), 90}, {R(kHipFlex), 90}, {L(kKnFlex), 90}, {R(kKnFlex), 90}});
        std::vector<Posture> p;
        p.push_back({"stand", false, upright, kY, kX, kZ, 0, Rest::Feet, false, Dofs{}});
        p.push_back({"sit", false, upright, kY, kX, kZ, 0, Rest::Seat, false, sitting});
        p.push_back({"supine", false, Mat3::Columns(kY, kMinusX, kZ), kY, kX, kZ, 0, Rest::Pelvis,
                     true, Dofs{}});
        p.push_back({"prone", false, Mat3::Columns(kMinusY, kMinusX, kZ), kY, kX, kZ, 0,
                     Rest::Pelvis, true,
                     Base({{L(kAnFlex), kAnkleOnFloor}, {R(kAnFlex), kAnkleOnFloor}})});
        p.push_back({"quadruped", false, Mat3::Columns(kMinusY, kX, kZ), kY, kX, kZ, 0,
                     Rest::Pelvis, true,
                     Base({{L(kHipFlex), 90},
                           {R(kHipFlex), 90},
                           {L(kKnFlex), 90},
                           {R(kKnFlex), 90},
                           {L(kShFlex), 90},
                           {R(kShFlex), 90},
                           {L(kAnFlex), kAnkleOnFloor},
                           {R(kAnFlex), kAnkleOnFloor}})});
        p.push_back({"kneel", false, upright, kY, kX, kZ, 0, Rest::Knees, true,
                     Base({{L(kKnFlex), 90},
                           {R(kKnFlex), 90},
                           {L(kAnFlex), kAnkleOnFloor},
                           {R(kAnFlex), kAnkleOnFloor}})});
        p.push_back({"halfkneel", false, upright, kY, kX, kZ, 0, Rest::Knees, true,
                     Base({{L(kKnFlex), 90},
                           {R(kHipFlex), 90},
                           {R(kKnFlex), 90},
                           {L(kAnFlex), kAnkleOnFloor}})});
        p.push_back({"longsit", false, upright, kY, kX, kZ, 0, Rest::Pelvis, true,
                     Base({{L(kHipFlex), 90}, {R(kHipFlex), 90}})});
        // On the right side, head at the left, the left limbs on top; the viewer is in
        // front of the figure and a little above it.
        p.push_back({"sidelying", false, Mat3::Columns(kZ, kMinusX, kY), kY, kX, kZ, 60,
                     Rest::Pelvis, true, Dofs{}});
        p.push_back({"stand-front", true, facing, kY, kZ, kX, 0, Rest::Feet, false, Dofs{}});
        p.push_back({"sit-front", true, facing, kY, kZ, kX, 0, Rest::Seat, false, sitting});
        // Seen from above: "up" from the floor is towards the viewer.
        p.push_back({"supine-front", true, facing, kZ, kMinusY, kX, 0, Rest::Pelvis, true, Dofs{}});
        return p;
    }();
    return all;
}

} // namespace

const Posture* FindPosture(QStringView name) {
    for (const Posture& p : Postures())
        if (name == QLatin1String(p.name))
            return &p;
    return nullptr;
}

std::optional<int> JointDof(QStringView joint, const Posture& posture) {
    const bool front = posture.front;
    if (joint == u"neck")
        return front ? kNeckSide : kNeckFlex;
    if (joint == u"neckrot")
        return kNeckRot;
    if (joint == u"trunk")
        return front ? kTrunkSide : kTrunkFlex;
    if (joint.size() < 3 || (joint[0] != u'l' && joint[0] != u'r'))
        return std::nullopt;
    const int side = joint[0] == u'l' ? kLeft : kRight;
    const QStringView name = joint.mid(1);
    struct Name {
        const char16_t* text;
        SideDof side, front;
    };
    static const Name names[] = {
        {u"sh", kShFlex, kShAbd},    {u"el", kElFlex, kElFront}, {u"wr", kWrFlex, kWrFlex},
        {u"hip", kHipFlex, kHipAbd}, {u"kn", kKnFlex, kKnFlex},  {u"an", kAnFlex, kAnFlex},
    };
    for (const Name& n : names)
        if (name == QStringView(n.text))
            return SideIndex(side, front ? n.front : n.side);
    return std::nullopt;
}

Projected Project(const Vec3& w, double tilt) {
    if (tilt == 0)
        return {w.x, w.y, w.z};
    const double c = std::cos(Radians(tilt)), s = std::sin(Radians(tilt));
    return {w.x, w.y * c - w.z * s, w.z * c + w.y * s};
}

} // namespace tarvex::media
