#include "ui/ProtocolWindows.h"

#include "data/Sql.h"
#include "ui/ChoicePaneWidget.h"
#include "ui/MainWindowRun.h"
#include "ui/PaneDrag.h"
#include "ui/SlotPaneWidget.h"
#include "ui/WorkspaceWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QInputDialog>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::MainWindowRun;
using tarvex::testing::Opened;

namespace {

struct ProtocolRun : MainWindowRun {
    ProtocolRun() { Execute(state.Dbs.ProgramDb, "DELETE FROM Protocol"); }
    // The protocol's list stays in memory as a changed program; closing would ask to save it.
    ~ProtocolRun() { state.Program.Modified = false; }
    WorkspaceWindow& W() { return *window.Workspace(); }
    ProtocolEditorDialog* OpenEditor() {
        window.MenuCommands().Action("mnuProtocolEditor")->trigger();
        return Opened<ProtocolEditorDialog>(*this);
    }
    void DropLibraryPicture(int choice) {
        SlotPaneWidget* lower = W().SlotPane();
        std::unique_ptr<QMimeData> data(PaneDragData({DragKind::SrcIm, choice}));
        lower->DropAt(lower->SlotPictureRect(state.Program.NumExercises).center(), data.get());
    }
    int Id(int choice) { return state.Library.Entries[static_cast<size_t>(choice)].ExerciseID; }
    std::vector<int> Rows(int32_t id) {
        std::vector<int> rows;
        QSqlQuery q = OpenQuery(state.Dbs.ProgramDb,
                                QStringLiteral("SELECT ExerciseID FROM ProtocolExercise WHERE "
                                               "ProtocolID = %1 ORDER BY RankOnTape")
                                    .arg(id));
        while (q.next())
            rows.push_back(q.value(0).toInt());
        return rows;
    }
    std::vector<int32_t> ProtocolIDs() {
        std::vector<int32_t> ids;
        QSqlQuery q = OpenQuery(state.Dbs.ProgramDb, "SELECT ProtocolID FROM Protocol");
        while (q.next())
            ids.push_back(q.value(0).toInt());
        return ids;
    }
    // Makes a protocol of the library's entries through the editor's New, as a user does.
    int32_t MakeProtocol(ProtocolEditorDialog* editor, const QString& name,
                         std::initializer_list<int> choices) {
        editor->Button("New")->click();
        for (int choice : choices)
            DropLibraryPicture(choice);
        AnswerInputBox(name);
        W().Button("cmdOK")->click();
        return ProtocolIDs().back();
    }
    // Types the text into the next input box and presses its OK.
    static void AnswerInputBox(const QString& text) {
        auto* timer = new QTimer;
        timer->setInterval(10);
        QObject::connect(timer, &QTimer::timeout, [timer, text] {
            auto* box = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
            if (!box)
                return;
            timer->stop();
            timer->deleteLater();
            box->setTextValue(text);
            box->accept();
        });
        timer->start();
    }
    static void Choose(QComboBox* combo, int32_t protocolID) {
        const int at = combo->findData(protocolID);
        ASSERT_GE(at, 0);
        combo->setCurrentIndex(at);
        emit combo->activated(at);
    }
    static void Shoot(QWidget* window, const QString& name) {
        QDir().mkpath(TARVEX_SCREENSHOT_DIR);
        window->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/" + name + ".png");
    }
};

} // namespace

TEST(ProtocolEditorWindow, OpensFromTheToolsMenuWithTheHelpOnlyToolbar) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->windowTitle(), "Protocol Editor");
    EXPECT_EQ(editor->cboProtocol->itemText(0), "(None Selected)");
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::HelpOnly);
    for (const char* tag : {"OK", "New", "Edit", "Delete"})
        EXPECT_NE(editor->Button(tag), nullptr) << tag;
    // A second choice of the command brings the same window forward.
    r.window.MenuCommands().Action("mnuProtocolEditor")->trigger();
    EXPECT_EQ(r.window.findChildren<ProtocolEditorDialog*>().size(), 1);
}

