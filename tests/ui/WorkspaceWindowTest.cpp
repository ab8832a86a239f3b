#include "ui/WorkspaceWindow.h"
#include "data/Sql.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/Application.h"
#include "ui/ChoicePaneWidget.h"
#include "ui/MainWindow.h"
#include "ui/MainWindowRun.h"
#include "ui/PaneDrag.h"
#include "ui/SlotPaneWidget.h"

#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct WsRun : tarvex::testing::MainWindowRun {
    WsRun() { ChooseOkafor(); }
    WorkspaceWindow& W() { return *window.Workspace(); }
    // Drops what a drag of the source carries on a point of a pane.
    static void Drop(SlotPaneWidget* pane, QPoint at, DragSource source) {
        std::unique_ptr<QMimeData> data(PaneDragData(source));
        pane->DropAt(at, data.get());
    }
    static void Drop(ChoicePaneWidget* pane, QPoint, DragSource source) {
        std::unique_ptr<QMimeData> data(PaneDragData(source));
        pane->DropAt(data.get());
    }
};

} // namespace

TEST(WorkspaceWindow, IsLoadedHiddenAtStartAndOpensFromTheToolbar) {
    WsRun r;
    ASSERT_NE(r.window.Workspace(), nullptr);
    EXPECT_FALSE(r.W().isVisible());
    EXPECT_EQ(r.W().ChoicePane()->CellCount(), r.state.Library.NumChoices);
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    EXPECT_TRUE(r.W().isVisible());
    EXPECT_EQ(r.W().windowTitle(), "Select Exercises");
    EXPECT_EQ(r.state.WorkspaceMode, WorkspacePurpose::Program);
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::PrintOnly);
    EXPECT_EQ(r.window.ShellLogic().MenuMode(), MenuMode::PrintOnly);
    EXPECT_EQ(r.W().ViewList(0)->item(0)->text(), "(All)");
    EXPECT_TRUE(r.W().ViewList(0)->item(0)->isSelected());
    EXPECT_GT(r.W().ViewList(1)->count(), 1);
}

TEST(WorkspaceWindow, DropsAndClicksOnTheRealPanesBuildTheProgramAndOkSavesIt) {
    WsRun r;
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    ChoicePaneWidget* library = r.W().ChoicePane();
    SlotPaneWidget* lower = r.W().SlotPane();
    // Three library pictures dropped on the lower pane; the third on slot 0 inserts.
    WsRun::Drop(lower, lower->SlotPictureRect(0).center(), {DragKind::SrcIm, 0});
    WsRun::Drop(lower, lower->SlotPictureRect(7).center(), {DragKind::SrcIm, 1});
    WsRun::Drop(lower, lower->SlotPictureRect(0).center(), {DragKind::SrcIm, 2});
    const auto& lib = r.state.Library.Entries;
    ASSERT_EQ(r.state.Program.NumExercises, 3);
    EXPECT_EQ(r.state.Program.Exercise(0).ExerciseID, lib[2].ExerciseID);
    EXPECT_EQ(r.state.Program.Exercise(1).ExerciseID, lib[0].ExerciseID);
    EXPECT_EQ(r.state.Program.Exercise(2).ExerciseID, lib[1].ExerciseID);
    EXPECT_EQ(lower->SlotCaption(0),
              lib[2].AbbrevDesc + "\n" + QString::number(lib[2].Reps) + "r" +
                  (lib[2].Hold ? "/" + QString::number(lib[2].Hold) + "s" : QString()) + "/" +
                  QString::number(lib[2].Sets) + "x");
    // A slot dragged back to the library is removed.
    WsRun::Drop(library, library->PictureRect(0).center(), {DragKind::TargetIm, 1});
    EXPECT_EQ(r.state.Program.NumExercises, 2);
    // A click on a slot marks it, and Delete removes it.
    QTest::mouseClick(lower, Qt::LeftButton, {}, lower->SlotPictureRect(0).center());
    QTest::keyClick(lower, Qt::Key_Delete);
    EXPECT_EQ(r.state.Program.NumExercises, 1);
    // Double clicks open the parameters.
    int opened = 0;
    r.W().OnOpenParams = [&opened] { ++opened; };
    QTest::mouseDClick(library, Qt::LeftButton, {}, library->PictureRect(3).center());
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(r.state.ParamsFromLibrary, 1);
    EXPECT_EQ(r.state.Library.CurrentChoice, 3);

    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    r.W().grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/workspace.png");

    r.W().Button("cmdOK")->click();
    EXPECT_FALSE(r.W().isVisible());
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::All);
    ASSERT_TRUE(r.state.Program.InvoiceID.has_value());
    QSqlQuery q = OpenQuery(r.state.Dbs.ProgramDb, "SELECT COUNT(*) FROM Exercise");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), 1);
}

