#include "support/TreeModel.h"

#include "support/Fault.h"

#include <algorithm>

namespace tarvex {

struct TreeModel::Node {
    QString key;
    QString text;
    QString image;
    Node* parent = nullptr;
    std::vector<std::unique_ptr<Node>> children;
    bool sorted = false;
};

TreeModel::TreeModel(QObject* parent)
    : QAbstractItemModel(parent), root_(std::make_unique<Node>()) {}

TreeModel::~TreeModel() = default;

TreeModel::Node* TreeModel::Find(const QString& key) const {
    return byKey_.value(key, nullptr);
}

TreeModel::Node* TreeModel::Require(const QString& key) const {
    Node* node = Find(key);
    if (!node)
        throw Fault(QStringLiteral("Element not found (the tree has no node \"%1\")").arg(key));
    return node;
}

int TreeModel::RowOf(const Node* node) const {
    const auto& siblings = node->parent->children;
    const auto at = std::find_if(siblings.begin(), siblings.end(),
                                 [node](const auto& child) { return child.get() == node; });
    return static_cast<int>(at - siblings.begin());
}

QModelIndex TreeModel::IndexOfNode(const Node* node) const {
    if (!node || node == root_.get())
        return {};
    return createIndex(RowOf(node), 0, const_cast<Node*>(node));
}

QModelIndex TreeModel::IndexOf(const QString& key) const {
    return IndexOfNode(Find(key));
}

QString TreeModel::KeyOf(const QModelIndex& index) const {
    return index.isValid() ? static_cast<const Node*>(index.internalPointer())->key : QString();
}

void TreeModel::Clear() {
    beginResetModel();
    root_->children.clear();
    byKey_.clear();
    order_.clear();
    selected_.clear();
    endResetModel();
}

int TreeModel::SortedRow(const Node* parent, const QString& text, const Node* skip) const {
    int row = 0;
    for (const auto& child : parent->children) {
        if (child.get() == skip)
            continue;
        if (SortsBefore(text, child->text))
            break;
        ++row;
    }
    return row;
}

void TreeModel::Insert(Node* parent, int row, const QString& key, const QString& text) {
    if (Find(key))
        throw Fault(QStringLiteral("Key is not unique in collection (\"%1\")").arg(key));
    if (parent->sorted)
        row = SortedRow(parent, text, nullptr);
    auto node = std::make_unique<Node>();
    node->key = key;
    node->text = text;
    node->parent = parent;
    Node* raw = node.get();
    beginInsertRows(IndexOfNode(parent), row, row);
    parent->children.insert(parent->children.begin() + row, std::move(node));
    byKey_.insert(key, raw);
    order_.push_back(raw);
    endInsertRows();
}

void TreeModel::AddNode(const QString& parentKey, const QString& key, const QString& text) {
    Node* parent = parentKey.isEmpty() ? root_.get() : Require(parentKey);
    Insert(parent, static_cast<int>(parent->children.size()), key, text);
}

void TreeModel::AddNodeAfter(const QString& siblingKey, const QString& key, const QString& text) {
    const Node* sibling = Require(siblingKey);
    Insert(sibling->parent, RowOf(sibling) + 1, key, text);
}

void TreeModel::Forget(Node* node) {
    for (const auto& child : node->children)
        Forget(child.get());
    byKey_.remove(node->key);
    order_.erase(std::find(order_.begin(), order_.end(), node));
    if (selected_ == node->key)
        selected_.clear();
}

void TreeModel::RemoveNode(const QString& key) {
    Node* node = Find(key);
    if (!node)
        return;
    const int row = RowOf(node);
    Node* parent = node->parent;
    beginRemoveRows(IndexOfNode(parent), row, row);
    Forget(node);
    parent->children.erase(parent->children.begin() + row);
    endRemoveRows();
}

bool TreeModel::HasNode(const QString& key) const {
    return Find(key) != nullptr;
}

int TreeModel::NodeCount() const {
    return static_cast<int>(order_.size());
}

QString TreeModel::NodeKey(int index) const {
    if (index < 0 || index >= NodeCount())
        throw BoundsFault(QStringLiteral("Index out of bounds (node %1)").arg(index + 1));
    return order_[static_cast<size_t>(index)]->key;
}

QString TreeModel::NodeText(const QString& key) const {
    const Node* node = Find(key);
    return node ? node->text : QString();
}

void TreeModel::SetNodeText(const QString& key, const QString& text) {
    Node* node = Require(key);
    node->text = text;
    Node* parent = node->parent;
    const int row = RowOf(node);
    if (parent->sorted) {
        // A sorted parent keeps its children in order: the renamed node moves to its place.
        const int to = SortedRow(parent, text, node);
        if (to != row) {
            const QModelIndex parentIndex = IndexOfNode(parent);
            beginMoveRows(parentIndex, row, row, parentIndex, to > row ? to + 1 : to);
            auto owned = std::move(parent->children[static_cast<size_t>(row)]);
            parent->children.erase(parent->children.begin() + row);
            parent->children.insert(parent->children.begin() + to, std::move(owned));
            endMoveRows();
        }
    }
    const QModelIndex at = IndexOfNode(node);
    emit dataChanged(at, at);
}

QString TreeModel::ParentKey(const QString& key) const {
    const Node* node = Find(key);
    return node && node->parent != root_.get() ? node->parent->key : QString();
}

QStringList TreeModel::ChildKeys(const QString& key) const {
    QStringList keys;
    if (const Node* node = Find(key))
        for (const auto& child : node->children)
            keys << child->key;
    return keys;
}

void TreeModel::SelectNode(const QString& key) {
    Require(key);
    selected_ = key;
    emit SelectRequested(IndexOf(key));
}

void TreeModel::SetNodeImage(const QString& key, const QString& image) {
    Node* node = Require(key);
    node->image = image;
    const QModelIndex at = IndexOfNode(node);
    emit dataChanged(at, at, {Qt::DecorationRole, kImageRole});
}

void TreeModel::ExpandNode(const QString& key) {
    emit ExpandRequested(IndexOfNode(Require(key)));
}

void TreeModel::SetChildrenSorted(const QString& key) {
    Node* node = key.isEmpty() ? root_.get() : Require(key);
    node->sorted = true;
    auto& children = node->children;
    if (std::is_sorted(children.begin(), children.end(),
                       [](const auto& a, const auto& b) { return SortsBefore(a->text, b->text); }))
        return;
    emit layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    std::vector<const Node*> nodes;
    for (const QModelIndex& index : before)
        nodes.push_back(static_cast<const Node*>(index.internalPointer()));
    std::stable_sort(children.begin(), children.end(),
                     [](const auto& a, const auto& b) { return SortsBefore(a->text, b->text); });
    QModelIndexList after;
    for (size_t i = 0; i < nodes.size(); ++i)
        after << createIndex(RowOf(nodes[i]), before[static_cast<qsizetype>(i)].column(),
                             const_cast<Node*>(nodes[i]));
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent))
        return {};
    const Node* node =
        parent.isValid() ? static_cast<const Node*>(parent.internalPointer()) : root_.get();
    return createIndex(row, column, node->children[static_cast<size_t>(row)].get());
}

QModelIndex TreeModel::parent(const QModelIndex& child) const {
    if (!child.isValid())
        return {};
    return IndexOfNode(static_cast<const Node*>(child.internalPointer())->parent);
}

int TreeModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0)
        return 0;
    const Node* node =
        parent.isValid() ? static_cast<const Node*>(parent.internalPointer()) : root_.get();
    return static_cast<int>(node->children.size());
}

int TreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

QVariant TreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const Node* node = static_cast<const Node*>(index.internalPointer());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return node->text;
    case Qt::DecorationRole:
        return images_.contains(node->image) ? QVariant(images_.value(node->image)) : QVariant();
    case kKeyRole:
        return node->key;
    case kImageRole:
        return node->image;
    default:
        return {};
    }
}

bool TreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    const QString key = KeyOf(index);
    std::optional<QString> text = value.toString();
    if (AfterLabelEdit)
        text = AfterLabelEdit(key, *text);
    if (!text)
        return false;
    SetNodeText(key, *text);
    return true;
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (BeforeLabelEdit && BeforeLabelEdit(KeyOf(index)))
        flags |= Qt::ItemIsEditable;
    return flags;
}

} // namespace tarvex
