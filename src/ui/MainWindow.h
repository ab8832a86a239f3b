#pragma once

#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "shell/Startup.h"
#include "ui/QtControls.h"

#include <QHash>
#include <QMainWindow>
#include <QPrinter>
#include <functional>
#include <memory>

class QMdiArea;

namespace tarvex {

struct AppState;
class ISettingsStore;
class SingleInstanceLock;

// The main window, mdiTVX: toolbar, menu and status bar, and the start and end of a run.
class MainWindow : public QMainWindow, private IStartupHost, private IPrintDialog {
    Q_OBJECT
public:
    MainWindow(AppState& state, ISettingsStore& store, SingleInstanceLock& lock,
               bool showSplash = true);
    ~MainWindow() override;

    // Runs the start-up; false when the run is to end at once (another copy runs).
    bool Start();

    Shell& ShellLogic() { return *shell_; }
    Prompter& Prompts() { return prompter_; }
    ISettingsStore& Settings() { return store_; }
    QtCommands& ToolbarCommands() { return toolbar_; }
    QtCommands& MenuCommands() { return menu_; }
    QtStatusPanels& StatusPanels() { return status_; }
    ProgramStore& Programs() { return *programs_; }
    QPrinter& Printer() { return printer_; }
    class WorkspaceWindow* Workspace() const {
        return workspace_;
    }

    // Closes and opens the databases again and makes the selection workspace anew from the
    // library as it now is (after the library was changed).
    void ReopenDatabasesAndReloadWorkspace();
    // Makes the selection workspace anew from the databases as they are open now.
    void ReloadWorkspace();
    // Places a dialog of the main window as every form is placed when it opens.
    void PlaceDialog(QWidget* dialog) const;
    // Runs the command, guarded, when the menu entry of the key is chosen: each subsystem
    // registers its own commands.
    void SetMenuCommand(const QString& key, const std::function<void()>& command);
    // Runs the command registered for the menu entry's key, guarded, whether or not the
    // entry is available at the moment (the start-up's own use of a command).
    void RunCommand(const QString& key);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // IStartupHost
    bool AnotherInstanceRunning() override;
    void ShowSplash() override;
    void ShowMainWindow() override;
    void LoadSelectionWorkspace() override;
    void ShowTip() override;
    void ShowCheckMedia() override;
    // IPrintDialog
    bool Show() override;

    void BuildToolbar();
    void BuildMenu();
    void BuildStatusBar();
    QAction* AddMenuEntry(QMenu* menu, const QString& key, const QString& caption);
    void OnToolbar(const QString& key);
    void PrintExercises(JobKind job, const QString& statusText);
    void PrintJob(JobKind job);
    void OpenPreview(JobKind job);
    void PrintCoverDocument();
    bool RunJobOn(class PageSurface& surface, JobKind job);
    void OpenPreferences();
    void OpenSelectPatient();
    void OpenEditPatient();
    void OpenProgramList();
    void OpenClinic();
    void NotYetAvailable(const QString& what);
    void NoteUnprinted();

    AppState& state_;
    ISettingsStore& store_;
    SingleInstanceLock& lock_;
    bool showSplash_;
    bool started_ = false;
    bool unloaded_ = false;
    QMdiArea* mdi_ = nullptr;
    QtCommands toolbar_;
    QtCommands menu_;
    QtStatusPanels status_;
    QtWindowTitle title_;
    QtPrompter prompter_;
    QPrinter printer_;
    std::unique_ptr<Shell> shell_;
    std::unique_ptr<ProgramStore> programs_;
    class WorkspaceWindow* workspace_ = nullptr;
    QHash<QString, std::function<void()>> commands_;
};

} // namespace tarvex
