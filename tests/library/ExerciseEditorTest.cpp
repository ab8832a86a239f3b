#include "library/EditorHarness.h"

#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using namespace tarvex::testing;

TEST(ExerciseEditor, TheFirstExerciseAClinicAddsIsNumberOneHundredThousand) {
    Editor e;
    ASSERT_LT(e.Highest(), 100000);
    const int before = e.Count();
    e.Add();
    EXPECT_EQ(e.logic.ExerciseID(), 100000);
    EXPECT_EQ(*e.folder.state.ExerciseNumber, "100000");
    EXPECT_EQ(e.title.title, "Exercise Number: 100000");
    EXPECT_EQ(e.txtRepsDef.text, "10");
    EXPECT_EQ(e.txtHoldDef.text, "0");
    EXPECT_EQ(e.txtSetsDef.text, "1");
    EXPECT_EQ(e.Count(), before) << "no row until OK";
}

TEST(ExerciseEditor, WithTwoHundredFortyThreeTheHighestANewExerciseGetsOneHundredThousand) {
    Editor e;
    Execute(e.Db(), "DELETE * FROM ExerciseLibrary WHERE ExerciseID > 243");
    if (e.Highest() != 243)
        e.AddExercise(243);
    ASSERT_EQ(e.Highest(), 243);
    e.Add();
    EXPECT_EQ(e.logic.ExerciseID(), 100000);
}

TEST(ExerciseEditor, AfterOneHundredThousandTheNextIsOneMoreAndAFreedHighestNumberIsUsedAgain) {
    Editor e;
    e.AddExercise(100000);
    e.Add();
    EXPECT_EQ(e.logic.ExerciseID(), 100001);
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_FALSE(e.Row(100001).isEmpty());

    Execute(e.Db(), "DELETE * FROM ExerciseLibrary WHERE ExerciseID = 100001");
    Editor again;
    again.AddExercise(100000);
    again.Add();
    EXPECT_EQ(again.logic.ExerciseID(), 100001);
}

TEST(ExerciseEditor, CancelOnANewExerciseLeavesNoRowAndTheNumberIsFreeAgain) {
    Editor e;
    const int before = e.Count();
    e.Add();
    e.txtDescription.text = "Heel slides";
    EXPECT_TRUE(e.logic.cmdOKCancel_Click("Cancel"));
    e.logic.Unload();
    EXPECT_EQ(e.Count(), before);
    EXPECT_TRUE(e.Row(100000).isEmpty());
    EXPECT_EQ(e.host.refills, 1) << "the list is filled again whatever closed the editor";
    e.Add();
    EXPECT_EQ(e.logic.ExerciseID(), 100000);
}

TEST(ExerciseEditor, OkStoresEveryFieldOfANewExerciseInOneRow) {
    Editor e;
    e.Add();
    e.txtDescription.text = "Heel slide with towel, patient's own \"slow\" pace";
    e.txtAbbrevDesc.text = "Heel slide";
    e.txtRepsDef.text = "15";
    e.txtHoldDef.text = "5";
    e.txtSetsDef.text = "2";
    e.cboPattern.SetText("Flexion");
    e.cboType.SetText("Aquatic");
    e.lstJoint.ClickItems({"Knee", "Hip"});
    e.txtPicture[0].text = "Lie on your back.";
    e.txtPicture[1].text = "Slide the heel toward the buttock.";
    e.txtPicture[2].text = "Über 10 Sekunden – zurück.";
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));

    const QSqlRecord row = e.Row(100000);
    ASSERT_FALSE(row.isEmpty());
    EXPECT_EQ(row.value("Desc").toString(), "Heel slide with towel, patient's own \"slow\" pace");
    EXPECT_EQ(row.value("AbbrevDesc").toString(), "Heel slide");
    EXPECT_EQ(row.value("Reps").toInt(), 15);
    EXPECT_EQ(row.value("Hold").toInt(), 5);
    EXPECT_EQ(row.value("Sets").toInt(), 2);
    EXPECT_EQ(row.value("Motion").toString(), "Flexion");
    EXPECT_EQ(row.value("Type").toString(), "Aquatic");
    EXPECT_EQ(row.value("Joint").toString(), "Hip,Knee") << "in list order, a comma alone";
    EXPECT_EQ(row.value("Icon").toString(), "100000.JPG");
    EXPECT_EQ(row.value("Picture0").toString(), "100000_1.JPG");
    EXPECT_EQ(row.value("Picture1").toString(), "100000_2.JPG");
    EXPECT_EQ(row.value("Picture2").toString(), "100000_3.JPG");
    EXPECT_EQ(row.value("IconSrc").toInt(), 3);
    EXPECT_EQ(row.value("Instruct0").toString(), "Lie on your back.");
    EXPECT_EQ(row.value("Instruct1").toString(), "Slide the heel toward the buttock.");
    EXPECT_EQ(row.value("Instruct2").toString(), "Über 10 Sekunden – zurück.");
    EXPECT_EQ(row.value("HasVideo").toInt(), 0);
    EXPECT_EQ(row.value("code").toString(), "100000");
    EXPECT_TRUE(row.value("Movie").isNull()) << "a new exercise has no movie";
    EXPECT_TRUE(row.value("VideoReps").isNull());
}

