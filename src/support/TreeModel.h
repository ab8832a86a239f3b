#pragma once

#include "support/Controls.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tarvex {

// A tree of keyed nodes as an item model: the logic works on it through ITree, and a tree
// view shows it. Nodes are found by key through a hash; each remembers its place in the
// order of addition, which gives its index. Label editing asks the logic before an edit
// starts and after it ends.
class TreeModel : public QAbstractItemModel, public ITree {
    Q_OBJECT
public:
    static constexpr int kKeyRole = Qt::UserRole;
    static constexpr int kImageRole = Qt::UserRole + 1;

    explicit TreeModel(QObject* parent = nullptr);
    ~TreeModel() override;

    // ITree
    void Clear() override;
    void AddNode(const QString& parentKey, const QString& key, const QString& text) override;
    void AddNodeAfter(const QString& siblingKey, const QString& key, const QString& text) override;
    void RemoveNode(const QString& key) override;
    bool HasNode(const QString& key) const override;
    int NodeCount() const override;
    QString NodeKey(int index) const override;
    QString NodeText(const QString& key) const override;
    void SetNodeText(const QString& key, const QString& text) override;
    QString ParentKey(const QString& key) const override;
    QStringList ChildKeys(const QString& key) const override;
    QString SelectedKey() const override { return selected_; }
    void SelectNode(const QString& key) override;
    void SetNodeImage(const QString& key, const QString& image) override;
    void ExpandNode(const QString& key) override;
    void SetChildrenSorted(const QString& key) override;

    // The view's current node, as the user chose it.
    void SetSelectedKey(const QString& key) { selected_ = key; }
    QModelIndex IndexOf(const QString& key) const;
    QString KeyOf(const QModelIndex& index) const;
    // The pictures shown for the image keys of the nodes.
    void SetImages(QHash<QString, QIcon> images) { images_ = std::move(images); }

    // Asked before a label edit starts: may the node's text be edited?
    std::function<bool(const QString& key)> BeforeLabelEdit;
    // Told the new text when an edit ends: the text to keep, or nothing to cancel the edit.
    std::function<std::optional<QString>(const QString& key, const QString& text)> AfterLabelEdit;

    // QAbstractItemModel
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    // The view is to show the node as current, or its children.
    void SelectRequested(const QModelIndex& index);
    void ExpandRequested(const QModelIndex& index);

private:
    struct Node;
    Node* Find(const QString& key) const;
    Node* Require(const QString& key) const;
    QModelIndex IndexOfNode(const Node* node) const;
    int RowOf(const Node* node) const;
    void Insert(Node* parent, int row, const QString& key, const QString& text);
    int SortedRow(const Node* parent, const QString& text, const Node* skip) const;
    void Forget(Node* node);

    std::unique_ptr<Node> root_; // invisible; the tree's roots are its children
    QHash<QString, Node*> byKey_;
    std::vector<Node*> order_; // order of addition
    QHash<QString, QIcon> images_;
    QString selected_;
};

} // namespace tarvex
