#include "library/LibraryListLogic.h"

#include "data/Databases.h"
#include "data/Sql.h"
#include "fakes/FakeControls.h"
#include "shell/ShellHarness.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;

namespace {

class FakeHost : public ILibraryListHost {
public:
    void ShowExerciseEditor() override { ++editorShown; }
    QString PictureBenchProgram() const override { return program; }
    void StartDetached(const QString& p) override { started << p; }
    void ReopenDatabasesAndRebuildWorkspace() override { ++reopened; }

    QString program;
    QStringList started;
    int editorShown = 0;
    int reopened = 0;
};

// The library list over fake controls, on the delivered library.
struct Library {
    Library() : shell(folder.state), logic(folder.state, shell.shell, prompter, list, host) {
        OpenDatabases(folder.state);
        host.program = folder.state.AppFolder + "/no Picture Bench here";
    }
    QSqlDatabase& Db() { return folder.state.Dbs.LibraryDb; }
    int Count() {
        QSqlQuery q = OpenQuery(Db(), "SELECT COUNT(*) FROM ExerciseLibrary");
        return q.next() ? q.value(0).toInt() : -1;
    }
    int RowOf(const QString& code) {
        for (int r = 0; r < list.RowCount(); ++r)
            if (list.Text(r, 0) == code)
                return r;
        return -1;
    }
    // Adds a library row of the number, as the exercise editor would.
    void AddExercise(qint64 id, const QString& desc) {
        InsertRow(Db(), "ExerciseLibrary",
                  {{"ExerciseID", id},
                   {"code", QString::number(id)},
                   {"Desc", desc},
                   {"Joint", "Knee"},
                   {"Motion", "Flexion"},
                   {"Type", "Strengthening"},
                   {"HasVideo", false}});
    }

    tarvex::testing::TestFolder folder;
    tarvex::testing::ShellHarness shell;
    ScriptedPrompter prompter;
    FakeReportList list;
    FakeHost host;
    LibraryListLogic logic;
};

} // namespace

TEST(LibraryList, ListsEveryExerciseWithTheNumberOfThreeDigitsAndFourFields) {
    Library l;
    l.logic.cmdFillListBox_Click();
    EXPECT_EQ(l.list.RowCount(), l.Count());
    const int row = l.RowOf("007");
    ASSERT_GE(row, 0);
    EXPECT_EQ(l.list.Key(row), "\"7\"");
    QSqlQuery q = OpenQuery(l.Db(), "SELECT Desc, Joint, Motion, Type FROM ExerciseLibrary "
                                    "WHERE ExerciseID = 7");
    ASSERT_TRUE(q.next());
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(l.list.Text(row, c + 1), q.value(c).toString()) << c;
    EXPECT_EQ(l.shell.status.PanelText(0), "Status: Ready");
}

TEST(LibraryList, TheCodeHasThreeDigitsAtLeast) {
    EXPECT_EQ(LibraryListLogic::FormatCode(7), "007");
    EXPECT_EQ(LibraryListLogic::FormatCode(42), "042");
    EXPECT_EQ(LibraryListLogic::FormatCode(243), "243");
    EXPECT_EQ(LibraryListLogic::FormatCode(100000), "100000");
    EXPECT_EQ(LibraryListLogic::FormatCode(0), "000");
}

TEST(LibraryList, NullFieldsShowAsEmptyTexts) {
    Library l;
    InsertRow(l.Db(), "ExerciseLibrary", {{"ExerciseID", 100000}, {"HasVideo", false}});
    l.logic.cmdFillListBox_Click();
    const int row = l.RowOf("100000");
    ASSERT_GE(row, 0);
    for (int c = 1; c < 5; ++c)
        EXPECT_EQ(l.list.Text(row, c), "") << c;
}

