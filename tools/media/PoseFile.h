// Reading the source data of the delivered media: the exercise rows of library.tsv and
// the pose lines of poses.tsv, checked line by line. A mistake is an InputError naming
// the file and line.
#pragma once

#include "Posture.h"

#include <QString>
#include <array>
#include <optional>
#include <vector>

namespace tarvex::media {

struct InputError {
    QString message; // "file:line: what is wrong"
};

struct Exercise {
    QString id; // the ExerciseID as written, a number
    QString desc;
    QString abbrev;
    std::array<QString, 3> instruct;
    bool hasVideo = false;
    QString where; // file:line
};

// The body points props and arrows refer to.
enum class Point {
    Head,
    LHand,
    RHand,
    LElbow,
    RElbow,
    LKnee,
    RKnee,
    LFoot,
    RFoot,
    Hips,
    Back,
    Door
};

enum class PropKind {
    Chair,
    Table,
    Mat,
    Wall,
    Counter,
    Step,
    Door,
    Band,
    Towel,
    Ball,
    Weight,
    Pillow
};

struct PropItem {
    PropKind kind;
    std::optional<Point> a, b;
};

struct ArrowItem {
    enum class Kind { None, Path, Push } kind = Kind::None;
    Point point = Point::Head;
    double dx = 0, dy = 0; // for a push: the picture direction (y up)
};

struct PoseLine {
    int view = 0; // 1..3
    const Posture* posture = nullptr;
    Dofs dofs{};
    std::vector<PropItem> props;
    ArrowItem arrow;
    QString where;

    bool Has(PropKind kind) const;
};

struct ExerciseMedia {
    Exercise exercise;
    std::array<std::optional<PoseLine>, 3> views; // index view - 1
};

std::vector<Exercise> ReadLibrary(const QString& path);

// The pose lines for the exercises of the library, in the library's order; every view with
// an instruction has exactly one.
std::vector<ExerciseMedia> ReadPoses(const QString& path, const std::vector<Exercise>& library);

} // namespace tarvex::media
