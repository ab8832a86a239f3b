#pragma once

#include "support/Controls.h"

#include <QString>
#include <optional>

namespace tarvex {

struct AppState;

// The logic of "Edit Picklists": the picklist store as a tree of three levels, in which
// only the entries (the third level) can be added, renamed and deleted. Every change stays
// in the tree until OK writes the whole tree back; Cancel drops them all.
class PicklistEditorLogic {
public:
    static constexpr const char* kCaption = "Edit Picklists";
    static constexpr const char* kNewEntryText = "Enter Name";
    // Entries of the list whose path begins so may be longer than the others.
    static constexpr const char* kProviderPath = "Picklist\\Provider";
    static constexpr int kProviderLimit = 40;
    static constexpr int kEntryLimit = 20;

    PicklistEditorLogic(AppState& state, ITree& tvwDB, IStatusBar& sbrDB);

    void Load();
    // The user chose a node: the status bar shows its path.
    void tvwDB_NodeClick(const QString& key);
    void tvwDB_Expand(const QString& key);
    void tvwDB_Collapse(const QString& key);
    void cmdAdd();
    void cmdDelete();
    // Before an edit of a node's text starts: may it?
    bool tvwDB_BeforeLabelEdit(const QString& key) const;
    // After an edit: the text to keep, or nothing to cancel the edit.
    std::optional<QString> tvwDB_AfterLabelEdit(const QString& newText) const;
    // "OK" saves the tree; both end the window (true).
    bool cmdOKCancel(const QString& tag);

    // True for an entry: a node with a parent and a grandparent.
    bool EditablePicklist(const QString& key) const;
    // The node texts from the root down, joined by backslashes.
    QString FullPath(const QString& key) const;

private:
    QString NewKey();

    AppState& state_;
    ITree& tree_;
    IStatusBar& status_;
    int added_ = 0;
};

} // namespace tarvex
