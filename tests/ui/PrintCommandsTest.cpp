#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/MainWindow.h"

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct PrintRun {
    PrintRun() : lock(dir.filePath("tarvex.lock")), window(state, store, lock, false) {
        state.AppFolder = dir.filePath("data");
        state.DeliveredFolder = tarvex::testing::DeliveredFolder();
        store.values["Options/ShowTips"] = "False";
        if (!window.Start())
            throw std::runtime_error("no start");
        ExerciseProgram& p = state.Program;
        p.PatientID = static_cast<int32_t>(InsertRow(
            state.Dbs.ProgramDb, "Patient",
            {{"LastName", "Okafor"}, {"FirstName", "Chidi"}, {"FullName", "Okafor, Chidi"}}));
        p.FullName = "Okafor, Chidi";
        for (int i = 0; i < 5; ++i)
            p.Exercise(i) = state.Library.Entries[static_cast<size_t>(i)];
        p.NumExercises = 5;
        window.ShellLogic().UpdateToolbar(2);
        window.Printer().setOutputFormat(QPrinter::PdfFormat);
        window.Printer().setOutputFileName(dir.filePath("printed.pdf"));
    }
    ~PrintRun() { window.close(); }
    QString PrintedText() {
        QProcess pdftotext;
        pdftotext.start("pdftotext", {"-layout", dir.filePath("printed.pdf"), "-"});
        pdftotext.waitForFinished(30000);
        return QString::fromLocal8Bit(pdftotext.readAllStandardOutput());
    }
    QTemporaryDir dir;
    AppState state;
    fakes::FakeSettingsStore store;
    SingleInstanceLock lock;
    MainWindow window;
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
