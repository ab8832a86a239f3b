#include "picklist/PicklistStore.h"

#include "data/Databases.h"
#include "data/Server.h"
#include "data/Sql.h"
#include "fakes/FakeControls.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::TestFolder;

namespace {

using Lists = std::vector<std::pair<QString, QStringList>>;

const Lists kClinicLists = {
    {"Provider", {"Dr. Jane Smith, PT", "Mark Lee, PTA", "Ann O'Neil, PT"}},
    {"Usage", {"Twice a day", "Once a day", "At bedtime"}},
};

// The picklist store of a fresh folder, replaced by the given lists, and opened.
struct PicklistHarness {
    explicit PicklistHarness(const Lists& lists = kClinicLists) {
        folder.WithDatabase("Picklist.MDB", [&lists](QSqlDatabase& db) {
            Execute(db, "DELETE * FROM Label");
            for (const auto& [name, entries] : lists) {
                const qint64 id = InsertRow(db, "Label", {{"Name", name}});
                for (const QString& entry : entries)
                    InsertRow(db, "Level1", {{"LabelID", id}, {"Name", entry}});
            }
        });
        OpenDatabases(folder.state);
    }

    QSqlDatabase& Db() { return folder.state.Dbs.PicklistDb; }

    // What a combo bound to the list shows.
    QStringList Combo(const QString& tag) {
        FakeComboBox combo(false, tag);
        LoadComboBox(folder.state, combo);
        return combo.items;
    }

    // The texts of the entries under each list node of a tree, list by list.
    static QMap<QString, QStringList> Texts(const ITree& tree) {
        QMap<QString, QStringList> texts;
        for (const QString& list : tree.ChildKeys("Picklist")) {
            QStringList entries;
            for (const QString& entry : tree.ChildKeys(list))
                entries << tree.NodeText(entry);
            texts.insert(tree.NodeText(list), entries);
        }
        return texts;
    }

    QList<QVariantList> Rows(const QString& sql) {
        QList<QVariantList> rows;
        QSqlQuery q = OpenQuery(Db(), sql);
        while (q.next()) {
            QVariantList row;
            for (int c = 0; c < q.record().count(); ++c)
                row << q.value(c);
            rows << row;
        }
        return rows;
    }

    TestFolder folder;
};

} // namespace

// --- combo boxes

TEST(LoadComboBox, FillsTheProviderComboFromTheListNamedByItsTag) {
    PicklistHarness h;
    EXPECT_EQ(h.Combo("Provider"),
              QStringList({"Dr. Jane Smith, PT", "Mark Lee, PTA", "Ann O'Neil, PT"}));
}

TEST(LoadComboBox, FillsTheUsageComboInTheOrderOfTheDatabase) {
    PicklistHarness h;
    EXPECT_EQ(h.Combo("Usage"), QStringList({"Twice a day", "Once a day", "At bedtime"}));
}

TEST(LoadComboBox, DiscardsWhatTheComboHeldButKeepsItsText) {
    PicklistHarness h;
    FakeComboBox combo(false, "Usage");
    combo.items = {"Stale", "Entries"};
    combo.text = "Every morning";
    LoadComboBox(h.folder.state, combo);
    EXPECT_EQ(combo.items, QStringList({"Twice a day", "Once a day", "At bedtime"}));
    EXPECT_EQ(combo.text, "Every morning");
}

TEST(LoadComboBox, AListWithNoEntriesGivesAnEmptyCombo) {
    PicklistHarness h({{"Provider", {}}, {"Usage", {"Once a day"}}});
    FakeComboBox combo(false, "Provider");
    combo.items = {"Left over"};
    LoadComboBox(h.folder.state, combo);
    EXPECT_TRUE(combo.items.isEmpty());
}

TEST(LoadComboBox, ATagThatNamesNoListGivesAnEmptyCombo) {
    PicklistHarness h;
    EXPECT_TRUE(h.Combo("Therapist").isEmpty());
    EXPECT_TRUE(h.Combo("").isEmpty());
}

TEST(LoadComboBox, ANameWithAnApostropheFindsItsList) {
    PicklistHarness h({{"Provider", {"A"}}, {"Doctor's orders", {"Rest", "Ice"}}});
    EXPECT_EQ(h.Combo("Doctor's orders"), QStringList({"Rest", "Ice"}));
}

TEST(LoadComboBox, AnEntryWithoutNameIsAFault) {
    PicklistHarness h;
    Execute(h.Db(), "UPDATE Level1 SET Name = NULL WHERE Name = 'Once a day'");
    FakeComboBox combo(false, "Usage");
    EXPECT_THROW(LoadComboBox(h.folder.state, combo), TypeFault);
}

// --- the tree

