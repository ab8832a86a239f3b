#include "ui/ExerciseParamsDialog.h"
#include "exercise/ExerciseParamsLogic.h"
#include "shell/AppState.h"
#include "support/TestFolder.h"
#include "ui/QtMediaLibrary.h"

#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFormLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMediaPlayer>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QVideoFrame>
#include <QVideoSink>
#include <QVideoWidget>
#include <gtest/gtest.h>
#include <iostream>

using namespace tarvex;

namespace {

constexpr int kPlayWaitMs = 5000;

class RecordingTarget : public IParamsTarget {
public:
    explicit RecordingTarget(AppState& state) : state_(state) {}
    void SetSelExFromTmp(int16_t slot) override {
        calls << QStringLiteral("SetSelExFromTmp(%1)").arg(slot);
        state_.Program.Modified = true;
        state_.Program.Exercise(slot) = state_.TmpExercise;
    }
    void ShowSlotCaption(int16_t slot, const QString& caption) override {
        calls << QStringLiteral("ShowSlotCaption(%1)").arg(slot);
        lastCaption = caption;
    }
    QStringList calls;
    QString lastCaption;

private:
    AppState& state_;
};

// A short test movie made by ffmpeg (MJPEG in AVI, as the delivered movies are); an empty
// path when ffmpeg is not installed.
QString MakeMovie(const QString& path, QSize size, int seconds) {
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (ffmpeg.isEmpty())
        return {};
    QProcess process;
    process.start(
        ffmpeg, {"-hide_banner", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                 QStringLiteral("testsrc=size=%1x%2:rate=10").arg(size.width()).arg(size.height()),
                 "-t", QString::number(seconds), "-c:v", "mjpeg", "-q:v", "3", path});
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return {};
    return path;
}

// A picture of the kind the library holds: a figure on a light ground, 4:3.
void DrawPicture(const QString& path, const QString& text) {
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(QColor(248, 246, 240));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(40, 60, 120), 6, Qt::SolidLine, Qt::RoundCap));
    painter.drawEllipse(QPointF(200, 70), 25, 25);
    painter.drawLine(200, 95, 200, 190);
    painter.drawLine(200, 120, 150, 160);
    painter.drawLine(200, 120, 250, 160);
    painter.drawLine(200, 190, 160, 270);
    painter.drawLine(200, 190, 240, 270);
    painter.setPen(Qt::black);
    painter.drawText(QRect(0, 270, 400, 30), Qt::AlignCenter, text);
    painter.end();
    image.save(path, "JPG");
}

class ExerciseParamsWindow : public ::testing::Test {
protected:
    ExerciseParamsWindow() : target(state) {
        const QString root = dir.path() + QDir::separator();
        QDir(root).mkpath(QStringLiteral("PICTURE"));
        QDir(root).mkpath(QStringLiteral("MOVIE"));
        state.Media.Picture = root + QStringLiteral("PICTURE") + QDir::separator();
        state.Media.Movie = root + QStringLiteral("MOVIE") + QDir::separator();

        ExerciseEntry e;
        e.ExerciseID = 12;
        e.Desc = QStringLiteral("Heel slides");
        e.AbbrevDesc = QStringLiteral("Heel slides");
        e.Reps = 10;
        e.Hold = 5;
        e.Sets = 2;
        e.Movie = QStringLiteral("12.AVI");
        e.Picture0 = QStringLiteral("12_1.JPG");
        e.Picture1 = QStringLiteral("12_2.JPG");
        e.Picture2 = QStringLiteral("12_3.JPG");
        e.Instruct0 = QStringLiteral("Lie on your back with both knees straight.");
        e.Instruct1 = QStringLiteral("Slide one heel toward your buttocks.");
        e.Instruct2 = QStringLiteral("Slide it back down and relax.");
        state.Library.Entries = {e};
        state.Library.NumChoices = 1;
        state.Program.Exercises[0] = e;
        state.Program.NumExercises = 1;
        state.ParamsFromLibrary = 0;
        state.Library.CurrentChoice = 0;
    }

    QString MoviePath() const { return state.Media.Movie + QStringLiteral("12.AVI"); }

    std::unique_ptr<ExerciseParamsDialog> Open() {
        auto dialog = std::make_unique<ExerciseParamsDialog>(state, target);
        dialog->show();
        return dialog;
    }

