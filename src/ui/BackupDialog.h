#pragma once

#include "dbtools/BackupLogic.h"
#include "ui/FormDialog.h"
#include "ui/QtControls.h"

#include <memory>

class QLineEdit;
class QProgressBar;
class QPushButton;
class QTreeView;

namespace tarvex {

struct AppState;
class IMaintenanceHost;
class ISettingsStore;
class ReportModel;

// frmBackup, "Backup TVX Database": the three databases into "Tarvex Backup.ZIP" in a
// folder of the user's choice (on a server: one dump of its three stores). It is application-modal,
// since the databases are closed while a job runs; during a job only Abort works, and Esc and the
// close box are ignored.
class BackupDialog : public FormDialog {
    Q_OBJECT
public:
    // host: the main window's side of the job (databases, status bar, hourglass, events:
    // the job's progress is told in the main window's status bar);
    // settings: where the chosen folder is kept ("Backup", "Folder").
    BackupDialog(AppState& state, IMaintenanceHost& host, Prompter& prompts,
                 ISettingsStore& settings, QWidget* parent = nullptr);
    ~BackupDialog() override;

    void done(int result) override;
    BackupLogic& Logic() { return *logic_; }

    QLineEdit* txtFolder = nullptr;
    QPushButton* cmdFolder = nullptr;
    QLineEdit* txtPassword = nullptr;
    QTreeView* lstMain = nullptr;
    QProgressBar* prbMain = nullptr;
    QPushButton* cmdTest = nullptr;
    QPushButton* cmdFix = nullptr;
    QPushButton* cmdBackup = nullptr;
    QPushButton* cmdAbort = nullptr;
    QPushButton* cmdOK = nullptr;

private:
    class Bar;
    class FolderDialog;

    QPushButton* Button(const char* name, const QString& caption, const QString& tip);
    void BuildLayout();
    void Connect();

    ReportModel* model_ = nullptr;
    QtButtons buttons_;
    std::unique_ptr<QtCaption> folderCaption_;
    std::unique_ptr<QtLineEdit> password_;
    std::unique_ptr<Bar> bar_;
    std::unique_ptr<FolderDialog> folders_;
    std::unique_ptr<BackupLogic> logic_;
};

} // namespace tarvex
