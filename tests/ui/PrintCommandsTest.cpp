#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/MainWindow.h"
#include "ui/MainWindowRun.h"

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct PrintRun : tarvex::testing::MainWindowRun {
    PrintRun() {
        ChooseOkafor(5);
        PrintToPdf();
    }
};

} // namespace

TEST(PrintCommands, TheToolbarPrintsTheCoverSheetThenFourExercisesAPageWithoutTheDialog) {
    PrintRun r;
    r.window.ToolbarCommands().Action("Print")->trigger();
    ASSERT_TRUE(QFileInfo(r.dir.filePath("printed.pdf")).size() > 0);
    const QString text = r.PrintedText();
    EXPECT_TRUE(text.contains("Okafor, Chidi"));
    EXPECT_TRUE(text.contains("(" + r.state.Library.Entries[4].Code + ")"))
        << text.left(600).toStdString();
    EXPECT_EQ(text.count(QChar('\f')), 3); // cover sheet, then the five exercises on two pages
    EXPECT_FALSE(r.state.SkipPrintDialog);
    EXPECT_EQ(r.window.StatusPanels().PanelText(0), "Status: Ready");
}

TEST(PrintCommands, WithoutTheCoverSheetOnlyTheExercisesPrint) {
    PrintRun r;
    r.state.Prefs.PrintPatientCover = false;
    r.window.ToolbarCommands().Action("Print")->trigger();
    EXPECT_EQ(r.PrintedText().count(QChar('\f')), 2);
}

TEST(PrintCommands, ThePatientRecordAndTheOrderFormPrintFromTheMenu) {
    PrintRun r;
    r.state.SkipPrintDialog = true; // the menu would show the printer dialog
    r.window.MenuCommands().Action("mnuPrintPatientRecord")->trigger();
    EXPECT_TRUE(r.PrintedText().contains("Okafor, Chidi"));
    r.state.SkipPrintDialog = true;
    r.window.MenuCommands().Action("mnuPrintVideo")->trigger();
    EXPECT_TRUE(r.PrintedText().contains("TAPE CONTENT"));
}
