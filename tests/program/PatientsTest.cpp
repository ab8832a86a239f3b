#include "program/PatientLogic.h"
#include "program/ProgramHarness.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::ProgramHarness;

namespace {

struct EditorHost : IPatientDialogHost {
    void ShowEditPatient() override { ++shown; }
    int shown = 0;
};

struct PatientDialogs {
    explicit PatientDialogs(ProgramHarness& h)
        : h(h), select(h.State(), h.shell.shell, h.prompter, list, buttons, host),
          edit(h.State(), h.shell.shell, last, first, id) {}
    QStringList ButtonsOn() const { return buttons.EnabledOf({"OK", "Edit", "Delete"}); }

    ProgramHarness& h;
    FakeReportList list;
    FakeCommands buttons;
    EditorHost host;
    FakeTextBox last, first, id;
    SelectPatientLogic select;
    EditPatientLogic edit;
};

} // namespace

TEST(SelectPatient, LoadDropsTheCurrentPatientAndRestrictsTheCommands) {
    ProgramHarness h;
    h.AddPatient("Ng");
    h.Program().PatientID = 99;
    h.shell.shell.UpdateToolbar(ToolbarMode::All);
    PatientDialogs d(h);
    d.select.Load();
    EXPECT_FALSE(h.Program().PatientID.has_value());
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::None);
    ASSERT_EQ(d.list.RowCount(), 1);
    EXPECT_EQ(d.list.Key(0).left(1), "k");
    EXPECT_EQ(d.list.Text(0, 0), "Ng, Ann");
    EXPECT_EQ(d.list.Text(0, 1), "ID-Ng");
    EXPECT_EQ(d.list.SelectedRow(), 0);
    EXPECT_EQ(d.ButtonsOn(), QStringList({"OK", "Edit", "Delete"}));
}

TEST(SelectPatient, WithAnEmptyTableOkEditAndDeleteStayDisabledAndNewAndCancelWork) {
    ProgramHarness h;
    PatientDialogs d(h);
    d.select.Load();
    EXPECT_TRUE(d.ButtonsOn().isEmpty());
    d.select.cmdOKCancel("Cancel");
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::All);
    EXPECT_EQ(h.shell.title.title, "TVX Regimenter - No Patient Selected");
    d.select.Load();
    d.select.cmdOKCancel("New");
    EXPECT_EQ(d.host.shown, 1);
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
}

TEST(SelectPatient, OkMakesTheSelectedPatientCurrent) {
    ProgramHarness h;
    h.AddPatient("Adams");
    const int32_t baker = h.AddPatient("Baker", "Bo");
    PatientDialogs d(h);
    d.select.Load();
    h.Program().InvoiceID = 5;
    h.Program().IsNew = false;
    h.Program().NumExercises = 3; // the program in memory stays: no load happens here
    d.list.SetSelectedRow(1);
    d.select.cmdOKCancel("OK");
    EXPECT_EQ(h.Program().NumExercises, 3);
    EXPECT_EQ(*h.Program().PatientID, baker);
    EXPECT_EQ(h.Program().FullName, "Baker, Bo");
    EXPECT_FALSE(h.Program().InvoiceID.has_value());
    EXPECT_TRUE(h.Program().IsNew);
    EXPECT_EQ(h.shell.title.title, "TVX Regimenter Patient: Baker, Bo");
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::All);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::All);
    EXPECT_EQ(h.shell.status.PanelText(0), "Status: Ready");
}

TEST(SelectPatient, ADoubleClickIsOk) {
    ProgramHarness h;
    const int32_t id = h.AddPatient("Adams");
    PatientDialogs d(h);
    d.select.Load();
    d.select.lstPatients_DblClick();
    EXPECT_EQ(*h.Program().PatientID, id);
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::All);
}

TEST(SelectPatient, OkOrADoubleClickWithNoSelectedEntryIsAFault) {
    ProgramHarness h;
    PatientDialogs d(h);
    d.select.Load();
    d.select.lstPatients_Click(); // a click in the empty list enables the buttons
    EXPECT_EQ(d.ButtonsOn(), QStringList({"OK", "Edit", "Delete"}));
    EXPECT_THROW(d.select.cmdOKCancel("OK"), Fault);
    EXPECT_THROW(d.select.lstPatients_DblClick(), Fault);
}

TEST(SelectPatient, AClickOnAColumnHeaderSortsByIt) {
    ProgramHarness h;
    h.AddPatient("Charles", "Zed");
    h.AddPatient("Adams", "Yan");
    h.AddPatient("Baker", "Xi");
    PatientDialogs d(h);
    d.select.Load();
    d.select.lstPatients_ColumnClick(0);
    EXPECT_EQ(d.list.Text(0, 0), "Adams, Yan");
    EXPECT_EQ(d.list.Text(2, 0), "Charles, Zed");
    d.select.lstPatients_ColumnClick(1);
    EXPECT_EQ(d.list.Text(0, 1), "ID-Adams");
}

TEST(SelectPatient, DeletingAPatientRemovesAllTheirStoredPrograms) {
    ProgramHarness h;
    const int32_t gone = h.AddPatient("Gone");
    const int32_t stays = h.AddPatient("Stays");
    for (int32_t patient : {gone, gone, stays}) {
        h.Choose(patient, "x");
        h.FillExercises(3);
        h.Program().NumItems = 1;
        h.store.SaveProgram(false);
    }
    PatientDialogs d(h);
    d.select.Load();
    d.list.SetSelectedRow(0);
    h.prompter.answers = {Answer::Yes};
    d.select.cmdOKCancel("Delete");
    ASSERT_EQ(h.prompter.boxes.size(), 1u);
    EXPECT_EQ(h.prompter.boxes[0].title, "Delete Patient");
    EXPECT_EQ(h.prompter.boxes[0].text, "Are you sure you want to delete Gone, Ann");
    EXPECT_EQ(h.prompter.boxes[0].style, 308);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Patient"), 1);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Invoice"), 1);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Exercise"), 3);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Items"), 1);
    EXPECT_FALSE(h.Program().PatientID.has_value());
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
}

