#pragma once

#include <QString>

namespace tarvex {

struct AppState;
class ISettingsStore;

// Reads the options of section "Options" in this order, with their defaults: "CDRom Drive"
// (first two characters kept), "Icon", "Movie", "Picture", PrintPatientCover,
// PrintCallTVX, ShowTips, Provider. Sets the base font size of printed pages to 10. A
// stored boolean that is no boolean is a TypeFault. Also reads the site number.
void LoadOptions(AppState& state, const ISettingsStore& store);

// Writes "Movie", "Icon", "Picture", PrintPatientCover, PrintCallTVX, ShowTips, Provider,
// in that order. "CDRom Drive" is never written.
void SaveOptions(const AppState& state, ISettingsStore& store);

// The cover text: every line of "cover.txt" in the application folder followed by a
// carriage return and line feed; empty when the file does not exist.
QString LoadCoverText(const AppState& state);

// The folder that a drive setting names: a drive letter such as "D:" stays as it is, as
// on the system this program came from; the default is the installed delivered media,
// which act as the CD.
QString DefaultCDRomDrive(const AppState& state);

} // namespace tarvex
