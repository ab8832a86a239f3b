#include "picklist/PicklistEditorLogic.h"

#include "data/Databases.h"
#include "data/Sql.h"
#include "fakes/FakeControls.h"
#include "picklist/PicklistStore.h"
#include "support/TestFolder.h"
#include "support/TreeModel.h"

#include <QAbstractItemModelTester>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::TestFolder;

namespace {

// The editor's logic over the real tree model (checked by Qt's model tester all along)
// and a status bar in memory, on the delivered picklists replaced by known ones.
struct Editor {
    Editor()
        : tester(&tree, QAbstractItemModelTester::FailureReportingMode::Fatal),
          logic(folder.state, tree, status) {
        folder.WithDatabase("Picklist.MDB", [](QSqlDatabase& db) {
            Execute(db, "DELETE * FROM Label");
            const qint64 provider = InsertRow(db, "Label", {{"Name", "Provider"}});
            const qint64 usage = InsertRow(db, "Label", {{"Name", "Usage"}});
            for (const char* name : {"Dr. Jane Smith, PT", "Mark Lee, PTA"})
                InsertRow(db, "Level1", {{"LabelID", provider}, {"Name", name}});
            for (const char* name : {"Twice a day", "Once a day"})
                InsertRow(db, "Level1", {{"LabelID", usage}, {"Name", name}});
        });
        OpenDatabases(folder.state);
        // The window hands the model's label edits to the logic.
        tree.BeforeLabelEdit = [this](const QString& key) {
            return logic.tvwDB_BeforeLabelEdit(key);
        };
        tree.AfterLabelEdit = [this](const QString&, const QString& text) {
            return logic.tvwDB_AfterLabelEdit(text);
        };
        logic.Load();
    }
    QString Entry(const QString& list, const QString& text) {
        for (const QString& key : tree.ChildKeys(list))
            if (tree.NodeText(key) == text)
                return key;
        throw std::runtime_error("no entry " + text.toStdString());
    }
    QStringList Texts(const QString& list) {
        QStringList texts;
        for (const QString& key : tree.ChildKeys(list))
            texts << tree.NodeText(key);
        return texts;
    }
    // The user clicks a node: it becomes the selected one and its click runs.
    void Click(const QString& key) {
        tree.SetSelectedKey(key);
        logic.tvwDB_NodeClick(key);
    }
    // The user edits a node's label as the view does: flags first, then the new text.
    bool Edit(const QString& key, const QString& text) {
        const QModelIndex index = tree.IndexOf(key);
        if (!(tree.flags(index) & Qt::ItemIsEditable))
            return false;
        return tree.setData(index, text);
    }
    QStringList Combo(const QString& tag) {
        FakeComboBox combo(false, tag);
        LoadComboBox(folder.state, combo);
        return combo.items;
    }

    TestFolder folder;
    TreeModel tree;
    QAbstractItemModelTester tester;
    FakeStatusBar status;
    PicklistEditorLogic logic;
};

} // namespace

TEST(PicklistEditor, LoadShowsTheStoreAsATreeWithTheRootOpenAndAnEmptyStatus) {
    Editor e;
    EXPECT_EQ(e.tree.ChildKeys("Picklist"), QStringList({"Provider", "Usage"}));
    EXPECT_EQ(e.Texts("Usage"), QStringList({"Twice a day", "Once a day"}));
    EXPECT_EQ(e.tree.data(e.tree.IndexOf("Picklist"), TreeModel::kImageRole), "open");
    EXPECT_EQ(e.tree.data(e.tree.IndexOf("Usage"), TreeModel::kImageRole), "closed");
    EXPECT_EQ(e.status.PanelText(0), "");
}

TEST(PicklistEditor, ChoosingANodeShowsItsFullPath) {
    Editor e;
    e.Click(e.Entry("Provider", "Mark Lee, PTA"));
    EXPECT_EQ(e.status.PanelText(0), "Picklist\\Provider\\Mark Lee, PTA");
    e.Click("Usage");
    EXPECT_EQ(e.status.PanelText(0), "Picklist\\Usage");
    e.Click("Picklist");
    EXPECT_EQ(e.status.PanelText(0), "Picklist");
}

TEST(PicklistEditor, OnlyEntriesAreEditable) {
    Editor e;
    EXPECT_FALSE(e.logic.EditablePicklist("Picklist"));
    EXPECT_FALSE(e.logic.EditablePicklist("Provider"));
    EXPECT_TRUE(e.logic.EditablePicklist(e.Entry("Provider", "Mark Lee, PTA")));
    EXPECT_FALSE(e.logic.EditablePicklist("no such node"));
}