TEST(LoadPicklistTree, BuildsRootListsAndEntries) {
    PicklistHarness h;
    FakeTree tree;
    tree.AddNode("", "old", "Left over");
    LoadPicklistTree(h.folder.state, tree);
    EXPECT_EQ(tree.NodeText("old"), "");
    EXPECT_EQ(tree.NodeKey(0), "Picklist");
    EXPECT_EQ(tree.NodeText("Picklist"), "Picklist");
    EXPECT_EQ(tree.ParentKey("Picklist"), "");
    EXPECT_EQ(tree.ChildKeys("Picklist"), QStringList({"Provider", "Usage"}));
    EXPECT_EQ(tree.NodeText("Provider"), "Provider");

    QStringList keys;
    for (const QVariantList& row : h.Rows("SELECT Level1.ID FROM Level1 INNER JOIN Label ON "
                                          "Label.ID = Level1.LabelID WHERE Label.Name = "
                                          "'Usage' ORDER BY Level1.ID"))
        keys << "B" + row[0].toString();
    EXPECT_EQ(tree.ChildKeys("Usage"), keys);
    EXPECT_EQ(tree.NodeText(keys[0]), "Twice a day");
    EXPECT_EQ(PicklistHarness::Texts(tree)["Provider"],
              QStringList({"Dr. Jane Smith, PT", "Mark Lee, PTA", "Ann O'Neil, PT"}));
    EXPECT_EQ(tree.NodeCount(), 1 + 2 + 6);
}

TEST(LoadPicklistTree, TheTreeSortsTheListsButNotTheEntries) {
    PicklistHarness h({{"Usage", {"b", "a"}}, {"Provider", {"Z", "Y"}}, {"Amenities", {"Pool"}}});
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    EXPECT_EQ(tree.ChildKeys("Picklist"), QStringList({"Amenities", "Provider", "Usage"}));
    // The lists stay sorted as nodes arrive; the entries keep the order they came in.
    tree.AddNode("Picklist", "Body parts", "Body parts");
    EXPECT_EQ(tree.ChildKeys("Picklist"),
              QStringList({"Amenities", "Body parts", "Provider", "Usage"}));
    EXPECT_EQ(PicklistHarness::Texts(tree)["Usage"], QStringList({"b", "a"}));
}

TEST(SavePicklistTree, RoundTripKeepsListsAndEntries) {
    PicklistHarness h;
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    const auto before = PicklistHarness::Texts(tree);
    SavePicklistTree(h.folder.state, tree);

    FakeTree again;
    LoadPicklistTree(h.folder.state, again);
    EXPECT_EQ(PicklistHarness::Texts(again), before);
    EXPECT_EQ(h.Combo("Provider"), before["Provider"]);
    EXPECT_EQ(h.Combo("Usage"), before["Usage"]);
}

TEST(SavePicklistTree, WritesTheEditedTreeInItsOrder) {
    PicklistHarness h;
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    const QString mark = tree.ChildKeys("Provider")[1];
    tree.RemoveNode(mark);
    tree.AddNode("Provider", "new1", "Enter Name");
    tree.AddNode("Usage", "new2", "Every hour");
    for (const QString& entry : tree.ChildKeys("Usage"))
        if (tree.NodeText(entry) == "Once a day")
            tree.SetNodeText(entry, "Once daily");
    SavePicklistTree(h.folder.state, tree);
    EXPECT_EQ(h.Combo("Provider"),
              QStringList({"Dr. Jane Smith, PT", "Ann O'Neil, PT", "Enter Name"}));
    EXPECT_EQ(h.Combo("Usage"),
              QStringList({"Twice a day", "Once daily", "At bedtime", "Every hour"}));
}

TEST(SavePicklistTree, TheNodeIndicesBecomeTheRowNumbers) {
    PicklistHarness h;
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    SavePicklistTree(h.folder.state, tree);
    // Root 1, the lists 2 and 3, then the entries in the order in which they were added.
    EXPECT_EQ(h.Rows("SELECT ID, Name FROM Label ORDER BY ID"),
              QList<QVariantList>({{2, "Provider"}, {3, "Usage"}}));
    const auto entries = h.Rows("SELECT ID, LabelID FROM Level1 ORDER BY ID");
    ASSERT_EQ(entries.size(), 6);
    const QHash<QString, int> indices = NodeIndices(tree);
    for (const QVariantList& row : entries) {
        const int id = row[0].toInt();
        EXPECT_GE(id, 4);
        EXPECT_EQ(indices.value(tree.ParentKey(tree.NodeKey(id - 1))), row[1].toInt());
    }
}

TEST(SavePicklistTree, AListWithNoEntriesIsKept) {
    PicklistHarness h({{"Provider", {}}, {"Usage", {"Once a day"}}});
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    SavePicklistTree(h.folder.state, tree);
    EXPECT_EQ(h.Rows("SELECT Name FROM Label ORDER BY Name"),
              QList<QVariantList>({{"Provider"}, {"Usage"}}));
    EXPECT_TRUE(h.Combo("Provider").isEmpty());
    FakeTree again;
    LoadPicklistTree(h.folder.state, again);
    EXPECT_EQ(again.ChildKeys("Picklist"), QStringList({"Provider", "Usage"}));
}

