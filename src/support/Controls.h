#pragma once

// The small control interfaces through which the logic of a window talks to its screen.
// The Qt windows implement them with widgets; tests implement them in memory. Indices
// count from 0, as the lists on screen do.

#include <QString>
#include <QStringList>
#include <cstdint>

namespace tarvex {

// The order of a list or tree that sorts itself: by text, without regard to case, so that
// "(All)" comes ahead of letters and digits.
inline bool SortsBefore(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) < 0;
}

// A plain list box. A change made through the interface raises no click: where a change
// made in code would have counted as a click, the logic runs its click handler itself.
class IListBox {
public:
    virtual ~IListBox() = default;
    virtual void Clear() = 0;
    virtual void AddItem(const QString& text) = 0;
    virtual int ListCount() const = 0;
    virtual QString List(int index) const = 0;
    virtual bool Selected(int index) const = 0;
    virtual void SetSelected(int index, bool selected) = 0;
    virtual QString Tag() const = 0;
};

// A list of rows with columns (a report-style list view). Each row carries a key.
class IReportList {
public:
    virtual ~IReportList() = default;
    virtual void Clear() = 0;
    virtual void AddRow(const QString& key, const QStringList& columns) = 0;
    virtual int RowCount() const = 0;
    virtual QString Key(int row) const = 0;
    virtual QString Text(int row, int column) const = 0;
    virtual int SelectedRow() const = 0; // -1 when none
    virtual void SetSelectedRow(int row) = 0;
    // Sorts the rows by the text of a column, ascending, as a click on its header does.
    virtual void SortByColumn(int column) = 0;
    // A refill of many rows is bracketed by these (see ReportFill): a list may then take the
    // rows in without showing each one.
    virtual void BeginFill() {}
    virtual void EndFill() {}
};

// A refill of a report list, from its Clear to its last AddRow: the list is told when it
// ends, also when a fault ends it early.
class ReportFill {
public:
    explicit ReportFill(IReportList& list) : list_(list) { list_.BeginFill(); }
    ~ReportFill() { list_.EndFill(); }
    ReportFill(const ReportFill&) = delete;
    ReportFill& operator=(const ReportFill&) = delete;

private:
    IReportList& list_;
};

// A combo box. SetText returns false when the box holds a fixed list and the text is
// none of its items (the box then keeps its text).
class IComboBox {
public:
    virtual ~IComboBox() = default;
    virtual void Clear() = 0;
    virtual void AddItem(const QString& text) = 0;
    virtual int ListCount() const = 0;
    virtual QString List(int index) const = 0;
    virtual QString Text() const = 0;
    virtual bool SetText(const QString& text) = 0;
    virtual int ListIndex() const = 0; // -1 when the text is no item
    virtual void SetListIndex(int index) = 0;
    virtual QString Tag() const = 0;
};

// A combo box of a fixed list whose entries each carry a number (its ItemData), so that
// entries of the same text stay apart.
class IItemDataCombo {
public:
    virtual ~IItemDataCombo() = default;
    virtual void Clear() = 0;
    virtual void AddItem(const QString& text, int32_t itemData) = 0;
    virtual int ListCount() const = 0;
    virtual QString List(int index) const = 0;
    virtual int32_t ItemData(int index) const = 0;
    virtual int ListIndex() const = 0; // -1 when none is chosen
    virtual void SetListIndex(int index) = 0;
};

// A tree of nodes, each with a unique key and a text. Parents are named by key; an
// empty parent key adds a root node. A node's index counts from 1 in the order of
// addition; removing a node moves the later ones down.
class ITree {
public:
    virtual ~ITree() = default;
    virtual void Clear() = 0;
    virtual void AddNode(const QString& parentKey, const QString& key, const QString& text) = 0;
    // Adds a node beside another, right after it (or in its place in a sorted parent).
    virtual void AddNodeAfter(const QString& siblingKey, const QString& key,
                              const QString& text) = 0;
    virtual void RemoveNode(const QString& key) = 0;
    virtual bool HasNode(const QString& key) const = 0;
    virtual int NodeCount() const = 0;
    virtual QString NodeKey(int index) const = 0; // from 0, in order of addition
    virtual QString NodeText(const QString& key) const = 0;
    virtual void SetNodeText(const QString& key, const QString& text) = 0;
    virtual QString ParentKey(const QString& key) const = 0; // empty for a root
    virtual QStringList ChildKeys(const QString& key) const = 0;
    virtual QString SelectedKey() const = 0;
    // Selects the node as code does: no click is raised.
    virtual void SelectNode(const QString& key) = 0;
    // The picture of a node, by the key of its image ("open", "closed").
    virtual void SetNodeImage(const QString& key, const QString& image) = 0;
    virtual void ExpandNode(const QString& key) = 0;
    // From now on the children of the node keep themselves in SortsBefore order by text.
    virtual void SetChildrenSorted(const QString& key) = 0;
};

// Commands addressed by key: the toolbar's buttons or the menu's entries.
class ICommands {
public:
    virtual ~ICommands() = default;
    virtual void SetEnabled(const QString& key, bool enabled) = 0;
    virtual bool IsEnabled(const QString& key) const = 0;
};

// A status bar of panels, addressed by index from 0.
class IStatusBar {
public:
    virtual ~IStatusBar() = default;
    virtual void SetPanelText(int panel, const QString& text) = 0;
    virtual QString PanelText(int panel) const = 0;
    // Gives pending events a turn so that the text shows during long work.
    virtual void Refresh() = 0;
};

// A picture box: loads a picture file; a missing or unreadable file leaves it empty.
class IPicture {
public:
    virtual ~IPicture() = default;
    virtual bool LoadFile(const QString& path) = 0;
    virtual void Clear() = 0;
    virtual bool HasPicture() const = 0;
};

// A text box.
class ITextBox {
public:
    virtual ~ITextBox() = default;
    virtual QString Text() const = 0;
    virtual void SetText(const QString& text) = 0;
    virtual void SetEnabled(bool enabled) = 0;
    virtual bool IsEnabled() const = 0;
    virtual void SetCursorPosition(int position) = 0;
};

// A check box: value 0 cleared, 1 ticked.
class ICheckBox {
public:
    virtual ~ICheckBox() = default;
    virtual int Value() const = 0;
    virtual void SetValue(int value) = 0;
};

// A label whose caption the logic sets and reads (on the order dialog the captions are
// where the amounts live).
class ILabel {
public:
    virtual ~ILabel() = default;
    virtual QString Caption() const = 0;
    virtual void SetCaption(const QString& caption) = 0;
};

// Any other control whose availability changes (a label, a frame).
class IEnableable {
public:
    virtual ~IEnableable() = default;
    virtual void SetEnabled(bool enabled) = 0;
    virtual bool IsEnabled() const = 0;
};

} // namespace tarvex
