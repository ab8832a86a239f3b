#pragma once

#include "protocol/ProtocolLists.h"
#include "shell/AppState.h"

#include <QString>
#include <cstdint>

namespace tarvex {

class Shell;
class Prompter;

// The selection workspace as the protocol windows use it.
class IProtocolWorkspace {
public:
    virtual ~IProtocolWorkspace() = default;
    virtual void ClearSelectedExercises() = 0;
    virtual void LoadSelectedExs() = 0;
    // Sets the workspace's purpose, shows it and prepares a visit without reading the
    // stored program back.
    virtual void OpenForProtocol(WorkspacePurpose mode) = 0;
    // Shows the workspace again after the protocol selection hid it.
    virtual void ShowAgain() = 0;
};

// The logic of "Protocol Editor": the protocols by name, the exercises of the chosen one,
// and New, Edit and Delete. New and Edit hand the list to the selection workspace, whose
// OK comes back to AddNewProtocol or SaveEditedProtocol.
class ProtocolEditorLogic {
public:
    static constexpr const char* kCaption = "Protocol Editor";

    ProtocolEditorLogic(AppState& state, Shell& shell, Prompter& prompter,
                        IItemDataCombo& cboProtocol, IListBox& lstProtocol,
                        IProtocolWorkspace& workspace);

    void Load();
    void cboProtocol_Click() { lists_.cboProtocol_Click(); }
    // Runs the button of the tag; true when the window is to unload.
    bool cmdOKCancel(const QString& tag);

    void AddNewProtocol();
    void SaveEditedProtocol();
    void StoreProtocol(const QString& name);
    void DeleteProtocol(int32_t protocolID, bool ask);

    int32_t CurrentProtocolID() const { return lists_.CurrentProtocolID(); }
    ProtocolLists& Lists() { return lists_; }

private:
    AppState& state_;
    Shell& shell_;
    Prompter& prompter_;
    IProtocolWorkspace& workspace_;
    ProtocolLists lists_;
};

} // namespace tarvex
