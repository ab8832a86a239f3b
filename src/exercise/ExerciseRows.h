#pragma once

#include "exercise/ExerciseEntry.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QVariantList>

namespace tarvex {

// The columns that a stored program's exercise rows and a protocol's rows share, from
// ExerciseID to VideoSets, in the order in which a protocol writes them.
const QStringList& ExerciseRowColumns();

// An exercise's values for those columns, in the same order.
QVariantList ExerciseRowValues(const ExerciseEntry& e);

// Reads those columns of a row into a slot. Joint, Motion and Type are not stored with a
// row: the slot keeps its own. A null where a number or a code is needed is a fault
// naming the column; the slot may then hold part of the row.
class ExerciseRowReader {
public:
    explicit ExerciseRowReader(const QSqlRecord& record);
    void Read(const QSqlQuery& row, ExerciseEntry& e) const;

private:
    int abbrev_, desc_, icon_, movie_, i0_, i1_, i2_, p0_, p1_, p2_, code_, id_, hold_, reps_,
        sets_, hasVideo_, vReps_, vHold_, vSets_;
};

} // namespace tarvex
