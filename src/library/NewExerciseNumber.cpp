#include "library/NewExerciseNumber.h"

#include "data/Dialect.h"
#include "data/Sql.h"
#include "support/Fault.h"

#include <QSqlQuery>
#include <algorithm>
#include <cstdint>
#include <limits>

namespace tarvex {

namespace {

// The class of the server's advisory locks that hold exercise numbers ("TVXE").
constexpr qint64 kNumberLockClass = 0x54565845;

qint64 HighestPlusOne(QSqlDatabase& db) {
    QSqlQuery top = OpenQuery(db, QStringLiteral("SELECT TOP 1 * From ExerciseLibrary ORDER BY "
                                                 "ExerciseID DESC"));
    return top.next() ? top.value(QStringLiteral("ExerciseID")).toLongLong() + 1 : 1;
}

bool Stored(QSqlDatabase& db, qint64 number) {
    return ExecPrepared(db, QStringLiteral("SELECT 1 FROM ExerciseLibrary WHERE ExerciseID = ?"),
                        {number})
        .next();
}

bool TryHold(QSqlDatabase& db, qint64 number) {
    QSqlQuery held = ExecPrepared(db, QStringLiteral("SELECT pg_try_advisory_lock(?, ?)"),
                                  {kNumberLockClass, number});
    return held.next() && held.value(0).toBool();
}

void Release(QSqlDatabase& db, qint64 number) {
    ExecPrepared(db, QStringLiteral("SELECT pg_advisory_unlock(?, ?)"), {kNumberLockClass, number});
}

} // namespace

NewExerciseNumber::NewExerciseNumber(QSqlDatabase& library, qint64 firstClinicNumber)
    : db_(library) {
    qint64 number = std::max(HighestPlusOne(db_), firstClinicNumber);
    if (DialectOf(db_) != SqlDialect::Postgres) {
        number_ = number;
        return;
    }
    // The lock's key is two 32-bit halves, so a number must fit one.
    for (;; ++number) {
        if (number > std::numeric_limits<int32_t>::max())
            throw OverflowFault(QStringLiteral("Overflow: no exercise number is left."));
        if (!TryHold(db_, number))
            continue; // another workstation's editor holds it
        // Held now, so nobody else stores it; it may have been stored before the hold.
        if (!Stored(db_, number))
            break;
        Release(db_, number);
    }
    number_ = number;
    held_ = true;
}

NewExerciseNumber::~NewExerciseNumber() {
    if (!held_)
        return;
    try {
        Release(db_, number_);
    } catch (...) { // NOLINT(bugprone-empty-catch): a lost connection has let the hold go
    }
}

} // namespace tarvex