TEST(PicklistEditor, ExpandingOpensANodeAndSortsItsChildrenCollapsingClosesIt) {
    Editor e;
    e.logic.tvwDB_Expand("Usage");
    EXPECT_EQ(e.Texts("Usage"), QStringList({"Once a day", "Twice a day"}));
    EXPECT_EQ(e.tree.data(e.tree.IndexOf("Usage"), TreeModel::kImageRole), "open");
    e.logic.tvwDB_Collapse("Usage");
    EXPECT_EQ(e.tree.data(e.tree.IndexOf("Usage"), TreeModel::kImageRole), "closed");
}

TEST(PicklistEditor, AddOnTheRootDoesNothingSoNoNewListCanBeMade) {
    Editor e;
    const int before = e.tree.NodeCount();
    e.Click("Picklist");
    e.logic.cmdAdd();
    EXPECT_EQ(e.tree.NodeCount(), before);
    EXPECT_EQ(e.tree.ChildKeys("Picklist"), QStringList({"Provider", "Usage"}));
}

TEST(PicklistEditor, AddOnAListAddsAChildAndOnAnEntryASiblingBothSelected) {
    Editor e;
    e.Click("Usage");
    e.logic.cmdAdd();
    EXPECT_EQ(e.Texts("Usage"), QStringList({"Twice a day", "Once a day", "Enter Name"}));
    const QString first = e.tree.SelectedKey();
    EXPECT_EQ(e.tree.NodeText(first), "Enter Name");
    e.Click(e.Entry("Usage", "Twice a day"));
    e.logic.cmdAdd();
    EXPECT_EQ(e.Texts("Usage"),
              QStringList({"Twice a day", "Enter Name", "Once a day", "Enter Name"}));
    EXPECT_NE(e.tree.SelectedKey(), first);
    EXPECT_EQ(e.tree.ParentKey(e.tree.SelectedKey()), "Usage");
}

TEST(PicklistEditor, ANodeSelectedByAddLeavesThePathOfTheNodeClickedLast) {
    Editor e;
    e.Click(e.Entry("Provider", "Mark Lee, PTA"));
    e.logic.cmdAdd();
    EXPECT_EQ(e.status.PanelText(0), "Picklist\\Provider\\Mark Lee, PTA");
    e.Click("Usage");
    e.logic.cmdAdd();
    EXPECT_EQ(e.status.PanelText(0), "Picklist\\Usage");
}

TEST(PicklistEditor, ANewEntryLeftAsEnterNameIsStoredSo) {
    Editor e;
    e.Click("Provider");
    e.logic.cmdAdd();
    EXPECT_TRUE(e.logic.cmdOKCancel("OK"));
    EXPECT_EQ(e.Combo("Provider"),
              QStringList({"Dr. Jane Smith, PT", "Mark Lee, PTA", "Enter Name"}));
}

TEST(PicklistEditor, RenamingAListOrTheRootIsRefused) {
    Editor e;
    e.Click("Provider");
    EXPECT_FALSE(e.Edit("Provider", "Therapists"));
    EXPECT_FALSE(e.Edit("Picklist", "Lists"));
    EXPECT_EQ(e.tree.NodeText("Provider"), "Provider");
    EXPECT_EQ(e.tree.NodeText("Picklist"), "Picklist");
}

TEST(PicklistEditor, AProviderNameIsCutTo40AndAnyOtherEntryTo20) {
    Editor e;
    const QString provider = e.Entry("Provider", "Mark Lee, PTA");
    e.Click(provider);
    EXPECT_TRUE(e.Edit(provider, QString(41, u'p')));
    EXPECT_EQ(e.tree.NodeText(provider), QString(40, u'p'));
    const QString usage = e.Entry("Usage", "Once a day");
    e.Click(usage);
    EXPECT_TRUE(e.Edit(usage, QString(21, u'u')));
    EXPECT_EQ(e.tree.NodeText(usage), QString(20, u'u'));
    EXPECT_TRUE(e.Edit(usage, QString(10000, u'z')));
    EXPECT_EQ(e.tree.NodeText(usage), QString(20, u'z'));
    // A cut never leaves half a character: nine emoji and a half become nine.
    EXPECT_TRUE(e.Edit(usage, "a" + QString("💪").repeated(5000)));
    EXPECT_EQ(e.tree.NodeText(usage), "a" + QString("💪").repeated(9));
}

