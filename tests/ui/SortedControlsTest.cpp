// The list and tree adapters in the roles the filter lists and the picklist tree give them.

#include "data/Databases.h"
#include "exercise/LibraryCache.h"
#include "exercise/LibraryFilter.h"
#include "fakes/FakeControls.h"
#include "picklist/PicklistStore.h"
#include "support/TestFolder.h"
#include "ui/QtControls.h"

#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

class QuietHost : public IFilterHost {
public:
    void SetBusy(bool) override {}
    void Yield() override { QCoreApplication::processEvents(); }
    void SizeSourcePane() override {}
    void LoadPictsInSight() override {}
};

} // namespace

TEST(QtListBox, ASortedListPutsEachEntryInPlace) {
    QListWidget widget;
    QtListBox list(&widget);
    list.SetSorted(true);
    for (const char* t : {"Knee", "(All)", "ankle", "Hip", "Elbow"})
        list.AddItem(t);
    QStringList items;
    for (int i = 0; i < list.ListCount(); ++i)
        items << list.List(i);
    EXPECT_EQ(items, QStringList({"(All)", "ankle", "Elbow", "Hip", "Knee"}));
}

TEST(QtListBox, AnUnsortedListKeepsTheOrderOfAddition) {
    QListWidget widget;
    QtListBox list(&widget);
    for (const char* t : {"Knee", "(All)", "Ankle"})
        list.AddItem(t);
    EXPECT_FALSE(list.Sorted());
    EXPECT_EQ(list.List(0), "Knee");
    EXPECT_EQ(list.List(2), "Ankle");
}

TEST(QtListBox, ChangesInCodeRaiseNoSelectionSignalButTheUsersDo) {
    QListWidget widget;
    widget.setSelectionMode(QAbstractItemView::ExtendedSelection);
    QtListBox list(&widget);
    for (const char* t : {"(All)", "Ankle", "Knee"})
        list.AddItem(t);
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    QSignalSpy spy(&widget, &QListWidget::itemSelectionChanged);
    list.SetSelected(0, true);
    EXPECT_TRUE(list.Selected(0));
    list.Clear();
    list.AddItem("Hip");
    EXPECT_EQ(spy.count(), 0);

    QTest::mouseClick(widget.viewport(), Qt::LeftButton, {},
                      widget.visualItemRect(widget.item(0)).center());
    EXPECT_EQ(spy.count(), 1);
    EXPECT_TRUE(list.Selected(0));
}

TEST(QtListBox, TheFilterListsWorkOverListWidgets) {
    tarvex::testing::TestFolder folder;
    OpenDatabases(folder.state);
    LoadLibraryCache(folder.state);
    QListWidget jointWidget, motionWidget, typeWidget;
    jointWidget.setProperty("tag", "Joint");
    motionWidget.setProperty("tag", "Motion");
    typeWidget.setProperty("tag", "Type");
    QtListBox joint(&jointWidget), motion(&motionWidget), type(&typeWidget);
    joint.SetSorted(true);
    QuietHost host;
    LibraryFilter filter(folder.state, {&joint, &motion, &type}, host);
    filter.InitListBoxes();
    ASSERT_GT(joint.ListCount(), 2);
    EXPECT_EQ(joint.List(0), "(All)");
    for (int i = 2; i < joint.ListCount(); ++i)
        EXPECT_FALSE(SortsBefore(joint.List(i), joint.List(i - 1)));
    EXPECT_TRUE(joint.Selected(0));
    EXPECT_TRUE(motion.Selected(0));
    EXPECT_TRUE(type.Selected(0));

    joint.SetSelected(0, false);
    joint.SetSelected(1, true);
    filter.ViewListClick(0);
    EXPECT_EQ(folder.state.Dbs.Library.Filter(),
              "(Joint LIKE '*" + joint.List(1).replace("'", "''") + "*')");
    EXPECT_GT(folder.state.Library.NumChoices, 0);
}

TEST(QtTree, SortedChildrenKeepTheirOrderAsNodesArrive) {
    QTreeWidget widget;
    QtTree tree(&widget);
    tree.AddNode("", "Picklist", "Picklist");
    tree.AddNode("Picklist", "Usage", "Usage");
    tree.AddNode("Picklist", "Provider", "Provider");
    tree.AddNode("Usage", "B2", "Twice a day");
    tree.AddNode("Usage", "B1", "At bedtime");
    EXPECT_EQ(tree.ChildKeys("Picklist"), QStringList({"Usage", "Provider"}));
    tree.SetChildrenSorted("Picklist");
    EXPECT_EQ(tree.ChildKeys("Picklist"), QStringList({"Provider", "Usage"}));
    tree.AddNode("Picklist", "Amenities", "Amenities");
    EXPECT_EQ(tree.ChildKeys("Picklist"), QStringList({"Amenities", "Provider", "Usage"}));
    // The entries keep the order in which they came.
    EXPECT_EQ(tree.ChildKeys("Usage"), QStringList({"B2", "B1"}));
    EXPECT_EQ(tree.NodeText("B1"), "At bedtime");
}

TEST(QtTree, ThePicklistStoreRoundTripsThroughATreeWidget) {
    tarvex::testing::TestFolder folder;
    OpenDatabases(folder.state);
    QTreeWidget widget;
    QtTree tree(&widget);
    LoadPicklistTree(folder.state, tree);
    EXPECT_EQ(widget.topLevelItemCount(), 1);
    const QStringList lists = tree.ChildKeys("Picklist");
    ASSERT_TRUE(lists.contains("Provider"));
    ASSERT_TRUE(lists.contains("Usage"));

    tarvex::fakes::FakeComboBox before(false, "Usage");
    LoadComboBox(folder.state, before);
    tree.AddNode("Usage", "new", "Before meals");
    SavePicklistTree(folder.state, tree);
    tarvex::fakes::FakeComboBox after(false, "Usage");
    LoadComboBox(folder.state, after);
    EXPECT_EQ(after.items, before.items + QStringList({"Before meals"}));
}
