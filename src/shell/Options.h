#pragma once

#include "data/Server.h"

#include <QString>

namespace tarvex {

struct AppState;
class ISettingsStore;

// Reads the options of section "Options" in this order, with their defaults: "CDRom Drive"
// (first two characters kept), "Icon", "Movie", "Picture", PrintPatientCover,
// PrintCallTVX, ShowTips, Provider. Sets the base font size of printed pages to 10. A
// stored boolean that is no boolean is a TypeFault. Also reads the site number and where
// the databases live.
void LoadOptions(AppState& state, const ISettingsStore& store);

// Where the databases live, from section "Database", which the clinic's administrator sets
// and the program never writes: "Engine" ("SQLite", the default, or "PostgreSQL") and for
// the server "Service" or "Host", "Port", "Name" and "User". An unknown engine, a port
// that is no port, or a "Password" key is a Fault that names the settings file.
EngineChoice ReadEngineChoice(const ISettingsStore& store);

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
