#include "data/Sql.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/MainWindow.h"
#include "ui/MainWindowRun.h"
#include "ui/PatientDialogs.h"
#include "ui/ProgramListDialog.h"

#include <QDir>
#include <QHeaderView>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

using Window = tarvex::testing::MainWindowRun;

void Save(QWidget* widget, const QString& name) {
    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    widget->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/" + name);
}

// Stores a program of Okafor, Chidi and leaves no patient current.
void StoreOneProgram(Window& w) {
    w.AddPatient("Okafor", "Chidi", "MRN-1001");
    ExerciseProgram& p = w.state.Program;
    p.PatientID = 1;
    p.FullName = "Okafor, Chidi";
    p.IsNew = true;
    p.Modified = true;
    p.Date = QDateTime(QDate(2026, 11, 20), QTime(10, 0));
    w.window.Programs().SaveProgram(false);
    p.PatientID.reset();
}

} // namespace

TEST(PatientWindows, ThePatientButtonOpensTheListAndOkChoosesThePatient) {
    Window w;
    w.AddPatient("Okafor", "Chidi", "MRN-1001");
    w.AddPatient("Lindqvist", "Astrid", "MRN-1002");
    w.AddPatient("García", "Lucía", "MRN-1003");
    w.window.ToolbarCommands().Action("Patient")->trigger();
    auto* dialog = w.window.findChild<SelectPatientDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), "Select a Patient");
    EXPECT_EQ(dialog->lstPatients->topLevelItemCount(), 3);
    EXPECT_EQ(dialog->lstPatients->headerItem()->text(0), "Name");
    EXPECT_EQ(dialog->lstPatients->headerItem()->text(1), "ID");
    EXPECT_TRUE(dialog->Button("OK")->isEnabled());
    EXPECT_FALSE(w.window.ToolbarCommands().Action("Patient")->isEnabled()); // toolbar mode 0
    dialog->show();
    Save(dialog, "select-patient.png");

    dialog->lstPatients->setCurrentItem(dialog->lstPatients->topLevelItem(1));
    dialog->Button("OK")->click();
    EXPECT_EQ(w.window.windowTitle(), "TVX Regimenter Patient: Lindqvist, Astrid");
    EXPECT_TRUE(w.window.ToolbarCommands().Action("Exercises")->isEnabled()); // mode 2
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(w.window.findChild<SelectPatientDialog*>(), nullptr) << "the dialog unloads";
}

TEST(PatientWindows, NewOpensPatientInformationAndOkMakesThePatientCurrent) {
    Window w;
    w.window.ToolbarCommands().Action("Patient")->trigger();
    auto* select = w.window.findChild<SelectPatientDialog*>();
    ASSERT_NE(select, nullptr);
    EXPECT_FALSE(select->Button("OK")->isEnabled());
    select->Button("New")->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    auto* edit = w.window.findChild<EditPatientDialog*>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->windowTitle(), "Patient Information");
    EXPECT_EQ(edit->txtLastName->maxLength(), 50);
    EXPECT_EQ(edit->txtFirstName->maxLength(), 50);
    edit->txtLastName->setText("Okafor");
    edit->txtFirstName->setText("Chidi");
    edit->txtID->setText("MRN-1001");
    edit->show();
    Save(edit, "patient-information.png");
    edit->cmdOK->click();
    EXPECT_EQ(w.window.windowTitle(), "TVX Regimenter Patient: Okafor, Chidi");
    EXPECT_TRUE(w.window.ToolbarCommands().Action("Video")->isEnabled());
}

TEST(PatientWindows, ClosingTheListByItsFrameCountsAsCancel) {
    Window w;
    w.window.ToolbarCommands().Action("Patient")->trigger();
    auto* select = w.window.findChild<SelectPatientDialog*>();
    ASSERT_NE(select, nullptr);
    select->close();
    EXPECT_TRUE(w.window.ToolbarCommands().Action("Patient")->isEnabled()); // mode 1
    EXPECT_EQ(w.window.windowTitle(), "TVX Regimenter - No Patient Selected");
}

