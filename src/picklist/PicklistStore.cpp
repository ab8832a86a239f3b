#include "picklist/PicklistStore.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "shell/AppState.h"
#include "support/Controls.h"
#include "support/Fault.h"
#include "support/Numbers.h"

#include <QSqlQuery>

namespace tarvex {

namespace {

const char* const kComboSql = "SELECT Level1.Name FROM Label"
                              " INNER JOIN Level1 ON Label.ID = Level1.LabelID"
                              " WHERE Label.Name = ";
const char* const kListsSql = "SELECT * FROM Label";
const char* const kEntriesSql = "SELECT Level1.ID, Level1.Name, Label.Name AS lblname"
                                " FROM Label INNER JOIN Level1 ON Label.ID = Level1.LabelID";
const char* const kDeleteAllSql = "DELETE * FROM Label";

QString EntryKey(int32_t id) {
    return QStringLiteral("B") + QString::number(id);
}

void WriteEntries(QSqlDatabase& db, const ITree& tree, const QHash<QString, int>& indices,
                  int16_t parent) {
    if (parent < 1 || parent > tree.NodeCount())
        throw BoundsFault(QStringLiteral("Index out of bounds (node %1)").arg(parent));
    const QString parentKey = tree.NodeKey(parent - 1);
    PreparedInsert insert(
        db, QStringLiteral("Level1"),
        {QStringLiteral("LabelID"), QStringLiteral("ID"), QStringLiteral("Name")});
    for (const QString& child : tree.ChildKeys(parentKey))
        insert.Insert({parent, indices.value(child), tree.NodeText(child)});
}

} // namespace

QHash<QString, int> NodeIndices(const ITree& tree) {
    QHash<QString, int> indices;
    for (int i = 0; i < tree.NodeCount(); ++i)
        indices.insert(tree.NodeKey(i), i + 1);
    return indices;
}

void LoadComboBox(AppState& state, IComboBox& combo) {
    // The list's name is quoted, so that a name with an apostrophe finds its list.
    QSqlQuery rows =
        OpenQuery(state.Dbs.PicklistDb, QLatin1String(kComboSql) + SqlText(combo.Tag()));
    const QString text = combo.Text();
    combo.Clear();
    while (rows.next())
        combo.AddItem(RequiredText(rows.value(0), "Name"));
    if (combo.Text() != text)
        combo.SetText(text);
}

void LoadPicklistTree(AppState& state, ITree& tree) {
    QSqlDatabase& db = state.Dbs.PicklistDb;
    const QString root = QLatin1String(kPicklistRoot);
    tree.Clear();
    const QString closed = QStringLiteral("closed");
    tree.AddNode(QString(), root, root);
    tree.SetNodeImage(root, closed);
    tree.SetChildrenSorted(root);

    QSqlQuery lists = OpenQuery(db, QLatin1String(kListsSql));
    while (lists.next()) {
        const QString name = RequiredText(lists.value(QStringLiteral("Name")), "Name");
        tree.AddNode(root, name, name);
        tree.SetNodeImage(name, closed);
    }
    QSqlQuery entries = OpenQuery(db, QLatin1String(kEntriesSql));
    while (entries.next()) {
        const int32_t id = RequiredInt32(entries.value(0), "ID");
        tree.AddNode(RequiredText(entries.value(2), "lblname"), EntryKey(id),
                     RequiredText(entries.value(1), "Name"));
        tree.SetNodeImage(EntryKey(id), closed);
    }
}

void SavePicklistTree(AppState& state, const ITree& tree) {
    QSqlDatabase& db = state.Dbs.PicklistDb;
    const QHash<QString, int> indices = NodeIndices(tree);
    Transaction transaction(db);
    // The whole tree is written anew: another workstation's save of it waits for this one.
    LockTablesForWriting(db, {QStringLiteral("Label"), QStringLiteral("Level1")});
    Execute(db, QLatin1String(kDeleteAllSql)); // the entries go with their lists
    const QStringList lists = tree.ChildKeys(QLatin1String(kPicklistRoot));
    // The walk starts at the root's first child: without one there is nothing to walk.
    if (lists.isEmpty())
        throw Fault(QStringLiteral("Object variable or With block variable not set"));
    PreparedInsert insert(db, QStringLiteral("Label"),
                          {QStringLiteral("ID"), QStringLiteral("Name")});
    for (const QString& list : lists) {
        const int16_t index = ToInt16(indices.value(list));
        insert.Insert({index, tree.NodeText(list)});
        if (!tree.ChildKeys(list).isEmpty())
            WriteEntries(db, tree, indices, index);
    }
    transaction.Commit();
}

void SaveLevel1(AppState& state, const ITree& tree, int16_t parent) {
    WriteEntries(state.Dbs.PicklistDb, tree, NodeIndices(tree), parent);
}

} // namespace tarvex