TEST(ExerciseEditor, EmptyEverythingSaves) {
    Editor e;
    e.Add();
    e.txtRepsDef.text.clear();
    e.txtHoldDef.text.clear();
    e.txtSetsDef.text.clear();
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    const QSqlRecord row = e.Row(100000);
    ASSERT_FALSE(row.isEmpty());
    EXPECT_EQ(row.value("Desc").toString(), "");
    EXPECT_EQ(row.value("Joint").toString(), "");
    for (const char* column : {"Reps", "Hold", "Sets"}) {
        EXPECT_FALSE(row.value(column).isNull()) << column << ": an empty number box writes 0";
        EXPECT_EQ(row.value(column).toInt(), 0) << column;
    }
    EXPECT_EQ(row.value("IconSrc").toInt(), 3);
}

TEST(ExerciseEditor, LettersInANumberBoxEndTheSaveWithTheEngineErrorAndStoreNothing) {
    Editor e;
    e.Add();
    e.PutPicture(100000, 1);
    e.optExIcon[0].value = 1;
    e.txtHoldDef.text = "5s";
    try {
        e.logic.cmdOKCancel_Click("OK");
        FAIL() << "the save went through";
    } catch (const DatabaseFault& fault) {
        EXPECT_EQ(fault.Number(), 3421);
        EXPECT_TRUE(fault.Message().contains("Data type conversion error."))
            << fault.Message().toStdString();
        EXPECT_TRUE(fault.Message().contains("Hold")) << fault.Message().toStdString();
    }
    EXPECT_TRUE(e.Row(100000).isEmpty());
    EXPECT_FALSE(QFile::exists(e.IconPath(100000))) << "no icon without its row";
    // Corrected, the same form saves.
    e.txtHoldDef.text = "5";
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_EQ(e.Row(100000).value("Hold").toInt(), 5);
    EXPECT_TRUE(QFile::exists(e.IconPath(100000)));
}

TEST(ExerciseEditor, ANumberBeyondSixteenBitsIsAnOverflowAndAFractionIsRounded) {
    Editor e;
    e.Add();
    e.txtRepsDef.text = "40000";
    EXPECT_THROW(e.logic.cmdOKCancel_Click("OK"), OverflowFault);
    EXPECT_TRUE(e.Row(100000).isEmpty());
    e.txtRepsDef.text = " 12.5 ";
    e.txtSetsDef.text = "-3";
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_EQ(e.Row(100000).value("Reps").toInt(), 12);
    EXPECT_EQ(e.Row(100000).value("Sets").toInt(), -3);
}

