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
