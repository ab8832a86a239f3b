#pragma once

#include "exercise/ExerciseProgram.h"

namespace tarvex {

// The caption under a thumbnail of the selected list: the short description, a line
// feed, then e.g. "10r/5s/2x" ("10r/2x" without a hold). The index is checked (0 to 19).
QString ShortParamText(const ExerciseProgram& program, int index);

// The status bar line of a selected exercise: e.g. "Heel slides, 10 reps, 5 sec hold, 2 set".
// The words stay the same for any number.
QString LongParamText(const ExerciseProgram& program, int index);

} // namespace tarvex
