#pragma once

// The three filter lists of the selection workspace (Joint, Pattern, Type) and the filter
// expression that they put on the library view.

#include <QString>
#include <QStringList>
#include <array>

namespace tarvex {

struct AppState;
class IListBox;

// The items of a comma list such as a Joint cell ("Knee, Hip"): cut at each comma, each
// piece trimmed of blanks, empty pieces dropped.
QStringList SplitCommaItems(const QString& text);

// What the filter asks of the workspace around it.
class IFilterHost {
public:
    virtual ~IFilterHost() = default;
    // The hourglass pointer while a click is worked through; false restores the default.
    virtual void SetBusy(bool busy) = 0;
    // Gives pending events one turn, so that the reloaded lists show.
    virtual void Yield() = 0;
    // The grid of the upper pane follows the library cache: cells shown or hidden, the
    // scroll range, the pictures marked stale.
    virtual void SizeSourcePane() = 0;
    // Loads the pictures and captions of the rows in sight.
    virtual void LoadPictsInSight() = 0;
};

// The filter lists of the workspace and what they do. ViewList(0) is the Joint list, which
// sorts itself; ViewList(1) the Motion list (shown as "Pattern:"); ViewList(2) the Type list.
// Each list's Tag names the library column that it filters.
//
// The texts of the list queries, the clauses and the filter expression are kept in the
// classic dialect (the "*" wildcard, "In"); they are translated where they are executed.
// An apostrophe in a value is doubled on its way into a clause, so that "Child's pose" is a
// value like any other.
class LibraryFilter {
public:
    static constexpr int kLists = 3;
    static constexpr const char* kAll = "(All)";

    LibraryFilter(AppState& state, const std::array<IListBox*, kLists>& viewList,
                  IFilterHost& host);

    // Fills the three lists afresh for a visit of the workspace and selects entry 0 of each.
    // Every selection counts as a click, so a filter left by the last visit is cleared and
    // the cache rebuilt with the whole library.
    void InitListBoxes();

    // The query that fills the list with the given Tag; empty for an unknown name.
    QString BuildListQuery(const QString& name) const;

    // Fills the list from the "Item" column of the query, each single value once.
    void LoadViewList(const QString& query, IListBox& list);

    // Whether some entry of the list equals the item, exactly and with regard to case.
    static bool ListHasItem(const QString& item, const IListBox& list);

    // Cuts the text at each comma into ParsedItems; pieces are trimmed of blanks and empty
    // ones dropped.
    void SplitCommaList(const QString& text);

    // "Tag In ('a','b')" for the selected entries; empty when "(All)" is selected or nothing.
    static QString BuildInClause(const IListBox& list);

    // "Tag LIKE '*a*' OR Tag LIKE '*b*'" for the selected entries after entry 0; empty when
    // "(All)" is selected or nothing.
    static QString BuildLikeClause(const IListBox& list);

    // The click handler of ViewList(index): rebuilds that list's clause, reloads the lists
    // that depend on it, and when the filter expression changed, puts it on the library
    // view, rebuilds the cache and has the upper pane follow.
    void ViewListClick(int index);

    IListBox& ViewList(int index) const;

    std::array<QString, kLists> ViewClause;
    QString LastViewFilter;
    bool ListsLoading = false; // a change of selection while the lists refill is no click
    bool InViewClick = false;  // a click arriving while one is worked through is ignored
    QStringList ParsedItems;

private:
    QString FilterExpression() const;
    void ReloadList(int index);

    AppState& state_;
    std::array<IListBox*, kLists> viewList_;
    IFilterHost& host_;
};

} // namespace tarvex
