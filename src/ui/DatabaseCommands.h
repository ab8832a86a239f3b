#pragma once

namespace tarvex {

class MainWindow;
struct AppState;

// The Database menu: Backup (one window at a time), Compress, Rebuild and Restore. Each
// closes the databases for its work and opens them again through the main window, which
// then makes the selection workspace anew and resets the shell.
void RegisterDatabaseCommands(MainWindow& window, AppState& state);

} // namespace tarvex
