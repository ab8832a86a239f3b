#include "shell/ShellHarness.h"

#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::ShellHarness;

TEST(UpdateToolbar, EnablesTheButtonsOfEachMode) {
    AppState state;
    ShellHarness h(state);
    h.shell.UpdateToolbar(ToolbarMode::HelpOnly);
    EXPECT_EQ(h.ToolbarOn(), QStringList({"Help"}));
    h.shell.UpdateToolbar(ToolbarMode::PatientOnly);
    EXPECT_EQ(h.ToolbarOn(), QStringList({"Patient", "Programs", "Help"}));
    h.shell.UpdateToolbar(ToolbarMode::All);
    EXPECT_EQ(h.ToolbarOn(), Shell::ToolbarKeys());
    h.shell.UpdateToolbar(ToolbarMode::PrintOnly);
    EXPECT_EQ(h.ToolbarOn(), QStringList({"Preview", "Print", "Help"}));
    EXPECT_EQ(h.shell.ToolbarMode(), ToolbarMode::PrintOnly);
}

TEST(UpdateToolbar, ModeNoneLeavesEvenHelpDisabled) {
    AppState state;
    ShellHarness h(state);
    h.shell.UpdateToolbar(ToolbarMode::All);
    h.shell.UpdateToolbar(ToolbarMode::None);
    EXPECT_TRUE(h.ToolbarOn().isEmpty());
    EXPECT_EQ(h.shell.ToolbarMode(), ToolbarMode::None);
}

TEST(UpdateMenu, EnablesTheEightEntriesByMode) {
    AppState state;
    ShellHarness h(state);
    h.shell.UpdateMenu(MenuMode::None);
    EXPECT_TRUE(h.MenuOn().isEmpty());
    h.shell.UpdateMenu(MenuMode::PrintOnly);
    EXPECT_EQ(h.MenuOn(), QStringList({"mnuPrint", "mnuPreview"}));
    h.shell.UpdateMenu(MenuMode::All);
    EXPECT_EQ(h.MenuOn(), Shell::RestrictedMenuKeys());
    EXPECT_EQ(h.shell.MenuMode(), MenuMode::All);
    // File, Exit and Help are never touched.
    EXPECT_TRUE(h.menu.IsEnabled("mnuFile"));
    EXPECT_TRUE(h.menu.IsEnabled("mnuExit"));
    EXPECT_TRUE(h.menu.IsEnabled("mnuHelp"));
}

TEST(Shell, WithNoPatientTheMenuPrintsWhileTheToolbarDoesNot) {
    AppState state;
    ShellHarness h(state);
    h.shell.UpdateToolbar(ToolbarMode::PatientOnly);
    h.shell.UpdateMenu(MenuMode::All);
    EXPECT_TRUE(h.menu.IsEnabled("mnuPrint"));
    EXPECT_TRUE(h.menu.IsEnabled("mnuPreview"));
    EXPECT_FALSE(h.toolbar.IsEnabled("Print"));
    EXPECT_FALSE(h.toolbar.IsEnabled("Preview"));
}

TEST(SetStatusBar, TheSameTextTwiceChangesNothingTheSecondTime) {
    AppState state;
    ShellHarness h(state);
    h.shell.SetStatusBar("Printing 4 Exercises Per Page");
    const int writes = h.status.writes;
    state.Program.Modified = true; // would change panel 2 if the panels were written again
    h.shell.SetStatusBar("Printing 4 Exercises Per Page");
    EXPECT_EQ(h.status.writes, writes);
    EXPECT_EQ(h.status.PanelText(1), " ");
}

TEST(SetStatusBar, ReadyAlwaysRefreshesThePanels) {
    AppState state;
    ShellHarness h(state);
    h.shell.SetStatusBarReady();
    state.Program.Modified = true;
    state.Program.IsNew = true;
    h.shell.SetStatusBarReady();
    EXPECT_EQ(h.status.PanelText(0), "Status: Ready");
    EXPECT_EQ(h.status.PanelText(1), "Add ");
    EXPECT_EQ(h.shell.LastStatus(), "Status: Ready");
}

TEST(SetStatusBar, PanelTwoShowsWhatSavingWouldDoAndOnWhichRow) {
    AppState state;
    ShellHarness h(state);
    state.Program.Modified = true;
    state.Program.IsNew = false;
    state.Program.InvoiceID = 1432;
    h.shell.SetStatusBar("one");
    EXPECT_EQ(h.status.PanelText(1), "Update 1432");
    state.Program.IsNew = true;
    h.shell.SetStatusBar("two");
    EXPECT_EQ(h.status.PanelText(1), "Add 1432");
    EXPECT_GT(h.status.refreshes, 0); // the message loop gets a turn
}

TEST(SetStatusBar, WhenNotModifiedPanelTwoShowsABlankAndTheInvoice) {
    AppState state;
    ShellHarness h(state);
    state.Program.Modified = false;
    state.Program.InvoiceID = 77;
    h.shell.SetStatusBar("x");
    EXPECT_EQ(h.status.PanelText(1), " 77");
    state.Program.InvoiceID.reset();
    h.shell.SetStatusBar("y");
    EXPECT_EQ(h.status.PanelText(1), " ");
}

TEST(UpdateCaption, NamesThePatientOrSaysThereIsNone) {
    AppState state;
    ShellHarness h(state);
    h.shell.UpdateCaption();
    EXPECT_EQ(h.title.title, "TVX Regimenter - No Patient Selected");
    state.Program.PatientID = 5;
    state.Program.FullName = "O'Neil, Siobhán";
    h.shell.UpdateCaption();
    EXPECT_EQ(h.title.title, "TVX Regimenter Patient: O'Neil, Siobhán");
}

TEST(MaybeShowPrintDlg, SkipsTheDialogOnceWhenAskedTo) {
    AppState state;
    ShellHarness h(state);
    state.SkipPrintDialog = true;
    EXPECT_TRUE(h.shell.MaybeShowPrintDlg());
    EXPECT_EQ(h.printDialog.shown, 0);
    EXPECT_FALSE(state.SkipPrintDialog);
    h.printDialog.answer = false;
    EXPECT_FALSE(h.shell.MaybeShowPrintDlg());
    EXPECT_EQ(h.printDialog.shown, 1);
    h.printDialog.answer = true;
    EXPECT_TRUE(h.shell.MaybeShowPrintDlg());
}

TEST(CenterForm, CentresAChildInTheClientWidthAtTheTop) {
    EXPECT_EQ(CenterForm(QSize(301, 200), true, 1000, QSize()), QPoint(349, 0));
    EXPECT_EQ(CenterForm(QSize(1001, 200), true, 1000, QSize()),
              QPoint(0, 0)); // -0.5 truncates to 0
    EXPECT_EQ(CenterForm(QSize(1003, 200), true, 1000, QSize()), QPoint(-1, 0));
}

TEST(CenterForm, CentresAnyOtherFormOnTheScreen) {
    EXPECT_EQ(CenterForm(QSize(480, 261), false, 0, QSize(1280, 800)), QPoint(400, 269));
}
