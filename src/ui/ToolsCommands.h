#pragma once

namespace tarvex {

class MainWindow;
struct AppState;

// The Tools menu's protocol editor: one window at a time, brought forward when it is
// open already.
void RegisterProtocolCommands(MainWindow& window, AppState& state);

// The Tools menu's picklist editor, one window at a time.
void RegisterPicklistCommands(MainWindow& window, AppState& state);

// The Tools menu's exercise library, one window at a time.
void RegisterLibraryCommands(MainWindow& window, AppState& state);

} // namespace tarvex