    QTemporaryDir dir;
    AppState state;
    RecordingTarget target;
};

// --- the window without a movie

TEST_F(ExerciseParamsWindow, ShowsItsFramesListsAndCommands) {
    auto dialog = Open();
    EXPECT_EQ(dialog->windowTitle(), "Exercise: Heel slides");
    EXPECT_EQ(dialog->fraExercises->title(), "Exercises");
    EXPECT_EQ(dialog->fraOptions->title(), "Options");
    EXPECT_EQ(dialog->fraMovie->title(), "Movie");
    auto* form = qobject_cast<QFormLayout*>(dialog->fraOptions->layout());
    ASSERT_NE(form, nullptr);
    QStringList labels;
    for (int row = 0; row < form->rowCount(); ++row) {
        auto* label = qobject_cast<QLabel*>(form->itemAt(row, QFormLayout::LabelRole)->widget());
        labels << label->text();
    }
    EXPECT_EQ(labels, QStringList({"Repetitions:", "Hold (secs):", "Sets:"}));
    QStringList commands;
    for (QPushButton* button : dialog->cmdControl)
        commands << button->text();
    EXPECT_EQ(commands, QStringList({"Open", "Play", "Pause", "Stop", "Close", "Rewind"}));
    EXPECT_EQ(dialog->cmdOK->property("tag").toString(), "OK");
    EXPECT_EQ(dialog->cmdCancel->property("tag").toString(), "Cancel");
    for (QComboBox* box : {dialog->RepsList, dialog->HoldList, dialog->SetsList})
        EXPECT_TRUE(box->isEditable());
    EXPECT_EQ(dialog->RepsList->count(), 6);
    EXPECT_EQ(dialog->HoldList->count(), 13);
    EXPECT_EQ(dialog->SetsList->count(), 11);
    EXPECT_EQ(dialog->HoldList->itemText(12), "60");
    EXPECT_EQ(dialog->RepsList->currentText(), "10");
    EXPECT_EQ(dialog->HoldList->currentText(), "5");
    EXPECT_EQ(dialog->SetsList->currentText(), "2");
    for (QLineEdit* edit : dialog->txtInstr)
        EXPECT_EQ(edit->maxLength(), 75);
    EXPECT_EQ(dialog->txtInstr[1]->text(), "Slide one heel toward your buttocks.");
}

