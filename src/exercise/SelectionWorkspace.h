#pragma once

#include "exercise/SelectionPanes.h"
#include "support/Controls.h"

#include <QString>
#include <cstdint>
#include <functional>

namespace tarvex {

struct AppState;
class Shell;
class Prompter;
class ProgramStore;

// What a drag started on: a library picture, a slot of the program, or anything else.
enum class DragKind { Other, SrcIm, TargetIm };

struct DragSource {
    DragKind kind = DragKind::Other;
    int index = -1;
};

// The workspace window as its logic sees it, apart from the upper pane.
class IWorkspaceView {
public:
    virtual ~IWorkspaceView() = default;
    // The slots of the lower pane.
    virtual PictureLoad ShowSlot(int slot, const QString& iconPath, const QString& caption,
                                 bool blue) = 0;
    virtual void ClearSlot(int slot) = 0;
    virtual void SetSlotCaption(int slot, const QString& caption) = 0;
    // The lower pane's scroll bar (pixels).
    virtual int Scroll2Value() const = 0;
    virtual void SetScroll2Value(int value) = 0;
    virtual bool Scroll2Visible() const = 0;
    // The markers of the last pressed picture.
    virtual void
    MarkLibraryPicture(int index) = 0;   // shows the library marker, hides the slot marker
    virtual void MarkSlot(int slot) = 0; // shows the slot marker, hides the library marker
    virtual void HideSlotMarker() = 0;
    // Provider, usage and "Protocol" are shown only for a patient's program.
    virtual void ShowProgramControls(bool visible) = 0;
    // Folding the upper pane: the commands that end or change the visit, the pane titles
    // and lists, the lower pane's geometry.
    virtual void SetVisitCommandsEnabled(bool enabled) = 0;
    virtual void ShowUpperPane(bool visible) = 0;
    virtual void SetShowAllCaption(const QString& caption) = 0;
    virtual void
    SetLowerPaneOffset(int offset) = 0; // moves the lower pane up by offset pixels, grown as much
    virtual void Repaint() = 0;
    // The other windows.
    virtual void OpenParams() = 0;
    virtual void OpenProtocolSelection() = 0;
    virtual void HideWindow() = 0;
    virtual void SetBusy(bool busy) = 0;
};

// The logic of "Select Exercises": the slots of the program, the drop rules, OK and Cancel
// by WorkspaceMode. Everything works on indices; the windows only show it.
class SelectionWorkspace {
public:
    static constexpr int kDeleteKey = 46;

    struct Services {
        std::function<void()> InitListBoxes;          // the filter lists
        std::function<void(IComboBox&)> LoadComboBox; // a combo from the picklist of its tag
        std::function<void()> AddNewProtocol;         // OK for a new protocol
        std::function<void()> SaveEditedProtocol;     // OK for a stored protocol
    };

    SelectionWorkspace(AppState& state, Shell& shell, Prompter& prompter, ProgramStore& programs,
                       IWorkspaceView& view, IChoicePaneView& paneView, IComboBox& cboProvider,
                       IComboBox& cboUsage, Services services);

    SelectionPanes& Panes() { return panes_; }

    // Once, when the window is made: the library, its cells, the two combos.
    void Load(IProgressSink& progress);
    // Prepares a visit; with reload the stored program is read back first.
    void InitExerciseSelection(bool reload);
    // Each time the window becomes active.
    void Activate();

    void ClearSelectedExercises();
    void LoadSelectedExs();
    void ShowSelExSlot(int slot);
    void ClearSelExSlot(int slot);
    void DropSelectedEx(int16_t index, DragSource source);
    void DeleteTarget(DragSource source);
    void DeleteSelectedEx(int16_t index);
    void SetSelExFromAnother(int16_t dst, int16_t src);
    void SetSelExFromTmp(int16_t dst);
    void SetSelExFromPool(int16_t dst, int choice);

    // Presses, double clicks, keys, pointer moves.
    void SrcPress(int index);
    void TargetPress(int slot);
    void SrcDblClick(int index);
    void TargetDblClick(int slot);
    void TargetKeyDown(int keyCode);
    void TargetLostFocus();
    void DescLabelDragOver(int slot, int y, int targetFrameTop);
    void PointerOverSource(int index);
    void PointerOverTarget(int slot);
    void PointerOverOther();

    void cboProvider_Click();
    void cboUsage_Click();
    void cmdProtocol();
    void ShowChoicesPane();
    void cmdOKCancel(const QString& tag);

    int SelectedTarget() const { return selectedTarget_; }
    bool DragScrollArmed() const { return dragScrollArmed_; }

private:
    void ListFull();

    AppState& state_;
    Shell& shell_;
    Prompter& prompter_;
    ProgramStore& programs_;
    IWorkspaceView& view_;
    IComboBox& cboProvider_;
    IComboBox& cboUsage_;
    Services services_;
    SelectionPanes panes_;
    int selectedTarget_ = -1;
    bool dragScrollArmed_ = false;
    bool deleting_ = false;
    bool folding_ = false;
};

} // namespace tarvex