TEST(WorkspaceWindow, AFilterClickNarrowsTheLibraryPane) {
    WsRun r;
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    QListWidget* joints = r.W().ViewList(0);
    ASSERT_GT(joints->count(), 2);
    const QString joint = joints->item(1)->text();
    joints->clearSelection();
    joints->item(1)->setSelected(true);
    ASSERT_GT(r.state.Library.NumChoices, 0);
    for (int i = 0; i < r.state.Library.NumChoices; ++i)
        EXPECT_TRUE(r.state.Library.Entries[static_cast<size_t>(i)].Joint.contains(joint));
    EXPECT_EQ(r.state.Dbs.Library.Filter(), "(Joint LIKE '*" + joint + "*')");
}

TEST(WorkspaceWindow, CancelReadsTheStoredProgramBack) {
    WsRun r;
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    SlotPaneWidget* lower = r.W().SlotPane();
    WsRun::Drop(lower, lower->SlotPictureRect(0).center(), {DragKind::SrcIm, 0});
    r.W().Button("cmdCancel")->click();
    EXPECT_EQ(r.state.Program.NumExercises, 0);
    EXPECT_FALSE(r.W().isVisible());
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::All);
}

TEST(WorkspaceWindow, EscIsCancel) {
    WsRun r;
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    SlotPaneWidget* lower = r.W().SlotPane();
    WsRun::Drop(lower, lower->SlotPictureRect(0).center(), {DragKind::SrcIm, 0});
    r.W().activateWindow();
    QTest::keyClick(r.W().ViewList(0), Qt::Key_Escape);
    EXPECT_EQ(r.state.Program.NumExercises, 0);
    EXPECT_FALSE(r.W().isVisible());
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::All);
    // Had Esc done nothing, closing would stop to offer the dropped exercise for saving.
    r.state.Program.Modified = false;
}

TEST(WorkspaceWindow, ShowAllFoldsTheLibraryAwayAndBack) {
    WsRun r;
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    QPushButton* showAll = r.W().findChild<QPushButton*>("ShowAllBtn");
    showAll->click();
    EXPECT_EQ(showAll->text(), "&Show Choices");
    EXPECT_FALSE(r.W().ChoicePane()->isVisible());
    EXPECT_FALSE(r.W().Button("cmdOK")->isEnabled());
    showAll->click();
    EXPECT_EQ(showAll->text(), "&Show All");
    EXPECT_TRUE(r.W().ChoicePane()->isVisible());
    EXPECT_TRUE(r.W().Button("cmdOK")->isEnabled());
}

TEST(WorkspaceWindow, ADeletedCurrentProgramEndsTheVisitWithItsErrorAndTheWindowHidden) {
    WsRun r;
    QStringList reported;
    Application::SetFaultReporter([&reported](const QString& m) { reported << m; });
    // A stored program of the patient, current in memory, then deleted under "Programs".
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    QTest::mouseClick(r.W().Button("cmdOK"), Qt::LeftButton);
    ASSERT_TRUE(r.state.Program.InvoiceID.has_value());
    Execute(r.state.Dbs.ProgramDb, QStringLiteral("DELETE * FROM Invoice WHERE InvoiceID = %1")
                                       .arg(*r.state.Program.InvoiceID));
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::All);

    r.window.ToolbarCommands().Action("Exercises")->trigger();
    Application::SetFaultReporter({});
    ASSERT_EQ(reported.size(), 1);
    EXPECT_TRUE(reported.first().contains("no longer exists")) << reported.first().toStdString();
    EXPECT_FALSE(r.W().isVisible());
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::All);
    EXPECT_EQ(r.window.ShellLogic().MenuMode(), MenuMode::All);
    EXPECT_TRUE(r.window.MenuCommands().Action("mnuDatabase")->isEnabled());
    EXPECT_TRUE(r.window.ToolbarCommands().Action("Patient")->isEnabled());
    EXPECT_EQ(r.state.WorkspaceMode, WorkspacePurpose::None);
    // Nothing was written back: the deleted program stays deleted.
    QSqlQuery count = OpenQuery(r.state.Dbs.ProgramDb, "SELECT COUNT(*) FROM Invoice");
    ASSERT_TRUE(count.next());
    EXPECT_EQ(count.value(0).toInt(), 0);
}

TEST(WorkspaceWindow, TextTypedInTheProviderAndUsageBoxesIsNotAddedToTheirLists) {
    WsRun r;
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    for (QComboBox* box : {r.W().ProviderBox(), r.W().UsageBox()}) {
        const int before = box->count();
        box->setFocus();
        box->lineEdit()->selectAll();
        QTest::keyClicks(box->lineEdit(), "Dr. Hana Sato");
        QTest::keyClick(box->lineEdit(), Qt::Key_Return);
        EXPECT_EQ(box->count(), before) << box->objectName().toStdString();
        EXPECT_EQ(box->currentText(), "Dr. Hana Sato");
    }
    QTest::mouseClick(r.W().Button("cmdOK"), Qt::LeftButton);
    EXPECT_EQ(r.state.Program.Provider, "Dr. Hana Sato");
    EXPECT_EQ(r.state.Program.Usage, "Dr. Hana Sato");
}
