#include "protocol/ProtocolHarness.h"

#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::ProtocolHarness;

TEST(ProtocolSelection, TheWorkspacesProtocolCommandHidesItAndOpensTheSelection) {
    ProtocolHarness t;
    t.workspace.cmdProtocol();
    EXPECT_TRUE(t.view.hidden);
    EXPECT_EQ(t.view.protocolOpened, 1);
}

TEST(ProtocolSelection, LoadListsTheProtocolsAndLeavesTheToolbarAlone) {
    ProtocolHarness t;
    const int32_t id = t.Store("Neck", {0, 1});
    t.h.shell.shell.UpdateToolbar(ToolbarMode::PrintOnly);
    t.selection.Load();
    EXPECT_EQ(t.selCbo.items, QStringList({"(None Selected)", "Neck"}));
    EXPECT_EQ(t.selCbo.data, std::vector<int32_t>({0, id}));
    EXPECT_EQ(t.h.shell.shell.ToolbarMode(), ToolbarMode::PrintOnly);
    t.ChooseInSelection(id);
    EXPECT_EQ(t.selLst.ListCount(), 2);
}

TEST(ProtocolSelection, OkReplacesTheListAtOnceWithoutMarkingTheProgramModified) {
    ProtocolHarness t;
    const int32_t id = t.Store("Shoulder", {4, 5, 6});
    t.Select({10, 11});
    t.P().Modified = false;
    t.selection.Load();
    t.ChooseInSelection(id);
    t.view.hidden = true;
    EXPECT_TRUE(t.selection.cmdOKCancel("OK"));
    EXPECT_EQ(t.shownAgain, 1);
    EXPECT_FALSE(t.view.hidden);
    EXPECT_EQ(t.Order(), std::vector<int>({t.Id(4), t.Id(5), t.Id(6)}));
    EXPECT_FALSE(t.P().Modified);
    EXPECT_TRUE(t.view.slotList[2].filled);
}

TEST(ProtocolSelection, AShorterProtocolClearsTheSurplusSlots) {
    ProtocolHarness t;
    const int32_t id = t.Store("Two", {1, 2});
    for (int i = 0; i < 6; ++i)
        t.workspace.DropSelectedEx(static_cast<int16_t>(i), {DragKind::SrcIm, i + 10});
    ASSERT_TRUE(t.view.slotList[5].filled);
    t.selection.Load();
    t.ChooseInSelection(id);
    t.selection.cmdOKCancel("OK");
    EXPECT_EQ(t.P().NumExercises, 2);
    for (int i = 2; i < 20; ++i)
        EXPECT_FALSE(t.view.slotList[static_cast<size_t>(i)].filled) << i;
    EXPECT_TRUE(t.view.slotList[1].filled);
}

TEST(ProtocolSelection, OkWithNoneSelectedEmptiesTheList) {
    ProtocolHarness t;
    t.Store("Any", {1});
    t.Select({3, 4, 5});
    t.selection.Load();
    t.selection.cmdOKCancel("OK");
    EXPECT_EQ(t.P().NumExercises, 0);
    EXPECT_FALSE(t.view.slotList[0].filled);
}

TEST(ProtocolSelection, CancelLeavesTheListAsItWas) {
    ProtocolHarness t;
    const int32_t id = t.Store("Any", {1});
    t.Select({3, 4, 5});
    t.selection.Load();
    t.ChooseInSelection(id);
    t.view.hidden = true;
    EXPECT_TRUE(t.selection.cmdOKCancel("Cancel"));
    EXPECT_FALSE(t.view.hidden);
    EXPECT_EQ(t.Order(), std::vector<int>({t.Id(3), t.Id(4), t.Id(5)}));
    EXPECT_FALSE(t.selection.cmdOKCancel("Other"));
}

TEST(ProtocolSelection, TheWorkspacesFilterIsNotAffected) {
    ProtocolHarness t;
    const int32_t id = t.Store("Filtered", {0, 1});
    t.State().Dbs.Library.SetFilter("(Joint LIKE '*Knee*')");
    LoadLibraryCache(t.State());
    const int choices = t.State().Library.NumChoices;
    const QString filter = t.State().Dbs.Library.Filter();
    t.selection.Load();
    t.ChooseInSelection(id);
    t.selection.cmdOKCancel("OK");
    EXPECT_EQ(t.State().Library.NumChoices, choices);
    EXPECT_EQ(t.State().Dbs.Library.Filter(), filter);
}

TEST(ProtocolSelection, AProtocolWhosePicturesAreMissingLaysInWithEmptyPictures) {
    ProtocolHarness t;
    const int32_t id = t.Store("Lost pictures", {0, 1});
    Execute(t.h.Db(), "UPDATE ProtocolExercise SET Icon = 'gone.JPG', Picture0 = 'gone_1.JPG'");
    t.selection.Load();
    t.ChooseInSelection(id);
    t.selection.cmdOKCancel("OK"); // no box: a missing picture is left empty
    EXPECT_EQ(t.P().NumExercises, 2);
    EXPECT_TRUE(t.view.slotList[0].filled);
    EXPECT_TRUE(t.view.slotList[0].icon.endsWith("gone.JPG"));
    EXPECT_TRUE(t.h.prompter.boxes.empty());
}
