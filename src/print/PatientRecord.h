#pragma once

#include "print/PageSurface.h"
#include "shell/AppState.h"

namespace tarvex {

// A number printed by itself: a blank for the sign (or "-"), the digits, a blank.
QString NumberText(int value);

// The copy for the chart: the program as a ruled table of 20 rows and an exercise log to be
// filled in by hand. One page whatever the data.
void PrintPatientRecord(PageSurface& surface, AppState& state);

// The clinic's cover text under the title and the header; one page.
void PrintCoverSheet(PageSurface& surface, AppState& state);

} // namespace tarvex
