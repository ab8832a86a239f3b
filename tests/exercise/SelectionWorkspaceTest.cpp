#include "exercise/SelectionWorkspace.h"
#include "exercise/ParamText.h"
#include "exercise/WorkspaceFakes.h"
#include "program/ProgramHarness.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::ProgramHarness;

namespace {

struct Workspace {
    Workspace()
        : provider(false, "Provider"), usage(false, "Usage"),
          logic(h.State(), h.shell.shell, h.prompter, h.store, view, pane, provider, usage,
                {[this] {
                     ++listInits;
                     logic.Panes().SizeSourcePane();
                 },
                 [this](IComboBox& box) { combosLoaded << box.Tag(); },
                 [this] { ++protocolsAdded; }, [this] { ++protocolsSaved; }}) {
        logic.Load(progress);
    }
    ExerciseProgram& P() { return h.Program(); }
    // The exercise numbers of the filled slotList, in order.
    std::vector<int> Order() {
        std::vector<int> ids;
        for (int i = 0; i < P().NumExercises; ++i)
            ids.push_back(P().Exercise(i).ExerciseID);
        return ids;
    }
    // Fills n slotList with the library's entries 0..n-1 and forgets the Modified flag.
    void Fill(int n) {
        for (int i = 0; i < n; ++i)
            logic.DropSelectedEx(static_cast<int16_t>(i), {DragKind::SrcIm, i});
        P().Modified = false;
    }
    int Id(int choice) { return h.State().Library.Entries[static_cast<size_t>(choice)].ExerciseID; }

    ProgramHarness h;
    FakeWorkspaceView view;
    FakeChoicePane pane;
    FakeComboBox provider, usage;
    FakeProgress progress;
    int listInits = 0, protocolsAdded = 0, protocolsSaved = 0;
    QStringList combosLoaded;
    SelectionWorkspace logic;
};

} // namespace

TEST(Workspace, LoadReadsTheLibraryMakesItsCellsAndFillsTheCombos) {
    Workspace w;
    EXPECT_EQ(w.pane.CellCount(), w.h.State().Library.NumChoices);
    EXPECT_EQ(w.combosLoaded, QStringList({"Provider", "Usage"}));
    EXPECT_EQ(w.h.State().DragMode, 0);
}

TEST(Workspace, ALibraryPictureDroppedOnSlotThreeOfSevenMovesTheRestDown) {
    Workspace w;
    w.Fill(7);
    w.logic.DropSelectedEx(3, {DragKind::SrcIm, 9});
    EXPECT_EQ(w.P().NumExercises, 8);
    EXPECT_EQ(w.Order(), std::vector<int>({w.Id(0), w.Id(1), w.Id(2), w.Id(9), w.Id(3), w.Id(4),
                                           w.Id(5), w.Id(6)}));
    EXPECT_TRUE(w.P().Modified);
    EXPECT_TRUE(w.view.slotList[3].filled);
}

TEST(Workspace, ALibraryPictureDroppedOnAnEmptySlotFillsTheFirstEmptyOne) {
    Workspace w;
    w.Fill(2);
    w.logic.DropSelectedEx(15, {DragKind::SrcIm, 5});
    EXPECT_EQ(w.P().NumExercises, 3);
    EXPECT_EQ(w.P().Exercise(2).ExerciseID, w.Id(5));
    EXPECT_FALSE(w.view.slotList[15].filled);
}

TEST(Workspace, ASlotAboveTheViewportComesIntoViewOnADrop) {
    Workspace w;
    w.Fill(4);
    w.view.scroll2 = 162; // the last two rows in view
    w.logic.DropSelectedEx(19, {DragKind::SrcIm, 1});
    EXPECT_EQ(w.view.scroll2, 2); // slot 4 lies at top 4: 4 - 2
    w.Fill(0);
    w.view.scroll2 = 2;
    for (int i = 5; i < 12; ++i)
        w.logic.DropSelectedEx(19, {DragKind::SrcIm, 1});
    EXPECT_EQ(w.view.scroll2, 2); // a slot below the viewport causes no scrolling
}

TEST(Workspace, WithTwentySelectedADropGivesTheMessageAndChangesNothingButModified) {
    Workspace w;
    w.Fill(20);
    const auto before = w.Order();
    w.h.prompter.answers = {Answer::Ok};
    w.logic.DropSelectedEx(3, {DragKind::SrcIm, 7});
    EXPECT_EQ(w.Order(), before);
    EXPECT_TRUE(w.P().Modified);
    ASSERT_EQ(w.h.prompter.boxes.size(), 1u);
    EXPECT_EQ(w.h.prompter.boxes[0].title, "Exercise list full");
    EXPECT_EQ(w.h.prompter.boxes[0].text, "No room for more exercises.\nPlease delete one first.");
    EXPECT_EQ(w.h.prompter.boxes[0].style, msg::Information);
}