TEST_F(ExerciseParamsWindow, AMissingMovieLeavesAnEmptySurfaceAndAUsableDialog) {
    auto dialog = Open();
    EXPECT_EQ(dialog->Logic().MediaHandle(), 0);
    EXPECT_EQ(dialog->Media().OpenCount(), 0);
    EXPECT_EQ(dialog->MovFrame->size(), QSize(ExerciseParamsDialog::kEmptyMovieWidth,
                                              ExerciseParamsDialog::kEmptyMovieHeight));
    for (QPushButton* button : dialog->cmdControl)
        button->click();
    EXPECT_EQ(dialog->Logic().MediaHandle(), 0);
    dialog->cmdCancel->click();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(ExerciseParamsWindow, MissingPicturesStayEmpty) {
    DrawPicture(state.Media.Picture + QStringLiteral("12_2.JPG"), QStringLiteral("view 2"));
    auto dialog = Open();
    EXPECT_TRUE(dialog->Image1[0]->pixmap().isNull());
    EXPECT_FALSE(dialog->Image1[1]->pixmap().isNull());
    EXPECT_TRUE(dialog->Image1[2]->pixmap().isNull());
}

TEST_F(ExerciseParamsWindow, OkTakesTheTypedNumbersAndLines) {
    auto dialog = Open();
    dialog->RepsList->setEditText(QStringLiteral("17"));
    dialog->SetsList->setEditText(QStringLiteral("abc"));
    dialog->HoldList->setCurrentIndex(0);
    dialog->txtInstr[2]->setText(QStringLiteral("Rest between sets."));
    dialog->cmdOK->click();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    const ExerciseEntry& slot = state.Program.Exercises[0];
    EXPECT_EQ(slot.Reps, 17);
    EXPECT_EQ(slot.Sets, 0);
    EXPECT_EQ(slot.Hold, 0);
    EXPECT_EQ(slot.Instruct2, "Rest between sets.");
    EXPECT_EQ(target.calls, QStringList{"ShowSlotCaption(0)"});
    EXPECT_EQ(target.lastCaption, "Heel slides\n17r/0x");
    EXPECT_FALSE(state.Program.Modified);
}

TEST_F(ExerciseParamsWindow, OkFromTheLibraryAppendsTheExercise) {
    state.ParamsFromLibrary = 1;
    auto dialog = Open();
    dialog->RepsList->setEditText(QStringLiteral("20"));
    dialog->cmdOK->click();
    EXPECT_EQ(target.calls, QStringList{"SetSelExFromTmp(1)"});
    EXPECT_EQ(state.Program.NumExercises, 2);
    EXPECT_EQ(state.Program.Exercises[1].Reps, 20);
    EXPECT_EQ(state.Library.Entries[0].Reps, 10);
}

TEST_F(ExerciseParamsWindow, RunsModallyAndLoadsWhenShown) {
    ExerciseParamsDialog dialog(state, target);
    EXPECT_EQ(dialog.windowTitle(), "Exercise: ");
    QString titleWhileOpen;
    QTimer::singleShot(0, &dialog, [&] {
        titleWhileOpen = dialog.windowTitle();
        dialog.cmdCancel->click();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
    EXPECT_EQ(titleWhileOpen, "Exercise: Heel slides");
    EXPECT_TRUE(target.calls.isEmpty());
}

TEST_F(ExerciseParamsWindow, AFileThatIsNoMovieOpensNothingAndDoesNotHang) {
    QFile file(MoviePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a movie\n");
    file.close();
    QElapsedTimer clock;
    clock.start();
    auto dialog = Open();
    std::cout << "[ info ] broken movie file: load took " << clock.elapsed() << " ms\n";
    EXPECT_LT(clock.elapsed(), 10000);
    EXPECT_EQ(dialog->Logic().MediaHandle(), 0);
    EXPECT_EQ(dialog->Media().OpenCount(), 0);
    EXPECT_TRUE(dialog->MovFrame->findChildren<QWidget*>().isEmpty());
    dialog->cmdControl[1]->click();
    dialog->cmdOK->click();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

// --- a real movie

TEST_F(ExerciseParamsWindow, PlaysARealMovie) {
    if (MakeMovie(MoviePath(), QSize(160, 120), 3).isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    auto dialog = Open();
    const int16_t handle = dialog->Logic().MediaHandle();
    ASSERT_NE(handle, 0);
    int width = 0;
    int height = 0;
    dialog->Media().GetVideoWinSize(handle, width, height);
    EXPECT_EQ(width, 160);
    EXPECT_EQ(height, 120);
    EXPECT_EQ(dialog->MovFrame->size(), QSize(162, 139));
    QWidget* window = dialog->Media().MovieWindow(handle);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->geometry(), QRect(0, 0, 162, 139));

    QMediaPlayer* player = dialog->Media().Player(handle);
    ASSERT_NE(player, nullptr);
    EXPECT_EQ(player->playbackState(), QMediaPlayer::PausedState); // on its first frame
    EXPECT_EQ(player->position(), 0);

    dialog->cmdControl[ExerciseParamsLogic::kPlay]->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return player->position() > 0; }, kPlayWaitMs));
    std::cout << "[ info ] playing: state " << player->playbackState() << ", position "
              << player->position() << " ms of " << player->duration() << " ms\n";
    EXPECT_EQ(player->playbackState(), QMediaPlayer::PlayingState);

    dialog->cmdControl[ExerciseParamsLogic::kPause]->click();
    EXPECT_EQ(player->playbackState(), QMediaPlayer::PausedState);
    dialog->cmdControl[ExerciseParamsLogic::kStop]->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return player->position() == 0; }, kPlayWaitMs));
    EXPECT_EQ(player->playbackState(), QMediaPlayer::PausedState);
}

TEST_F(ExerciseParamsWindow, ClosingTheDialogWhileTheMoviePlaysClosesIt) {
    if (MakeMovie(MoviePath(), QSize(160, 120), 5).isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    auto dialog = Open();
    const int16_t handle = dialog->Logic().MediaHandle();
    ASSERT_NE(handle, 0);
    QMediaPlayer* player = dialog->Media().Player(handle);
    dialog->cmdControl[ExerciseParamsLogic::kPlay]->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->position() > 0; }, kPlayWaitMs));
    dialog->close(); // the window's close box
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->Logic().MediaHandle(), 0);
    EXPECT_EQ(dialog->Media().OpenCount(), 0);
    EXPECT_TRUE(dialog->MovFrame->findChildren<QWidget*>().isEmpty());
}