TEST(PicklistEditor, TheCutGoesByThePathInTheStatusBarNotByTheNodeEdited) {
    Editor e;
    // An entry edited while the status bar still names a Provider entry takes the
    // Provider cut, whichever list it lies in.
    e.Click(e.Entry("Provider", "Mark Lee, PTA"));
    const QString usage = e.Entry("Usage", "Twice a day");
    e.tree.SetSelectedKey(usage);
    EXPECT_TRUE(e.Edit(usage, QString(30, u'u')));
    EXPECT_EQ(e.tree.NodeText(usage).size(), 30);
}

TEST(PicklistEditor, AnEmptyTextCancelsTheEdit) {
    Editor e;
    const QString entry = e.Entry("Usage", "Once a day");
    e.Click(entry);
    EXPECT_FALSE(e.Edit(entry, ""));
    EXPECT_EQ(e.tree.NodeText(entry), "Once a day");
}

TEST(PicklistEditor, DeleteRemovesAnEntryOnlyWithoutAWord) {
    Editor e;
    e.Click("Usage");
    e.logic.cmdDelete();
    e.Click("Picklist");
    e.logic.cmdDelete();
    EXPECT_EQ(e.tree.ChildKeys("Picklist"), QStringList({"Provider", "Usage"}));
    e.Click(e.Entry("Usage", "Once a day"));
    e.logic.cmdDelete();
    EXPECT_EQ(e.Texts("Usage"), QStringList({"Twice a day"}));
}

TEST(PicklistEditor, OkWritesTheWholeTreeAndCancelDropsEveryChange) {
    Editor e;
    const QString entry = e.Entry("Usage", "Once a day");
    e.Click(entry);
    e.Edit(entry, "Once daily");
    e.Click(e.Entry("Provider", "Mark Lee, PTA"));
    e.logic.cmdDelete();
    EXPECT_TRUE(e.logic.cmdOKCancel("Cancel"));
    EXPECT_EQ(e.Combo("Usage"), QStringList({"Twice a day", "Once a day"}));
    EXPECT_EQ(e.Combo("Provider"), QStringList({"Dr. Jane Smith, PT", "Mark Lee, PTA"}));
    EXPECT_TRUE(e.logic.cmdOKCancel("OK"));
    EXPECT_EQ(e.Combo("Usage"), QStringList({"Twice a day", "Once daily"}));
    EXPECT_EQ(e.Combo("Provider"), QStringList({"Dr. Jane Smith, PT"}));
    EXPECT_FALSE(e.logic.cmdOKCancel("Add"));
}

TEST(PicklistEditor, DuplicatesAndEmptyListsSurviveASaveAndAReload) {
    Editor e;
    for (const QString& entry : e.tree.ChildKeys("Provider")) {
        e.Click(entry);
        e.logic.cmdDelete();
    }
    e.Click(e.Entry("Usage", "Once a day"));
    e.logic.cmdAdd();
    e.Edit(e.tree.SelectedKey(), "Once a day");
    e.logic.cmdOKCancel("OK");
    TreeModel again;
    QAbstractItemModelTester tester(&again, QAbstractItemModelTester::FailureReportingMode::Fatal);
    LoadPicklistTree(e.folder.state, again);
    EXPECT_EQ(again.ChildKeys("Picklist"), QStringList({"Provider", "Usage"}));
    EXPECT_TRUE(again.ChildKeys("Provider").isEmpty());
    QStringList usage;
    for (const QString& key : again.ChildKeys("Usage"))
        usage << again.NodeText(key);
    EXPECT_EQ(usage, QStringList({"Twice a day", "Once a day", "Once a day"}));
}

TEST(PicklistEditor, EntriesOfEveryKindAreStoredAndReadBackExactly) {
    Editor e;
    const QStringList texts = {"Ann O'Neil, PT", "\"Doc\" 100%", "Zoë 李 💪", "Before meals"};
    e.Click("Provider");
    for (const QString& text : texts) {
        e.Click("Provider");
        e.logic.cmdAdd();
        EXPECT_TRUE(e.Edit(e.tree.SelectedKey(), text));
    }
    e.logic.cmdOKCancel("OK");
    EXPECT_EQ(e.Combo("Provider").mid(2), texts);
}