TEST(ExerciseEditor, EditingShowsTheRowAndSavingAnOriginalClearsItsVideoAndSetsItsCode) {
    Editor e;
    Execute(e.Db(), "UPDATE ExerciseLibrary SET HasVideo = TRUE, code = 'K7', IconSrc = 2 "
                    "WHERE ExerciseID = 7");
    const QSqlRecord before = e.Row(7);
    e.Edit(7);
    EXPECT_EQ(e.title.title, "Exercise Number: 007");
    EXPECT_FALSE(e.logic.Adding());
    EXPECT_EQ(e.txtDescription.text, before.value("Desc").toString());
    EXPECT_EQ(e.txtAbbrevDesc.text, before.value("AbbrevDesc").toString());
    EXPECT_EQ(e.txtRepsDef.text, before.value("Reps").toString());
    EXPECT_EQ(e.cboPattern.text, before.value("Motion").toString());
    EXPECT_EQ(e.cboType.text, before.value("Type").toString());
    EXPECT_EQ(e.txtPicture[0].text, before.value("Instruct0").toString());
    EXPECT_EQ(e.optExIcon[0].value, 0);
    EXPECT_EQ(e.optExIcon[1].value, 0);
    EXPECT_EQ(e.optExIcon[2].value, 1);
    EXPECT_EQ(e.imgPicture[1].loads.value(0), e.folder.state.Media.Picture + "7_2.JPG");

    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    const QSqlRecord after = e.Row(7);
    EXPECT_EQ(after.value("HasVideo").toInt(), 0);
    EXPECT_EQ(after.value("code").toString(), "7");
    EXPECT_EQ(after.value("Desc"), before.value("Desc"));
    EXPECT_EQ(after.value("Movie"), before.value("Movie")) << "the movie columns stay";
    EXPECT_EQ(after.value("VideoReps"), before.value("VideoReps"));
    EXPECT_EQ(after.value("Picture0").toString(), "7_1.JPG");
    EXPECT_EQ(after.value("IconSrc").toInt(), 2);
}

TEST(ExerciseEditor, TwoJointsWithACommaAndABlankAreBothChosenAndSavedWithACommaAlone) {
    Editor e;
    e.AddExercise(100000, "Shoulder, Elbow");
    e.Edit(100000);
    EXPECT_EQ(e.lstJoint.SelectedItems(), QStringList({"Elbow", "Shoulder"}));
    EXPECT_EQ(e.lstJoint.items.count("Elbow"), 1) << "each joint once in the list";
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_EQ(e.Row(100000).value("Joint").toString(), "Elbow,Shoulder");
}

TEST(ExerciseEditor, TheJointListHoldsEveryJointOfTheLibraryOnceAndTheCombosEveryValue) {
    Editor e;
    e.AddExercise(100000, "Knee,Jaw , ,Wrist");
    Execute(e.Db(), "UPDATE ExerciseLibrary SET Motion = NULL WHERE ExerciseID = 100000");
    e.Add();
    EXPECT_TRUE(e.lstJoint.items.contains("Jaw"));
    EXPECT_TRUE(e.lstJoint.items.contains("Wrist"));
    EXPECT_FALSE(e.lstJoint.items.contains(""));
    EXPECT_EQ(e.lstJoint.items.count("Knee"), 1);
    EXPECT_TRUE(e.lstJoint.SelectedItems().isEmpty());
    EXPECT_TRUE(e.cboPattern.items.contains("")) << "a null gives an empty entry";
    EXPECT_TRUE(e.cboPattern.items.contains("Flexion"));
    EXPECT_TRUE(e.cboType.items.contains("Strengthening"));
    EXPECT_EQ(e.cboPattern.text, "");
}

TEST(ExerciseEditor, AddingAJointPutsItInTheListUnchosenAndRepeatsAreAllowed) {
    Editor e;
    e.Add();
    const int before = e.lstJoint.ListCount();
    e.prompter.inputs = {QString("Temporomandibular"), QString("Temporomandibular"), QString(""),
                         std::nullopt};
    e.logic.cmdNewJoint_Click();
    e.logic.cmdNewJoint_Click();
    e.logic.cmdNewJoint_Click();
    e.logic.cmdNewJoint_Click();
    EXPECT_EQ(e.lstJoint.ListCount(), before + 2);
    EXPECT_EQ(e.lstJoint.items.count("Temporomandibular"), 2);
    EXPECT_TRUE(e.lstJoint.SelectedItems().isEmpty());
    ASSERT_EQ(e.prompter.boxes.size(), 4u);
    EXPECT_EQ(e.prompter.boxes[0].text, "Enter new joint");
    EXPECT_EQ(e.prompter.boxes[0].title, "Add new joint");
}

TEST(ExerciseEditor, NoIconOptionWritesThreeAndMakesNoIconAndReopeningShowsNoneOn) {
    Editor e;
    e.Add();
    e.PutPicture(100000, 1);
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_EQ(e.Row(100000).value("IconSrc").toInt(), 3);
    EXPECT_TRUE(e.host.icons.isEmpty());
    EXPECT_FALSE(QFile::exists(e.IconPath(100000)));
    // Opened again, with the options as a previous exercise left them.
    for (FakeCheckBox& option : e.optExIcon)
        option.value = 1;
    e.Edit(100000);
    for (const FakeCheckBox& option : e.optExIcon)
        EXPECT_EQ(option.value, 0);
}

