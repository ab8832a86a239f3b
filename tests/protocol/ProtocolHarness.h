#pragma once

#include "exercise/SelectionWorkspace.h"
#include "exercise/WorkspaceFakes.h"
#include "program/ProgramHarness.h"
#include "protocol/ProtocolEditorLogic.h"
#include "protocol/ProtocolSelectionLogic.h"

#include <QSqlQuery>
#include <vector>

namespace tarvex::testing {

// The protocol editor and the protocol selection over fake controls, with the real logic
// of the selection workspace behind them: what the windows do, without a screen. The
// delivered protocols are removed first, so that each case starts from an empty store.
struct ProtocolHarness : private IProtocolWorkspace {
    ProtocolHarness()
        : provider(false, "Provider"), usage(false, "Usage"),
          workspace(h.State(), h.shell.shell, h.prompter, h.store, view, pane, provider, usage,
                    {[this] { workspace.Panes().SizeSourcePane(); },
                     {},
                     [this] { editor.AddNewProtocol(); },
                     [this] { editor.SaveEditedProtocol(); }}),
          editor(h.State(), h.shell.shell, h.prompter, cbo, lst, Host()),
          selection(h.State(), h.prompter, selCbo, selLst, Host()) {
        Execute(h.Db(), "DELETE FROM Protocol");
        workspace.Load(progress);
        cbo.onClick = [this] { editor.cboProtocol_Click(); };
        selCbo.onClick = [this] { selection.cboProtocol_Click(); };
    }

    IProtocolWorkspace& Host() { return *this; }
    ExerciseProgram& P() { return h.Program(); }
    AppState& State() { return h.State(); }
    int Id(int choice) { return State().Library.Entries[static_cast<size_t>(choice)].ExerciseID; }

    // Puts the library's entries of the given indices into the program, in order.
    void Select(const std::vector<int>& choices) {
        for (size_t i = 0; i < choices.size(); ++i)
            P().Exercise(static_cast<int>(i)) =
                State().Library.Entries[static_cast<size_t>(choices[i])];
        P().NumExercises = static_cast<int16_t>(choices.size());
    }
    // Stores the library's entries of the given indices as a protocol; returns its id.
    int32_t Store(const QString& name, const std::vector<int>& choices) {
        Select(choices);
        editor.StoreProtocol(name);
        return LastProtocolID();
    }
    int32_t LastProtocolID() {
        QSqlQuery q = OpenQuery(h.Db(), "SELECT MAX(ProtocolID) FROM Protocol");
        return q.next() ? q.value(0).toInt() : 0;
    }
    std::vector<int32_t> ProtocolIDs() {
        std::vector<int32_t> ids;
        QSqlQuery q = OpenQuery(h.Db(), "SELECT ProtocolID FROM Protocol ORDER BY ProtocolID");
        while (q.next())
            ids.push_back(q.value(0).toInt());
        return ids;
    }
    QString NameOf(int32_t id) {
        QSqlQuery q = OpenQuery(
            h.Db(), QStringLiteral("SELECT Name FROM Protocol WHERE ProtocolID = %1").arg(id));
        return q.next() ? q.value(0).toString() : QStringLiteral("<none>");
    }
    // The exercise numbers of a protocol's rows in the order of RankOnTape, with the ranks.
    std::vector<std::pair<int, int>> Rows(int32_t id) {
        std::vector<std::pair<int, int>> rows;
        QSqlQuery q = OpenQuery(h.Db(), QStringLiteral("SELECT RankOnTape, ExerciseID FROM "
                                                       "ProtocolExercise WHERE ProtocolID = %1 "
                                                       "ORDER BY RankOnTape")
                                            .arg(id));
        while (q.next())
            rows.emplace_back(q.value(0).toInt(), q.value(1).toInt());
        return rows;
    }
    std::vector<int> Order() {
        std::vector<int> ids;
        for (int i = 0; i < P().NumExercises; ++i)
            ids.push_back(P().Exercise(i).ExerciseID);
        return ids;
    }
    // Chooses the combo entry of the editor that carries the protocol id.
    void ChooseInEditor(int32_t id) {
        for (int i = 0; i < cbo.ListCount(); ++i)
            if (cbo.ItemData(i) == id)
                return cbo.Choose(i);
        throw std::runtime_error("no protocol in the editor's combo");
    }
    void ChooseInSelection(int32_t id) {
        for (int i = 0; i < selCbo.ListCount(); ++i)
            if (selCbo.ItemData(i) == id)
                return selCbo.Choose(i);
        throw std::runtime_error("no protocol in the selection's combo");
    }

    ProgramHarness h;
    fakes::FakeWorkspaceView view;
    fakes::FakeChoicePane pane;
    fakes::FakeComboBox provider, usage;
    fakes::FakeProgress progress;
    fakes::FakeItemDataCombo cbo, selCbo;
    fakes::FakeListBox lst, selLst;
    SelectionWorkspace workspace;
    ProtocolEditorLogic editor;
    ProtocolSelectionLogic selection;
    int redraws = 0, opened = 0, shownAgain = 0;

private:
    // IProtocolWorkspace over the workspace's logic, as the window does it.
    void ClearSelectedExercises() override { workspace.ClearSelectedExercises(); }
    void LoadSelectedExs() override {
        ++redraws;
        workspace.LoadSelectedExs();
    }
    void OpenForProtocol(WorkspacePurpose mode) override {
        ++opened;
        State().WorkspaceMode = mode;
        view.hidden = false;
        workspace.InitExerciseSelection(false);
        workspace.Activate();
    }
    void ShowAgain() override {
        ++shownAgain;
        view.hidden = false;
    }
};

} // namespace tarvex::testing
