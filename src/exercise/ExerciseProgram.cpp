#include "exercise/ExerciseProgram.h"

#include "support/Fault.h"

namespace tarvex {

namespace {

void CheckIndex(int index, int size) {
    if (index < 0 || index >= size)
        throw BoundsFault(QStringLiteral("Subscript out of range (%1)").arg(index));
}

} // namespace

ExerciseEntry& ExerciseProgram::Exercise(int index) {
    CheckIndex(index, kMaxExercises);
    return Exercises[static_cast<size_t>(index)];
}

const ExerciseEntry& ExerciseProgram::Exercise(int index) const {
    CheckIndex(index, kMaxExercises);
    return Exercises[static_cast<size_t>(index)];
}

OrderItem& ExerciseProgram::Item(int index) {
    CheckIndex(index, kMaxItems);
    return Items[static_cast<size_t>(index)];
}

const OrderItem& ExerciseProgram::Item(int index) const {
    CheckIndex(index, kMaxItems);
    return Items[static_cast<size_t>(index)];
}

} // namespace tarvex
