#pragma once

namespace tarvex {

struct AppState;

// Fills the clinic record from the first row of Clinic; with no row it stays as it is.
// The payment and shipping methods are read as numbers, so a stored "VISA" comes back as
// "0": the saved choice does not survive a restart. A row without a card date is a fault.
void ReadClinicRecord(AppState& state);

// Writes the clinic record to the first row of Clinic, adding the row if there is none.
void WriteClinicRecord(AppState& state);

} // namespace tarvex