TEST(SavePicklistTree, TwoEntriesWithTheSameTextAreBothKept) {
    PicklistHarness h;
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    tree.AddNode("Usage", "n1", "Once a day");
    SavePicklistTree(h.folder.state, tree);
    EXPECT_EQ(h.Combo("Usage"),
              QStringList({"Twice a day", "Once a day", "At bedtime", "Once a day"}));
}

TEST(SavePicklistTree, AFailureInTheMiddleLeavesTheOldPicklists) {
    PicklistHarness h;
    tarvex::testing::RefuseWhen(h.Db(), "INSERT", "Level1", "NEW.Name = 'Refused'", "refused");
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    tree.AddNode("Provider", "n1", "New therapist");
    tree.AddNode("Usage", "n2", "Refused");
    EXPECT_THROW(SavePicklistTree(h.folder.state, tree), DatabaseFault);
    EXPECT_EQ(h.Combo("Provider"),
              QStringList({"Dr. Jane Smith, PT", "Mark Lee, PTA", "Ann O'Neil, PT"}));
    EXPECT_EQ(h.Combo("Usage"), QStringList({"Twice a day", "Once a day", "At bedtime"}));
    // The store stays usable: the next save goes through.
    tree.RemoveNode("n2");
    SavePicklistTree(h.folder.state, tree);
    EXPECT_EQ(h.Combo("Provider").last(), "New therapist");
}

TEST(SavePicklistTree, OnTheServerItWaitsForAnotherWorkstationsWriteAndThenWritesTheWholeTree) {
    if (!tarvex::testing::OnTestServer())
        GTEST_SKIP() << "one workstation's file has one writer";
    PicklistHarness h;
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    const auto saved = PicklistHarness::Texts(tree);

    // Another workstation is in the middle of writing a list of its own.
    std::atomic<bool> holding{false}, committed{false};
    std::thread other([&] {
        QSqlDatabase db =
            OpenServerStore(h.folder.state.Dbs.Choice.Server, Store::Picklist, "other-workstation");
        {
            Transaction t(db);
            InsertRow(db, "Label", {{"Name", "Other desk"}});
            holding = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(600));
            committed = true; // set before the commit: the save must not end before it
            t.Commit();
        }
        CloseConnection(db);
    });
    while (!holding)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    SavePicklistTree(h.folder.state, tree);
    EXPECT_TRUE(committed) << "the save waited for the other workstation's write";
    other.join();

    FakeTree again;
    LoadPicklistTree(h.folder.state, again);
    EXPECT_EQ(PicklistHarness::Texts(again), saved) << "the whole tree, and nothing else";
}

TEST(SavePicklistTree, ATreeWithoutListsCannotBeSavedAndTheStoreStays) {
    PicklistHarness h;
    FakeTree tree;
    tree.AddNode("", "Picklist", "Picklist");
    EXPECT_THROW(SavePicklistTree(h.folder.state, tree), Fault);
    EXPECT_EQ(h.Rows("SELECT COUNT(*) FROM Label"), QList<QVariantList>({{2}}));
    EXPECT_EQ(h.Combo("Usage").size(), 3);
}

TEST(SaveLevel1, WritesTheChildrenOfOneListNode) {
    PicklistHarness h({{"Provider", {"A", "B"}}});
    FakeTree tree;
    LoadPicklistTree(h.folder.state, tree);
    Execute(h.Db(), "DELETE * FROM Label");
    InsertRow(h.Db(), "Label", {{"ID", 2}, {"Name", "Provider"}});
    SaveLevel1(h.folder.state, tree, 2);
    EXPECT_EQ(h.Rows("SELECT LabelID, ID, Name FROM Level1 ORDER BY ID"),
              QList<QVariantList>({{2, 3, "A"}, {2, 4, "B"}}));
    EXPECT_THROW(SaveLevel1(h.folder.state, tree, 9), BoundsFault);
    EXPECT_THROW(SaveLevel1(h.folder.state, tree, 0), BoundsFault);
}

TEST(PicklistStore, TheDeliveredStoreHasTheProviderAndUsageLists) {
    TestFolder folder;
    OpenDatabases(folder.state);
    FakeTree tree;
    LoadPicklistTree(folder.state, tree);
    const QStringList lists = tree.ChildKeys("Picklist");
    EXPECT_TRUE(lists.contains("Provider"));
    EXPECT_TRUE(lists.contains("Usage"));
    FakeComboBox usage(false, "Usage");
    LoadComboBox(folder.state, usage);
    EXPECT_EQ(usage.items.size(), tree.ChildKeys("Usage").size());
    SavePicklistTree(folder.state, tree);
    FakeComboBox again(false, "Usage");
    LoadComboBox(folder.state, again);
    EXPECT_EQ(again.items, usage.items);
}
