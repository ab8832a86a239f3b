#include "exercise/LibraryCache.h"

#include "data/NullValues.h"
#include "shell/AppState.h"
#include "support/Fault.h"
#include "support/Numbers.h"

#include <QDir>
#include <QSqlRecord>

namespace tarvex {

namespace {

// Sizes the cache once, from the count, before it is filled; it never grows row by row.
void SizeCache(LibraryCache& cache, int count) {
    cache.NumChoices = ToInt16(count);
    cache.Entries.assign(static_cast<size_t>(count) + 1, ExerciseEntry{});
}

} // namespace

void LoadLibraryCache(AppState& state) {
    LibraryCache& cache = state.Library;
    cache.NumChoices = 0;
    cache.Entries.clear();
    cache.CurrentChoice = 0;
    state.DragMode = 0;
    const int count = state.Dbs.Library.RecordCount();
    if (count == 0)
        throw DatabaseFault(QStringLiteral("No current record: the exercise library is empty."));
    SizeCache(cache, count);
    QSqlQuery rows = state.Dbs.Library.OpenSnapshot();
    ReadLibraryRows(rows, cache, state.Dbs.LibraryPath);
}

void ReloadChoices(AppState& state) {
    LibraryCache& cache = state.Library;
    cache.NumChoices = 0;
    cache.Entries.clear();
    const int count = state.Dbs.Library.RecordCount();
    if (count == 0)
        return;
    SizeCache(cache, count);
    QSqlQuery rows = state.Dbs.Library.OpenSnapshot();
    ReadLibraryRows(rows, cache, state.Dbs.LibraryPath);
}

void ReadLibraryRows(QSqlQuery& rows, LibraryCache& cache, const QString& source) {
    const QSqlRecord record = rows.record();
    const auto column = [&record](const char* name) {
        const int index = record.indexOf(QLatin1String(name));
        if (index < 0)
            throw DatabaseFault(
                QStringLiteral("Item not found in this collection: %1").arg(QLatin1String(name)));
        return index;
    };
    const int cId = column("ExerciseID"), cCode = column("code"), cDesc = column("Desc"),
              cAbbrev = column("AbbrevDesc"), cReps = column("Reps"), cHold = column("Hold"),
              cSets = column("Sets"), cJoint = column("Joint"), cMotion = column("Motion"),
              cType = column("Type"), cMovie = column("Movie"), cIcon = column("Icon"),
              cPic0 = column("Picture0"), cPic1 = column("Picture1"), cPic2 = column("Picture2"),
              cIns0 = column("Instruct0"), cIns1 = column("Instruct1"), cIns2 = column("Instruct2"),
              cHasVideo = column("HasVideo"), cVReps = column("VideoReps"),
              cVHold = column("VideoHold"), cVSets = column("VideoSets");

    int16_t i = 0;
    while (rows.next()) {
        if (static_cast<size_t>(i) >= cache.Entries.size())
            throw BoundsFault(QStringLiteral("Subscript out of range (%1)").arg(i));
        ExerciseEntry& e = cache.Entries[static_cast<size_t>(i)];
        try {
            e.ExerciseID = RequiredInt32(rows.value(cId), "ExerciseID");
            e.Code = RequiredText(rows.value(cCode), "code");
            e.Desc = NullToText(rows.value(cDesc));
            e.AbbrevDesc = NullToText(rows.value(cAbbrev));
            e.Reps = RequiredInt16(rows.value(cReps), "Reps");
            e.Hold = RequiredInt16(rows.value(cHold), "Hold");
            e.Sets = RequiredInt16(rows.value(cSets), "Sets");
            e.Joint = NullToText(rows.value(cJoint));
            e.Motion = NullToText(rows.value(cMotion));
            e.Type = NullToText(rows.value(cType));
            e.Movie = NullToText(rows.value(cMovie));
            e.Icon = NullToText(rows.value(cIcon));
            e.Picture0 = NullToText(rows.value(cPic0));
            e.Picture1 = NullToText(rows.value(cPic1));
            e.Picture2 = NullToText(rows.value(cPic2));
            e.Instruct0 = NullToText(rows.value(cIns0));
            e.Instruct1 = NullToText(rows.value(cIns1));
            e.Instruct2 = NullToText(rows.value(cIns2));
            e.HasVideo = RequiredBool(rows.value(cHasVideo), "HasVideo");
            e.VideoReps = NullToInt(rows.value(cVReps));
            e.VideoHold = NullToInt(rows.value(cVHold));
            e.VideoSets = NullToInt(rows.value(cVSets));
        } catch (...) {
            RethrowAt(
                QStringLiteral("the database %1, table ExerciseLibrary, the row of ExerciseID %2")
                    .arg(QDir::toNativeSeparators(source), DescribeValue(rows.value(cId))));
        }
        i = ToInt16(i + 1);
    }
}

} // namespace tarvex
