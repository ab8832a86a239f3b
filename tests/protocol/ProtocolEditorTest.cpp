#include "protocol/ProtocolHarness.h"
#include "protocol/ProtocolStore.h"
#include "support/Fault.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::ProtocolHarness;

namespace {
using Rows = std::vector<std::pair<int, int>>;
}

TEST(ProtocolStore, TheQueryIsBuiltOfItsPiecesWithoutAnythingBetweenThem) {
    EXPECT_EQ(BuildProtocolQuery(42), "SELECT DISTINCTROW * FROM ProtocolExercise WHERE "
                                      "ProtocolID =42 ORDER BY RankOnTape");
    EXPECT_EQ(ProtocolNamesQuery(), "SELECT * FROM Protocol ORDER BY Name Asc");
}

TEST(ProtocolEditor, LoadListsTheProtocolsByNameAfterNoneSelectedAndRestrictsTheToolbar) {
    ProtocolHarness t;
    const int32_t knee = t.Store("Knee", {0, 1});
    const int32_t ankle = t.Store("ankle", {2});
    t.editor.Load();
    EXPECT_EQ(t.cbo.items, QStringList({"(None Selected)", "ankle", "Knee"}));
    EXPECT_EQ(t.cbo.data, std::vector<int32_t>({0, ankle, knee}));
    EXPECT_EQ(t.cbo.ListIndex(), 0);
    EXPECT_EQ(t.editor.CurrentProtocolID(), 0);
    EXPECT_EQ(t.lst.ListCount(), 0);
    EXPECT_EQ(t.h.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
}

TEST(ProtocolEditor, ChoosingAProtocolListsTheDescriptionsOfItsExercisesInOrder) {
    ProtocolHarness t;
    const int32_t id = t.Store("Shoulder", {3, 1, 2});
    t.editor.Load();
    t.ChooseInEditor(id);
    EXPECT_EQ(t.editor.CurrentProtocolID(), id);
    const auto& lib = t.State().Library.Entries;
    EXPECT_EQ(t.lst.items, QStringList({lib[3].Desc, lib[1].Desc, lib[2].Desc}));
    t.cbo.Choose(0);
    EXPECT_EQ(t.lst.ListCount(), 0);
}

TEST(ProtocolEditor, OkGivesTheToolbarOfTheCurrentPatientOrOfNone) {
    ProtocolHarness t;
    t.editor.Load();
    EXPECT_TRUE(t.editor.cmdOKCancel("OK"));
    EXPECT_EQ(t.h.shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
    t.h.Choose(t.h.AddPatient("Okafor"), "Okafor, Ann");
    t.editor.Load();
    EXPECT_TRUE(t.editor.cmdOKCancel("OK"));
    EXPECT_EQ(t.h.shell.shell.ToolbarMode(), ToolbarMode::All);
    EXPECT_FALSE(t.editor.cmdOKCancel("Unknown"));
}

TEST(ProtocolEditor, NewByFiveDropsAndOkStoresTheFiveRowsInOrderUnderTheTypedName) {
    ProtocolHarness t;
    t.Select({7, 8, 9});
    t.editor.Load();
    t.editor.cmdOKCancel("New");
    EXPECT_EQ(t.State().WorkspaceMode, WorkspacePurpose::NewProtocol);
    EXPECT_EQ(t.P().NumExercises, 0);
    EXPECT_TRUE(t.P().Modified);
    EXPECT_FALSE(t.view.programControls);
    EXPECT_EQ(t.h.shell.shell.MenuMode(), MenuMode::PrintOnly);
    for (int choice : {4, 0, 2, 1, 3})
        t.workspace.DropSelectedEx(t.P().NumExercises, {DragKind::SrcIm, choice});
    t.h.prompter.inputs.push_back(QString("After knee replacement, week 1"));
    t.workspace.cmdOKCancel("OK");
    ASSERT_EQ(t.h.prompter.boxes.size(), 1u);
    EXPECT_EQ(t.h.prompter.boxes[0].text, "Enter the new protocol name");
    EXPECT_EQ(t.h.prompter.boxes[0].title, "Add Protocol");
    const int32_t id = t.LastProtocolID();
    EXPECT_EQ(t.NameOf(id), "After knee replacement, week 1");
    EXPECT_EQ(t.Rows(id),
              Rows({{0, t.Id(4)}, {1, t.Id(0)}, {2, t.Id(2)}, {3, t.Id(1)}, {4, t.Id(3)}}));
    // The editor's combo knows the new protocol, and its first entry is chosen again.
    EXPECT_TRUE(t.cbo.items.contains("After knee replacement, week 1"));
    EXPECT_EQ(t.cbo.ListIndex(), 0);
    EXPECT_TRUE(t.view.hidden);
    EXPECT_EQ(t.h.shell.shell.MenuMode(), MenuMode::All);
}

TEST(ProtocolEditor, AProtocolKeepsAFullCopyOfEachExerciseWithItsParameters) {
    ProtocolHarness t;
    t.Select({5, 6});
    t.P().Exercise(0).Reps = 12;
    t.P().Exercise(0).Hold = 30;
    t.P().Exercise(0).Sets = 3;
    const ExerciseEntry first = t.P().Exercise(0);
    t.editor.StoreProtocol("Copy");
    const int32_t id = t.LastProtocolID();
    t.P().NumExercises = 0;
    t.P().Exercise(0) = ExerciseEntry();
    t.selection.Load();
    t.selection.cmdOKCancel("Cancel");
    t.ChooseInSelection(id);
    t.selection.cmdOKCancel("OK");
    ASSERT_EQ(t.P().NumExercises, 2);
    ExerciseEntry expected = first;
    expected.Joint.clear(); // the filter attributes are not stored with a protocol
    expected.Motion.clear();
    expected.Type.clear();
    EXPECT_EQ(t.P().Exercise(0), expected);
}

TEST(ProtocolEditor, TheNameAnswerIsNotCheckedCancelAndADuplicateAreStoredAsTheyAre) {
    ProtocolHarness t;
    t.Select({1});
    t.h.prompter.inputs.push_back(std::nullopt); // Cancel of the input box
    t.editor.AddNewProtocol();
    t.h.prompter.inputs.push_back(QString("Neck"));
    t.editor.AddNewProtocol();
    t.h.prompter.inputs.push_back(QString("Neck"));
    t.editor.AddNewProtocol();
    const auto ids = t.ProtocolIDs();
    ASSERT_EQ(ids.size(), 3u);
    EXPECT_EQ(t.NameOf(ids[0]), "");
    EXPECT_EQ(t.NameOf(ids[1]), "Neck");
    EXPECT_EQ(t.NameOf(ids[2]), "Neck");
}

TEST(ProtocolEditor, TwoProtocolsOfOneNameAreToldApartByTheirIds) {
    ProtocolHarness t;
    const int32_t a = t.Store("Neck", {0});
    const int32_t b = t.Store("Neck", {1, 2});
    t.editor.Load();
    EXPECT_EQ(t.cbo.items, QStringList({"(None Selected)", "Neck", "Neck"}));
    t.ChooseInEditor(b);
    EXPECT_EQ(t.lst.ListCount(), 2);
    t.ChooseInEditor(a);
    EXPECT_EQ(t.lst.ListCount(), 1);
}

TEST(ProtocolEditor, EditLaysTheProtocolInAndOkStoresItUnderANewIdAndRemovesTheOld) {
    ProtocolHarness t;
    const int32_t old = t.Store("Hip", {0, 1, 2});
    t.editor.Load();
    t.ChooseInEditor(old);
    t.P().Modified = false;
    t.editor.cmdOKCancel("Edit");
    EXPECT_EQ(t.State().WorkspaceMode, WorkspacePurpose::StoredProtocol);
    EXPECT_EQ(t.Order(), std::vector<int>({t.Id(0), t.Id(1), t.Id(2)}));
    EXPECT_FALSE(t.P().Modified); // laying a protocol in changes nothing else
    EXPECT_TRUE(t.view.slotList[2].filled);
    t.workspace.DeleteSelectedEx(1);
    t.workspace.DropSelectedEx(0, {DragKind::SrcIm, 9});
    t.workspace.cmdOKCancel("OK");
    const auto ids = t.ProtocolIDs();
    ASSERT_EQ(ids.size(), 1u);
    EXPECT_NE(ids[0], old);
    EXPECT_EQ(t.NameOf(ids[0]), "Hip");
    EXPECT_EQ(t.Rows(ids[0]), Rows({{0, t.Id(9)}, {1, t.Id(0)}, {2, t.Id(2)}}));
    EXPECT_TRUE(t.Rows(old).empty()); // the old rows went by the cascade
    EXPECT_EQ(t.cbo.ListIndex(), 0);
}

TEST(ProtocolEditor, SavingAnEditedProtocolWithAnEmptyListKeepsTheNameWithNoExercises) {
    ProtocolHarness t;
    const int32_t old = t.Store("Ankle", {3, 4});
    t.editor.Load();
    t.ChooseInEditor(old);
    t.editor.cmdOKCancel("Edit");
    t.workspace.ClearSelectedExercises();
    t.workspace.cmdOKCancel("OK");
    const auto ids = t.ProtocolIDs();
    ASSERT_EQ(ids.size(), 1u);
    EXPECT_EQ(t.NameOf(ids[0]), "Ankle");
    EXPECT_TRUE(t.Rows(ids[0]).empty());
}

TEST(ProtocolEditor, EditWithNoneSelectedOpensAnEmptyListWhoseOkStoresNoneSelected) {
    ProtocolHarness t;
    t.Select({1, 2, 3});
    t.editor.Load();
    t.editor.cmdOKCancel("Edit");
    EXPECT_EQ(t.editor.CurrentProtocolID(), 0);
    EXPECT_EQ(t.P().NumExercises, 0);
    EXPECT_FALSE(t.view.slotList[0].filled);
    EXPECT_EQ(t.opened, 1);
    t.workspace.DropSelectedEx(0, {DragKind::SrcIm, 5});
    t.workspace.cmdOKCancel("OK");
    const auto ids = t.ProtocolIDs();
    ASSERT_EQ(ids.size(), 1u);
    EXPECT_EQ(t.NameOf(ids[0]), "(None Selected)");
    EXPECT_EQ(t.Rows(ids[0]), Rows({{0, t.Id(5)}}));
}

TEST(ProtocolEditor, DeleteOnNoneSelectedAsksAboutItAndDeletesNothing) {
    ProtocolHarness t;
    t.Store("Wrist", {0});
    t.editor.Load();
    t.h.prompter.answers.push_back(Answer::Yes);
    t.editor.cmdOKCancel("Delete");
    ASSERT_EQ(t.h.prompter.boxes.size(), 1u);
    EXPECT_EQ(t.h.prompter.boxes[0].text, "Are you sure you want to delete: (None Selected)");
    EXPECT_EQ(t.h.prompter.boxes[0].title, "Delete Protocol");
    EXPECT_EQ(t.h.prompter.boxes[0].style, msg::YesNo | msg::Exclamation | msg::DefaultButton2);
    EXPECT_EQ(t.ProtocolIDs().size(), 1u);
}

TEST(ProtocolEditor, DeleteAsksAndOnYesRemovesTheProtocolWithItsExercises) {
    ProtocolHarness t;
    const int32_t id = t.Store("Elbow", {0, 1});
    t.editor.Load();
    t.ChooseInEditor(id);
    t.h.prompter.answers.push_back(Answer::No);
    t.editor.cmdOKCancel("Delete");
    EXPECT_EQ(t.ProtocolIDs().size(), 1u);
    EXPECT_EQ(t.h.prompter.boxes[0].text, "Are you sure you want to delete: Elbow");
    t.h.prompter.answers.push_back(Answer::Yes);
    t.editor.cmdOKCancel("Delete");
    EXPECT_TRUE(t.ProtocolIDs().empty());
    EXPECT_EQ(t.h.Count("SELECT COUNT(*) FROM ProtocolExercise"), 0);
    EXPECT_EQ(t.cbo.items, QStringList({"(None Selected)"}));
}

TEST(ProtocolEditor, CancelInTheWorkspaceStoresNothingAndLeavesTheListInMemory) {
    ProtocolHarness t;
    const int32_t id = t.Store("Back", {0, 1});
    t.editor.Load();
    t.editor.cmdOKCancel("New");
    t.workspace.DropSelectedEx(0, {DragKind::SrcIm, 6});
    t.workspace.cmdOKCancel("Cancel");
    EXPECT_EQ(t.ProtocolIDs(), std::vector<int32_t>({id}));
    EXPECT_EQ(t.Order(), std::vector<int>({t.Id(6)}));
    EXPECT_TRUE(t.view.hidden);

    t.ChooseInEditor(id);
    t.editor.cmdOKCancel("Edit");
    t.workspace.DeleteSelectedEx(0);
    t.workspace.cmdOKCancel("Cancel");
    EXPECT_EQ(t.Rows(id), Rows({{0, t.Id(0)}, {1, t.Id(1)}}));
    EXPECT_EQ(t.Order(), std::vector<int>({t.Id(1)}));
}

TEST(ProtocolEditor, AProtocolOfTwentyLoadsInFull) {
    ProtocolHarness t;
    std::vector<int> twenty;
    for (int i = 0; i < 20; ++i)
        twenty.push_back(i);
    const int32_t id = t.Store("Full", twenty);
    t.P().NumExercises = 0;
    t.editor.Load();
    t.ChooseInEditor(id);
    EXPECT_EQ(t.lst.ListCount(), 20);
    t.editor.cmdOKCancel("Edit");
    EXPECT_EQ(t.P().NumExercises, 20);
    EXPECT_EQ(t.P().Exercise(19).ExerciseID, t.Id(19));
}

TEST(ProtocolEditor, ATwentyFirstRowGivesErrorNineAndChangesNoCount) {
    ProtocolHarness t;
    std::vector<int> twenty;
    for (int i = 0; i < 20; ++i)
        twenty.push_back(i);
    const int32_t id = t.Store("Too long", twenty);
    Execute(t.h.Db(), QStringLiteral("INSERT INTO ProtocolExercise SELECT ProtocolID, 20, "
                                     "ExerciseID, code, \"Desc\", AbbrevDesc, Reps, Hold, Sets, "
                                     "Movie, Icon, Picture0, Picture1, Picture2, Instruct0, "
                                     "Instruct1, Instruct2, HasVideo, VideoReps, VideoHold, "
                                     "VideoSets FROM ProtocolExercise WHERE ProtocolID = %1 AND "
                                     "RankOnTape = 0")
                          .arg(id));
    t.Select({30, 31, 32});
    t.editor.Load();
    t.ChooseInEditor(id);
    EXPECT_EQ(t.lst.ListCount(), 21); // the list shows every row
    t.h.prompter.answers.push_back(Answer::Ok);
    const int redraws = t.redraws;
    t.editor.cmdOKCancel("Edit");
    ASSERT_EQ(t.h.prompter.boxes.size(), 1u);
    EXPECT_EQ(t.h.prompter.boxes[0].title, "Error in InitSelExsFromProtocol");
    EXPECT_TRUE(t.h.prompter.boxes[0].text.startsWith("Error: 9 Subscript out of range"))
        << t.h.prompter.boxes[0].text.toStdString();
    EXPECT_EQ(t.P().NumExercises, 3);
    EXPECT_EQ(t.redraws, redraws); // the operation ended before the redraw
    // The slots were overwritten as far as the read went.
    EXPECT_EQ(t.P().Exercise(0).ExerciseID, t.Id(0));
}

TEST(ProtocolEditor, AFailedListReadEndsWithItsOwnBox) {
    ProtocolHarness t;
    const int32_t id = t.Store("Broken", {0});
    t.editor.Load();
    Execute(t.h.Db(), "UPDATE ProtocolExercise SET code = NULL");
    t.ChooseInEditor(id); // the list reads only Desc
    EXPECT_EQ(t.lst.ListCount(), 1);
    Execute(t.h.Db(), "DROP TABLE ProtocolExercise");
    t.h.prompter.answers.push_back(Answer::Ok);
    t.editor.Lists().LoadLstProtocol(id);
    ASSERT_EQ(t.h.prompter.boxes.size(), 1u);
    EXPECT_EQ(t.h.prompter.boxes[0].title, "Error in LoadLstProtocol");
    EXPECT_TRUE(t.h.prompter.boxes[0].text.startsWith("Error: 3000 "));
}

TEST(ProtocolEditor, ANullCodeInARowEndsTheLayingInWithTheTypeMismatchBox) {
    ProtocolHarness t;
    const int32_t id = t.Store("Nulls", {0, 1});
    Execute(t.h.Db(), "UPDATE ProtocolExercise SET code = NULL WHERE RankOnTape = 1");
    t.Select({5});
    t.h.prompter.answers.push_back(Answer::Ok);
    t.editor.Lists().InitSelExsFromProtocol(id, {});
    ASSERT_EQ(t.h.prompter.boxes.size(), 1u);
    EXPECT_TRUE(t.h.prompter.boxes[0].text.startsWith("Error: 13 "))
        << t.h.prompter.boxes[0].text.toStdString();
    EXPECT_EQ(t.P().NumExercises, 1);
}

TEST(ProtocolHandler, AMissingFileIsTriedOnceMoreFromTheDataFolderThenEndsQuietly) {
    ProtocolHarness t;
    const QString before = QDir::currentPath();
    int runs = 0;
    RunProtocolHandler(t.State().AppFolder, t.h.prompter, "Error in LoadLstProtocol", [&] {
        ++runs;
        if (runs == 1)
            throw DatabaseFault("Could not find file", DatabaseFault::kFileNotFound);
    });
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(QDir(QDir::currentPath()).canonicalPath(), QDir(t.State().AppFolder).canonicalPath());
    runs = 0;
    RunProtocolHandler(t.State().AppFolder, t.h.prompter, "Error in LoadLstProtocol", [&] {
        ++runs;
        throw DatabaseFault("Could not find file", DatabaseFault::kFileNotFound);
    });
    EXPECT_EQ(runs, 2);
    EXPECT_TRUE(t.h.prompter.boxes.empty()); // a second time ends without a word
    QDir::setCurrent(before);
}

TEST(ProtocolHandler, TheEngineReportsAFileItCannotOpenAsFileNotFound) {
    if (tarvex::testing::OnTestServer())
        GTEST_SKIP() << "a server has no files for a statement to open";
    ProtocolHarness t;
    try {
        Execute(t.h.Db(),
                "ATTACH DATABASE '" + t.State().AppFolder + "/no such folder/x.db' AS missing");
        FAIL() << "the attach went through";
    } catch (const DatabaseFault& fault) {
        EXPECT_EQ(fault.Number(), DatabaseFault::kFileNotFound);
    }
}

TEST(ProtocolStore, AProtocolIsNeverStoredWithoutItsExercises) {
    ProtocolHarness t;
    tarvex::testing::RefuseWhen(t.h.Db(), "INSERT", "ProtocolExercise", "NEW.RankOnTape = 2",
                                "disk full");
    t.Select({0, 1, 2, 3});
    EXPECT_THROW(t.editor.StoreProtocol("Half"), DatabaseFault);
    EXPECT_TRUE(t.ProtocolIDs().empty());
    EXPECT_EQ(t.h.Count("SELECT COUNT(*) FROM ProtocolExercise"), 0);
}

TEST(ProtocolStore, AFailedReplaceKeepsTheOldVersionWhole) {
    ProtocolHarness t;
    const int32_t old = t.Store("Knee", {0, 1});
    t.editor.Load();
    t.ChooseInEditor(old);
    tarvex::testing::RefuseWhen(t.h.Db(), "DELETE", "Protocol", "", "locked");
    t.Select({5, 6, 7});
    EXPECT_THROW(t.editor.SaveEditedProtocol(), DatabaseFault);
    EXPECT_EQ(t.ProtocolIDs(), std::vector<int32_t>({old}));
    EXPECT_EQ(t.Rows(old), Rows({{0, t.Id(0)}, {1, t.Id(1)}}));
}

TEST(ProtocolStore, NamesOfEveryKindAreStoredAndReadBackExactly) {
    ProtocolHarness t;
    const QStringList names = {"Child's pose \"easy\"", "100% effort; DROP TABLE Protocol;--",
                               "Zoë 李 💪 Ankle", QString(10000, u'x'), "  spaced  "};
    for (const QString& name : names)
        t.Store(name, {0});
    t.editor.Load();
    QStringList shown = t.cbo.items.mid(1);
    QStringList expected = names;
    std::sort(shown.begin(), shown.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(shown, expected);
    // The edit of each keeps its name exactly.
    for (int32_t id : t.ProtocolIDs()) {
        const QString name = t.NameOf(id);
        t.ChooseInEditor(id);
        t.editor.SaveEditedProtocol();
        EXPECT_EQ(t.NameOf(t.LastProtocolID()), name);
    }
}
