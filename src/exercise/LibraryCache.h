#pragma once

#include "exercise/ExerciseEntry.h"

#include <QSqlQuery>
#include <cstdint>
#include <vector>

namespace tarvex {

struct AppState;

// The library in memory, so that the panes never touch the database: entries 0 to
// NumChoices - 1 are in use, in the library view's order. CurrentChoice is the entry last
// picked in the workspace.
struct LibraryCache {
    std::vector<ExerciseEntry> Entries;
    int16_t NumChoices = 0;
    int CurrentChoice = 0;
};

// Rebuilds the cache from the whole library view. An empty library is a fault (the
// view has no first row); more than 32767 rows overflow the count.
void LoadLibraryCache(AppState& state);

// Rebuilds the cache from the library view as its filter stands; an empty result leaves
// it empty.
void ReloadChoices(AppState& state);

// Fills the sized cache from the first to the last row of the query. A fault in a row
// names the database file (source), the table, the row's ExerciseID and the column.
void ReadLibraryRows(QSqlQuery& rows, LibraryCache& cache, const QString& source);

} // namespace tarvex