TEST(PatientWindows, TheProgramsButtonListsStoredPrograms) {
    Window w;
    StoreOneProgram(w);
    ExerciseProgram& p = w.state.Program;
    w.window.ToolbarCommands().Action("Programs")->trigger();
    auto* list = w.window.findChild<ProgramListDialog*>();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->windowTitle(), "Recall an Exericse Program");
    ASSERT_EQ(list->lstPatients->topLevelItemCount(), 1);
    EXPECT_EQ(list->lstPatients->topLevelItem(0)->text(0), "Okafor, Chidi");
    EXPECT_FALSE(list->Button("Edit")->isEnabled());
    list->show();
    Save(list, "recall-programs.png");
    list->lstPatients->setCurrentItem(list->lstPatients->topLevelItem(0));
    QTest::mouseClick(
        list->lstPatients->viewport(), Qt::LeftButton, {},
        list->lstPatients->visualItemRect(list->lstPatients->topLevelItem(0)).center());
    EXPECT_TRUE(list->Button("Edit")->isEnabled());
    list->Button("Edit")->click();
    EXPECT_EQ(w.window.windowTitle(), "TVX Regimenter Patient: Okafor, Chidi");
    EXPECT_FALSE(p.IsNew);
}

TEST(PatientWindows, TheListsAnswerASortingHeadingClickAndADoubleClick) {
    Window w;
    w.AddPatient("Okafor", "Chidi", "MRN-3");
    w.AddPatient("Lindqvist", "Astrid", "MRN-1");
    w.AddPatient("Abara", "Ngozi", "MRN-2");
    w.window.ToolbarCommands().Action("Patient")->trigger();
    auto* dialog = w.window.findChild<SelectPatientDialog*>();
    ASSERT_NE(dialog, nullptr);
    dialog->show();
    QTreeWidget* list = dialog->lstPatients;
    const QPoint idHeading(list->header()->sectionViewportPosition(1) + 5,
                           list->header()->height() / 2);
    QTest::mouseClick(list->header()->viewport(), Qt::LeftButton, {}, idHeading);
    EXPECT_EQ(list->topLevelItem(0)->text(1), "MRN-1");
    EXPECT_EQ(list->topLevelItem(2)->text(1), "MRN-3");
    const QPoint row = list->visualItemRect(list->topLevelItem(2)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row); // a double click's first press
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(w.window.windowTitle(), "TVX Regimenter Patient: Okafor, Chidi");
}

TEST(PatientWindows, TheSpaceBarPicksTheRowOfTheProgramList) {
    Window w;
    StoreOneProgram(w);
    w.window.ToolbarCommands().Action("Programs")->trigger();
    auto* list = w.window.findChild<ProgramListDialog*>();
    ASSERT_NE(list, nullptr);
    list->show();
    list->lstPatients->setCurrentItem(list->lstPatients->topLevelItem(0));
    EXPECT_FALSE(list->Button("Edit")->isEnabled());
    QTest::keyClick(list->lstPatients, Qt::Key_Space);
    EXPECT_TRUE(list->Button("Edit")->isEnabled());
}

TEST(PatientWindows, AClickInTheEmptyPartOfTheListEnablesTheButtonsAsAClickOnARowDoes) {
    Window w;
    w.window.ToolbarCommands().Action("Patient")->trigger();
    auto* dialog = w.window.findChild<SelectPatientDialog*>();
    ASSERT_NE(dialog, nullptr);
    dialog->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    ASSERT_EQ(dialog->lstPatients->topLevelItemCount(), 0);
    EXPECT_FALSE(dialog->Button("Edit")->isEnabled());
    QWidget* empty = dialog->lstPatients->viewport();
    QTest::mouseClick(empty, Qt::LeftButton, {}, QPoint(20, empty->height() - 10));
    EXPECT_TRUE(dialog->Button("OK")->isEnabled());
    EXPECT_TRUE(dialog->Button("Edit")->isEnabled());
    EXPECT_TRUE(dialog->Button("Delete")->isEnabled());
    dialog->close();
}