TEST(ProtocolEditorWindow, NewByFiveDroppedPicturesAndOkStoresTheFiveRowsInOrder) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    editor->Button("New")->click();
    EXPECT_TRUE(r.W().isVisible());
    EXPECT_EQ(r.state.WorkspaceMode, WorkspacePurpose::NewProtocol);
    EXPECT_TRUE(r.W().ProviderBox()->isHidden());
    EXPECT_TRUE(r.W().Button("cmdProtocol")->isHidden());
    EXPECT_TRUE(editor->isVisible()); // it waits behind the workspace
    EXPECT_FALSE(editor->isEnabled());
    EXPECT_EQ(r.window.ShellLogic().MenuMode(), MenuMode::PrintOnly);
    for (int choice : {6, 2, 9, 0, 4})
        r.DropLibraryPicture(choice);
    EXPECT_EQ(r.W().SlotPane()->SlotCaption(4).section('\n', 0, 0),
              r.state.Library.Entries[4].AbbrevDesc);
    ProtocolRun::Shoot(&r.W(), "workspace-new-protocol");
    ProtocolRun::AnswerInputBox("After knee replacement, week 1");
    r.W().Button("cmdOK")->click();
    EXPECT_FALSE(r.W().isVisible());
    EXPECT_TRUE(editor->isEnabled());
    const auto ids = r.ProtocolIDs();
    ASSERT_EQ(ids.size(), 1u);
    EXPECT_EQ(r.Rows(ids[0]), std::vector<int>({r.Id(6), r.Id(2), r.Id(9), r.Id(0), r.Id(4)}));
    EXPECT_EQ(editor->cboProtocol->itemText(1), "After knee replacement, week 1");
    EXPECT_EQ(editor->cboProtocol->currentIndex(), 0);
    EXPECT_EQ(r.window.ShellLogic().MenuMode(), MenuMode::All);
}

TEST(ProtocolEditorWindow, EditStoresTheChangedListUnderANewProtocolId) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    const int32_t old = r.MakeProtocol(editor, "Shoulder, early", {1, 2, 3});
    ProtocolRun::Choose(editor->cboProtocol, old);
    EXPECT_EQ(editor->lstProtocol->count(), 3);
    editor->Button("Edit")->click();
    EXPECT_EQ(r.state.WorkspaceMode, WorkspacePurpose::StoredProtocol);
    EXPECT_EQ(r.state.Program.NumExercises, 3);
    EXPECT_TRUE(r.W().SlotPane()->SlotHasPicture(2));
    r.DropLibraryPicture(7);
    r.W().Button("cmdOK")->click();
    const auto ids = r.ProtocolIDs();
    ASSERT_EQ(ids.size(), 1u);
    EXPECT_NE(ids[0], old);
    EXPECT_EQ(r.Rows(ids[0]), std::vector<int>({r.Id(1), r.Id(2), r.Id(3), r.Id(7)}));
    EXPECT_EQ(editor->cboProtocol->itemText(1), "Shoulder, early");
}

TEST(ProtocolEditorWindow, TheWorkspacesCancelAndCloseBoxStoreNothing) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    editor->Button("New")->click();
    r.DropLibraryPicture(3);
    r.W().Button("cmdCancel")->click();
    EXPECT_TRUE(r.ProtocolIDs().empty());
    EXPECT_TRUE(editor->isEnabled());
    editor->Button("New")->click();
    r.DropLibraryPicture(3);
    r.W().close();
    EXPECT_FALSE(r.W().isVisible());
    EXPECT_TRUE(r.ProtocolIDs().empty());
    EXPECT_TRUE(editor->isEnabled());
}

TEST(ProtocolEditorWindow, EscAndTheCloseBoxCloseItAsOkDoesButNotWhileTheWorkspaceWorks) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    editor->Button("New")->click();
    editor->close(); // the window manager's close box while the workspace is open
    EXPECT_TRUE(editor->isVisible());
    r.W().Button("cmdCancel")->click();
    QPointer<ProtocolEditorDialog> watched = editor;
    QTest::keyClick(editor, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(watched.isNull());
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::PatientOnly);

    r.ChooseOkafor();
    editor = r.OpenEditor();
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::HelpOnly);
    watched = editor;
    editor->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(watched.isNull());
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::All);
}

