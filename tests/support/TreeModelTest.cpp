#include "support/TreeModel.h"

#include "support/Fault.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// A model under Qt's model tester, which checks every change against the rules of item
// models and fails the test at the first breach.
struct Checked {
    Checked() : tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal) {
        model.AddNode("", "root", "Picklist");
        model.AddNode("root", "Usage", "Usage");
        model.AddNode("root", "Provider", "Provider");
        model.AddNode("Usage", "B7", "Twice a day");
        model.AddNode("Usage", "B3", "at bedtime");
    }
    QStringList Texts(const QString& key) const {
        QStringList texts;
        for (const QString& child : model.ChildKeys(key))
            texts << model.NodeText(child);
        return texts;
    }
    TreeModel model;
    QAbstractItemModelTester tester;
};

} // namespace

TEST(TreeModel, ShowsTheNodesAsRowsUnderTheirParents) {
    Checked t;
    EXPECT_EQ(t.model.rowCount(), 1);
    const QModelIndex root = t.model.index(0, 0);
    EXPECT_EQ(root.data().toString(), "Picklist");
    EXPECT_EQ(t.model.rowCount(root), 2);
    const QModelIndex usage = t.model.index(0, 0, root);
    EXPECT_EQ(usage.data(TreeModel::kKeyRole).toString(), "Usage");
    EXPECT_EQ(t.model.parent(usage), root);
    EXPECT_EQ(t.model.index(1, 0, usage).data().toString(), "at bedtime");
    EXPECT_EQ(t.model.IndexOf("B3"), t.model.index(1, 0, usage));
}

TEST(TreeModel, IndicesFollowTheOrderOfAdditionAndCloseUpAfterARemoval) {
    Checked t;
    EXPECT_EQ(t.model.NodeCount(), 5);
    EXPECT_EQ(t.model.NodeKey(2), "Provider");
    EXPECT_EQ(t.model.NodeKey(4), "B3");
    t.model.RemoveNode("Usage"); // and its two entries
    EXPECT_EQ(t.model.NodeCount(), 2);
    EXPECT_EQ(t.model.NodeKey(1), "Provider");
    EXPECT_FALSE(t.model.HasNode("B7"));
    EXPECT_THROW(t.model.NodeKey(2), BoundsFault);
}

TEST(TreeModel, ASortedParentKeepsItsChildrenInOrderAsTheyArriveAndAreRenamed) {
    Checked t;
    const QPersistentModelIndex kept = t.model.IndexOf("B7");
    t.model.SetChildrenSorted("Usage");
    EXPECT_EQ(t.Texts("Usage"), QStringList({"at bedtime", "Twice a day"}));
    EXPECT_EQ(QModelIndex(kept), t.model.IndexOf("B7")); // persistent indices follow
    t.model.AddNode("Usage", "n1", "Once a day");
    EXPECT_EQ(t.Texts("Usage"), QStringList({"at bedtime", "Once a day", "Twice a day"}));
    t.model.AddNodeAfter("B3", "n2", "With meals"); // in a sorted parent: in its place
    EXPECT_EQ(t.Texts("Usage").last(), "With meals");
    t.model.SetNodeText("n2", "After meals");
    EXPECT_EQ(t.Texts("Usage"),
              QStringList({"After meals", "at bedtime", "Once a day", "Twice a day"}));
    t.model.SetNodeText("n2", "Zzz");
    EXPECT_EQ(t.Texts("Usage").last(), "Zzz");
}

TEST(TreeModel, AnUnsortedParentTakesANodeRightAfterItsSibling) {
    Checked t;
    t.model.AddNodeAfter("B7", "n1", "Enter Name");
    EXPECT_EQ(t.Texts("Usage"), QStringList({"Twice a day", "Enter Name", "at bedtime"}));
    EXPECT_EQ(t.model.NodeKey(5), "n1");
}

TEST(TreeModel, KeysAreUniqueAndAMissingParentIsAFault) {
    Checked t;
    EXPECT_THROW(t.model.AddNode("Usage", "B7", "again"), Fault);
    EXPECT_THROW(t.model.AddNode("nowhere", "x", "x"), Fault);
    EXPECT_EQ(t.model.NodeCount(), 5);
}

TEST(TreeModel, SelectionAndExpansionAreAskedOfTheView) {
    Checked t;
    QSignalSpy select(&t.model, &TreeModel::SelectRequested);
    QSignalSpy expand(&t.model, &TreeModel::ExpandRequested);
    t.model.SelectNode("B3");
    t.model.ExpandNode("Usage");
    EXPECT_EQ(t.model.SelectedKey(), "B3");
    ASSERT_EQ(select.count(), 1);
    EXPECT_EQ(select[0][0].value<QModelIndex>(), t.model.IndexOf("B3"));
    ASSERT_EQ(expand.count(), 1);
    t.model.RemoveNode("B3");
    EXPECT_EQ(t.model.SelectedKey(), "");
}

TEST(TreeModel, LabelEditsAskTheLogicBeforeAndAfter) {
    Checked t;
    t.model.BeforeLabelEdit = [](const QString& key) { return key.startsWith('B'); };
    t.model.AfterLabelEdit = [](const QString&, const QString& text) -> std::optional<QString> {
        if (text.isEmpty())
            return std::nullopt;
        return text.left(5);
    };
    EXPECT_FALSE(t.model.flags(t.model.IndexOf("Usage")) & Qt::ItemIsEditable);
    const QModelIndex entry = t.model.IndexOf("B7");
    EXPECT_TRUE(t.model.flags(entry) & Qt::ItemIsEditable);
    EXPECT_TRUE(t.model.setData(entry, "Three times a day"));
    EXPECT_EQ(t.model.NodeText("B7"), "Three");
    EXPECT_FALSE(t.model.setData(t.model.IndexOf("B7"), ""));
    EXPECT_EQ(t.model.NodeText("B7"), "Three");
}

TEST(TreeModel, ImagesAreShownByTheirKeys) {
    Checked t;
    QImage red(4, 4, QImage::Format_RGB32);
    red.fill(Qt::red);
    t.model.SetImages({{"open", QIcon(QPixmap::fromImage(red))}});
    t.model.SetNodeImage("Usage", "open");
    EXPECT_EQ(t.model.data(t.model.IndexOf("Usage"), TreeModel::kImageRole).toString(), "open");
    EXPECT_FALSE(t.model.data(t.model.IndexOf("Usage"), Qt::DecorationRole).isNull());
    EXPECT_TRUE(t.model.data(t.model.IndexOf("Provider"), Qt::DecorationRole).isNull());
}

TEST(TreeModel, ClearEmptiesTheModel) {
    Checked t;
    t.model.Clear();
    EXPECT_EQ(t.model.rowCount(), 0);
    EXPECT_EQ(t.model.NodeCount(), 0);
    EXPECT_FALSE(t.model.HasNode("Usage"));
}