TEST_F(ExerciseParamsWindow, EscapeClosesTheMovieToo) {
    if (MakeMovie(MoviePath(), QSize(160, 120), 1).isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    auto dialog = Open();
    ASSERT_NE(dialog->Logic().MediaHandle(), 0);
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_EQ(dialog->Media().OpenCount(), 0);
}

TEST_F(ExerciseParamsWindow, OpenAgainReplacesTheMovieAndCloseEmptiesTheSurface) {
    if (MakeMovie(MoviePath(), QSize(160, 120), 1).isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    auto dialog = Open();
    const int16_t first = dialog->Logic().MediaHandle();
    dialog->cmdControl[ExerciseParamsLogic::kOpen]->click();
    const int16_t second = dialog->Logic().MediaHandle();
    EXPECT_NE(second, 0);
    EXPECT_NE(second, first);
    EXPECT_EQ(dialog->Media().OpenCount(), 1);
    dialog->cmdControl[ExerciseParamsLogic::kClose]->click();
    EXPECT_EQ(dialog->Logic().MediaHandle(), 0);
    EXPECT_EQ(dialog->Media().OpenCount(), 0);
    dialog->cmdControl[ExerciseParamsLogic::kPlay]->click(); // handle 0: nothing
}

TEST(QtMediaLibrary, HandlesCountFromOneAndUnknownHandlesDoNothing) {
    QTemporaryDir dir;
    const QString path = MakeMovie(dir.filePath("a.avi"), QSize(64, 48), 1);
    if (path.isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    QWidget surface;
    surface.resize(200, 200);
    surface.show();
    QtMediaLibrary media(&surface);
    EXPECT_EQ(media.FileDoesNotExist(path), 0);
    EXPECT_EQ(media.FileDoesNotExist(dir.filePath("b.avi")), 1);
    EXPECT_EQ(media.FileDoesNotExist(dir.path()), 1);
    EXPECT_EQ(media.Open(dir.path(), 0, 0), 0);
    const int16_t first = media.Open(path, 5, 7);
    const int16_t second = media.Open(path, 0, 0);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
    EXPECT_EQ(media.MovieWindow(first)->geometry(), QRect(5, 7, 66, 67));
    EXPECT_FALSE(media.MovieWindow(first)->isVisible()); // until Show
    media.SetWinPos(first, 0, 0);
    media.Show(first);
    EXPECT_EQ(media.MovieWindow(first)->pos(), QPoint(0, 0));
    EXPECT_TRUE(media.MovieWindow(first)->isVisible());
    for (int16_t none : {int16_t{0}, int16_t{9}}) {
        media.Play(none);
        media.Pause(none);
        media.Stop(none);
        media.Rewind(none);
        int w = -1;
        int h = -1;
        media.GetVideoWinSize(none, w, h);
        EXPECT_EQ(w, 0);
        EXPECT_EQ(h, 0);
    }
    EXPECT_EQ(media.Close(first), 0);
    EXPECT_EQ(media.OpenCount(), 1);
    EXPECT_EQ(media.Close(second), 0);
    EXPECT_EQ(media.OpenCount(), 0);
}

TEST(QtMediaLibrary, RewindGoesBackToTheFirstFrameAfterTheEnd) {
    QTemporaryDir dir;
    const QString path = MakeMovie(dir.filePath("short.AVI"), QSize(64, 48), 1);
    if (path.isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    QWidget surface;
    surface.show();
    QtMediaLibrary media(&surface);
    const int16_t handle = media.Open(path, 0, 0);
    ASSERT_NE(handle, 0);
    media.Show(handle);
    QMediaPlayer* player = media.Player(handle);
    media.Play(handle);
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->mediaStatus() == QMediaPlayer::EndOfMedia; },
                                kPlayWaitMs));
    media.Rewind(handle);
    EXPECT_TRUE(QTest::qWaitFor([&] { return player->position() == 0; }, kPlayWaitMs));
    media.Play(handle); // plays again from the start
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return player->playbackState() == QMediaPlayer::PlayingState && player->position() > 0;
        },
        kPlayWaitMs));
}