TEST(SelectPatient, NoToTheDeleteQuestionClosesWithNoPatientAndTheToolbarInModeZero) {
    ProgramHarness h;
    h.AddPatient("Kept");
    PatientDialogs d(h);
    d.select.Load();
    h.prompter.answers = {Answer::No};
    d.select.cmdOKCancel("Delete");
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Patient"), 1);
    EXPECT_FALSE(h.Program().PatientID.has_value());
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::All);
    EXPECT_EQ(h.shell.status.PanelText(0), "Status: Ready");
}

TEST(EditPatient, NewThenCancelLeavesAnEmptyRowInTheList) {
    ProgramHarness h;
    PatientDialogs d(h);
    d.select.Load();
    d.select.cmdOKCancel("New");
    d.edit.Load();
    EXPECT_TRUE(h.Program().PatientID.has_value()); // the row exists from the start
    d.edit.cmdOKCancel("Cancel");
    EXPECT_FALSE(h.Program().PatientID.has_value());
    EXPECT_FALSE(h.Program().InvoiceID.has_value());
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Patient"), 1);
    d.select.Load();
    ASSERT_EQ(d.list.RowCount(), 1);
    EXPECT_EQ(d.list.Text(0, 0), ""); // a nameless entry
}

TEST(EditPatient, OkWritesTheFourColumnsAndMakesThePatientCurrent) {
    ProgramHarness h;
    PatientDialogs d(h);
    d.select.Load();
    d.select.cmdOKCancel("New");
    d.edit.Load();
    d.last.text = "  O'Neil ";
    d.first.text = "Siobhán";
    d.id.text = "MRN 0042";
    h.Program().InvoiceID = 3;
    d.edit.cmdOKCancel("OK");
    EXPECT_EQ(h.Program().FullName, "O'Neil , Siobhán");
    EXPECT_FALSE(h.Program().InvoiceID.has_value());
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::All);
    EXPECT_EQ(h.shell.title.title, "TVX Regimenter Patient: O'Neil , Siobhán");
    QSqlQuery q = OpenQuery(h.Db(), QStringLiteral("SELECT LastName, FirstName, ID, FullName FROM "
                                                   "Patient WHERE PatientID = %1")
                                        .arg(*h.Program().PatientID));
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toString(), "  O'Neil ");
    EXPECT_EQ(q.value(1).toString(), "Siobhán");
    EXPECT_EQ(q.value(2).toString(), "MRN 0042");
    EXPECT_EQ(q.value(3).toString(), "O'Neil , Siobhán");
}

TEST(EditPatient, FullNameKeepsTheCommaOfALastNameAlone) {
    EXPECT_EQ(EditPatientLogic::FullNameOf("Smith", ""), "Smith,");
    EXPECT_EQ(EditPatientLogic::FullNameOf("", ""), ",");
    EXPECT_EQ(EditPatientLogic::FullNameOf("", "Ann"), ", Ann");
    EXPECT_EQ(EditPatientLogic::FullNameOf("Smith", "Ann"), "Smith, Ann");
}

TEST(EditPatient, EditShowsTheRowAndChangesIt) {
    ProgramHarness h;
    const int32_t id = h.AddPatient("Baker", "Bo");
    PatientDialogs d(h);
    d.select.Load();
    d.select.cmdOKCancel("Edit");
    EXPECT_EQ(*h.Program().PatientID, id);
    EXPECT_EQ(d.host.shown, 1);
    EXPECT_TRUE(h.Program().IsNew);
    d.edit.Load();
    EXPECT_EQ(d.last.text, "Baker");
    EXPECT_EQ(d.first.text, "Bo");
    EXPECT_EQ(d.id.text, "ID-Baker");
    d.first.text = "Robert";
    d.edit.cmdOKCancel("OK");
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Patient WHERE FullName = 'Baker, Robert'"), 1);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Patient"), 1);
}

TEST(EditPatient, CancelWritesNothing) {
    ProgramHarness h;
    h.AddPatient("Baker", "Bo");
    PatientDialogs d(h);
    d.select.Load();
    d.select.cmdOKCancel("Edit");
    d.edit.Load();
    d.last.text = "Changed";
    d.edit.cmdOKCancel("Cancel");
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Patient WHERE LastName = 'Baker'"), 1);
    EXPECT_EQ(h.Program().FullName, "Baker, Bo"); // kept; nothing reads it without a patient
}

TEST(EditPatient, NamesAreCutToFiftyCharactersAndTheIdIsKeptWhole) {
    ProgramHarness h;
    PatientDialogs d(h);
    d.select.Load();
    d.select.cmdOKCancel("New");
    d.edit.Load();
    d.last.text = QString(10000, QChar('L'));
    d.first.text = QString::fromUtf8("\"Quoted\" 100% \\ 🏃");
    d.id.text = QString(10000, QChar('9'));
    d.edit.cmdOKCancel("OK");
    QSqlQuery q = OpenQuery(h.Db(), "SELECT LastName, FirstName, ID FROM Patient");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toString(), QString(50, QChar('L')));
    EXPECT_EQ(q.value(1).toString(), QString::fromUtf8("\"Quoted\" 100% \\ 🏃"));
    EXPECT_EQ(q.value(2).toString().size(), 10000);
}
