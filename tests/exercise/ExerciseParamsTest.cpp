#include "exercise/ExerciseParamsLogic.h"
#include "exercise/ParamText.h"
#include "fakes/FakeControls.h"
#include "fakes/FakeMediaLibrary.h"
#include "shell/AppState.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;

namespace {

ExerciseEntry Exercise(int32_t id, const QString& desc, int16_t reps, int16_t hold, int16_t sets) {
    ExerciseEntry e;
    e.ExerciseID = id;
    e.Code = QStringLiteral("K%1").arg(id);
    e.Desc = desc;
    e.AbbrevDesc = desc.left(12);
    e.Reps = reps;
    e.Hold = hold;
    e.Sets = sets;
    e.Movie = QStringLiteral("%1.AVI").arg(id);
    e.Icon = QStringLiteral("%1.JPG").arg(id);
    e.Picture0 = QStringLiteral("%1_1.JPG").arg(id);
    e.Picture1 = QStringLiteral("%1_2.JPG").arg(id);
    e.Picture2 = QStringLiteral("%1_3.JPG").arg(id);
    e.Instruct0 = QStringLiteral("Lie on your back.");
    e.Instruct1 = QStringLiteral("Slide the heel toward you.");
    e.Instruct2 = QStringLiteral("Slide it back.");
    e.HasVideo = true;
    return e;
}

// The workspace as the dialog sees it: the slot takes TmpExercise and the program is
// marked as modified, as the real SetSelExFromTmp does.
class FakeTarget : public IParamsTarget {
public:
    explicit FakeTarget(AppState& state) : state_(state) {}
    void SetSelExFromTmp(int16_t slot) override {
        calls << QStringLiteral("SetSelExFromTmp(%1)").arg(slot);
        state_.Program.Modified = true;
        state_.Program.Exercise(slot) = state_.TmpExercise;
    }
    void ShowSlotCaption(int16_t slot, const QString& caption) override {
        calls << QStringLiteral("ShowSlotCaption(%1)").arg(slot);
        captions[slot] = caption;
    }
    QStringList calls;
    QMap<int, QString> captions;

private:
    AppState& state_;
};

// The window: its caption, and its showing written into the movie layer's log so that
// the order of the load can be read in one list.
class FakeForm : public IParamsForm {
public:
    explicit FakeForm(QStringList& log) : log_(log) {}
    void SetCaption(const QString& c) override { caption = c; }
    void ShowForm() override {
        log_ << QStringLiteral("ShowForm");
        ++shown;
    }
    QString caption;
    int shown = 0;

private:
    QStringList& log_;
};

class ExerciseParams : public ::testing::Test {
protected:
    ExerciseParams() : form(media.calls), target(state) {
        state.Media.Movie = QStringLiteral("/media/MOVIE/");
        state.Media.Picture = pictureDir.path() + QDir::separator();
        state.Library.Entries = {Exercise(12, "Heel slides", 10, 5, 2),
                                 Exercise(385, "Bridging", 15, 0, 3)};
        state.Library.NumChoices = 2;
        for (int i = 0; i < 3; ++i)
            state.Program.Exercises[static_cast<size_t>(i)] =
                Exercise(100 + i, QStringLiteral("Slot %1").arg(i), 10, 5, 2);
        state.Program.NumExercises = 3;
        media.present.insert(QStringLiteral("/media/MOVIE/12.AVI"));
        media.present.insert(QStringLiteral("/media/MOVIE/101.AVI"));
        media.videoSize = QSize(160, 120);
    }

