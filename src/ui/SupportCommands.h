#pragma once

class QWidget;

namespace tarvex {

class MainWindow;
struct AppState;

// File > Media Location and File > Copy Pictures, each one window at a time; the start's
// check of the pictures opens the same window as Copy Pictures.
void RegisterMediaCommands(MainWindow& window, AppState& state);

// Help > Contents (and the toolbar's Help), Help > User Manual, Help > About, and F1 in
// any window of the program, which opens the help on that window's page.
void RegisterHelpCommands(MainWindow& window, AppState& state);

} // namespace tarvex
