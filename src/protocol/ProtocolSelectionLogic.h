#pragma once

#include "protocol/ProtocolEditorLogic.h"
#include "protocol/ProtocolLists.h"

namespace tarvex {

// The logic of "Protocol Selection", opened from the workspace: the protocol editor's
// combo and list, read only, and OK, which lays the chosen protocol into the workspace.
class ProtocolSelectionLogic {
public:
    static constexpr const char* kCaption = "Protocol Selection";

    ProtocolSelectionLogic(AppState& state, Prompter& prompter, IItemDataCombo& cboProtocol,
                           IListBox& lstProtocol, IProtocolWorkspace& workspace);

    void Load() { lists_.FillcboProtocol(); }
    void cboProtocol_Click() { lists_.cboProtocol_Click(); }
    // "OK" or "Cancel": the workspace comes back, with the protocol laid in on OK. True
    // when the window is to unload.
    bool cmdOKCancel(const QString& tag);

    int32_t CurrentProtocolID() const { return lists_.CurrentProtocolID(); }

private:
    IProtocolWorkspace& workspace_;
    ProtocolLists lists_;
};

} // namespace tarvex
