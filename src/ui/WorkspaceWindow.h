#pragma once

#include "exercise/ExerciseParamsLogic.h"
#include "exercise/LibraryFilter.h"
#include "exercise/SelectionWorkspace.h"
#include "protocol/ProtocolEditorLogic.h"
#include "ui/QtControls.h"

#include <QPointer>
#include <QWidget>
#include <memory>

class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;
class QGroupBox;

namespace tarvex {

class ChoicePaneWidget;
class SlotPaneWidget;
class ProgramStore;

// frmExerciseSelection, "Select Exercises": the library above, the program's 20 slots
// below, the filter lists, drag mode, provider and usage at the side. Made once at
// start-up and then only hidden and shown.
class WorkspaceWindow : public QWidget,
                        private IWorkspaceView,
                        private IFilterHost,
                        private IProgressSink,
                        private IParamsTarget,
                        private IProtocolWorkspace {
    Q_OBJECT
public:
    WorkspaceWindow(AppState& state, Shell& shell, Prompter& prompter, ProgramStore& programs,
                    QWidget* parent = nullptr);
    ~WorkspaceWindow() override;

    // Builds the library cache, its cells and the combos (once).
    void LoadOnce();
    // A visit by the toolbar's "Exercises": mode 1, the stored program reloaded.
    void StartProgramVisit();

    SelectionWorkspace& Logic() { return *logic_; }
    LibraryFilter& Filter() { return *filter_; }
    ChoicePaneWidget* ChoicePane() const { return choices_; }
    SlotPaneWidget* SlotPane() const { return slots_; }
    QListWidget* ViewList(int index) const { return viewLists_[static_cast<size_t>(index)]; }
    QPushButton* Button(const QString& name) const;
    QComboBox* ProviderBox() const { return cboProvider_; }
    QComboBox* UsageBox() const { return cboUsage_; }
    // The protocol selection while it is open.
    QWidget* ProtocolSelection() const { return protocolSelection_; }

    // Shows the parameter dialog modally (a test may replace it).
    std::function<void()> OnOpenParams;

    // The workspace as the protocol windows use it.
    IProtocolWorkspace& ProtocolHost() { return *this; }
    // What the OK of a visit for a new or a stored protocol runs: the open protocol
    // editor's AddNewProtocol and SaveEditedProtocol.
    std::function<void()> OnAddNewProtocol;
    std::function<void()> OnSaveEditedProtocol;

signals:
    // The window hid at the end of a visit.
    void VisitEnded();

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // IWorkspaceView
    PictureLoad ShowSlot(int slot, const QString& iconPath, const QString& caption,
                         bool blue) override;
    void ClearSlot(int slot) override;
    void SetSlotCaption(int slot, const QString& caption) override;
    int Scroll2Value() const override;
    void SetScroll2Value(int value) override;
    bool Scroll2Visible() const override;
    void MarkLibraryPicture(int index) override;
    void MarkSlot(int slot) override;
    void HideSlotMarker() override;
    void ShowProgramControls(bool visible) override;
    void SetVisitCommandsEnabled(bool enabled) override;
    void ShowUpperPane(bool visible) override;
    void SetShowAllCaption(const QString& caption) override;
    void SetLowerPaneOffset(int offset) override;
    void Repaint() override;
    void OpenParams() override;
    void OpenProtocolSelection() override;
    void HideWindow() override;
    // IWorkspaceView and IFilterHost
    void SetBusy(bool busy) override;
    // IFilterHost
    void Yield() override;
    void SizeSourcePane() override;
    void LoadPictsInSight() override;
    // IProgressSink
    void Init(int maximum, const QString& title) override;
    void Update(int value) override;
    void Destroy() override;
    // IParamsTarget
    void SetSelExFromTmp(int16_t slot) override;
    void ShowSlotCaption(int16_t slot, const QString& caption) override;
    // IProtocolWorkspace
    void ClearSelectedExercises() override;
    void LoadSelectedExs() override;
    void OpenForProtocol(WorkspacePurpose mode) override;
    void ShowAgain() override;

    void BuildLayout();
    QWidget* BuildSidePanel();

    AppState& state_;
    Shell& shell_;
    Prompter& prompter_;
    QPointer<QWidget> protocolSelection_;
    ChoicePaneWidget* choices_;
    SlotPaneWidget* slots_;
    std::array<QListWidget*, 3> viewLists_{};
    std::array<std::unique_ptr<QtListBox>, 3> viewListAdapters_;
    QComboBox* cboProvider_;
    QComboBox* cboUsage_;
    QtComboBox provider_, usage_;
    QLabel* choicesLabel_ = nullptr;
    QLabel* selectedLabel_ = nullptr;
    QLabel* lblProvider_ = nullptr;
    QLabel* lblUsage_ = nullptr;
    QGroupBox* frame1_ = nullptr;
    QPushButton* showAllBtn_ = nullptr;
    std::unique_ptr<class QtProgressWindow> progressWindow_;
    std::unique_ptr<class ProgressLogic> progress_;
    std::unique_ptr<SelectionWorkspace> logic_;
    std::unique_ptr<LibraryFilter> filter_;
    bool loaded_ = false;
};

} // namespace tarvex
