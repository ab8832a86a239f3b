#pragma once

#include "shell/AppState.h"

#include <QDateTime>

namespace tarvex::testing {

// The clinic, the site and the patient's header that the printing tests draw with.
inline void SetSheetHeader(AppState& state, const QString& clinic = QStringLiteral("Harbor PT")) {
    state.Clinic.Name = clinic;
    state.Clinic.Phone = "555-0100";
    state.SiteNumber = 4711;
    state.Program.FullName = "Doe, Ann";
    state.Program.Provider = "Dr. Lee";
    state.Program.Usage = "2x per day";
    state.Program.Date = QDateTime(QDate(1999, 3, 4), QTime(10, 0));
    state.Prefs.PrintCallTVX = true;
}

} // namespace tarvex::testing