TEST(LibraryList, OpeningRestrictsTheCommandsAndSaysAMissingPictureBenchButOpens) {
    Library l;
    l.prompter.answers = {Answer::Ok};
    l.logic.Load();
    EXPECT_EQ(l.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
    EXPECT_EQ(l.shell.shell.MenuMode(), MenuMode::None);
    ASSERT_EQ(l.prompter.boxes.size(), 1u);
    EXPECT_EQ(l.prompter.boxes[0].text, "Can't find TVX Picture Bench");
    EXPECT_EQ(l.prompter.boxes[0].title, "Picture Bench Not Found");
    EXPECT_EQ(l.prompter.boxes[0].style, msg::Exclamation);
    EXPECT_TRUE(l.host.started.isEmpty());
    EXPECT_EQ(l.list.RowCount(), l.Count());
    EXPECT_EQ(l.shell.status.PanelText(0), "Status: Ready");
}

TEST(LibraryList, OpeningStartsPictureBenchWithoutWaitingWhenItIsThere) {
    Library l;
    l.host.program = l.folder.state.AppFolder + "/Picture Bench.exe";
    QFile program(l.host.program);
    ASSERT_TRUE(program.open(QIODevice::WriteOnly));
    program.close();
    l.logic.Load();
    EXPECT_TRUE(l.prompter.boxes.empty());
    EXPECT_EQ(l.host.started, QStringList({l.host.program}));
}

TEST(LibraryList, Exercise243IsNeverDeleted) {
    Library l;
    l.logic.cmdFillListBox_Click();
    l.list.SetSelectedRow(l.RowOf("243"));
    l.prompter.answers = {Answer::Ok};
    l.logic.cmdDelete_Click();
    ASSERT_EQ(l.prompter.boxes.size(), 1u);
    EXPECT_EQ(l.prompter.boxes[0].text, "Can't delete original exercises");
    EXPECT_EQ(l.prompter.boxes[0].title, "Error: Deleting original exercise");
    EXPECT_EQ(l.prompter.boxes[0].style, msg::Information);
    QSqlQuery q = OpenQuery(l.Db(), "SELECT COUNT(*) FROM ExerciseLibrary WHERE ExerciseID=243");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), 1);
}

TEST(LibraryList, From244OnADeleteIsAskedAndOkDeletesTheOneRowOnly) {
    Library l;
    l.AddExercise(244, "Wall slides");
    l.AddExercise(100000, "Clinic's own squat");
    l.logic.cmdFillListBox_Click();
    const int before = l.list.RowCount();
    for (const char* code : {"244", "100000"}) {
        l.list.SetSelectedRow(l.RowOf(code));
        const QString desc = l.list.Text(l.list.SelectedRow(), 1);
        l.prompter.answers = {Answer::Cancel};
        l.logic.cmdDelete_Click();
        EXPECT_EQ(l.list.RowCount(), before) << code;
        ASSERT_FALSE(l.prompter.boxes.empty());
        EXPECT_EQ(l.prompter.boxes.back().text, "Delete: " + desc);
        EXPECT_EQ(l.prompter.boxes.back().title, "Are you sure?");
        EXPECT_EQ(l.prompter.boxes.back().style, msg::OkCancel | msg::Exclamation);
    }
    l.list.SetSelectedRow(l.RowOf("100000"));
    l.prompter.answers = {Answer::Ok};
    l.logic.cmdDelete_Click();
    EXPECT_EQ(l.list.RowCount(), before - 1);
    EXPECT_EQ(l.RowOf("100000"), -1);
    EXPECT_GE(l.RowOf("244"), 0);
}

TEST(LibraryList, ADeleteKeepsTheFilesAndTheStoredCopies) {
    Library l;
    l.AddExercise(100000, "Clinic's own squat");
    const QString icon = l.folder.state.AppFolder + "/100000.JPG";
    QFile file(icon);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("picture");
    file.close();
    QSqlDatabase& programs = l.folder.state.Dbs.ProgramDb;
    const qint64 protocol = InsertRow(programs, "Protocol", {{"Name", "Squats"}});
    InsertRow(programs, "ProtocolExercise",
              {{"ProtocolID", protocol}, {"RankOnTape", 0}, {"ExerciseID", 100000}});
    l.logic.cmdFillListBox_Click();
    l.list.SetSelectedRow(l.RowOf("100000"));
    l.prompter.answers = {Answer::Ok};
    l.logic.cmdDelete_Click();
    EXPECT_TRUE(QFile::exists(icon));
    QSqlQuery q =
        OpenQuery(programs, "SELECT COUNT(*) FROM ProtocolExercise WHERE ExerciseID = 100000");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), 1);
}