TEST(ProtocolSelectionWindow, InAPatientsWorkspaceOkReplacesTheListAndTheSurplusSlotsClear) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    const int32_t id = r.MakeProtocol(editor, "Ankle sprain", {10, 11});
    editor->Button("OK")->click();
    r.ChooseOkafor(6);
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    // The stored program has no rows yet: put six in, as if dragged.
    for (int choice : {20, 21, 22, 23, 24, 25})
        r.DropLibraryPicture(choice);
    r.state.Program.Modified = false;
    ASSERT_TRUE(r.W().SlotPane()->SlotHasPicture(5));
    r.W().Button("cmdProtocol")->click();
    EXPECT_FALSE(r.W().isVisible());
    auto* selection = qobject_cast<ProtocolSelectionDialog*>(r.W().ProtocolSelection());
    ASSERT_NE(selection, nullptr);
    EXPECT_TRUE(selection->isVisible());
    EXPECT_EQ(selection->windowTitle(), "Protocol Selection");
    ProtocolRun::Choose(selection->cboProtocol, id);
    EXPECT_EQ(selection->lstProtocol->count(), 2);
    ProtocolRun::Shoot(selection, "protocol-selection");
    selection->Button("OK")->click();
    EXPECT_TRUE(r.W().isVisible());
    EXPECT_EQ(r.state.Program.NumExercises, 2);
    EXPECT_EQ(r.state.Program.Exercise(1).ExerciseID, r.Id(11));
    EXPECT_FALSE(r.state.Program.Modified);
    EXPECT_TRUE(r.W().SlotPane()->SlotHasPicture(1));
    for (int slot = 2; slot < 6; ++slot) {
        EXPECT_FALSE(r.W().SlotPane()->SlotHasPicture(slot)) << slot;
        EXPECT_EQ(r.W().SlotPane()->SlotCaption(slot), "") << slot;
    }
}

TEST(ProtocolSelectionWindow, EscAndTheCloseBoxAreCancelAndBringTheWorkspaceBack) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    const int32_t id = r.MakeProtocol(editor, "Neck pain", {1});
    editor->Button("OK")->click();
    r.ChooseOkafor();
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    for (int choice : {30, 31, 32})
        r.DropLibraryPicture(choice);
    for (int way = 0; way < 2; ++way) {
        r.W().Button("cmdProtocol")->click();
        auto* selection = qobject_cast<ProtocolSelectionDialog*>(r.W().ProtocolSelection());
        ASSERT_NE(selection, nullptr);
        ProtocolRun::Choose(selection->cboProtocol, id);
        if (way == 0)
            QTest::keyClick(selection, Qt::Key_Escape);
        else
            selection->close();
        EXPECT_TRUE(r.W().isVisible()) << way;
        EXPECT_EQ(r.state.Program.NumExercises, 3) << way;
        EXPECT_EQ(r.state.Program.Exercise(0).ExerciseID, r.Id(30)) << way;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(r.W().ProtocolSelection(), nullptr) << way;
    }
}

TEST(ProtocolSelectionWindow, ReturnInTheComboIsOk) {
    ProtocolRun r;
    ProtocolEditorDialog* editor = r.OpenEditor();
    const int32_t id = r.MakeProtocol(editor, "Low back pain", {40, 41, 42, 43});
    editor->Button("OK")->click();
    r.ChooseOkafor();
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    r.W().Button("cmdProtocol")->click();
    auto* selection = qobject_cast<ProtocolSelectionDialog*>(r.W().ProtocolSelection());
    ASSERT_NE(selection, nullptr);
    ProtocolRun::Choose(selection->cboProtocol, id);
    QTest::keyClick(selection->cboProtocol, Qt::Key_Return);
    EXPECT_TRUE(r.W().isVisible());
    EXPECT_EQ(r.state.Program.NumExercises, 4);
    EXPECT_EQ(r.state.Program.Exercise(3).ExerciseID, r.Id(43));
}

TEST(ProtocolEditorWindow, ScreenshotWithADeliveredProtocol) {
    MainWindowRun r; // the delivered protocols stay
    r.window.MenuCommands().Action("mnuProtocolEditor")->trigger();
    auto* editor = Opened<ProtocolEditorDialog>(r);
    ASSERT_NE(editor, nullptr);
    EXPECT_GE(editor->cboProtocol->count(), 13);
    const int at = editor->cboProtocol->findText("Total knee replacement - early");
    ASSERT_GT(at, 0);
    editor->cboProtocol->setCurrentIndex(at);
    emit editor->cboProtocol->activated(at);
    EXPECT_GE(editor->lstProtocol->count(), 5);
    ProtocolRun::Shoot(editor, "protocol-editor");
}