TEST(Workspace, ReplaceModeStillInsertsALibraryPictureAndSwapsTwoSlots) {
    Workspace w;
    w.Fill(3);
    w.h.State().DragMode = 1;
    w.logic.DropSelectedEx(1, {DragKind::SrcIm, 8});
    EXPECT_EQ(w.Order(), std::vector<int>({w.Id(0), w.Id(8), w.Id(1), w.Id(2)}));
    w.logic.DropSelectedEx(3, {DragKind::TargetIm, 0});
    EXPECT_EQ(w.Order(), std::vector<int>({w.Id(2), w.Id(8), w.Id(1), w.Id(0)}));
}

TEST(Workspace, InsertModeMovesASlotAndShiftsTheOthers) {
    Workspace w;
    w.Fill(5);
    w.logic.DropSelectedEx(4, {DragKind::TargetIm, 0});
    EXPECT_EQ(w.Order(), std::vector<int>({w.Id(1), w.Id(2), w.Id(3), w.Id(4), w.Id(0)}));
    Workspace v;
    v.Fill(5);
    v.logic.DropSelectedEx(0, {DragKind::TargetIm, 4});
    EXPECT_EQ(v.Order(), std::vector<int>({v.Id(4), v.Id(0), v.Id(1), v.Id(2), v.Id(3)}));
}

TEST(Workspace, DraggingAnEmptySlotOrOntoAnEmptySlotDoesNothingButSetsModified) {
    Workspace w;
    w.Fill(3);
    const auto before = w.Order();
    w.logic.DropSelectedEx(1, {DragKind::TargetIm, 7});
    EXPECT_EQ(w.Order(), before);
    EXPECT_TRUE(w.P().Modified);
    w.P().Modified = false;
    w.logic.DropSelectedEx(9, {DragKind::TargetIm, 1});
    EXPECT_EQ(w.Order(), before);
    EXPECT_TRUE(w.P().Modified);
    w.P().Modified = false;
    w.logic.DropSelectedEx(1, {DragKind::TargetIm, 1}); // a plain click on a slot
    EXPECT_TRUE(w.P().Modified);
}

TEST(Workspace, ASlotDraggedToTheUpperPaneIsDeletedALibraryPictureIsIgnored) {
    Workspace w;
    w.Fill(3);
    w.logic.DeleteTarget({DragKind::SrcIm, 2});
    EXPECT_EQ(w.P().NumExercises, 3);
    EXPECT_FALSE(w.P().Modified);
    w.logic.DeleteTarget({DragKind::TargetIm, 0});
    EXPECT_EQ(w.Order(), std::vector<int>({w.Id(1), w.Id(2)}));
    EXPECT_TRUE(w.P().Modified);
    EXPECT_FALSE(w.view.slotList[2].filled);
}

TEST(Workspace, TheSameExerciseMayBeSelectedSeveralTimes) {
    Workspace w;
    for (int i = 0; i < 3; ++i)
        w.logic.DropSelectedEx(0, {DragKind::SrcIm, 4});
    EXPECT_EQ(w.Order(), std::vector<int>({w.Id(4), w.Id(4), w.Id(4)}));
}

TEST(Workspace, PressingDeleteTwiceWithAMarkedSlotRemovesTwoExercises) {
    Workspace w;
    w.Fill(4);
    w.logic.TargetPress(1);
    EXPECT_EQ(w.view.slotMark, 1);
    EXPECT_EQ(w.logic.SelectedTarget(), 1);
    w.logic.TargetKeyDown(SelectionWorkspace::kDeleteKey);
    w.logic.TargetKeyDown(SelectionWorkspace::kDeleteKey);
    EXPECT_EQ(w.Order(), std::vector<int>({w.Id(0), w.Id(3)}));
    w.logic.TargetLostFocus();
    EXPECT_EQ(w.view.slotMark, -1);
    EXPECT_EQ(w.logic.SelectedTarget(), 1); // kept
    w.logic.SrcPress(3);
    EXPECT_EQ(w.logic.SelectedTarget(), -1);
    w.logic.TargetKeyDown(SelectionWorkspace::kDeleteKey);
    EXPECT_EQ(w.P().NumExercises, 2);
}

