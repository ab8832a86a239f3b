#include "exercise/LibraryFilter.h"

#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "shell/AppState.h"
#include "support/Controls.h"
#include "support/Fault.h"

#include <QSqlQuery>
#include <QVariantList>

namespace tarvex {

namespace {

// Blanks only: a tab or a line break inside a cell is part of the value.
QString TrimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype end = text.size();
    while (first < end && text[first] == u' ')
        ++first;
    while (end > first && text[end - 1] == u' ')
        --end;
    return text.mid(first, end - first);
}

bool AllSelected(const IListBox& list) {
    return list.List(0) == QLatin1String(LibraryFilter::kAll) && list.Selected(0);
}

} // namespace

LibraryFilter::LibraryFilter(AppState& state, const std::array<IListBox*, kLists>& viewList,
                             IFilterHost& host)
    : state_(state), viewList_(viewList), host_(host) {}

IListBox& LibraryFilter::ViewList(int index) const {
    if (index < 0 || index >= kLists || !viewList_[static_cast<size_t>(index)])
        throw BoundsFault(QStringLiteral("Subscript out of range (ViewList %1)").arg(index));
    return *viewList_[static_cast<size_t>(index)];
}

void LibraryFilter::InitListBoxes() {
    ListsLoading = true;
    for (QString& clause : ViewClause)
        clause.clear();
    try {
        for (int i = 0; i < kLists; ++i) {
            IListBox& list = ViewList(i);
            LoadViewList(BuildListQuery(list.Tag()), list);
            // Loading has cleared ListsLoading, so this selection is a click like any other;
            // the list raises no event for a change made here, so the click is run directly.
            // A list left without entries (every cell empty) has nothing to select, and its
            // click still runs so that the lists after it are filled.
            if (list.ListCount() > 0)
                list.SetSelected(0, true);
            ViewListClick(i);
        }
        host_.SizeSourcePane();
    } catch (...) {
        ListsLoading = false;
        throw;
    }
    ListsLoading = false;
}

QString LibraryFilter::BuildListQuery(const QString& name) const {
    if (name == QLatin1String("Joint"))
        return QStringLiteral("SELECT DISTINCT Joint AS Item FROM ExerciseLibrary");
    if (name == QLatin1String("Motion")) {
        QString sql = QStringLiteral("SELECT DISTINCT motion AS Item FROM ExerciseLibrary");
        if (!ViewClause[0].isEmpty())
            sql += QStringLiteral(" WHERE ") + ViewClause[0];
        return sql + QStringLiteral(" ORDER BY motion");
    }
    if (name == QLatin1String("Type")) {
        QString sql = QStringLiteral("SELECT DISTINCT type As Item FROM ExerciseLibrary");
        const bool jointCondition = !ViewClause[0].isEmpty();
        if (jointCondition)
            sql += QStringLiteral(" WHERE (") + ViewClause[0] + u')';
        if (!ViewClause[1].isEmpty()) {
            if (jointCondition)
                sql += QStringLiteral(" AND (") + ViewClause[1] + u')';
            else
                sql += QStringLiteral(" WHERE ") + ViewClause[1];
        }
        return sql + QStringLiteral(" ORDER BY type");
    }
    return QString();
}

void LibraryFilter::LoadViewList(const QString& query, IListBox& list) {
    ListsLoading = true;
    try {
        QSqlQuery rows = OpenQuery(state_.Dbs.LibraryDb, query);
        list.Clear();
        // The rows are read before the list is filled, so that their count is complete:
        // "(All)" is offered exactly when the query yields more than one row. A row of Null
        // or of blanks and commas counts, though it adds no entry of its own.
        QVariantList items;
        while (rows.next())
            items << rows.value(QStringLiteral("Item"));
        if (items.size() > 1)
            list.AddItem(QLatin1String(kAll));
        for (const QVariant& item : items) {
            if (item.isNull())
                continue;
            SplitCommaList(item.toString());
            for (const QString& piece : ParsedItems) {
                if (!ListHasItem(piece, list))
                    list.AddItem(piece);
            }
        }
    } catch (...) {
        ListsLoading = false;
        throw;
    }
    ListsLoading = false;
}

bool LibraryFilter::ListHasItem(const QString& item, const IListBox& list) {
    bool found = false;
    for (int i = 0; i < list.ListCount(); ++i) {
        if (list.List(i) == item)
            found = true;
    }
    return found;
}

QStringList SplitCommaItems(const QString& text) {
    QStringList items;
    for (const QString& piece : text.split(u',')) {
        const QString value = TrimBlanks(piece);
        if (!value.isEmpty())
            items << value;
    }
    return items;
}

void LibraryFilter::SplitCommaList(const QString& text) {
    ParsedItems = SplitCommaItems(text);
}

QString LibraryFilter::BuildInClause(const IListBox& list) {
    if (AllSelected(list))
        return QString();
    QString acc;
    for (int i = 0; i < list.ListCount(); ++i) {
        if (list.Selected(i))
            acc += u',' + SqlText(list.List(i));
    }
    if (acc.isEmpty())
        return QString();
    return list.Tag() + QStringLiteral(" In (") + acc.mid(1) + u')';
}

QString LibraryFilter::BuildLikeClause(const IListBox& list) {
    if (AllSelected(list))
        return QString();
    QString acc;
    // Entry 0 is "(All)" or, in a list of one value, that value: it never takes part.
    for (int i = 1; i < list.ListCount(); ++i) {
        if (list.Selected(i))
            acc += QStringLiteral(" OR ") + list.Tag() + QStringLiteral(" LIKE ") +
                   SqlText(u'*' + list.List(i) + u'*');
    }
    return acc.mid(4);
}

void LibraryFilter::ReloadList(int index) {
    IListBox& list = ViewList(index);
    LoadViewList(BuildListQuery(list.Tag()), list);
    ViewClause[static_cast<size_t>(index)].clear();
}

QString LibraryFilter::FilterExpression() const {
    QString f;
    for (const QString& clause : ViewClause) {
        if (!clause.isEmpty())
            f += QStringLiteral(" AND (") + clause + u')';
    }
    return f.mid(5);
}

void LibraryFilter::ViewListClick(int index) {
    IListBox& clicked = ViewList(index);
    if (ListsLoading || InViewClick)
        return;
    InViewClick = true;
    host_.SetBusy(true);
    try {
        // A list's clause narrows the lists to its right; reloading them drops their
        // selections, so their clauses go with them.
        if (index == 0) {
            ViewClause[0] = BuildLikeClause(clicked);
            ReloadList(1);
            ReloadList(2);
        } else {
            ViewClause[static_cast<size_t>(index)] = BuildInClause(clicked);
            if (index == 1)
                ReloadList(2);
        }
        host_.Yield();

        const QString f = FilterExpression();
        if (f != LastViewFilter) {
            LastViewFilter = f;
            state_.Dbs.Library.SetFilter(f);
            ReloadChoices(state_);
            host_.SizeSourcePane();
            host_.LoadPictsInSight();
        }
    } catch (...) {
        // A fault ends the click; the lists must still answer the next one.
        InViewClick = false;
        host_.SetBusy(false);
        throw;
    }
    InViewClick = false;
    host_.SetBusy(false);
}

} // namespace tarvex
