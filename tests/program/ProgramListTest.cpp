#include "program/ProgramHarness.h"
#include "program/ProgramListLogic.h"
#include "support/Dates.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::ProgramHarness;

namespace {

struct ProgramList {
    explicit ProgramList(ProgramHarness& h)
        : logic(h.State(), h.shell.shell, h.prompter, h.store, list, buttons) {}
    FakeReportList list;
    FakeCommands buttons;
    ProgramListLogic logic;
};

int32_t SaveFor(ProgramHarness& h, int32_t patient, const QString& name, QDate date) {
    h.Choose(patient, name);
    h.FillExercises(2);
    h.Program().Date = QDateTime(date, QTime(10, 0));
    h.store.SaveProgram(false);
    return *h.Program().InvoiceID;
}

} // namespace

TEST(ProgramList, ShowsTheCurrentPatientsProgramsOrAllOfThem) {
    ProgramHarness h;
    const int32_t a = h.AddPatient("Adams"), b = h.AddPatient("Baker");
    SaveFor(h, a, "Adams, Ann", QDate(2026, 1, 5));
    SaveFor(h, a, "Adams, Ann", QDate(2026, 2, 5));
    SaveFor(h, b, "Baker, Ann", QDate(2026, 3, 5));
    ProgramList l(h);
    h.Program().PatientID = a;
    l.logic.Load();
    EXPECT_EQ(l.list.RowCount(), 2);
    h.Program().PatientID.reset();
    l.logic.FillProgramList();
    EXPECT_EQ(l.list.RowCount(), 3);
    EXPECT_EQ(l.list.Text(2, 0), "Baker, Ann");
    EXPECT_EQ(l.list.Text(2, 1), "ID-Baker");
    EXPECT_EQ(l.list.Text(2, 2), ShortDate(QDateTime(QDate(2026, 3, 5), QTime(0, 0))));
    EXPECT_EQ(l.list.SelectedRow(), -1);
}

TEST(ProgramList, WithNoProgramsOnlyOkCanBePressedUntilAClick) {
    ProgramHarness h;
    ProgramList l(h);
    l.logic.Load();
    EXPECT_EQ(l.list.RowCount(), 0);
    EXPECT_FALSE(l.buttons.IsEnabled("Edit"));
    EXPECT_FALSE(l.buttons.IsEnabled("Delete"));
    EXPECT_TRUE(l.buttons.IsEnabled("OK"));
    l.logic.lstPatients_Click();
    EXPECT_TRUE(l.buttons.IsEnabled("Edit"));
    EXPECT_THROW(l.logic.cmdOKCancel("Edit"), Fault); // nothing is selected
}

TEST(ProgramList, LoadChangesNeitherToolbarNorMenu) {
    ProgramHarness h;
    h.shell.shell.UpdateToolbar(ToolbarMode::PatientOnly);
    h.shell.shell.UpdateMenu(MenuMode::All);
    ProgramList l(h);
    l.logic.Load();
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::All);
}

TEST(ProgramList, OkAndADoubleClickCloseWithoutRecalling) {
    ProgramHarness h;
    SaveFor(h, h.AddPatient("Adams"), "Adams, Ann", QDate(2026, 1, 5));
    h.Program().PatientID.reset();
    ProgramList l(h);
    l.logic.Load();
    l.list.SetSelectedRow(0);
    EXPECT_TRUE(l.logic.lstPatients_DblClick());
    EXPECT_TRUE(l.logic.cmdOKCancel("OK"));
    EXPECT_FALSE(h.Program().PatientID.has_value());
}