TEST(Workspace, ClearEmptiesTheListWithoutAsking) {
    Workspace w;
    w.Fill(6);
    w.logic.ClearSelectedExercises();
    EXPECT_EQ(w.P().NumExercises, 0);
    EXPECT_TRUE(w.P().Modified);
    for (const auto& slot : w.view.slotList)
        EXPECT_FALSE(slot.filled);
    EXPECT_TRUE(w.h.prompter.boxes.empty());
}

TEST(Workspace, SlotsShowTheParametersAndABlueCaptionWhenAMovieExists) {
    Workspace w;
    w.Fill(1);
    const ExerciseEntry& e = w.P().Exercise(0);
    EXPECT_EQ(w.view.slotList[0].caption, ShortParamText(w.P(), 0));
    EXPECT_EQ(w.view.slotList[0].blue, !e.Movie.isEmpty());
    EXPECT_EQ(w.view.slotList[0].icon, w.h.State().Media.Icon + e.Icon);
}

TEST(Workspace, DoubleClicksOpenTheParametersOrRefuseAtTwenty) {
    Workspace w;
    w.Fill(2);
    w.logic.SrcDblClick(5);
    EXPECT_EQ(w.view.paramsOpened, 1);
    EXPECT_EQ(w.h.State().ParamsFromLibrary, 1);
    EXPECT_EQ(w.h.State().Library.CurrentChoice, 5);
    w.logic.TargetDblClick(1);
    EXPECT_EQ(w.view.paramsOpened, 2);
    EXPECT_EQ(w.h.State().ParamsFromLibrary, 0);
    w.logic.TargetDblClick(7); // an empty slot
    EXPECT_EQ(w.view.paramsOpened, 2);
    EXPECT_EQ(w.h.State().Library.CurrentChoice, 7);
    w.Fill(18); // 20 in all
    w.h.prompter.answers = {Answer::Ok};
    w.logic.SrcDblClick(0);
    EXPECT_EQ(w.view.paramsOpened, 2);
    EXPECT_EQ(w.h.prompter.boxes.back().title, "Exercise list full");
}

TEST(Workspace, StatusHintsFollowThePointer) {
    Workspace w;
    w.Fill(1);
    w.logic.PointerOverSource(2);
    EXPECT_EQ(w.h.shell.status.PanelText(0), "Exercise: " + w.h.State().Library.Entries[2].Desc);
    w.logic.PointerOverTarget(0);
    EXPECT_EQ(w.h.shell.status.PanelText(0), "Exercise: " + LongParamText(w.P(), 0));
    w.logic.PointerOverOther();
    EXPECT_EQ(w.h.shell.status.PanelText(0), "Status: Ready");
}

TEST(Workspace, ProviderAndUsagePicksSetModified) {
    Workspace w;
    w.provider.items = {"Dr. Jane Smith, PT", "Mark Lee, PTA"};
    w.provider.SetListIndex(1);
    w.logic.cboProvider_Click();
    EXPECT_EQ(w.P().Provider, "Mark Lee, PTA");
    EXPECT_TRUE(w.P().Modified);
    w.usage.text = "Twice a day";
    w.logic.cboUsage_Click();
    EXPECT_EQ(w.P().Usage, "Twice a day");
}