TEST(ExerciseEditor, TheChosenPictureMakesTheIconSixtyOneWideAndReplacesTheOldOne) {
    Editor e;
    e.AddExercise(100000);
    ASSERT_TRUE(e.PutOldIcon(100000));
    e.PutPicture(100000, 2, {1200, 900});
    e.Edit(100000);
    e.optExIcon[0].value = 0;
    e.optExIcon[1].value = 1;
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_EQ(e.host.icons, QStringList({"100000.JPG"}));
    const QImage icon(e.IconPath(100000));
    EXPECT_EQ(icon.width(), 61);
    EXPECT_EQ(icon.height(), 46);
    EXPECT_EQ(e.Row(100000).value("IconSrc").toInt(), 1);
    EXPECT_EQ(QDir(e.folder.state.Media.Icon).entryList(QDir::Files), QStringList({"100000.JPG"}))
        << "no temporary file is left";
}

TEST(ExerciseEditor, WithTheChosenPictureMissingTheOldIconStays) {
    Editor e;
    e.AddExercise(100000);
    ASSERT_TRUE(e.PutOldIcon(100000));
    e.Edit(100000);
    e.optExIcon[1].value = 1;
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_TRUE(e.host.icons.isEmpty());
    EXPECT_EQ(QImage(e.IconPath(100000)).width(), 30);
}

TEST(ExerciseEditor, APictureThatIsNoPictureEndsTheSaveWithItsReportAndStoresNoRow) {
    Editor e;
    e.Add();
    QFile bad(e.folder.state.Media.Picture + "100000_1.JPG");
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("this is no picture");
    bad.close();
    e.optExIcon[0].value = 1;
    EXPECT_THROW(e.logic.cmdOKCancel_Click("OK"), Fault);
    EXPECT_TRUE(e.Row(100000).isEmpty());
    EXPECT_FALSE(QFile::exists(e.IconPath(100000)));
}

TEST(ExerciseEditor, AnIconFolderThatIsNotThereIsSaidInABoxAndNothingIsSaved) {
    Editor e;
    e.Add();
    e.PutPicture(100000, 1);
    e.optExIcon[0].value = 1;
    // The icons on a medium that is not in its drive.
    const QString icons = e.folder.File("CD/Icons");
    e.folder.state.Media.Icon = icons + u'/';
    e.prompter.answers = {Answer::Ok};
    EXPECT_FALSE(e.logic.cmdOKCancel_Click("OK"));
    ASSERT_EQ(e.prompter.boxes.size(), 1u);
    EXPECT_EQ(e.prompter.boxes[0].title, "Pictures Cannot Be Changed");
    EXPECT_TRUE(e.prompter.boxes[0].text.contains(QDir::toNativeSeparators(icons)))
        << e.prompter.boxes[0].text.toStdString();
    EXPECT_TRUE(e.prompter.boxes[0].text.contains("Copy Pictures"));
    EXPECT_TRUE(e.Row(100000).isEmpty());
    EXPECT_FALSE(QFile::exists(e.IconPath(100000)));
    EXPECT_TRUE(e.host.icons.isEmpty());
    // With the folder there, the same form saves.
    ASSERT_TRUE(QDir().mkpath(icons));
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    EXPECT_FALSE(e.Row(100000).isEmpty());
    EXPECT_EQ(QImage(e.IconPath(100000)).width(), 61);
}