    void MakePicture(const QString& name) {
        QFile file(pictureDir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("picture");
    }

    ExerciseParamsLogic& Logic() {
        if (!logic) {
            logic = std::make_unique<ExerciseParamsLogic>(
                state, target, media,
                ExerciseParamsLogic::Controls{form,
                                              reps,
                                              hold,
                                              sets,
                                              {&instr[0], &instr[1], &instr[2]},
                                              {&image[0], &image[1], &image[2]},
                                              movFrame});
        }
        return *logic;
    }

    // Opens the dialog on a library entry or a slot.
    ExerciseParamsLogic& LoadFrom(int paramsFromLibrary, int choice) {
        state.ParamsFromLibrary = paramsFromLibrary;
        state.Library.CurrentChoice = choice;
        Logic().Load();
        return Logic();
    }

    QTemporaryDir pictureDir;
    AppState state;
    FakeMediaLibrary media;
    FakeMovieFrame movFrame;
    FakeForm form;
    FakeTarget target;
    FakeComboBox reps{false}, hold{false}, sets{false};
    FakeTextBox instr[3];
    FakePicture image[3];
    std::unique_ptr<ExerciseParamsLogic> logic;
};

// --- the load

TEST_F(ExerciseParams, TheListsHoldTheUsualValues) {
    LoadFrom(1, 0);
    EXPECT_EQ(reps.items, QStringList({"0", "5", "10", "15", "20", "25"}));
    EXPECT_EQ(hold.items, QStringList({"0", "5", "10", "15", "20", "25", "30", "35", "40", "45",
                                       "50", "55", "60"}));
    EXPECT_EQ(sets.items, QStringList({"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}));
}

TEST_F(ExerciseParams, TheListsShowTheExercisesNumbers) {
    LoadFrom(1, 0);
    EXPECT_EQ(reps.text, "10");
    EXPECT_EQ(hold.text, "5");
    EXPECT_EQ(sets.text, "2");
}

TEST_F(ExerciseParams, ANumberOutsideTheListIsShownAsItIs) {
    state.Library.Entries[0].Reps = 17;
    state.Library.Entries[0].Hold = 90;
    state.Library.Entries[0].Sets = 12;
    LoadFrom(1, 0);
    EXPECT_EQ(reps.text, "17");
    EXPECT_EQ(hold.text, "90");
    EXPECT_EQ(sets.text, "12");
    EXPECT_EQ(reps.items.size(), 6);
}

TEST_F(ExerciseParams, TheCaptionNamesTheExercise) {
    LoadFrom(1, 1);
    EXPECT_EQ(form.caption, "Exercise: Bridging");
}

TEST_F(ExerciseParams, ALibraryPictureOpensACopyOfTheLibraryEntry) {
    const auto& logic = LoadFrom(1, 1);
    EXPECT_EQ(logic.ParamEntry(), state.Library.Entries[1]);
}

TEST_F(ExerciseParams, ASelectedPictureOpensACopyOfItsSlot) {
    const auto& logic = LoadFrom(0, 2);
    EXPECT_EQ(logic.ParamEntry(), state.Program.Exercises[2]);
    EXPECT_EQ(form.caption, "Exercise: Slot 2");
}

TEST_F(ExerciseParams, AnIndexOutsideTheLibraryIsABoundsFault) {
    state.ParamsFromLibrary = 1;
    state.Library.CurrentChoice = 2;
    EXPECT_THROW(Logic().Load(), BoundsFault);
}

TEST_F(ExerciseParams, PicturesComeFromThePictureFolderAndInstructionsFromTheEntry) {
    MakePicture("12_1.JPG");
    MakePicture("12_3.JPG");
    LoadFrom(1, 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(image[i].loads,
                  QStringList{state.Media.Picture + QStringLiteral("12_%1.JPG").arg(i + 1)});
    EXPECT_TRUE(image[0].HasPicture());
    EXPECT_FALSE(image[1].HasPicture()); // missing: empty, without a word
    EXPECT_TRUE(image[2].HasPicture());
    EXPECT_EQ(instr[0].text, "Lie on your back.");
    EXPECT_EQ(instr[1].text, "Slide the heel toward you.");
    EXPECT_EQ(instr[2].text, "Slide it back.");
}

// --- the movie

TEST_F(ExerciseParams, TheMovieOpensAfterTheWindowIsShownInTheHandleStyleOrder) {
    const auto& logic = LoadFrom(1, 0);
    EXPECT_EQ(logic.MovieFileName(), "/media/MOVIE/12.AVI");
    EXPECT_EQ(media.calls, QStringList({"ShowForm", "FileDoesNotExist(/media/MOVIE/12.AVI)",
                                        "Open(/media/MOVIE/12.AVI,0,0)", "GetVideoWinSize(1)",
                                        "SetWinPos(1,0,0)", "Show(1)"}));
    EXPECT_EQ(logic.MediaHandle(), 1);
    EXPECT_EQ(form.shown, 1);
}

TEST_F(ExerciseParams, TheMovieSurfaceTakesTheVideoSizeWithBorderAndBar) {
    media.videoSize = QSize(480, 360);
    LoadFrom(1, 0);
    EXPECT_EQ(movFrame.size, QSize(482, 379));
    EXPECT_EQ(movFrame.sizings, 1);
}

TEST_F(ExerciseParams, AMissingMovieFileIsNeverOpened) {
    const auto& logic = LoadFrom(1, 1); // 385.AVI is not there
    EXPECT_EQ(media.calls, QStringList({"ShowForm", "FileDoesNotExist(/media/MOVIE/385.AVI)"}));
    EXPECT_EQ(logic.MediaHandle(), 0);
    EXPECT_EQ(movFrame.sizings, 0);
}

TEST_F(ExerciseParams, AnEmptyMovieNameAsksForTheFolderItself) {
    state.Library.Entries[0].Movie.clear();
    const auto& logic = LoadFrom(1, 0);
    EXPECT_EQ(logic.MovieFileName(), "/media/MOVIE/");
    EXPECT_EQ(media.calls.last(), "FileDoesNotExist(/media/MOVIE/)");
    EXPECT_EQ(logic.MediaHandle(), 0);
}

TEST_F(ExerciseParams, AMovieThatFailsToOpenLeavesTheSurfaceAlone) {
    media.openFails = true;
    const auto& logic = LoadFrom(1, 0);
    EXPECT_EQ(media.calls.last(), "Open(/media/MOVIE/12.AVI,0,0)");
    EXPECT_EQ(logic.MediaHandle(), 0);
    EXPECT_EQ(movFrame.sizings, 0);
}

TEST_F(ExerciseParams, WithNoMovieThePlayCommandsSendHandleZero) {
    auto& logic = LoadFrom(1, 1);
    media.calls.clear();
    for (int index : {1, 2, 3, 5})
        logic.cmdControl(index);
    EXPECT_EQ(media.calls, QStringList({"Play(0)", "Pause(0)", "Stop(0)", "Rewind(0)"}));
}

TEST_F(ExerciseParams, TheCommandsGoToTheOpenMovieByIndex) {
    auto& logic = LoadFrom(1, 0);
    media.calls.clear();
    for (int index : {1, 2, 3, 5, 4})
        logic.cmdControl(index);
    EXPECT_EQ(media.calls,
              QStringList({"Play(1)", "Pause(1)", "Stop(1)", "Rewind(1)", "Close(1)"}));
    EXPECT_EQ(logic.MediaHandle(), 0);
}

TEST_F(ExerciseParams, CloseIsSentOnlyWithAnOpenMovie) {
    auto& logic = LoadFrom(1, 0);
    logic.cmdControl(ExerciseParamsLogic::kClose);
    media.calls.clear();
    logic.cmdControl(ExerciseParamsLogic::kClose);
    EXPECT_TRUE(media.calls.isEmpty());
}

TEST_F(ExerciseParams, CloseStoresWhatTheLibraryReturns) {
    media.closeResult = 7; // a library that failed to close keeps a handle
    auto& logic = LoadFrom(1, 0);
    logic.cmdControl(ExerciseParamsLogic::kClose);
    EXPECT_EQ(logic.MediaHandle(), 7);
}

TEST_F(ExerciseParams, OpeningAgainClosesTheMovieBefore) {
    auto& logic = LoadFrom(1, 0);
    media.calls.clear();
    logic.cmdControl(ExerciseParamsLogic::kOpen);
    EXPECT_EQ(media.calls, QStringList({"FileDoesNotExist(/media/MOVIE/12.AVI)", "Close(1)",
                                        "Open(/media/MOVIE/12.AVI,0,0)", "GetVideoWinSize(2)",
                                        "SetWinPos(2,0,0)", "Show(2)"}));
    EXPECT_EQ(logic.MediaHandle(), 2);
    EXPECT_EQ(media.open, QSet<int16_t>{2});
}

TEST_F(ExerciseParams, OpenMediaReportsTheMovieWindowSize) {
    auto& logic = Logic();
    int width = 0;
    int height = 0;
    EXPECT_EQ(logic.nFuncOpenMedia("/media/MOVIE/12.AVI", width, height, 4, 6), 1);
    EXPECT_EQ(width, 162);
    EXPECT_EQ(height, 139);
    EXPECT_EQ(media.calls.first(), "Open(/media/MOVIE/12.AVI,4,6)");
}

TEST_F(ExerciseParams, AnIndexBeyondTheSixCommandsDoesNothing) {
    auto& logic = LoadFrom(1, 0);
    media.calls.clear();
    logic.cmdControl(6);
    logic.cmdControl(-1);
    EXPECT_TRUE(media.calls.isEmpty());
}

// --- the end of the dialog

TEST_F(ExerciseParams, ATypedValueOutsideTheListIsKept) {
    auto& logic = LoadFrom(0, 1);
    reps.SetText("17");
    ASSERT_TRUE(logic.cmdOKCancel("OK"));
    EXPECT_EQ(state.Program.Exercises[1].Reps, 17);
}

TEST_F(ExerciseParams, AWordInTheSetsListGivesNoSets) {
    auto& logic = LoadFrom(0, 1);
    sets.SetText("abc");
    logic.cmdOKCancel("OK");
    EXPECT_EQ(state.Program.Exercises[1].Sets, 0);
}

TEST_F(ExerciseParams, TheLeadingNumberOfATextCountsAndIsRoundedToEven) {
    auto& logic = LoadFrom(0, 1);
    reps.SetText("12 reps");
    hold.SetText("2.5");
    sets.SetText("3.5");
    logic.cmdOKCancel("OK");
    EXPECT_EQ(state.Program.Exercises[1].Reps, 12);
    EXPECT_EQ(state.Program.Exercises[1].Hold, 2);
    EXPECT_EQ(state.Program.Exercises[1].Sets, 4);
}

TEST_F(ExerciseParams, ANumberBeyondSixteenBitsIsAFaultAndNothingIsWritten) {
    auto& logic = LoadFrom(0, 1);
    const ExerciseEntry before = state.Program.Exercises[1];
    reps.SetText("40000");
    EXPECT_THROW(logic.cmdOKCancel("OK"), OverflowFault);
    EXPECT_EQ(state.Program.Exercises[1], before);
    EXPECT_TRUE(target.calls.isEmpty());
}

TEST_F(ExerciseParams, AHoldOfZeroLeavesTheHoldOutOfTheCaption) {
    auto& logic = LoadFrom(0, 1);
    reps.SetText("10");
    hold.SetText("0");
    sets.SetText("2");
    logic.cmdOKCancel("OK");
    EXPECT_EQ(target.calls, QStringList{"ShowSlotCaption(1)"});
    EXPECT_EQ(target.captions[1], "Slot 1\n10r/2x");
    EXPECT_EQ(target.captions[1], ShortParamText(state.Program, 1));
}

TEST_F(ExerciseParams, OkOnASlotWritesTheSlotAndCaptionWithoutMarkingTheProgram) {
    auto& logic = LoadFrom(0, 1);
    reps.SetText("20");
    hold.SetText("30");
    sets.SetText("4");
    instr[1].text = "Slide the heel slowly.";
    EXPECT_TRUE(logic.cmdOKCancel("OK"));
    const ExerciseEntry& slot = state.Program.Exercises[1];
    EXPECT_EQ(slot.Reps, 20);
    EXPECT_EQ(slot.Hold, 30);
    EXPECT_EQ(slot.Sets, 4);
    EXPECT_EQ(slot.Instruct0, "Lie on your back.");
    EXPECT_EQ(slot.Instruct1, "Slide the heel slowly.");
    EXPECT_EQ(slot.Movie, "101.AVI"); // the other fields go back unchanged
    EXPECT_EQ(slot.Icon, "101.JPG");
    EXPECT_EQ(slot.ExerciseID, 101);
    EXPECT_EQ(target.captions[1], "Slot 1\n20r/30s/4x");
    EXPECT_FALSE(state.Program.Modified);
    EXPECT_EQ(state.Program.NumExercises, 3);
}

TEST_F(ExerciseParams, OkOnALibraryPictureAppendsBehindTheLastSlot) {
    auto& logic = LoadFrom(1, 1);
    reps.SetText("25");
    instr[0].text = "Lift the hips.";
    logic.cmdOKCancel("OK");
    EXPECT_EQ(target.calls, QStringList{"SetSelExFromTmp(3)"});
    EXPECT_EQ(state.Program.NumExercises, 4);
    EXPECT_EQ(state.TmpExercise, logic.ParamEntry());
    EXPECT_EQ(state.Program.Exercises[3].Desc, "Bridging");
    EXPECT_EQ(state.Program.Exercises[3].Reps, 25);
    EXPECT_EQ(state.Program.Exercises[3].Instruct0, "Lift the hips.");
    EXPECT_TRUE(state.Program.Modified); // by the workspace's SetSelExFromTmp
    // The library keeps its defaults.
    EXPECT_EQ(state.Library.Entries[1].Reps, 15);
    EXPECT_EQ(state.Library.Entries[1].Instruct0, "Lie on your back.");
}

TEST_F(ExerciseParams, OkOnALibraryPictureWithNineteenSelectedFillsSlotNineteen) {
    state.Program.NumExercises = 19;
    auto& logic = LoadFrom(1, 0);
    logic.cmdOKCancel("OK");
    EXPECT_EQ(target.calls, QStringList{"SetSelExFromTmp(19)"});
    EXPECT_EQ(state.Program.Exercises[19].Desc, "Heel slides");
    EXPECT_EQ(state.Program.NumExercises, 20);
}

TEST_F(ExerciseParams, CancelWritesNothing) {
    auto& logic = LoadFrom(0, 1);
    const ExerciseProgram before = state.Program;
    reps.SetText("25");
    instr[0].text = "Changed";
    EXPECT_TRUE(logic.cmdOKCancel("Cancel"));
    EXPECT_EQ(state.Program.Exercises, before.Exercises);
    EXPECT_EQ(state.TmpExercise, ExerciseEntry());
    EXPECT_TRUE(target.calls.isEmpty());
}

TEST_F(ExerciseParams, AnUnknownTagDoesNotEndTheDialog) {
    auto& logic = LoadFrom(0, 1);
    EXPECT_FALSE(logic.cmdOKCancel("Apply"));
    EXPECT_TRUE(target.calls.isEmpty());
}

TEST_F(ExerciseParams, UnloadAlwaysClosesTheMovie) {
    for (const char* tag : {"OK", "Cancel"}) {
        FakeMediaLibrary library;
        library.present.insert("/media/MOVIE/101.AVI");
        FakeTarget workspace(state);
        ExerciseParamsLogic logic(state, workspace, library,
                                  {form,
                                   reps,
                                   hold,
                                   sets,
                                   {&instr[0], &instr[1], &instr[2]},
                                   {&image[0], &image[1], &image[2]},
                                   movFrame});
        state.ParamsFromLibrary = 0;
        state.Library.CurrentChoice = 1;
        logic.Load();
        logic.cmdControl(ExerciseParamsLogic::kPlay);
        logic.cmdOKCancel(tag);
        logic.Unload();
        EXPECT_EQ(library.calls.mid(library.calls.size() - 2), QStringList({"Play(1)", "Close(1)"}))
            << tag;
        EXPECT_EQ(logic.MediaHandle(), 0) << tag;
        EXPECT_TRUE(library.open.isEmpty()) << tag;
    }
}

TEST_F(ExerciseParams, UnloadWithoutAMovieSendsNothing) {
    auto& logic = LoadFrom(1, 1);
    media.calls.clear();
    logic.Unload();
    EXPECT_TRUE(media.calls.isEmpty());
}

} // namespace
