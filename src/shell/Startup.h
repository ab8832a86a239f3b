#pragma once

#include <QString>

namespace tarvex {

struct AppState;
class Shell;
class ISettingsStore;
class Prompter;
class ProgramStore;

// What the start-up needs from the windowing side.
class IStartupHost {
public:
    virtual ~IStartupHost() = default;
    // True when another copy of the program runs for this user.
    virtual bool AnotherInstanceRunning() = 0;
    // The splash, modal, until its countdown ends or a key or click closes it.
    virtual void ShowSplash() = 0;
    // The main window, at left 1, top 1.
    virtual void ShowMainWindow() = 0;
    // Creates the selection workspace, shows and hides it; it stays loaded for the run.
    // Its load reads the library into the cache.
    virtual void LoadSelectionWorkspace() = 0;
    // The tip window, modal.
    virtual void ShowTip() = 0;
    // The media check window, not modal.
    virtual void ShowCheckMedia() = 0;
};

// The title and text of the box that tells of a database of a former version.
inline const QString kPreviousDatabaseTitle = QStringLiteral("Previous Database Detected");
inline const QString kPreviousDatabaseText =
    QStringLiteral("You have a previous version of the TVX Database.\n"
                   "Run the Tarvex Database Ugrade program to import your data.");

// The status line of a start that found the data folder open to other users.
inline const QString kMadePrivateText =
    QStringLiteral("The data folder %1 and its files are now private to you.");

// The start of a run, in the load of the main window. Returns false when the run ends at
// once because another copy is running. A failure to open a database or to read the
// clinic row is a fault that ends the run.
bool RunStartup(AppState& state, Shell& shell, const ISettingsStore& store, IStartupHost& host,
                Prompter& prompter);

// The end of a run, in the unload of the main window: a modified program is offered for
// saving, the databases are closed and then the options are written (only here). There
// is no way to cancel it.
void RunUnload(AppState& state, ISettingsStore& store, ProgramStore& programs);

} // namespace tarvex
