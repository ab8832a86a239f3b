// The delivered media of the build (pictures, icons, movies beside the program) against the
// exercise rows of content/library.tsv, and the figure's geometry that draws them.

#include "PoseFile.h"
#include "Props.h"
#include "Scene.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex::media;
using tarvex::testing::DeliveredFolder;

namespace {

const std::vector<Exercise>& Library() {
    static const std::vector<Exercise> library =
        ReadLibrary(QStringLiteral(TARVEX_MEDIA_CONTENT_DIR "/library.tsv"));
    return library;
}

QString Delivered(const QString& relative) {
    return QDir(DeliveredFolder()).filePath(relative);
}

constexpr bool kMovies = TARVEX_MEDIA_MOVIES != 0;

} // namespace

TEST(DeliveredMedia, TheLibraryHasItsExercises) {
    EXPECT_GE(Library().size(), 24u);
}

TEST(DeliveredMedia, EveryViewWithAnInstructionHasAFourByThreePicture) {
    int pictures = 0;
    for (const Exercise& e : Library())
        for (int view = 1; view <= 3; ++view) {
            const QString file = Delivered(QStringLiteral("PICTURE/%1_%2.JPG").arg(e.id).arg(view));
            if (e.instruct[view - 1].isEmpty()) {
                EXPECT_FALSE(QFile::exists(file)) << qPrintable(file);
                continue;
            }
            const QImage picture(file);
            ASSERT_FALSE(picture.isNull()) << qPrintable(file);
            EXPECT_EQ(picture.width() * 3, picture.height() * 4) << qPrintable(file);
            EXPECT_EQ(picture.size(), QSize(900, 675)) << qPrintable(file);
            ++pictures;
        }
    EXPECT_GE(pictures, 2 * static_cast<int>(Library().size()));
}

TEST(DeliveredMedia, EveryExerciseHasAnIcon61PixelsWide) {
    for (const Exercise& e : Library()) {
        const QString file = Delivered(QStringLiteral("ICON/%1.JPG").arg(e.id));
        const QImage icon(file);
        ASSERT_FALSE(icon.isNull()) << qPrintable(file);
        EXPECT_EQ(icon.width(), 61) << qPrintable(file);
        EXPECT_EQ(icon.height(), 46) << qPrintable(file);
    }
}

TEST(DeliveredMedia, APictureIsDarkLinesOnWhite) {
    const QImage picture(Delivered(QStringLiteral("PICTURE/385_1.JPG")));
    ASSERT_FALSE(picture.isNull());
    EXPECT_GT(qGray(picture.pixel(2, 2)), 245); // the corner is white
    int dark = 0;
    for (int y = 0; y < picture.height(); y += 3)
        for (int x = 0; x < picture.width(); x += 3)
            dark += qGray(picture.pixel(x, y)) < 60 ? 1 : 0;
    EXPECT_GT(dark, 300); // outlines drawn
}

TEST(DeliveredMedia, EveryExerciseWithAVideoHasAMotionJpegMovie) {
    if (!kMovies)
        GTEST_SKIP() << "this build had no ffmpeg, so it made no movies";
    int movies = 0;
    for (const Exercise& e : Library()) {
        const QString file = Delivered(QStringLiteral("MOVIE/%1.AVI").arg(e.id));
        if (!e.hasVideo) {
            EXPECT_FALSE(QFile::exists(file)) << qPrintable(file);
            continue;
        }
        QFile movie(file);
        ASSERT_TRUE(movie.open(QIODevice::ReadOnly)) << qPrintable(file);
        const QByteArray head = movie.read(4096);
        EXPECT_TRUE(head.startsWith("RIFF")) << qPrintable(file);
        EXPECT_EQ(head.mid(8, 4), QByteArray("AVI ")) << qPrintable(file);
        EXPECT_TRUE(head.contains("MJPG")) << qPrintable(file);
        EXPECT_GT(movie.size(), 10000) << qPrintable(file);
        ++movies;
    }
    EXPECT_GT(movies, 0);
}

TEST(DeliveredMedia, TheFilesOfTheFirstAndTheSitToStandExercisesAreThere) {
    EXPECT_TRUE(QFile::exists(Delivered(QStringLiteral("ICON/1.JPG"))));
    EXPECT_TRUE(QFile::exists(Delivered(QStringLiteral("PICTURE/1_1.JPG"))));
    EXPECT_TRUE(QFile::exists(Delivered(QStringLiteral("PICTURE/385_1.JPG"))));
    if (kMovies) {
        EXPECT_TRUE(QFile::exists(Delivered(QStringLiteral("MOVIE/1.AVI"))));
    }
}

// The figure's joints for given angles.

namespace {

Dofs With(std::initializer_list<std::pair<const char*, double>> angles, const char* posture) {
    const Posture& p = *FindPosture(QString::fromLatin1(posture));
    Dofs d = p.base;
    for (const auto& [joint, degrees] : angles)
        d[*JointDof(QString::fromLatin1(joint), p)] = degrees;
    return d;
}

void ExpectNear(const Vec3& a, const Vec3& b) {
    EXPECT_NEAR(a.x, b.x, 1e-9);
    EXPECT_NEAR(a.y, b.y, 1e-9);
    EXPECT_NEAR(a.z, b.z, 1e-9);
}

constexpr double kArm = dims::kUpperArm + dims::kForearm + dims::kHand;

} // namespace