// --- a look at it

TEST_F(ExerciseParamsWindow, Screenshot) {
    // The delivered pictures and movie when the build has drawn them, else our own.
    const QString delivered = tarvex::testing::DeliveredFolder() + QDir::separator();
    const QString id = QStringLiteral("139");
    ExerciseEntry& e = state.Program.Exercises[0];
    e.ExerciseID = 139;
    e.Desc = QStringLiteral("Wall sits");
    e.Reps = 5;
    e.Hold = 10;
    e.Sets = 1;
    e.Movie = id + QStringLiteral(".AVI");
    e.Picture0 = id + QStringLiteral("_1.JPG");
    e.Picture1 = id + QStringLiteral("_2.JPG");
    e.Picture2 = id + QStringLiteral("_3.JPG");
    e.Instruct0 = QStringLiteral("Stand with your back against a wall, feet a step out from it.");
    e.Instruct1 = QStringLiteral("Slide down until your knees are bent about 45 degrees. Hold.");
    e.Instruct2 = QStringLiteral("Harder: slide lower, but keep your knees above your feet.");
    for (int view = 1; view <= 3; ++view) {
        const QString name = QStringLiteral("%1_%2.JPG").arg(id).arg(view);
        const QString source = delivered + QStringLiteral("PICTURE") + QDir::separator() + name;
        if (!QFile::copy(source, state.Media.Picture + name))
            DrawPicture(state.Media.Picture + name, QStringLiteral("view %1").arg(view));
    }
    const QString movie =
        delivered + QStringLiteral("MOVIE") + QDir::separator() + id + QStringLiteral(".AVI");
    const QString moviePath = state.Media.Movie + e.Movie;
    if (!QFile::copy(movie, moviePath) && MakeMovie(moviePath, QSize(320, 240), 1).isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    auto dialog = Open();
    const int16_t handle = dialog->Logic().MediaHandle();
    ASSERT_NE(handle, 0);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get()));
    QTest::qWait(300);
    const QString platform = QGuiApplication::platformName();
    QPixmap picture;
    if (platform == QLatin1String("offscreen")) {
        // Without a display the video's own window is not drawn into a grab: the frame
        // that the player holds is painted where that window lies.
        picture = dialog->grab();
        QWidget* movieWindow = dialog->Media().MovieWindow(handle);
        auto* video = movieWindow->findChild<QVideoWidget*>();
        ASSERT_NE(video, nullptr);
        const QImage frame = video->videoSink()->videoFrame().toImage();
        ASSERT_FALSE(frame.isNull());
        QPainter painter(&picture);
        painter.drawImage(QRect(video->mapTo(dialog.get(), QPoint(0, 0)), video->size()), frame);
    } else {
        picture = dialog->screen()->grabWindow(dialog->winId());
    }
    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    const QString shot =
        QStringLiteral(TARVEX_SCREENSHOT_DIR "/exercise-params-%1.png").arg(platform);
    ASSERT_TRUE(picture.save(shot));
    std::cout << "[ info ] screenshot " << shot.toStdString() << " (" << picture.width() << "x"
              << picture.height() << ")\n";
}

} // namespace

TEST_F(ExerciseParamsWindow, ALargeMovieIsShownSmallerSoThatTheWindowFitsTheScreen) {
    if (MakeMovie(MoviePath(), QSize(480, 360), 2).isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    auto dialog = Open();
    ASSERT_NE(dialog->Logic().MediaHandle(), 0);
    const QRect screen = dialog->screen()->availableGeometry();
    EXPECT_LE(dialog->height() + 32, screen.height());
    EXPECT_LE(dialog->width(), screen.width());
    const QSize movie = dialog->MovFrame->size();
    EXPECT_LE(movie.height(), 379);
    EXPECT_NEAR(double(movie.width()) / movie.height(), 482.0 / 379.0, 0.02);
    // OK and the movie's buttons lie inside the window, which lies on the screen.
    EXPECT_TRUE(dialog->rect().contains(dialog->cmdOK->geometry()));
    EXPECT_TRUE(dialog->rect().contains(
        dialog->cmdControl[ExerciseParamsLogic::kRewind]->mapTo(dialog.get(), QPoint(0, 0))));
}
