#pragma once

#include <QSqlDatabase>
#include <QtGlobal>

namespace tarvex {

// The number of an exercise the clinic adds: one above the library's highest, and never
// below the first number of the clinic's own. On the server several workstations may add
// exercises at once, so the number is held for the editor that took it until the holder
// goes: another workstation passes over a number that is held or stored and takes the
// next. A held number that is never stored (the editor cancelled) is free again.
class NewExerciseNumber {
public:
    NewExerciseNumber(QSqlDatabase& library, qint64 firstClinicNumber);
    ~NewExerciseNumber();
    NewExerciseNumber(const NewExerciseNumber&) = delete;
    NewExerciseNumber& operator=(const NewExerciseNumber&) = delete;

    qint64 Number() const { return number_; }

private:
    QSqlDatabase db_;
    qint64 number_ = 0;
    bool held_ = false;
};

} // namespace tarvex
