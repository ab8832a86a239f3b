#include "exercise/ExerciseProgram.h"
#include "exercise/MediaPaths.h"
#include "exercise/ParamText.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;

namespace {

ExerciseProgram ProgramWith(int16_t reps, int16_t hold, int16_t sets) {
    ExerciseProgram program;
    ExerciseEntry& e = program.Exercise(0);
    e.Desc = "Supine heel slides with towel";
    e.AbbrevDesc = "Heel slides";
    e.Reps = reps;
    e.Hold = hold;
    e.Sets = sets;
    program.NumExercises = 1;
    return program;
}

} // namespace

TEST(ShortParamText, ShowsRepsHoldAndSetsUnderTheDescription) {
    EXPECT_EQ(ShortParamText(ProgramWith(10, 5, 2), 0), "Heel slides\n10r/5s/2x");
}

TEST(ShortParamText, LeavesOutAHoldOfZero) {
    EXPECT_EQ(ShortParamText(ProgramWith(10, 0, 2), 0), "Heel slides\n10r/2x");
}

TEST(ShortParamText, SeparatesByALineFeedAlone) {
    const QString text = ShortParamText(ProgramWith(10, 0, 2), 0);
    EXPECT_FALSE(text.contains(QChar(13)));
    EXPECT_EQ(text.count(QChar(10)), 1);
}

TEST(LongParamText, WithoutAHoldHasOneCommaBeforeTheSets) {
    const QString text = LongParamText(ProgramWith(10, 0, 2), 0);
    EXPECT_EQ(text, "Supine heel slides with towel, 10 reps, 2 set");
    EXPECT_EQ(text.count(", "), 2);
}

TEST(LongParamText, WithAHold) {
    EXPECT_EQ(LongParamText(ProgramWith(10, 5, 2), 0),
              "Supine heel slides with towel, 10 reps, 5 sec hold, 2 set");
}

TEST(ParamTexts, ZeroRepsStillPrintAndTheWordsNeverChange) {
    EXPECT_EQ(ShortParamText(ProgramWith(0, 0, 1), 0), "Heel slides\n0r/1x");
    EXPECT_EQ(LongParamText(ProgramWith(0, 0, 1), 0),
              "Supine heel slides with towel, 0 reps, 1 set");
    EXPECT_EQ(LongParamText(ProgramWith(1, 0, 3), 0),
              "Supine heel slides with towel, 1 reps, 3 set");
}

TEST(ExerciseProgram, AnIndexOutsideZeroToNineteenIsABoundsFault) {
    ExerciseProgram program;
    EXPECT_NO_THROW(program.Exercise(19));
    EXPECT_THROW(program.Exercise(20), BoundsFault);
    EXPECT_THROW(program.Exercise(-1), BoundsFault);
    EXPECT_THROW(ShortParamText(program, 20), BoundsFault);
    EXPECT_THROW(LongParamText(program, -1), BoundsFault);
    EXPECT_THROW(program.Item(3), BoundsFault);
}

TEST(ExerciseProgram, StartsEmptyWithNoPatientAndNoStoredProgram) {
    const ExerciseProgram program;
    EXPECT_EQ(program.NumExercises, 0);
    EXPECT_FALSE(program.PatientID.has_value());
    EXPECT_FALSE(program.InvoiceID.has_value());
}

TEST(ExerciseEntry, IsCopiedWholeWithItsTexts) {
    ExerciseEntry a;
    a.ExerciseID = 385;
    a.Joint = "Hip, Knee";
    a.Instruct0 = "Sit tall.";
    ExerciseEntry b = a;
    a.Instruct0 = "changed";
    EXPECT_EQ(b.Instruct0, "Sit tall.");
    EXPECT_EQ(b.Joint, "Hip, Knee");
}

TEST(MediaFileNames, AreMadeFromTheExerciseNumber) {
    const MediaPaths paths{"/icons/", "/movies/", "/pictures/"};
    EXPECT_EQ(PictureFileName(paths, 385, 1), "/pictures/385_1.JPG");
    EXPECT_EQ(PictureFileName(paths, 100000, 3), "/pictures/100000_3.JPG");
    EXPECT_EQ(IconFileName(paths, 385), "/icons/385.JPG");
}