TEST(FigureSkeleton, AHangingHandIsAnArmsLengthBelowTheShoulder) {
    const Skeleton s = Pose(With({}, "stand"));
    const auto& left = s.side[kLeft];
    ExpectNear(left.hand, left.shoulder + Vec3{0, -kArm, 0});
    EXPECT_NEAR(left.shoulder.z, dims::kShoulderHalf, 1e-9);
    EXPECT_NEAR(s.side[kRight].shoulder.z, -dims::kShoulderHalf, 1e-9);
}

TEST(FigureSkeleton, ShoulderFlexionOf90PutsTheHandInFrontAtShoulderHeight) {
    const Skeleton s = Pose(With({{"lsh", 90}}, "stand"));
    const auto& left = s.side[kLeft];
    ExpectNear(left.hand, left.shoulder + Vec3{kArm, 0, 0});
}

TEST(FigureSkeleton, ElbowFlexionBendsTheForearmForward) {
    const Skeleton s = Pose(With({{"lel", 90}}, "stand"));
    const auto& left = s.side[kLeft];
    ExpectNear(left.elbow, left.shoulder + Vec3{0, -dims::kUpperArm, 0});
    ExpectNear(left.wrist, left.elbow + Vec3{dims::kForearm, 0, 0});
}

TEST(FigureSkeleton, SittingPutsTheKneeInFrontAndTheAnkleBelowIt) {
    const Skeleton s = Pose(With({}, "sit"));
    const auto& left = s.side[kLeft];
    ExpectNear(left.knee, left.hip + Vec3{dims::kThigh, 0, 0});
    ExpectNear(left.ankle, left.knee + Vec3{0, -dims::kShank, 0});
}

TEST(FigureSkeleton, TrunkFlexionLeansTheShouldersForward) {
    const Skeleton s = Pose(With({{"trunk", 90}}, "stand"));
    EXPECT_NEAR(s.side[kLeft].shoulder.x, dims::kShoulderY, 1e-9);
    EXPECT_NEAR(s.side[kLeft].shoulder.y, 0, 1e-9);
    ExpectNear(s.side[kLeft].knee, s.side[kLeft].hip + Vec3{0, -dims::kThigh, 0}); // legs stay
}

TEST(FigureSkeleton, InAFrontViewTheShoulderAngleTakesTheArmOutToItsSide) {
    const Skeleton s = Pose(With({{"lsh", 90}, {"rsh", 90}}, "stand-front"));
    ExpectNear(s.side[kLeft].hand, s.side[kLeft].shoulder + Vec3{0, 0, kArm});
    ExpectNear(s.side[kRight].hand, s.side[kRight].shoulder + Vec3{0, 0, -kArm});
}

TEST(FigurePlacement, AStandingFigureRestsOnTheFloorAndASupineOneOnItsMat) {
    for (const char* name : {"stand", "supine"}) {
        PoseLine view;
        view.posture = FindPosture(QString::fromLatin1(name));
        view.dofs = view.posture->base;
        if (QLatin1String(name) == QLatin1String("supine"))
            view.props.push_back({PropKind::Mat, std::nullopt, std::nullopt});
        const Skeleton turned = Transformed(Pose(view.dofs), view.posture->toWorld, {});
        const Vec3 shift = RestingShift(turned, *view.posture, view, FixedProps{});
        double lowest = 1e9;
        for (const SurfacePoint& p : Surface(Transformed(turned, Mat3(), shift)))
            lowest = std::min(lowest, p.p.y - p.r);
        EXPECT_NEAR(lowest, view.Has(PropKind::Mat) ? place::kMatTop : 0.0, 1e-9) << name;
    }
}

// Mistakes in the pose lines name the file and line.

namespace {

QString PoseError(const QString& line) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("poses.tsv"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("ExerciseID\tView\tPosture\tAngles\tProps\tArrow\n");
    file.write(line.toUtf8() + "\n");
    file.close();
    try {
        ReadPoses(path, {Exercise{"7", "Seven", "7", {"Stand.", "", ""}, false, "library:2"}});
    } catch (const InputError& e) {
        return QString(e.message).remove(dir.path() + u'/');
    }
    return {};
}

} // namespace

TEST(PoseLines, AnUnknownPostureJointPropOrPointIsAnErrorWithItsLine) {
    EXPECT_EQ(PoseError("7\t1\tstanding\t\t\t-"), "poses.tsv:2: unknown posture \"standing\"");
    EXPECT_EQ(PoseError("7\t1\tstand\tlfoo=3\t\t-"), "poses.tsv:2: unknown joint \"lfoo\"");
    EXPECT_EQ(PoseError("7\t1\tstand\t\tsofa\t-"), "poses.tsv:2: unknown prop \"sofa\"");
    EXPECT_EQ(PoseError("7\t1\tstand\t\t\tnose"), "poses.tsv:2: unknown point \"nose\"");
    EXPECT_EQ(PoseError("7\t2\tstand\t\t\t-"),
              "poses.tsv:2: exercise 7 has no instruction line for view 2");
    EXPECT_EQ(PoseError("7\t1\tstand\t\t\t-"), QString());
}