TEST(ExerciseEditor, AnIconFolderWithoutWritePermissionIsSaidInABoxAndNothingIsSaved) {
    Editor e;
    e.Add();
    e.PutPicture(100000, 1);
    e.optExIcon[0].value = 1;
    const QString icons = QFileInfo(e.IconPath(100000)).absolutePath();
    QFile::setPermissions(icons, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const bool writable = QFileInfo(icons).isWritable();
    if (!writable) {
        e.prompter.answers = {Answer::Ok};
        EXPECT_FALSE(e.logic.cmdOKCancel_Click("OK"));
    }
    QFile::setPermissions(icons,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    if (writable)
        GTEST_SKIP() << "this user may write in any folder (root): the missing folder's test "
                        "covers the box";
    ASSERT_EQ(e.prompter.boxes.size(), 1u);
    EXPECT_TRUE(e.prompter.boxes[0].text.contains(QDir::toNativeSeparators(icons)));
    EXPECT_TRUE(e.Row(100000).isEmpty());
    EXPECT_FALSE(QFile::exists(e.IconPath(100000)));
}

TEST(ExerciseEditor, AnExerciseThatIsGoneCannotBeEdited) {
    Editor e;
    e.folder.state.ExerciseNumber = "123456";
    try {
        e.logic.Load();
        FAIL() << "an exercise that is not there loaded";
    } catch (const DatabaseFault& fault) {
        EXPECT_EQ(fault.Number(), 3021);
    }
}

TEST(ExerciseEditor, TextsAtTheirLimitsAndApostrophesAreStoredAsTyped) {
    Editor e;
    e.Add();
    e.txtDescription.text = QString(49, u'x') + u'\'';
    e.txtAbbrevDesc.text = "O'Brien's lift";
    e.txtPicture[0].text = QString(74, u'y') + u'"';
    e.cboType.SetText("Patient's own");
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    const QSqlRecord row = e.Row(100000);
    EXPECT_EQ(row.value("Desc").toString(), QString(49, u'x') + u'\'');
    EXPECT_EQ(row.value("AbbrevDesc").toString(), "O'Brien's lift");
    EXPECT_EQ(row.value("Instruct0").toString().size(), 75);
    EXPECT_EQ(row.value("Type").toString(), "Patient's own");
}

TEST(ExerciseEditor, AnExerciseDeletedWhileItIsEditedIsReportedAndNotWrittenAgain) {
    Editor e;
    e.AddExercise(100000);
    e.Edit(100000);
    e.txtDescription.text = "Changed after the delete";
    Execute(e.Db(), "DELETE * FROM ExerciseLibrary WHERE ExerciseID = 100000");
    try {
        e.logic.cmdOKCancel_Click("OK");
        FAIL() << "the save of a deleted exercise went through";
    } catch (const DatabaseFault& fault) {
        EXPECT_EQ(fault.Number(), 3167);
    }
    EXPECT_TRUE(e.Row(100000).isEmpty());
}

// A second workstation: another editor on the same databases.
struct SecondWorkstation {
    explicit SecondWorkstation(Editor& first) {
        CloseDatabases(other.folder.state);
        first.folder.PointAt(other.folder.state);
        OpenDatabases(other.folder.state);
        other.folder.state.Media = first.folder.state.Media;
    }
    Editor other;
};

TEST(ExerciseEditor, TwoWorkstationsAddingAtOnceGetTwoNumbersAndBothExercisesAreStored) {
    Editor first;
    SecondWorkstation second(first);
    Editor& other = second.other;
    const int before = first.Count();
    first.Add();
    other.Add();
    if (OnTestServer())
        EXPECT_EQ(other.logic.ExerciseID(), first.logic.ExerciseID() + 1)
            << "the server holds the first editor's number";
    else
        EXPECT_EQ(other.logic.ExerciseID(), first.logic.ExerciseID())
            << "one workstation's files: the number is the highest plus one for each";
    if (!OnTestServer())
        return; // on one workstation the program runs once: no second editor to race
    first.txtDescription.text = "First desk";
    other.txtDescription.text = "Second desk";
    ASSERT_TRUE(other.logic.cmdOKCancel_Click("OK"));
    ASSERT_TRUE(first.logic.cmdOKCancel_Click("OK"));
    EXPECT_EQ(first.Count(), before + 2);
    EXPECT_EQ(first.Row(first.logic.ExerciseID()).value("Desc").toString(), "First desk");
    EXPECT_EQ(first.Row(other.logic.ExerciseID()).value("Desc").toString(), "Second desk");
}

TEST(ExerciseEditor, ANumberHeldByACancelledEditorOfAnotherWorkstationIsFreeAgain) {
    if (!OnTestServer())
        GTEST_SKIP() << "holding numbers is the server's: one workstation's files need none";
    Editor first;
    auto second = std::make_unique<SecondWorkstation>(first);
    first.Add();
    second->other.Add();
    const qint64 held = second->other.logic.ExerciseID();
    EXPECT_NE(held, first.logic.ExerciseID());
    second.reset(); // that workstation's editor closes without saving
    SecondWorkstation third(first);
    third.other.Add();
    EXPECT_EQ(third.other.logic.ExerciseID(), held);
    // The first's number is stored now, and the next is held by the third.
    ASSERT_TRUE(first.logic.cmdOKCancel_Click("OK"));
    first.Add();
    EXPECT_EQ(first.logic.ExerciseID(), held + 1);
}