TEST(ProgramList, EditOnAnotherPatientsProgramChangesTheCurrentPatientAndTitle) {
    ProgramHarness h;
    const int32_t a = h.AddPatient("Adams"), b = h.AddPatient("Baker");
    const int32_t bProgram = SaveFor(h, b, "Baker, Ann", QDate(2026, 3, 5));
    SaveFor(h, a, "Adams, Ann", QDate(2026, 1, 5));
    h.Program().PatientID.reset();
    ProgramList l(h);
    l.logic.Load();
    for (int row = 0; row < l.list.RowCount(); ++row)
        if (l.list.Key(row) == "k" + QString::number(bProgram))
            l.list.SetSelectedRow(row);
    EXPECT_TRUE(l.logic.cmdOKCancel("Edit"));
    EXPECT_EQ(*h.Program().PatientID, b);
    EXPECT_EQ(*h.Program().InvoiceID, bProgram);
    EXPECT_EQ(h.shell.title.title, "TVX Regimenter Patient: Baker, Ann");
    EXPECT_FALSE(h.Program().IsNew);
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::All);
    // Until the program changes, panel 2 holds no "Add" or "Update"; then "Update".
    EXPECT_EQ(h.shell.status.PanelText(1), " " + QString::number(bProgram));
    h.Program().Modified = true;
    h.shell.shell.SetStatusBar("changed");
    EXPECT_EQ(h.shell.status.PanelText(1), "Update " + QString::number(bProgram));
}

TEST(ProgramList, ProgramsOfOneDateAreSeparateEntries) {
    ProgramHarness h;
    const int32_t a = h.AddPatient("Adams");
    SaveFor(h, a, "Adams, Ann", QDate(2026, 1, 5));
    SaveFor(h, a, "Adams, Ann", QDate(2026, 1, 5));
    ProgramList l(h);
    l.logic.Load();
    EXPECT_EQ(l.list.RowCount(), 2);
    EXPECT_NE(l.list.Key(0), l.list.Key(1));
}

TEST(ProgramList, ANullDateShowsAsAnEmptyColumn) {
    ProgramHarness h;
    const int32_t a = h.AddPatient("Adams");
    InsertRow(h.Db(), "Invoice", {{"PatientID", a}});
    ProgramList l(h);
    l.logic.Load();
    ASSERT_EQ(l.list.RowCount(), 1);
    EXPECT_EQ(l.list.Text(0, 2), "");
}

TEST(ProgramList, DeleteAsksAndRefillsAndLeavesAStaleInvoiceIdInMemory) {
    ProgramHarness h;
    const int32_t a = h.AddPatient("Adams");
    SaveFor(h, a, "Adams, Ann", QDate(2026, 1, 5));
    const int32_t current = SaveFor(h, a, "Adams, Ann", QDate(2026, 2, 5));
    ProgramList l(h);
    l.logic.Load();
    l.logic.lstPatients_Click();
    for (int row = 0; row < l.list.RowCount(); ++row)
        if (l.list.Key(row) == "k" + QString::number(current))
            l.list.SetSelectedRow(row);
    h.prompter.answers = {Answer::No, Answer::Yes};
    EXPECT_FALSE(l.logic.cmdOKCancel("Delete"));
    EXPECT_EQ(l.list.RowCount(), 2);
    EXPECT_FALSE(l.logic.cmdOKCancel("Delete"));
    ASSERT_EQ(h.prompter.boxes.size(), 2u);
    EXPECT_EQ(h.prompter.boxes[1].title, "Delete Exercise Program");
    EXPECT_EQ(h.prompter.boxes[1].text, "Are you sure you want to delete this exercise program.");
    EXPECT_EQ(h.prompter.boxes[1].style, 324);
    EXPECT_EQ(l.list.RowCount(), 1);
    EXPECT_EQ(l.list.SelectedRow(), -1);
    EXPECT_TRUE(l.buttons.IsEnabled("Edit"));   // still enabled from before
    EXPECT_EQ(*h.Program().InvoiceID, current); // names a row that is gone
    EXPECT_THROW(h.store.LoadProgram(h.Program().InvoiceID), DatabaseFault);
    EXPECT_THROW(l.logic.cmdOKCancel("Delete"), Fault);
}

TEST(ProgramList, HasItsCaptionSpelledAsItStands) {
    EXPECT_EQ(ProgramListLogic::kCaption, "Recall an Exericse Program");
}
