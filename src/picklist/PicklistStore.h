#pragma once

// The picklists: named lists of values ("Provider", "Usage") in the picklist database, one
// Label row for each list and one Level1 row for each entry. They fill the combo boxes of
// the workspace and are edited as a tree of three levels.

#include <QHash>
#include <QString>
#include <cstdint>

namespace tarvex {

struct AppState;
class IComboBox;
class ITree;

// The key and text of the tree's root; the lists are its children, keyed by their names,
// and the entries theirs, keyed by "B" and the entry's row number.
inline constexpr const char* kPicklistRoot = "Picklist";

// Fills the combo with the entries of the list that its Tag names, in the order in which
// the database gives them. What the combo held goes; its text stays.
void LoadComboBox(AppState& state, IComboBox& combo);

// Builds the tree from the store: the root, a node for each list (kept sorted by the tree)
// and under it a node for each entry.
void LoadPicklistTree(AppState& state, ITree& tree);

// Replaces the whole store with the tree, in one transaction: a failure leaves the store as
// it was. The node indices become the row numbers. A tree without a list under the root
// can't be saved (a fault).
void SavePicklistTree(AppState& state, const ITree& tree);

// Writes the entries under the list node with the given index, each with its own index as
// row number and the parent's as its list.
void SaveLevel1(AppState& state, const ITree& tree, int16_t parent);

// The index of every node of the tree, counted from 1 in the order in which the tree lists
// its nodes (NodeKey), as the tree control numbered them.
QHash<QString, int> NodeIndices(const ITree& tree);

} // namespace tarvex