TEST(LibraryList, EditOrDeleteWithNoRowChosenIsAFault) {
    Library l;
    l.logic.cmdFillListBox_Click();
    l.list.SetSelectedRow(-1);
    EXPECT_THROW(l.logic.cmdEdit_Click(), Fault);
    EXPECT_THROW(l.logic.cmdDelete_Click(), Fault);
    EXPECT_EQ(l.host.editorShown, 0);
}

TEST(LibraryList, AddClearsTheNumberAndEditNamesTheChosenOne) {
    Library l;
    l.logic.cmdFillListBox_Click();
    l.folder.state.ExerciseNumber = "12";
    l.logic.cmdAdd_Click();
    EXPECT_FALSE(l.folder.state.ExerciseNumber.has_value());
    l.list.SetSelectedRow(l.RowOf("042"));
    l.logic.cmdEdit_Click();
    EXPECT_EQ(l.folder.state.ExerciseNumber, QString("042"));
    EXPECT_EQ(l.host.editorShown, 2);
}

TEST(LibraryList, TheCodeColumnSortsNumbersAsText) {
    Library l;
    l.AddExercise(100000, "Clinic's own squat");
    l.AddExercise(244, "Wall slides");
    l.logic.cmdFillListBox_Click();
    l.logic.ListView1_ColumnClick(0);
    EXPECT_LT(l.RowOf("100000"), l.RowOf("244"));
    EXPECT_LT(l.RowOf("100000"), l.RowOf("243"));
    EXPECT_GT(l.RowOf("100000"), l.RowOf("099"));
    EXPECT_LT(l.RowOf("243"), l.RowOf("244"));
}

TEST(LibraryList, CleanTextMakesCarriageReturnsBlanksAndDropsLineFeeds) {
    EXPECT_EQ(LibraryListLogic::CleanText("Stand tall\r\nbreathe"), "Stand tall breathe");
    EXPECT_EQ(LibraryListLogic::CleanText("\n"), "");
    EXPECT_EQ(LibraryListLogic::CleanText("\r"), " ");
    EXPECT_EQ(LibraryListLogic::CleanText(""), "");
    EXPECT_EQ(LibraryListLogic::CleanText("Zoë \"李\" 💪 50%\n\r"), "Zoë \"李\" 💪 50% ");
}

TEST(LibraryList, CleanTextOnACurrentDatabaseStopsAtTheFirstRowWithTheUnknownField) {
    Library l;
    Execute(l.Db(), "UPDATE ExerciseLibrary SET Instruct1 = 'one\r\ntwo'");
    try {
        l.logic.cmdCleanText_Click();
        ADD_FAILURE() << "the cleaning went through";
    } catch (const DatabaseFault& fault) {
        EXPECT_EQ(fault.Number(), 3265);
        EXPECT_TRUE(fault.Message().contains("Instruct3")) << fault.Message().toStdString();
    }
    QSqlQuery q = ExecPrepared(l.Db(), "SELECT COUNT(*) FROM ExerciseLibrary WHERE Instruct1 = ?",
                               {QStringLiteral("one\r\ntwo")});
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), l.Count()); // not even the first row was changed
}

TEST(LibraryList, ExitReopensTheDatabasesAndUnloadGivesTheCommandsBackWithNoPatient) {
    Library l;
    l.folder.state.Program.PatientID = 5;
    l.folder.state.Program.InvoiceID = 9;
    l.logic.cmdExit_Click();
    EXPECT_EQ(l.host.reopened, 1);
    l.logic.Unload();
    EXPECT_EQ(l.shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(l.shell.shell.MenuMode(), MenuMode::All);
    EXPECT_FALSE(l.folder.state.Program.PatientID.has_value());
    EXPECT_FALSE(l.folder.state.Program.InvoiceID.has_value());
}