TEST(Workspace, ActivationSetsTheCommandsByWorkspaceMode) {
    Workspace w;
    w.h.State().WorkspaceMode = WorkspacePurpose::Program;
    w.logic.Activate();
    EXPECT_TRUE(w.view.programControls);
    EXPECT_EQ(w.h.shell.shell.MenuMode(), MenuMode::PrintOnly);
    EXPECT_EQ(w.h.shell.shell.ToolbarMode(), ToolbarMode::PrintOnly);
    w.h.State().WorkspaceMode = WorkspacePurpose::NewProtocol;
    w.h.shell.shell.UpdateToolbar(ToolbarMode::HelpOnly);
    w.logic.Activate();
    EXPECT_FALSE(w.view.programControls);
    EXPECT_EQ(w.h.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
    w.h.State().WorkspaceMode = WorkspacePurpose::None;
    w.logic.Activate();
    EXPECT_EQ(w.h.shell.shell.MenuMode(), MenuMode::All);
}

TEST(Workspace, AVisitReloadsTheStoredProgramAndOkSavesIt) {
    Workspace w;
    const int32_t patient = w.h.AddPatient("Ng");
    w.h.Choose(patient, "Ng, Ann");
    w.h.State().WorkspaceMode = WorkspacePurpose::Program;
    w.logic.InitExerciseSelection(true);
    EXPECT_EQ(w.listInits, 1);
    EXPECT_EQ(w.P().NumExercises, 0); // no stored program: defaults
    w.logic.DropSelectedEx(0, {DragKind::SrcIm, 3});
    w.provider.text = "Dr. Jane Smith, PT";
    w.usage.text = "Once a day";
    w.logic.cmdOKCancel("OK");
    EXPECT_TRUE(w.view.hidden);
    EXPECT_EQ(w.h.shell.shell.ToolbarMode(), ToolbarMode::All);
    EXPECT_EQ(w.h.shell.shell.MenuMode(), MenuMode::All);
    EXPECT_EQ(w.h.Count("SELECT COUNT(*) FROM Exercise"), 1);
    EXPECT_EQ(w.h.Count("SELECT COUNT(*) FROM Invoice WHERE Usage = 'Once a day'"), 1);
    EXPECT_FALSE(w.P().Modified);

    // The next visit reads that program back and puts provider and usage into the boxes.
    w.provider.text.clear();
    w.logic.InitExerciseSelection(true);
    EXPECT_EQ(w.provider.text, "Dr. Jane Smith, PT");
    EXPECT_EQ(w.P().NumExercises, 1);
    EXPECT_FALSE(w.P().IsNew);
}

TEST(Workspace, CancelAfterDeletingRestoresFromTheDatabase) {
    Workspace w;
    w.h.Choose(w.h.AddPatient("Ng"), "Ng, Ann");
    w.h.State().WorkspaceMode = WorkspacePurpose::Program;
    w.logic.InitExerciseSelection(true);
    w.Fill(4);
    w.logic.cmdOKCancel("OK");
    w.logic.InitExerciseSelection(true);
    w.logic.DeleteSelectedEx(0);
    w.logic.DeleteSelectedEx(0);
    EXPECT_EQ(w.P().NumExercises, 2);
    w.logic.cmdOKCancel("Cancel");
    EXPECT_EQ(w.P().NumExercises, 4);
    EXPECT_FALSE(w.P().Modified);
    EXPECT_EQ(w.h.shell.shell.ToolbarMode(), ToolbarMode::All);
}

TEST(Workspace, OkAndCancelForProtocolsLeaveTheProgramAlone) {
    Workspace w;
    w.h.State().WorkspaceMode = WorkspacePurpose::NewProtocol;
    w.Fill(2);
    w.logic.cmdOKCancel("OK");
    EXPECT_EQ(w.protocolsAdded, 1);
    w.h.State().WorkspaceMode = WorkspacePurpose::StoredProtocol;
    w.logic.cmdOKCancel("OK");
    EXPECT_EQ(w.protocolsSaved, 1);
    w.logic.cmdOKCancel("Cancel");
    EXPECT_EQ(w.P().NumExercises, 2);
    EXPECT_EQ(w.h.Count("SELECT COUNT(*) FROM Invoice"), 0);
}

TEST(Workspace, FoldingTheUpperPaneAnimatesAndDisablesTheVisitCommands) {
    Workspace w;
    w.logic.ShowChoicesPane();
    EXPECT_FALSE(w.view.upperPane);
    EXPECT_FALSE(w.view.visitCommands);
    EXPECT_EQ(w.view.showAllCaption, "&Show Choices");
    EXPECT_EQ(w.view.offsets.size(), 15u);
    EXPECT_EQ(w.view.offsets.back(), 140);
    EXPECT_TRUE(w.logic.DragScrollArmed());
    w.logic.ShowChoicesPane();
    EXPECT_TRUE(w.view.upperPane);
    EXPECT_TRUE(w.view.visitCommands);
    EXPECT_EQ(w.view.showAllCaption, "&Show All");
    EXPECT_EQ(w.view.offsets.back(), 0);
    EXPECT_FALSE(w.logic.DragScrollArmed());
}

TEST(Workspace, TheDragOverRuleScrollsOnceForEachArming) {
    Workspace w;
    w.logic.DescLabelDragOver(12, 160, -80); // not armed: nothing
    EXPECT_EQ(w.view.scroll2, 2);
    w.logic.ShowChoicesPane(); // armed
    w.view.scroll2 = 82;
    w.logic.DescLabelDragOver(0, 10, -80); // the caption lies above the viewport
    EXPECT_EQ(w.view.scroll2, 2);
    w.logic.DescLabelDragOver(0, 10, -80);
    EXPECT_EQ(w.view.scroll2, 2); // disarmed after one use
}

TEST(Workspace, ProtocolHidesTheWindowAndOpensTheProtocolList) {
    Workspace w;
    w.logic.cmdProtocol();
    EXPECT_TRUE(w.view.hidden);
    EXPECT_EQ(w.view.protocolOpened, 1);
}
