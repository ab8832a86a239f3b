#include "exercise/SelectionWorkspace.h"

#include "exercise/LibraryCache.h"
#include "exercise/ParamText.h"
#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Prompter.h"

namespace tarvex {

SelectionWorkspace::SelectionWorkspace(AppState& state, Shell& shell, Prompter& prompter,
                                       ProgramStore& programs, IWorkspaceView& view,
                                       IChoicePaneView& paneView, IComboBox& cboProvider,
                                       IComboBox& cboUsage, Services services)
    : state_(state), shell_(shell), prompter_(prompter), programs_(programs), view_(view),
      cboProvider_(cboProvider), cboUsage_(cboUsage), services_(std::move(services)),
      panes_(state, paneView) {
    panes_.OnLoadError = [this](const QString& text, const QString& title) {
        prompter_.MsgBox(text, msg::OkOnly, title);
    };
}

void SelectionWorkspace::Load(IProgressSink& progress) {
    view_.SetBusy(true);
    LoadLibraryCache(state_);
    panes_.CreateExChoiceControls(progress);
    shell_.SetStatusBarReady();
    if (services_.LoadComboBox) {
        services_.LoadComboBox(cboProvider_);
        services_.LoadComboBox(cboUsage_);
    }
    view_.SetBusy(false);
}

void SelectionWorkspace::InitExerciseSelection(bool reload) {
    selectedTarget_ = -1;
    if (services_.InitListBoxes)
        services_.InitListBoxes();
    panes_.LoadPictsInSight();
    if (reload) {
        programs_.LoadProgram(state_.Program.InvoiceID);
        if (!state_.Program.Provider.isEmpty())
            cboProvider_.SetText(state_.Program.Provider);
        if (!state_.Program.Usage.isEmpty())
            cboUsage_.SetText(state_.Program.Usage);
    }
    LoadSelectedExs();
    view_.SetBusy(false);
}

void SelectionWorkspace::Activate() {
    switch (state_.WorkspaceMode) {
    case WorkspacePurpose::None:
        shell_.UpdateMenu(MenuMode::All);
        break;
    case WorkspacePurpose::Program:
        view_.ShowProgramControls(true);
        shell_.UpdateMenu(MenuMode::PrintOnly);
        shell_.UpdateToolbar(ToolbarMode::PrintOnly);
        break;
    default:
        view_.ShowProgramControls(false);
        shell_.UpdateMenu(MenuMode::PrintOnly);
        break;
    }
}

void SelectionWorkspace::ShowSelExSlot(int slot) {
    const ExerciseEntry& e = state_.Program.Exercise(slot);
    const PictureLoad result = view_.ShowSlot(
        slot, state_.Media.Icon + e.Icon, ShortParamText(state_.Program, slot), !e.Movie.isEmpty());
    if (result.result == PictureLoad::Failed)
        prompter_.MsgBox(
            QStringLiteral("Error: %1,  %2").arg(result.errorNumber).arg(result.description),
            msg::Exclamation, QStringLiteral("SetSelExFromPool"));
}

void SelectionWorkspace::ClearSelExSlot(int slot) {
    view_.ClearSlot(slot);
}

void SelectionWorkspace::LoadSelectedExs() {
    for (int i = 0; i < state_.Program.NumExercises; ++i)
        ShowSelExSlot(i);
    for (int i = state_.Program.NumExercises; i < ExerciseProgram::kMaxExercises; ++i)
        ClearSelExSlot(i);
}

void SelectionWorkspace::ClearSelectedExercises() {
    state_.Program.Modified = true;
    shell_.SetStatusBarReady();
    state_.Program.NumExercises = 0;
    LoadSelectedExs();
}

void SelectionWorkspace::SetSelExFromAnother(int16_t dst, int16_t src) {
    state_.Program.Modified = true;
    shell_.SetStatusBarReady();
    state_.Program.Exercise(dst) = state_.Program.Exercise(src);
    ShowSelExSlot(dst);
}

void SelectionWorkspace::SetSelExFromTmp(int16_t dst) {
    state_.Program.Modified = true;
    shell_.SetStatusBarReady();
    state_.Program.Exercise(dst) = state_.TmpExercise;
    ShowSelExSlot(dst);
}

void SelectionWorkspace::SetSelExFromPool(int16_t dst, int choice) {
    state_.Program.Modified = true;
    shell_.SetStatusBarReady();
    state_.Program.Exercise(dst) = state_.Library.Entries.at(static_cast<size_t>(choice));
    ShowSelExSlot(dst);
}

void SelectionWorkspace::ListFull() {
    prompter_.MsgBox(QStringLiteral("No room for more exercises.\nPlease delete one first."),
                     msg::Information, QStringLiteral("Exercise list full"));
}

void SelectionWorkspace::DropSelectedEx(int16_t index, DragSource source) {
    ExerciseProgram& p = state_.Program;
    p.Modified = true; // a plain click ends in a drop on itself, and counts as a change
    shell_.SetStatusBarReady();
    if (source.kind == DragKind::SrcIm) {
        if (p.NumExercises == ExerciseProgram::kMaxExercises)
            return ListFull();
        if (index < p.NumExercises) {
            for (int i = p.NumExercises - 1; i >= index; --i)
                SetSelExFromAnother(static_cast<int16_t>(i + 1), static_cast<int16_t>(i));
            SetSelExFromPool(index, source.index);
        } else {
            // Any empty slot means the first empty one.
            SetSelExFromPool(p.NumExercises, source.index);
            const int top = SelectionPanes::SlotPicturePos(p.NumExercises).y();
            if (top < view_.Scroll2Value())
                view_.SetScroll2Value(top - 2);
        }
        ++p.NumExercises;
        return;
    }
    if (source.kind != DragKind::TargetIm)
        return;
    const int from = source.index;
    if (from == index || from >= p.NumExercises || index >= p.NumExercises)
        return;
    if (state_.DragMode != 0) {
        // "Replace" swaps the two slots: nothing is lost.
        state_.TmpExercise = p.Exercise(index);
        SetSelExFromAnother(index, static_cast<int16_t>(from));
        SetSelExFromTmp(static_cast<int16_t>(from));
        return;
    }
    state_.TmpExercise = p.Exercise(from);
    if (from > index) {
        for (int i = from; i >= index + 1; --i)
            SetSelExFromAnother(static_cast<int16_t>(i), static_cast<int16_t>(i - 1));
    } else {
        for (int i = from; i <= index - 1; ++i)
            SetSelExFromAnother(static_cast<int16_t>(i), static_cast<int16_t>(i + 1));
    }
    SetSelExFromTmp(index);
}

void SelectionWorkspace::DeleteTarget(DragSource source) {
    if (source.kind == DragKind::TargetIm)
        DeleteSelectedEx(static_cast<int16_t>(source.index));
}

void SelectionWorkspace::DeleteSelectedEx(int16_t index) {
    if (deleting_)
        return;
    deleting_ = true;
    ExerciseProgram& p = state_.Program;
    if (index < p.NumExercises) {
        p.Modified = true;
        shell_.SetStatusBarReady();
        for (int i = index; i <= p.NumExercises - 2; ++i)
            SetSelExFromAnother(static_cast<int16_t>(i), static_cast<int16_t>(i + 1));
        --p.NumExercises;
        view_.ClearSlot(p.NumExercises);
    }
    deleting_ = false;
}

void SelectionWorkspace::SrcPress(int index) {
    view_.MarkLibraryPicture(index);
    selectedTarget_ = -1;
    dragScrollArmed_ = false;
}

void SelectionWorkspace::TargetPress(int slot) {
    view_.MarkSlot(slot);
    selectedTarget_ = slot;
}

void SelectionWorkspace::SrcDblClick(int index) {
    if (state_.Program.NumExercises == ExerciseProgram::kMaxExercises)
        return ListFull();
    state_.ParamsFromLibrary = 1;
    state_.Library.CurrentChoice = index;
    view_.OpenParams();
}

void SelectionWorkspace::TargetDblClick(int slot) {
    state_.Library.CurrentChoice = slot;
    if (slot < state_.Program.NumExercises) {
        state_.ParamsFromLibrary = 0;
        view_.OpenParams();
    }
}

void SelectionWorkspace::TargetKeyDown(int keyCode) {
    if (keyCode == kDeleteKey && selectedTarget_ > -1)
        DeleteSelectedEx(static_cast<int16_t>(selectedTarget_));
}

void SelectionWorkspace::TargetLostFocus() {
    view_.HideSlotMarker();
}

void SelectionWorkspace::DescLabelDragOver(int slot, int y, int targetFrameTop) {
    if (!dragScrollArmed_)
        return;
    dragScrollArmed_ = false;
    const int t = targetFrameTop + SelectionPanes::SlotCaptionPos(slot).y();
    if (t < 0)
        view_.SetScroll2Value(std::max(SelectionPanes::kScroll2Min,
                                       view_.Scroll2Value() - SelectionPanes::kScroll2Small));
    if (y > 150 && t > 80 && slot < 15)
        view_.SetScroll2Value(std::min(SelectionPanes::kScroll2Max,
                                       view_.Scroll2Value() + SelectionPanes::kScroll2Small));
}

void SelectionWorkspace::PointerOverSource(int index) {
    if (index >= 0 && index < state_.Library.NumChoices)
        shell_.SetStatusBar(QStringLiteral("Exercise: ") +
                            state_.Library.Entries[static_cast<size_t>(index)].Desc);
}

void SelectionWorkspace::PointerOverTarget(int slot) {
    if (slot < state_.Program.NumExercises)
        shell_.SetStatusBar(QStringLiteral("Exercise: ") + LongParamText(state_.Program, slot));
}

void SelectionWorkspace::PointerOverOther() {
    shell_.SetStatusBarReady();
}

void SelectionWorkspace::cboProvider_Click() {
    state_.Program.Modified = true;
    state_.Program.Provider = cboProvider_.Text();
}

void SelectionWorkspace::cboUsage_Click() {
    state_.Program.Modified = true;
    state_.Program.Usage = cboUsage_.Text();
}

void SelectionWorkspace::cmdProtocol() {
    view_.HideWindow();
    view_.OpenProtocolSelection();
}

void SelectionWorkspace::ShowChoicesPane() {
    if (folding_)
        return;
    folding_ = true;
    const bool show = !view_.Scroll2Visible();
    view_.SetVisitCommandsEnabled(show);
    int dir;
    if (show) {
        view_.SetShowAllCaption(QStringLiteral("&Show All"));
        dir = 1;
        dragScrollArmed_ = false;
    } else {
        view_.SetShowAllCaption(QStringLiteral("&Show Choices"));
        dir = -1;
        view_.ShowUpperPane(false);
    }
    // Fifteen frames of ten pixels: the lower pane takes over the upper pane's place.
    const int start = show ? 140 : 0;
    for (int s = 0; s <= 140; s += 10) {
        view_.SetLowerPaneOffset(start - dir * s);
        view_.Repaint();
    }
    if (show)
        view_.ShowUpperPane(true);
    else
        dragScrollArmed_ = true;
    folding_ = false;
}

void SelectionWorkspace::cmdOKCancel(const QString& tag) {
    ExerciseProgram& p = state_.Program;
    const WorkspacePurpose mode = state_.WorkspaceMode;
    if (tag == QLatin1String("OK")) {
        if (mode == WorkspacePurpose::Program) {
            shell_.SetStatusBarReady();
            p.Provider = cboProvider_.Text();
            p.Usage = cboUsage_.Text();
            p.Date = QDateTime::currentDateTime();
            p.Modified = true; // OK counts as a change, whatever was changed
            shell_.UpdateToolbar(ToolbarMode::All);
            programs_.SaveProgram(false);
        } else if (mode == WorkspacePurpose::NewProtocol && services_.AddNewProtocol) {
            services_.AddNewProtocol();
        } else if (mode == WorkspacePurpose::StoredProtocol && services_.SaveEditedProtocol) {
            services_.SaveEditedProtocol();
        }
    } else if (tag == QLatin1String("Cancel")) {
        if (mode == WorkspacePurpose::Program) {
            programs_.LoadProgram(p.InvoiceID);
            shell_.UpdateToolbar(ToolbarMode::All);
        }
    } else {
        return;
    }
    view_.HideWindow();
    shell_.UpdateMenu(MenuMode::All);
}

} // namespace tarvex
