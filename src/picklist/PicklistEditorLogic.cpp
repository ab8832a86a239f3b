#include "picklist/PicklistEditorLogic.h"

#include "picklist/PicklistStore.h"

namespace tarvex {

namespace {

constexpr const char* kOpen = "open";
constexpr const char* kClosed = "closed";

} // namespace

PicklistEditorLogic::PicklistEditorLogic(AppState& state, ITree& tvwDB, IStatusBar& sbrDB)
    : state_(state), tree_(tvwDB), status_(sbrDB) {}

void PicklistEditorLogic::Load() {
    LoadPicklistTree(state_, tree_);
    tree_.ExpandNode(QLatin1String(kPicklistRoot));
    tvwDB_Expand(QLatin1String(kPicklistRoot));
    status_.SetPanelText(0, QString());
}

void PicklistEditorLogic::tvwDB_NodeClick(const QString& key) {
    status_.SetPanelText(0, FullPath(key));
}

void PicklistEditorLogic::tvwDB_Expand(const QString& key) {
    tree_.SetNodeImage(key, QLatin1String(kOpen));
    tree_.SetChildrenSorted(key);
}

void PicklistEditorLogic::tvwDB_Collapse(const QString& key) {
    tree_.SetNodeImage(key, QLatin1String(kClosed));
}

QString PicklistEditorLogic::NewKey() {
    // New entries get keys that no list name and no stored entry ("B" and a number) has.
    QString key;
    do
        key = QStringLiteral("+%1").arg(++added_);
    while (tree_.HasNode(key));
    return key;
}

void PicklistEditorLogic::cmdAdd() {
    const QString selected = tree_.SelectedKey();
    if (selected.isEmpty() || selected == QLatin1String(kPicklistRoot))
        return;
    const QString key = NewKey();
    const QString text = QLatin1String(kNewEntryText);
    if (EditablePicklist(selected))
        tree_.AddNodeAfter(selected, key, text);
    else
        tree_.AddNode(selected, key, text);
    tree_.SetNodeImage(key, QLatin1String(kClosed));
    tree_.SelectNode(key);
}

void PicklistEditorLogic::cmdDelete() {
    const QString selected = tree_.SelectedKey();
    if (EditablePicklist(selected))
        tree_.RemoveNode(selected);
}

bool PicklistEditorLogic::tvwDB_BeforeLabelEdit(const QString& key) const {
    return EditablePicklist(key);
}

std::optional<QString> PicklistEditorLogic::tvwDB_AfterLabelEdit(const QString& newText) const {
    if (newText.isEmpty())
        return std::nullopt;
    // The cut goes by the path that the status bar shows: the node last clicked.
    const bool provider = status_.PanelText(0).left(17) == QLatin1String(kProviderPath);
    QString text = newText.left(provider ? kProviderLimit : kEntryLimit);
    // A cut through a character written as two code units drops its first half too.
    if (text.size() < newText.size() && text.back().isHighSurrogate())
        text.chop(1);
    return text;
}

bool PicklistEditorLogic::cmdOKCancel(const QString& tag) {
    if (tag == QLatin1String("OK"))
        SavePicklistTree(state_, tree_);
    else if (tag != QLatin1String("Cancel"))
        return false;
    return true;
}

bool PicklistEditorLogic::EditablePicklist(const QString& key) const {
    if (!tree_.HasNode(key))
        return false;
    const QString parent = tree_.ParentKey(key);
    return !parent.isEmpty() && !tree_.ParentKey(parent).isEmpty();
}

QString PicklistEditorLogic::FullPath(const QString& key) const {
    QStringList texts;
    for (QString at = key; tree_.HasNode(at); at = tree_.ParentKey(at))
        texts.prepend(tree_.NodeText(at));
    return texts.join(u'\\');
}

} // namespace tarvex
