#pragma once

#include "library/LibraryListLogic.h"
#include "support/ReportModel.h"
#include "ui/FormDialog.h"
#include "ui/QtControls.h"

#include <QPointer>
#include <functional>
#include <memory>

class QTreeView;

namespace tarvex {

class ExerciseEditorDialog;

// frmLibrary, "Exercise Library": every exercise of the library in a list of five columns,
// with Add, Edit, Delete, Clean Text and Exit. Opened without modality from the Tools menu;
// leaving it (Exit, Esc or the close box) opens the databases again and rebuilds the
// selection workspace from the library as it now is.
class LibraryWindow : public FormDialog, private ILibraryListHost {
    Q_OBJECT
public:
    // The main window's part in leaving: close and open the databases, rebuild the
    // workspace.
    using Reopen = std::function<void()>;

    LibraryWindow(AppState& state, Shell& shell, Prompter& prompter, Reopen reopen,
                  QWidget* parent = nullptr);
    ~LibraryWindow() override;

    // Runs the opening: the list filled and the companion picture editor started.
    void Open();

    LibraryListLogic& Logic() { return *logic_; }
    ReportModel& Model() { return model_; }
    QTreeView* ListView1;
    QPushButton* Button(const QString& tag) const;
    // The exercise editor while it is open.
    ExerciseEditorDialog* Editor() const;

    // Starts a program without waiting (a test may replace it).
    std::function<bool(const QString&)> OnStartDetached;

    // The companion picture editor's program, beside this program's own.
    static QString PictureBenchPath();
    // Where the companion is looked for when the window opens (PictureBenchPath unless
    // set otherwise, as a test running beside another build tree does).
    void SetPictureBenchProgram(const QString& program) { pictureBench_ = program; }

protected:
    void reject() override;
    void Unload() override;

private:
    // ILibraryListHost
    void ShowExerciseEditor() override;
    QString PictureBenchProgram() const override;
    void StartDetached(const QString& program) override;
    void ReopenDatabasesAndRebuildWorkspace() override;

    void BuildLayout();

    QString pictureBench_ = PictureBenchPath();
    void Run(const QString& tag);
    // Leaving, by Exit or by the frame; not while the editor holds an unsaved exercise.
    void Leave();
    bool EditorStillOpen();

    AppState& state_;
    Prompter& prompter_;
    Reopen reopen_;
    ReportModel model_;
    QtButtons buttons_;
    QPointer<ExerciseEditorDialog> editor_;
    std::unique_ptr<LibraryListLogic> logic_;
};

} // namespace tarvex
