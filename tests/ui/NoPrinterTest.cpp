// The print commands on a machine without any printer: no print server answers.
#include "ui/MainWindow.h"
#include "ui/MainWindowRun.h"

#include <QPrinterInfo>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// A server address where nothing listens, set before the first printer is made.
const bool kNoServer = qputenv("CUPS_SERVER", "/nonexistent/tarvex/cups.sock");

} // namespace

TEST(NoPrinter, EveryPrintCommandEndsWithoutABoxSaysWhyInTheStatusLineAndTheProgramGoesOn) {
    ASSERT_TRUE(kNoServer);
    ASSERT_TRUE(QPrinterInfo::availablePrinters().isEmpty());
    tarvex::testing::MainWindowRun r;
    r.ChooseOkafor(5);
    r.state.Print.PrintScale = 0.75; // as a preview left it
    r.window.ToolbarCommands().Action("Print")->trigger();
    for (const char* command :
         {"mnuPrintEx2", "mnuPrintEx4", "mnuPrintPatientRecord", "mnuPrintVideo"}) {
        r.state.SkipPrintDialog = true; // the menu would show the printer dialog
        r.window.MenuCommands().Action(command)->trigger();
        EXPECT_EQ(r.window.StatusPanels().PanelText(0).toStdString(),
                  "Nothing was printed: no printer is set up on this computer.")
            << command;
        EXPECT_EQ(r.state.Print.PrintScale, 0.75) << command;
    }
    // The program goes on: the same job still prints to a file.
    r.PrintToPdf();
    r.state.SkipPrintDialog = true;
    r.window.MenuCommands().Action("mnuPrintVideo")->trigger();
    EXPECT_TRUE(r.PrintedText().contains("TAPE CONTENT"));
}
